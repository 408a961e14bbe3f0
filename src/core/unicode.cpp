#include "core/unicode.h"

#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/ustring.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <memory>

namespace zeblo::text {
namespace {

bool isAscii(std::string_view s) noexcept {
    return std::all_of(s.begin(), s.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// ICU's UTF-8 reader substitutes U+FFFD for each maximal ill-formed subpart.
icu::UnicodeString fromUtf8(std::string_view s) {
    return icu::UnicodeString::fromUTF8(icu::StringPiece(s.data(), static_cast<int32_t>(s.size())));
}

std::string toUtf8(const icu::UnicodeString& u) {
    std::string out;
    u.toUTF8String(out);
    return out;
}

const icu::Normalizer2& nfd() {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* n = icu::Normalizer2::getNFDInstance(status);
    return *n;  // part of ICU's data; cannot fail once ICU is loaded
}

icu::UnicodeString decomposed(std::string_view s) {
    UErrorCode status = U_ZERO_ERROR;
    icu::UnicodeString out = nfd().normalize(fromUtf8(s), status);
    return U_SUCCESS(status) ? out : fromUtf8(s);
}

// A grapheme-cluster iterator per thread: creating one loads rules, so it is
// made once and reused.
icu::BreakIterator* graphemeIterator() {
    thread_local std::unique_ptr<icu::BreakIterator> it = [] {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::BreakIterator> made(
            icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
        if (U_FAILURE(status)) made.reset();
        return made;
    }();
    return it.get();
}

bool isAsciiSpace(char c) noexcept {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

}  // namespace

bool isValidUtf8(std::string_view bytes) noexcept {
    const auto* p = reinterpret_cast<const uint8_t*>(bytes.data());
    const auto length = static_cast<int32_t>(bytes.size());
    int32_t i = 0;
    while (i < length) {
        UChar32 c;
        U8_NEXT(p, i, length, c);
        if (c < 0) return false;
    }
    return true;
}

std::string decodeUtf8Lossy(std::string_view bytes) {
    if (isValidUtf8(bytes)) return std::string(bytes);
    return toUtf8(fromUtf8(bytes));
}

std::string toLower(std::string_view s) {
    if (isAscii(s)) {
        std::string out(s);
        for (char& c : out) {
            if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
        }
        return out;
    }
    icu::UnicodeString u = fromUtf8(s);
    u.toLower(icu::Locale::getRoot());
    return toUtf8(u);
}

std::vector<std::string> graphemes(std::string_view s) {
    std::vector<std::string> out;
    if (s.empty()) return out;
    icu::UnicodeString u = fromUtf8(s);
    icu::BreakIterator* it = graphemeIterator();
    if (it == nullptr) {  // no break data: one cluster per scalar
        for (int32_t i = 0; i < u.length(); i = u.moveIndex32(i, 1)) {
            out.push_back(toUtf8(icu::UnicodeString(u, i, u.moveIndex32(i, 1) - i)));
        }
        return out;
    }
    it->setText(u);
    int32_t start = it->first();
    for (int32_t end = it->next(); end != icu::BreakIterator::DONE; start = end, end = it->next()) {
        out.push_back(toUtf8(icu::UnicodeString(u, start, end - start)));
    }
    return out;
}

std::string removeWhitespace(std::string_view s) {
    if (isAscii(s)) {
        // ASCII clusters are single characters except CR LF, whose first
        // scalar is white space like its second: dropping each byte is the
        // same as dropping the clusters.
        std::string out;
        out.reserve(s.size());
        for (char c : s) {
            if (!isAsciiSpace(c)) out.push_back(c);
        }
        return out;
    }
    icu::UnicodeString u = fromUtf8(s);
    icu::UnicodeString kept;
    icu::BreakIterator* it = graphemeIterator();
    auto keepCluster = [&](int32_t start, int32_t end) {
        if (!u_hasBinaryProperty(u.char32At(start), UCHAR_WHITE_SPACE)) kept.append(u, start, end - start);
    };
    if (it == nullptr) {
        for (int32_t i = 0; i < u.length(); i = u.moveIndex32(i, 1)) keepCluster(i, u.moveIndex32(i, 1));
    } else {
        it->setText(u);
        int32_t start = it->first();
        for (int32_t end = it->next(); end != icu::BreakIterator::DONE; start = end, end = it->next()) {
            keepCluster(start, end);
        }
    }
    return toUtf8(kept);
}

bool canonicallyEqual(std::string_view a, std::string_view b) {
    if (a == b) return true;
    if (isAscii(a) && isAscii(b)) return false;
    return decomposed(a) == decomposed(b);
}

bool canonicallyContains(std::string_view haystack, std::string_view needle) {
    if (needle.empty() || haystack.empty()) return false;
    if (isAscii(haystack) && isAscii(needle)) return haystack.find(needle) != std::string_view::npos;

    const icu::UnicodeString h = decomposed(haystack);
    const icu::UnicodeString n = decomposed(needle);
    if (n.isEmpty()) return false;
    icu::BreakIterator* it = graphemeIterator();
    if (it != nullptr) it->setText(h);
    // A match counts only when it starts and ends on cluster boundaries, so
    // "e" is not found inside "é" and a base letter is not found without its
    // combining marks.
    for (int32_t at = h.indexOf(n); at >= 0; at = h.indexOf(n, at + 1)) {
        if (it == nullptr || (it->isBoundary(at) && it->isBoundary(at + n.length()))) return true;
    }
    return false;
}

bool looseMatch(std::string_view candidate, std::string_view wanted) {
    const std::string c = removeWhitespace(toLower(candidate));
    const std::string w = removeWhitespace(toLower(wanted));
    if (canonicallyEqual(c, w)) return true;
    return canonicallyContains(c, w);
}

}  // namespace zeblo::text
