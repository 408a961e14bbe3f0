// The typed views of attribute reads and the process-wide backend.
#include "platform/platform.h"

#include <atomic>
#include <mutex>

#include "platform/default_platform.h"

namespace zeblo::platform {

namespace {

// The common part of every typed view: failure and "no value" first, then
// `take` gives the value when it is of the expected kind.
template <class T, class Take>
Read<T> view(AttributeRead&& r, Take take) {
    Read<T> out;
    out.code = r.code;
    if (r.code != kAXErrorSuccess) {
        out.status = ReadStatus::failed;
    } else if (std::holds_alternative<std::monostate>(r.value)) {
        out.status = ReadStatus::noValue;
    } else if (take(r.value, out.value)) {
        out.status = ReadStatus::ok;
    } else {
        out.status = ReadStatus::wrongKind;
    }
    return out;
}

template <class T>
Read<T> simple(AttributeRead&& r) {
    return view<T>(std::move(r), [](Value& v, T& out) {
        if (auto* p = std::get_if<T>(&v)) {
            out = std::move(*p);
            return true;
        }
        return false;
    });
}

// An array of the other kind counts when it is empty.
template <class T, class Other>
Read<std::vector<T>> array(AttributeRead&& r) {
    return view<std::vector<T>>(std::move(r), [](Value& v, std::vector<T>& out) {
        if (auto* p = std::get_if<std::vector<T>>(&v)) {
            out = std::move(*p);
            return true;
        }
        auto* other = std::get_if<std::vector<Other>>(&v);
        return other != nullptr && other->empty();
    });
}

}  // namespace

Read<std::string> asString(AttributeRead&& r) { return simple<std::string>(std::move(r)); }
Read<bool> asBool(AttributeRead&& r) { return simple<bool>(std::move(r)); }
Read<std::int64_t> asInteger(AttributeRead&& r) { return simple<std::int64_t>(std::move(r)); }

Read<Element> asElement(AttributeRead&& r) {
    Read<Element> out = simple<Element>(std::move(r));
    if (out.status == ReadStatus::ok && !out.value) out.status = ReadStatus::noValue;  // a null element
    return out;
}

Read<std::vector<Element>> asElementArray(AttributeRead&& r) {
    return array<Element, std::string>(std::move(r));
}

Read<std::vector<std::string>> asStringArray(AttributeRead&& r) {
    return array<std::string, Element>(std::move(r));
}

// --- The process-wide backend ---------------------------------------------------

namespace {

// The installed backend; null means the default. Read without a lock.
std::atomic<Platform*> g_installed{nullptr};

struct Installation {
    std::mutex mu;
    std::shared_ptr<Platform> installed;
    // Backends that were replaced. They are never destroyed: a handle or a
    // reference obtained from one may still be in use on another thread.
    std::vector<std::shared_ptr<Platform>> retired;
};

Installation& installation() {
    static auto* state = new Installation;  // never destroyed, for the reason above
    return *state;
}

// Constant-initialized, so that it can be set while other static objects of
// the library are still being built.
std::atomic<DefaultPlatformFactory> g_defaultFactory{nullptr};

Platform& defaultPlatform() {
    // Kept for the life of the process, like a retired backend.
    static auto* backend = new std::shared_ptr<Platform>([] {
        const DefaultPlatformFactory factory = g_defaultFactory.load(std::memory_order_acquire);
        return factory != nullptr ? factory() : makeDefaultPlatform();
    }());
    return **backend;
}

// The innermost capture of the calling thread.
thread_local LogCapture* t_capture = nullptr;

}  // namespace

LogCapture::LogCapture() : outer_(t_capture) { t_capture = this; }
LogCapture::~LogCapture() { t_capture = outer_; }

void Platform::log(std::string_view line) {
    if (t_capture != nullptr) t_capture->lines_.emplace_back(line);
    writeLog(line);
}

void setDefaultPlatformFactory(DefaultPlatformFactory factory) {
    g_defaultFactory.store(factory, std::memory_order_release);
}

Platform& current() {
    if (Platform* p = g_installed.load(std::memory_order_acquire)) return *p;
    return defaultPlatform();
}

void install(std::shared_ptr<Platform> backend) {
    Installation& state = installation();
    std::lock_guard lock(state.mu);
    if (state.installed) state.retired.push_back(std::move(state.installed));
    state.installed = std::move(backend);
    g_installed.store(state.installed.get(), std::memory_order_release);
}

}  // namespace zeblo::platform
