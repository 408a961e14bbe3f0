// Text between the library (UTF-8 std::string) and Core Foundation (UTF-16
// CFString). Conversions go through ICU with U+FFFD substituted for whatever
// cannot be converted (ill-formed UTF-8 one way, unpaired surrogates the
// other), so that a read never fails because of its text.

#include "platform/macos/mac_platform.h"

#include <unicode/ustring.h>
#include <unicode/utypes.h>

#include <algorithm>
#include <climits>
#include <vector>

namespace zeblo::platform::macos {

namespace {

constexpr UChar32 kReplacement = 0xFFFD;

// UTF-16 is converted in pieces of this many code units, so that the int32_t
// lengths of ICU never overflow and the scratch buffer stays small.
constexpr CFIndex kChunkUnits = 1 << 16;

bool isLeadSurrogate(UniChar unit) noexcept { return unit >= 0xD800 && unit <= 0xDBFF; }

// Appends the UTF-8 form of `units` to `out`.
void appendUtf8(const UniChar* units, int32_t count, std::string& out) {
    if (count <= 0) return;
    // Each UTF-16 code unit gives at most three UTF-8 bytes.
    std::string piece(static_cast<std::size_t>(count) * 3, '\0');
    int32_t written = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8WithSub(piece.data(), static_cast<int32_t>(piece.size()), &written,
                       reinterpret_cast<const UChar*>(units), count, kReplacement, nullptr,
                       &status);
    if (U_FAILURE(status)) {
        // Cannot happen with a buffer this size; keep the text's place visible.
        out += "\xEF\xBF\xBD";
        return;
    }
    out.append(piece.data(), static_cast<std::size_t>(written));
}

}  // namespace

ScopedCF<CFStringRef> makeCFString(std::string_view text) {
    if (text.size() > static_cast<std::size_t>(INT32_MAX)) return {};
    const auto length = static_cast<int32_t>(text.size());
    // UTF-8 never has fewer bytes than its UTF-16 form has code units.
    std::vector<UChar> units(static_cast<std::size_t>(length) + 1);
    int32_t written = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(units.data(), static_cast<int32_t>(units.size()), &written, text.data(),
                         length, kReplacement, nullptr, &status);
    if (U_FAILURE(status)) return {};
    return ScopedCF<CFStringRef>::adopt(CFStringCreateWithCharacters(
        kCFAllocatorDefault, reinterpret_cast<const UniChar*>(units.data()), written));
}

NSString* makeNSString(std::string_view text) {
    ScopedCF<CFStringRef> string = makeCFString(text);
    if (!string) return nil;
    // ARC takes over the reference the wrapper held.
    return (NSString*)CFBridgingRelease(string.release());
}

std::string utf8FromCFString(CFStringRef string) {
    std::string out;
    if (string == nullptr) return out;
    const CFIndex length = CFStringGetLength(string);
    std::vector<UniChar> units(static_cast<std::size_t>(std::min(length, kChunkUnits)) + 1);
    CFIndex at = 0;
    while (at < length) {
        CFIndex count = std::min(kChunkUnits, length - at);
        CFStringGetCharacters(string, CFRangeMake(at, count), units.data());
        // A surrogate pair cut in two by the chunk's end waits for the next
        // chunk instead of turning into two replacement characters.
        const bool cutPair = at + count < length && count > 1 &&
                             isLeadSurrogate(units[static_cast<std::size_t>(count - 1)]);
        if (cutPair) --count;
        appendUtf8(units.data(), static_cast<int32_t>(count), out);
        at += count;
    }
    return out;
}

std::string describeCF(CFTypeRef object) {
    if (object == nullptr) return "null";
    ScopedCF<CFStringRef> description = ScopedCF<CFStringRef>::adopt(CFCopyDescription(object));
    return utf8FromCFString(description.get());
}

}  // namespace zeblo::platform::macos
