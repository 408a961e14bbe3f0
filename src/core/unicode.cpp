#include "core/unicode.h"

// ICU's C API only: it is all that macOS's system ICU (libicucore) exports,
// and it keeps the library free of ICU's versioned C++ ABI.
#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <memory>

namespace zeblo::text {
namespace {

constexpr UChar32 kReplacement = 0xFFFD;

bool isAscii(std::string_view s) noexcept {
    return std::all_of(s.begin(), s.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

int32_t length32(std::size_t n) noexcept {
    return static_cast<int32_t>(std::min<std::size_t>(n, INT32_MAX));
}

// UTF-8 read into UTF-16, U+FFFD in place of each maximal ill-formed
// subpart. No UTF-8 text has fewer bytes than its UTF-16 form has units.
std::u16string fromUtf8(std::string_view s) {
    std::u16string out(s.size(), u'\0');
    int32_t written = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(out.data(), length32(out.size()), &written, s.data(), length32(s.size()),
                         kReplacement, nullptr, &status);
    out.resize(U_SUCCESS(status) ? static_cast<std::size_t>(written) : 0);
    return out;
}

// Each UTF-16 unit gives at most three UTF-8 bytes (a pair gives four);
// a lone surrogate becomes U+FFFD.
std::string toUtf8(std::u16string_view u) {
    std::string out(u.size() * 3, '\0');
    int32_t written = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8WithSub(out.data(), length32(out.size()), &written, u.data(), length32(u.size()), kReplacement,
                       nullptr, &status);
    out.resize(U_SUCCESS(status) ? static_cast<std::size_t>(written) : 0);
    return out;
}

// Runs one of ICU's "fill this buffer" functions, growing the buffer once
// when ICU reports the length it needs. On failure, the input unchanged.
template <typename Fill>
std::u16string transformed(std::u16string_view in, Fill fill) {
    std::u16string out(in.size() + 16, u'\0');
    for (int attempt = 0; attempt < 2; ++attempt) {
        UErrorCode status = U_ZERO_ERROR;
        const int32_t needed = fill(out.data(), length32(out.size()), &status);
        if (status == U_BUFFER_OVERFLOW_ERROR) {  // `needed` is then the length it takes
            out.assign(static_cast<std::size_t>(needed), u'\0');
            continue;
        }
        if (U_FAILURE(status)) break;
        out.resize(static_cast<std::size_t>(needed));
        return out;
    }
    return std::u16string(in);
}

std::u16string lowerCased(std::u16string_view u) {
    return transformed(u, [&](UChar* dest, int32_t capacity, UErrorCode* status) {
        return u_strToLower(dest, capacity, u.data(), length32(u.size()), "", status);
    });
}

std::u16string normalized(const UNormalizer2* form, std::u16string_view u) {
    if (form == nullptr) return std::u16string(u);
    return transformed(u, [&](UChar* dest, int32_t capacity, UErrorCode* status) {
        return unorm2_normalize(form, u.data(), length32(u.size()), dest, capacity, status);
    });
}

// The normalizers belong to ICU's data and are never closed.
const UNormalizer2* nfd() {
    UErrorCode status = U_ZERO_ERROR;
    const UNormalizer2* n = unorm2_getNFDInstance(&status);
    return U_SUCCESS(status) ? n : nullptr;
}

const UNormalizer2* nfc() {
    UErrorCode status = U_ZERO_ERROR;
    const UNormalizer2* n = unorm2_getNFCInstance(&status);
    return U_SUCCESS(status) ? n : nullptr;
}

struct BreakIteratorClose {
    void operator()(UBreakIterator* it) const noexcept { ubrk_close(it); }
};

// A grapheme-cluster iterator per thread: opening one loads rules, so it is
// made once and reused. Its text is only borrowed: Clusters below sets it
// for the life of one walk.
UBreakIterator* graphemeIterator() {
    thread_local std::unique_ptr<UBreakIterator, BreakIteratorClose> it = [] {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<UBreakIterator, BreakIteratorClose> made(ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status));
        if (U_FAILURE(status)) made.reset();
        return made;
    }();
    return it.get();
}

// The grapheme clusters of a UTF-16 text, as [start, end) offsets; without
// break data, one cluster per scalar.
class Clusters {
public:
    explicit Clusters(std::u16string_view text) : text_(text), it_(graphemeIterator()) {
        if (it_ == nullptr) return;
        UErrorCode status = U_ZERO_ERROR;
        ubrk_setText(it_, text_.data(), length32(text_.size()), &status);
        if (U_FAILURE(status)) it_ = nullptr;
    }
    Clusters(const Clusters&) = delete;
    Clusters& operator=(const Clusters&) = delete;
    ~Clusters() {
        if (it_ == nullptr) return;
        UErrorCode status = U_ZERO_ERROR;
        ubrk_setText(it_, nullptr, 0, &status);  // drop the borrowed text
    }

    template <typename Visit>
    void each(Visit visit) {
        const auto length = length32(text_.size());
        if (it_ == nullptr) {
            for (int32_t i = 0; i < length;) {
                const int32_t start = i;
                U16_FWD_1(text_.data(), i, length);
                visit(start, i);
            }
            return;
        }
        int32_t start = ubrk_first(it_);
        for (int32_t end = ubrk_next(it_); end != UBRK_DONE; start = end, end = ubrk_next(it_)) visit(start, end);
    }

    bool isBoundary(int32_t offset) { return it_ == nullptr || ubrk_isBoundary(it_, offset) != 0; }

private:
    std::u16string_view text_;
    UBreakIterator* it_;
};

UChar32 scalarAt(std::u16string_view u, int32_t at) {
    UChar32 c;
    U16_GET(u.data(), 0, at, length32(u.size()), c);
    return c;
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

std::u32string codePoints(std::string_view s) {
    const std::u16string u = fromUtf8(s);
    std::u32string out;
    const auto length = length32(u.size());
    for (int32_t i = 0; i < length;) {
        UChar32 c;
        U16_NEXT(u.data(), i, length, c);
        out.push_back(static_cast<char32_t>(c));
    }
    return out;
}

std::string composed(std::string_view s) {
    return toUtf8(normalized(nfc(), fromUtf8(s)));
}

std::string toLower(std::string_view s) {
    if (isAscii(s)) {
        std::string out(s);
        for (char& c : out) {
            if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
        }
        return out;
    }
    return toUtf8(lowerCased(fromUtf8(s)));
}

std::vector<std::string> graphemes(std::string_view s) {
    std::vector<std::string> out;
    const std::u16string u = fromUtf8(s);
    const std::u16string_view view(u);
    Clusters(view).each([&](int32_t start, int32_t end) { out.push_back(toUtf8(view.substr(start, end - start))); });
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
    const std::u16string u = fromUtf8(s);
    const std::u16string_view view(u);
    std::u16string kept;
    Clusters(view).each([&](int32_t start, int32_t end) {
        if (!u_hasBinaryProperty(scalarAt(view, start), UCHAR_WHITE_SPACE)) kept.append(view.substr(start, end - start));
    });
    return toUtf8(kept);
}

bool canonicallyEqual(std::string_view a, std::string_view b) {
    if (a == b) return true;
    if (isAscii(a) && isAscii(b)) return false;
    return normalized(nfd(), fromUtf8(a)) == normalized(nfd(), fromUtf8(b));
}

bool canonicallyContains(std::string_view haystack, std::string_view needle) {
    if (needle.empty() || haystack.empty()) return false;
    if (isAscii(haystack) && isAscii(needle)) return haystack.find(needle) != std::string_view::npos;

    const std::u16string h = normalized(nfd(), fromUtf8(haystack));
    const std::u16string n = normalized(nfd(), fromUtf8(needle));
    if (n.empty() || n.size() > h.size()) return false;
    Clusters clusters(h);
    // A match counts only when it starts and ends on cluster boundaries, so
    // "e" is not found inside "é" and a base letter is not found without its
    // combining marks. ICU's search also keeps surrogate pairs whole.
    const auto hLength = length32(h.size());
    const auto nLength = length32(n.size());
    // Each match is tried in turn; the search ends when none is left (past
    // the last one the text searched is empty).
    for (int32_t from = 0;;) {
        const UChar* found = u_strFindFirst(h.data() + from, hLength - from, n.data(), nLength);
        if (found == nullptr) return false;
        const auto at = static_cast<int32_t>(found - h.data());
        if (clusters.isBoundary(at) && clusters.isBoundary(at + nLength)) return true;
        from = at + 1;
    }
}

bool looseMatch(std::string_view candidate, std::string_view wanted) {
    const std::string c = removeWhitespace(toLower(candidate));
    const std::string w = removeWhitespace(toLower(wanted));
    if (canonicallyEqual(c, w)) return true;
    return canonicallyContains(c, w);
}

}  // namespace zeblo::text
