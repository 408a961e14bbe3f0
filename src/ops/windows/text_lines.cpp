#include "ops/windows/text_lines.h"

#include <cstring>

namespace zeblo {

namespace {

std::uint32_t bigram(unsigned char a, unsigned char b) { return (std::uint32_t{a} << 8) | b; }

}  // namespace

void TextLines::append(std::string line) {
    const std::size_t start = joined_.size();
    joined_ += line;
    joined_ += '\0';
    lines_.push_back(std::move(line));
    if (joined_.size() >= kNone) {
        tooLarge_ = true;
        indexed_ = false;
    }
    if (tooLarge_) return;
    if (indexed_) {
        index(start);
    } else if (joined_.size() >= kIndexFrom) {
        head_.assign(65536, kNone);
        count_.assign(65536, 0);
        indexed_ = true;
        index(0);
    }
}

void TextLines::index(std::size_t from) {
    previous_.resize(joined_.size(), kNone);
    const auto* bytes = reinterpret_cast<const unsigned char*>(joined_.data());
    for (std::size_t i = from; i + 1 < joined_.size(); ++i) {
        present_[bytes[i]] = true;
        if (bytes[i] == 0 || bytes[i + 1] == 0) continue;  // never part of a needle
        const std::uint32_t g = bigram(bytes[i], bytes[i + 1]);
        previous_[i] = head_[g];
        head_[g] = static_cast<std::uint32_t>(i);
        ++count_[g];
    }
}

bool TextLines::scanLines(std::string_view needle) const {
    for (const auto& line : lines_)
        if (std::string_view(line).find(needle) != std::string_view::npos) return true;
    return false;
}

bool TextLines::anyContains(std::string_view needle) const {
    if (needle.empty()) return false;
    // A needle holding NUL could match across a separator: ask the lines.
    if (tooLarge_ || needle.find('\0') != std::string_view::npos) return scanLines(needle);
    if (!indexed_) return std::string_view(joined_).find(needle) != std::string_view::npos;

    const auto* n = reinterpret_cast<const unsigned char*>(needle.data());
    if (needle.size() == 1) return present_[n[0]];

    // The needle's rarest bigram; a bigram that never occurs settles it.
    std::size_t bestOffset = 0;
    std::uint32_t bestCount = UINT32_MAX;
    for (std::size_t j = 0; j + 1 < needle.size(); ++j) {
        const std::uint32_t c = count_[bigram(n[j], n[j + 1])];
        if (c == 0) return false;
        if (c < bestCount) {
            bestCount = c;
            bestOffset = j;
        }
    }
    const std::uint32_t g = bigram(n[bestOffset], n[bestOffset + 1]);
    for (std::uint32_t at = head_[g]; at != kNone; at = previous_[at]) {
        if (at < bestOffset) continue;
        const std::size_t from = at - bestOffset;
        if (from + needle.size() > joined_.size()) continue;
        // The needle has no NUL, so a match never spans two lines.
        if (std::memcmp(joined_.data() + from, needle.data(), needle.size()) == 0) return true;
    }
    return false;
}

}  // namespace zeblo
