// Each thread's last failure: every call of the superset library (the 25
// functions through the call observer of marshal.h, the element functions
// directly) forgets the previous one as it begins and records its own.
#include "capi/plus/failures.h"

#include <nlohmann/json.hpp>

#include "capi/marshal.h"
#include "ops/apps/app_error.h"
#include "ops/elements/element_ops.h"
#include "ops/keyboard/keystroke_error.h"
#include "ops/menus/menu_error.h"
#include "ops/windows/window_error.h"
#include "ops/windows/window_ops.h"
#include "zeblo/zeblo_plus.h"

namespace zeblo::capi::plus {

namespace {

using Json = nlohmann::ordered_json;

struct Record {
    bool failed = false;
    std::string function;
    Failure failure;
    std::string detail;  // why, beyond the error's own text
};

thread_local Record lastCall;
thread_local std::string pendingDetail;

// The name of a typed error's case, from its kind's table of cases.
std::string caseName(const TypedError& e) {
    const auto& cases = e.errorKind().cases;
    const auto number = static_cast<std::size_t>(e.caseNumber());
    return number < cases.size() ? std::string(cases[number].name) : "unknown";
}

class Observer final : public CallObserver {
public:
    void begin() noexcept override { recordBegin(); }
    void failed(std::string_view exportName, const std::exception* error) noexcept override {
        try {
            lastCall.failed = true;
            lastCall.function = std::string(exportName);
            lastCall.failure = failureOf(error);
            lastCall.detail = std::move(pendingDetail);
            pendingDetail.clear();
        } catch (...) {
            lastCall.failed = false;  // out of memory: nothing can be told
        }
    }
};

// A control the 25 functions did not find: a hidden one of that name is
// told apart.
void explainMissed(const std::string& app, const std::string& window, std::string_view role, const std::string& name) {
    try {
        pendingDetail = elements::hiddenControl(app, window, role, name).value_or("");
    } catch (...) {
        pendingDetail.clear();
    }
}

}  // namespace

Failure failureOf(const std::exception* error) {
    if (error == nullptr) return {"internal", "unknown", "unknown error"};
    if (const auto* e = dynamic_cast<const elements::ElementError*>(error)) {
        return {e->kind(), e->errorCase(), e->description()};
    }
    if (const auto* e = dynamic_cast<const WindowError*>(error)) {
        return {e->unanswered() ? "unanswered" : "window", caseName(*e), e->description()};
    }
    if (const auto* e = dynamic_cast<const AppError*>(error)) return {"app", caseName(*e), e->description()};
    if (const auto* e = dynamic_cast<const MenuError*>(error)) return {"menu", caseName(*e), e->description()};
    if (const auto* e = dynamic_cast<const KeystrokeError*>(error)) {
        return {"keystroke", caseName(*e), e->description()};
    }
    if (const auto* e = dynamic_cast<const MessageError*>(error)) return {"keystroke", "failure", e->description()};
    if (const auto* e = dynamic_cast<const Error*>(error)) return {"internal", "unexpected", e->description()};
    if (dynamic_cast<const std::bad_alloc*>(error) != nullptr) return {"internal", "outOfMemory", "out of memory"};
    return {"internal", "unexpected", error->what()};
}

std::string errorJson(const Failure& failure) {
    Json inner = Json::object();
    inner["kind"] = failure.kind;
    inner["case"] = failure.errorCase;
    inner["message"] = failure.message;
    return Json{{"error", std::move(inner)}}.dump(-1, ' ', false, Json::error_handler_t::replace);
}

void recordBegin() noexcept {
    lastCall.failed = false;
    pendingDetail.clear();
}

void recordFailure(std::string_view function, const Failure& failure) noexcept {
    try {
        lastCall.failed = true;
        lastCall.function = std::string(function);
        lastCall.failure = failure;
        lastCall.detail.clear();
    } catch (...) {
        lastCall.failed = false;
    }
}

void installRecord() noexcept {
    static Observer observer;
    installCallObserver(&observer);
    WindowOps::onMissedControl(&explainMissed);
}

std::string lastFailureJson() {
    if (!lastCall.failed) return "null";
    Json out = Json::object();
    if (!lastCall.function.empty()) out["function"] = lastCall.function;
    out["kind"] = lastCall.failure.kind;
    out["case"] = lastCall.failure.errorCase;
    out["message"] = lastCall.failure.message;
    if (!lastCall.detail.empty()) out["detail"] = lastCall.detail;
    return out.dump(-1, ' ', false, Json::error_handler_t::replace);
}

namespace {
// The record is in place before the host's first call.
[[maybe_unused]] const bool installed = (installRecord(), true);
}  // namespace

}  // namespace zeblo::capi::plus
