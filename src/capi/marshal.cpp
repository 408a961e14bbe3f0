#include "capi/marshal.h"

#include <atomic>
#include <cstdlib>
#include <cstring>

#include "core/error.h"
#include "core/json_writer.h"
#include "core/unicode.h"
#include "platform/platform.h"

namespace zeblo::capi {

namespace {
std::atomic<CallObserver*> installedObserver{nullptr};
}  // namespace

CallObserver* callObserver() noexcept { return installedObserver.load(std::memory_order_acquire); }

void installCallObserver(CallObserver* observer) noexcept {
    installedObserver.store(observer, std::memory_order_release);
}

std::string decodeString(const char* s) {
    if (s == nullptr) return {};
    return text::decodeUtf8Lossy(std::string_view(s));
}

std::vector<std::string> decodeTitles(const char* const* titles, std::int32_t count) {
    std::vector<std::string> out;
    if (titles == nullptr || count <= 0) return out;
    out.reserve(static_cast<std::size_t>(count));
    for (std::int32_t i = 0; i < count; ++i) {
        if (titles[i] != nullptr) out.push_back(decodeString(titles[i]));
    }
    return out;
}

std::vector<std::uint16_t> copyKeyCodes(const std::uint16_t* codes, std::int32_t count) {
    if (codes == nullptr || count <= 0) return {};
    return std::vector<std::uint16_t>(codes, codes + count);
}

std::uint64_t reduceModifierMask(std::uint64_t mask) noexcept {
    return mask & platform::kEventFlagModifiers;
}

std::optional<std::int64_t> retryTimeout(std::int32_t milliseconds) noexcept {
    if (milliseconds < 0) return std::nullopt;
    return milliseconds;
}

const char* heapCopy(std::string_view text) noexcept {
    auto* out = static_cast<char*>(std::malloc(text.size() + 1));
    if (out == nullptr) return nullptr;
    if (!text.empty()) std::memcpy(out, text.data(), text.size());
    out[text.size()] = '\0';
    return out;
}

std::string describe(const std::exception& e) {
    if (const auto* error = dynamic_cast<const Error*>(&e)) return error->description();
    return e.what();
}

void logFailure(std::string_view exportName, std::string_view description) noexcept {
    try {
        std::string line(exportName);
        line += " error: ";
        line += description;
        platform::current().log(line);
    } catch (...) {
        // Out of memory while building the line: nothing more can be said.
    }
}

const char* jsonResult(std::string text, std::string_view fallback) noexcept {
    if (!text::isValidUtf8(text)) return heapCopy(fallback);
    return heapCopy(text);
}

const char* errorResult(const std::exception& e) noexcept {
    try {
        return heapCopy(json::errorObject(text::decodeUtf8Lossy(describe(e))));
    } catch (...) {
        return heapCopy("{\"error\": \"out of memory\"}");
    }
}

}  // namespace zeblo::capi
