#include "ops/elements/reference.h"

#include <charconv>

namespace zeblo::elements {

namespace {

// Reads a decimal number at the front of `text` and drops it from there.
template <class T>
bool take(std::string_view& text, T& into) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), into);
    if (error != std::errc() || end == text.data()) return false;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return true;
}

}  // namespace

std::uint16_t checkOf(std::string_view role, std::string_view name) {
    // FNV-1a over the role, a separator and the name, folded to 16 bits.
    std::uint32_t hash = 2166136261u;
    const auto mix = [&](std::string_view bytes) {
        for (const char c : bytes) {
            hash ^= static_cast<unsigned char>(c);
            hash *= 16777619u;
        }
    };
    mix(role);
    mix(std::string_view("\0", 1));
    mix(name);
    return static_cast<std::uint16_t>((hash >> 16) ^ (hash & 0xffff));
}

std::string format(const Reference& ref) {
    std::string out = std::to_string(ref.pid) + ":";
    out += ref.menuBar ? std::string("m") : (ref.popup ? "p" : "") + std::to_string(ref.window);
    for (const std::size_t index : ref.path) out += "." + std::to_string(index);
    static constexpr char kHex[] = "0123456789abcdef";
    out += '~';
    for (int shift = 12; shift >= 0; shift -= 4) out += kHex[(ref.check >> shift) & 0xf];
    return out;
}

std::optional<Reference> parseReference(std::string_view text) {
    Reference ref;
    if (!take(text, ref.pid) || ref.pid <= 0 || text.empty() || text.front() != ':') return std::nullopt;
    text.remove_prefix(1);
    if (!text.empty() && text.front() == 'm') {
        ref.menuBar = true;
        text.remove_prefix(1);
    } else if (ref.popup = !text.empty() && text.front() == 'p'; ref.popup) {
        text.remove_prefix(1);
        if (!take(text, ref.window)) return std::nullopt;
    } else if (!take(text, ref.window)) {
        return std::nullopt;
    }
    while (!text.empty() && text.front() == '.') {
        text.remove_prefix(1);
        std::size_t index = 0;
        if (!take(text, index)) return std::nullopt;
        ref.path.push_back(index);
    }
    if (text.size() != 5 || text.front() != '~') return std::nullopt;
    text.remove_prefix(1);
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), ref.check, 16);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return ref;
}

}  // namespace zeblo::elements
