// Conversions between the C arguments and results of the exported functions
// and the library's own strings and lists, and the two shapes every export
// body takes: a boolean that logs its failure, and a JSON string.
#pragma once

#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zeblo::capi {

// An optional or required C string: null becomes "", ill-formed UTF-8 becomes
// U+FFFD.
std::string decodeString(const char* s);

// A path of titles: the first `count` entries, null entries skipped. A negative
// count, or a null array, gives the empty path.
std::vector<std::string> decodeTitles(const char* const* titles, std::int32_t count);

// Key codes copied in order; the array is not read when the count is 0 or
// less or the array is null.
std::vector<std::uint16_t> copyKeyCodes(const std::uint16_t* codes, std::int32_t count);

// The modifier mask of a global keystroke reduced to Shift, Control, Option
// and Command.
std::uint64_t reduceModifierMask(std::uint64_t mask) noexcept;

// A close-window retry timeout: negative means none is given.
std::optional<std::int64_t> retryTimeout(std::int32_t milliseconds) noexcept;

// A heap copy of `text` made with strdup, for the host to free with
// zeblo_free_string; null only when memory runs out.
const char* heapCopy(std::string_view text) noexcept;

// The description of any caught exception: a library error's description, or
// the standard exception's text.
std::string describe(const std::exception& e);

// Writes "<exportName> error: <description>" to the log as one literal line.
void logFailure(std::string_view exportName, std::string_view description) noexcept;

// What a library that explains its failures keeps of each call: the
// superset library installs one (zeblo_last_failure); the plain library
// installs none, and then nothing is kept.
class CallObserver {
public:
    // A call begins: the last failure is forgotten.
    virtual void begin() noexcept = 0;
    // The call failed with `error` (null: with something that is not an
    // exception of the library's or the standard's).
    virtual void failed(std::string_view exportName, const std::exception* error) noexcept = 0;

protected:
    ~CallObserver() = default;
};
CallObserver* callObserver() noexcept;
// Installs `observer` for every later call (once, as the library loads).
void installCallObserver(CallObserver* observer) noexcept;

// Runs an operation for a boolean export that logs: true when it finished,
// false (and one log line) when it threw.
template <class Op>
bool runLogged(std::string_view exportName, Op&& op) noexcept {
    CallObserver* observer = callObserver();
    if (observer != nullptr) observer->begin();
    try {
        op();
        return true;
    } catch (const std::exception& e) {
        try {
            logFailure(exportName, describe(e));
        } catch (...) {
        }
        if (observer != nullptr) observer->failed(exportName, &e);
    } catch (...) {
        logFailure(exportName, "unknown error");
        if (observer != nullptr) observer->failed(exportName, nullptr);
    }
    return false;
}

// Runs an operation for a boolean export that does not log: its answer, or
// false when it threw.
template <class Op>
bool runQuiet(Op&& op) noexcept {
    CallObserver* observer = callObserver();
    if (observer != nullptr) observer->begin();
    try {
        return static_cast<bool>(op());
    } catch (const std::exception& e) {
        if (observer != nullptr) observer->failed({}, &e);
        return false;
    } catch (...) {
        if (observer != nullptr) observer->failed({}, nullptr);
        return false;
    }
}

// Runs an operation for a string export: `op` returns the finished JSON text.
// Text that is not well-formed UTF-8 is replaced by `fallback`; a thrown error
// gives the error object built from its description, or `fallback` when
// `fallbackOnError` is set (exports that never return an error object).
const char* jsonResult(std::string text, std::string_view fallback) noexcept;
const char* errorResult(const std::exception& e) noexcept;

template <class Op>
const char* runJson(std::string_view fallback, bool fallbackOnError, Op&& op) noexcept {
    CallObserver* observer = callObserver();
    if (observer != nullptr) observer->begin();
    try {
        return jsonResult(op(), fallback);
    } catch (const std::exception& e) {
        if (observer != nullptr) observer->failed({}, &e);
        return fallbackOnError ? heapCopy(fallback) : errorResult(e);
    } catch (...) {
        if (observer != nullptr) observer->failed({}, nullptr);
        return heapCopy(fallback);
    }
}

}  // namespace zeblo::capi
