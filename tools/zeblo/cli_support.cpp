#include <cstdio>
#include <limits>

#include "cli.h"
#include "zeblo/zeblo.h"

namespace zeblo::cli {

int printString(const char* result) {
    if (result == nullptr) {
        std::fputs("zeblo: out of memory\n", stderr);
        return 1;
    }
    std::fputs(result, stdout);
    std::fputc('\n', stdout);
    zeblo_free_string(result);
    return 0;
}

int printBool(bool result) {
    std::fputs(result ? "true\n" : "false\n", stdout);
    return result ? 0 : 1;
}

std::int64_t parseInteger(std::string_view text, std::int64_t min, std::int64_t max) {
    const std::string original(text);
    bool negative = false;
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        negative = text.front() == '-';
        text.remove_prefix(1);
    }
    int base = 10;
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        base = 16;
        text.remove_prefix(2);
    }
    if (text.empty()) throw UsageError{"not an integer: '" + original + "'"};
    unsigned long long magnitude = 0;
    for (char c : text) {
        int digit = -1;
        if (c >= '0' && c <= '9') digit = c - '0';
        else if (base == 16 && c >= 'a' && c <= 'f') digit = c - 'a' + 10;
        else if (base == 16 && c >= 'A' && c <= 'F') digit = c - 'A' + 10;
        if (digit < 0) throw UsageError{"not an integer: '" + original + "'"};
        if (magnitude > (std::numeric_limits<unsigned long long>::max() - digit) / base) {
            throw UsageError{"out of range: '" + original + "'"};
        }
        magnitude = magnitude * base + digit;
    }
    // Values are checked against [min, max] in the unsigned domain first so
    // that no signed overflow can happen.
    if (negative) {
        const unsigned long long limit = min < 0 ? static_cast<unsigned long long>(-(min + 1)) + 1 : 0;
        if (magnitude > limit) throw UsageError{"out of range: '" + original + "'"};
        return magnitude == 0 ? 0 : -static_cast<std::int64_t>(magnitude - 1) - 1;
    }
    if (max < 0 || magnitude > static_cast<unsigned long long>(max)) {
        throw UsageError{"out of range: '" + original + "'"};
    }
    return static_cast<std::int64_t>(magnitude);
}

std::int32_t parseInt32(std::string_view text) {
    return static_cast<std::int32_t>(
        parseInteger(text, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()));
}

bool parseSwitch(std::string_view text) {
    if (text == "0") return false;
    if (text == "1") return true;
    throw UsageError{"expected 0 or 1, got '" + std::string(text) + "'"};
}

}  // namespace zeblo::cli
