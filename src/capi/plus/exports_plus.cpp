// The element functions of the superset library and zeblo_last_failure.
#include <string>

#include "capi/marshal.h"
#include "capi/plus/failures.h"
#include "ops/elements/element_ops.h"
#include "zeblo/zeblo_plus.h"

namespace zeblo::capi::plus {

namespace {

std::string_view view(const char* s) { return s == nullptr ? std::string_view() : std::string_view(s); }

// Runs an element function: its JSON, or its error object; the failure is
// recorded for zeblo_last_failure.
template <class Op>
const char* runElement(std::string_view function, Op&& op) noexcept {
    recordBegin();
    Failure failure;
    try {
        return jsonResult(op(), "null");
    } catch (const std::exception& e) {
        failure = failureOf(&e);
    } catch (...) {
        failure = failureOf(nullptr);
    }
    recordFailure(function, failure);
    try {
        return heapCopy(errorJson(failure));
    } catch (...) {
        return heapCopy(R"({"error":{"kind":"internal","case":"outOfMemory","message":"out of memory"}})");
    }
}

}  // namespace

}  // namespace zeblo::capi::plus

using zeblo::capi::plus::runElement;
using zeblo::capi::plus::view;

extern "C" {

const char* zeblo_element_tree(const char* query) {
    return runElement("zeblo_element_tree", [&] { return zeblo::elements::tree(view(query)); });
}

const char* zeblo_element_find(const char* query) {
    return runElement("zeblo_element_find", [&] { return zeblo::elements::find(view(query)); });
}

const char* zeblo_element_get(const char* ref) {
    return runElement("zeblo_element_get", [&] { return zeblo::elements::get(view(ref)); });
}

const char* zeblo_element_act(const char* ref, const char* action, const char* value) {
    return runElement("zeblo_element_act",
                      [&] { return zeblo::elements::act(view(ref), view(action), view(value)); });
}

const char* zeblo_element_wait(const char* query) {
    return runElement("zeblo_element_wait", [&] { return zeblo::elements::wait(view(query)); });
}

const char* zeblo_press_keys(const char* appName, const char* keys) {
    return runElement("zeblo_press_keys", [&] { return zeblo::elements::pressKeys(view(appName), view(keys)); });
}

const char* zeblo_last_failure(void) {
    try {
        return zeblo::capi::heapCopy(zeblo::capi::plus::lastFailureJson());
    } catch (...) {
        return zeblo::capi::heapCopy("null");
    }
}

}  // extern "C"
