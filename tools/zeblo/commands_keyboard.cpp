// Commands of the keyboard area.
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "cli.h"
#include "zeblo/zeblo.h"

namespace zeblo::cli {
namespace {

// An unsigned 64-bit mask, decimal or 0x-hex, no sign.
std::uint64_t parseMask(std::string_view text) {
    const std::string original(text);
    int base = 10;
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        base = 16;
        text.remove_prefix(2);
    }
    if (text.empty()) throw UsageError{"not a mask: '" + original + "'"};
    std::uint64_t value = 0;
    for (char c : text) {
        int digit = -1;
        if (c >= '0' && c <= '9') digit = c - '0';
        else if (base == 16 && c >= 'a' && c <= 'f') digit = c - 'a' + 10;
        else if (base == 16 && c >= 'A' && c <= 'F') digit = c - 'A' + 10;
        if (digit < 0) throw UsageError{"not a mask: '" + original + "'"};
        if (value > (std::numeric_limits<std::uint64_t>::max() - digit) / base) {
            throw UsageError{"out of range: '" + original + "'"};
        }
        value = value * base + digit;
    }
    return value;
}

int key(const Args& a) {
    return printBool(zeblo_send_keystroke(a.values[0].c_str(), a.values[1].c_str(), parseInt32(a.values[2])));
}

int chord(const Args& a) {
    const std::uint64_t flags = parseMask(a.values[0]);
    std::vector<std::uint16_t> codes;
    for (std::size_t i = 1; i < a.values.size(); ++i) {
        codes.push_back(static_cast<std::uint16_t>(parseInteger(a.values[i], 0, 65535)));
    }
    return printBool(zeblo_send_global_keystroke(codes.data(), static_cast<std::int32_t>(codes.size()), flags));
}

}  // namespace

void addKeyboardCommands(Commands& commands) {
    commands.push_back({"key", "APP KEY MODIFIERS", 3, 3, {}, key});
    commands.push_back({"chord", "FLAGS CODE...", 1, SIZE_MAX, {}, chord});
    commands.push_back({"type", "TEXT", 1, 1, {"--mark"},
                        [](const Args& a) { return printBool(zeblo_type_text(a.values[0].c_str(), a.mark)); }});
    commands.push_back({"paste", "TEXT", 1, 1, {},
                        [](const Args& a) { return printBool(zeblo_paste_text(a.values[0].c_str())); }});
    commands.push_back({"fill", "TEXT", 1, 1, {"--enter"}, [](const Args& a) {
                            return printBool(zeblo_paste_into_focused_field(a.values[0].c_str(), a.enter));
                        }});
}

}  // namespace zeblo::cli
