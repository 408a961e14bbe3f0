// The list of labelled text lines a window walk collects, with a fast answer
// to "does any line so far contain this text?" (byte-wise, case-sensitive).
//
// The lines are kept joined in one buffer, each followed by a NUL byte, so a
// needle without NUL is found in the buffer exactly when some line holds it.
// While the buffer is small a query is one search through it. Past
// kIndexFrom bytes an index from every two-byte sequence (bigram) to the
// positions where it occurs takes over: a query then looks only at the
// positions of the needle's rarest bigram, so its cost is the needle's length
// plus that bigram's occurrence count, not the length of everything collected
// so far.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zeblo {

class TextLines {
public:
    TextLines() = default;

    void append(std::string line);
    // Whether any line appended so far contains `needle`; false for "".
    bool anyContains(std::string_view needle) const;

    std::size_t size() const noexcept { return lines_.size(); }
    const std::vector<std::string>& lines() const noexcept { return lines_; }
    std::vector<std::string> take() { return std::move(lines_); }

private:
    static constexpr std::uint32_t kNone = UINT32_MAX;
    static constexpr std::size_t kIndexFrom = 4 * 1024;
    bool scanLines(std::string_view needle) const;
    void index(std::size_t from);

    std::vector<std::string> lines_;
    std::string joined_;
    std::array<bool, 256> present_{};
    // Per bigram: the last position it occurs at and how often it occurs;
    // per position: the previous position of the same bigram.
    std::vector<std::uint32_t> head_;
    std::vector<std::uint32_t> count_;
    std::vector<std::uint32_t> previous_;
    bool indexed_ = false;
    bool tooLarge_ = false;  // the buffer outgrew 32-bit positions
};

}  // namespace zeblo
