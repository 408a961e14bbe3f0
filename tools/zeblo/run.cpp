// Running a command: its arguments read by their parameters' kinds, the
// export called through the table, its result printed.
#include <cstdio>
#include <limits>
#include <stdexcept>

#include <nlohmann/json.hpp>

#include "capi/export_table.h"
#include "capi/plus/plus_export_table.h"
#include "cli.h"

namespace zeblo::cli {
namespace {

using capi::Argument;
using capi::ParamKind;

bool isFlag(std::string_view word) { return word.starts_with("--"); }
bool isRest(std::string_view word) { return word.ends_with("..."); }
bool isOptional(std::string_view word) { return word.starts_with("["); }

// The digits of a decimal or 0x-hex number into `value`; false for text that
// is not one. Throws UsageError when it does not fit in 64 bits.
bool readDigits(std::string_view text, const std::string& original, unsigned long long& value) {
    int base = 10;
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        base = 16;
        text.remove_prefix(2);
    }
    if (text.empty()) return false;
    value = 0;
    for (const char c : text) {
        int digit = -1;
        if (c >= '0' && c <= '9')
            digit = c - '0';
        else if (base == 16 && c >= 'a' && c <= 'f')
            digit = c - 'a' + 10;
        else if (base == 16 && c >= 'A' && c <= 'F')
            digit = c - 'A' + 10;
        if (digit < 0) return false;
        if (value > (std::numeric_limits<unsigned long long>::max() - digit) / base) {
            throw UsageError{"out of range: '" + original + "'"};
        }
        value = value * base + digit;
    }
    return true;
}

bool parseSwitch(std::string_view text) {
    if (text == "0") return false;
    if (text == "1") return true;
    throw UsageError{"expected 0 or 1, got '" + std::string(text) + "'"};
}

std::int32_t parseInt32(std::string_view text) {
    return static_cast<std::int32_t>(
        parseInteger(text, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()));
}

// One argument from the words given for a parameter of `kind`.
Argument argument(ParamKind kind, const std::vector<std::string>& given) {
    switch (kind) {
        case ParamKind::titles: return given;
        case ParamKind::keyCodes: {
            std::vector<std::uint16_t> codes;
            for (const std::string& code : given)
                codes.push_back(static_cast<std::uint16_t>(parseInteger(code, 0, 65535)));
            return codes;
        }
        case ParamKind::integer:
        case ParamKind::milliseconds: return parseInt32(given.front());
        case ParamKind::mask: return parseMask(given.front());
        case ParamKind::flag: return parseSwitch(given.front());
        case ParamKind::name: return given.empty() ? Argument(nullptr) : Argument(given.front());
        case ParamKind::text:
        case ParamKind::query:
        case ParamKind::returned: return given.empty() ? std::string() : given.front();
    }
    return nullptr;
}

// Adds a query word's field to `query`: a flag's true, a time, or a text
// (left out when empty).
void addField(nlohmann::ordered_json& query, const Word& w, const std::vector<std::string>& given, bool flag) {
    if (flag) {
        if (given.front() == "1") query[std::string(w.field)] = true;
    } else if (!given.empty() && !given.front().empty()) {
        if (w.milliseconds) {
            query[std::string(w.field)] = parseInteger(given.front(), 0, 600000);
        } else {
            query[std::string(w.field)] = given.front();
        }
    }
}

const capi::Export& exportOf(const Command& command) {
    const capi::Export* row = capi::plus::findAnyExport(command.exportName);
    if (row == nullptr) throw std::logic_error("no export " + std::string(command.exportName));
    return *row;
}

const capi::Param& paramOf(const capi::Export& row, std::string_view name) {
    for (const capi::Param& param : row.params) {
        if (param.name == name) return param;
    }
    throw std::logic_error("no parameter " + std::string(name) + " in " + std::string(row.name));
}

}  // namespace

std::string usageOf(const Command& command) {
    std::string out;
    for (const Word& w : command.words) {
        if (isFlag(w.word)) continue;
        if (!out.empty()) out += ' ';
        out += w.word;
    }
    return out;
}

std::vector<std::string_view> flagsOf(const Command& command) {
    std::vector<std::string_view> out;
    for (const Word& w : command.words) {
        if (isFlag(w.word)) out.push_back(w.word);
    }
    return out;
}

std::vector<Argument> read(const Command& command, const std::vector<std::string>& arguments) {
    const capi::Export& row = exportOf(command);
    // The flags out first, wherever they are; the rest in order.
    std::vector<std::string> values;
    std::vector<std::string_view> flags;
    const std::vector<std::string_view> known = flagsOf(command);
    for (const std::string& a : arguments) {
        bool flag = false;
        for (const std::string_view f : known) flag = flag || a == f;
        if (flag)
            flags.push_back(a);
        else
            values.push_back(a);
    }
    std::size_t least = 0, most = 0;
    for (const Word& w : command.words) {
        if (isFlag(w.word)) continue;
        const bool path = paramOf(row, w.param).kind == ParamKind::titles;
        least += isOptional(w.word) || (isRest(w.word) && !path) ? 0 : 1;
        most = isRest(w.word) ? std::numeric_limits<std::size_t>::max() : most + 1;
    }
    if (values.size() < least || values.size() > most) {
        throw UsageError{"usage: zeblo " + std::string(command.name) + " " + usageOf(command)};
    }

    std::vector<Argument> call(row.params.size());
    std::vector<nlohmann::ordered_json> queries(row.params.size(), nlohmann::ordered_json::object());
    std::size_t next = 0;
    for (const Word& w : command.words) {
        const capi::Param& param = paramOf(row, w.param);
        std::vector<std::string> given;
        if (isFlag(w.word)) {
            bool present = false;
            for (const std::string_view f : flags) present = present || f == w.word;
            given.push_back(present ? "1" : "0");
        } else if (isRest(w.word)) {
            given.assign(values.begin() + static_cast<std::ptrdiff_t>(next), values.end());
            next = values.size();
        } else if (next < values.size()) {
            given.push_back(values[next++]);
        }
        const auto at = static_cast<std::size_t>(&param - row.params.data());
        if (param.kind == ParamKind::query) {
            addField(queries[at], w, given, isFlag(w.word));
            call[at] = queries[at].dump();
        } else {
            call[at] = argument(param.kind, given);
        }
    }
    return call;
}

int run(const Command& command, const std::vector<Argument>& arguments) {
    const capi::Export& row = exportOf(command);
    const capi::CallResult result = row.call(arguments);
    if (row.result == capi::ResultKind::boolean) {
        std::fputs(result.answer ? "true\n" : "false\n", stdout);
        return result.answer ? 0 : 1;
    }
    if (!result.text) {
        std::fputs("zeblo: out of memory\n", stderr);
        return 1;
    }
    std::fputs(result.text.get(), stdout);
    std::fputc('\n', stdout);
    return std::string_view(result.text.get()).starts_with("{\"error\":") ? 1 : 0;
}

std::int64_t parseInteger(std::string_view text, std::int64_t min, std::int64_t max) {
    const std::string original(text);
    bool negative = false;
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        negative = text.front() == '-';
        text.remove_prefix(1);
    }
    unsigned long long magnitude = 0;
    if (!readDigits(text, original, magnitude)) throw UsageError{"not an integer: '" + original + "'"};
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

std::uint64_t parseMask(std::string_view text) {
    const std::string original(text);
    unsigned long long value = 0;
    if (!readDigits(text, original, value)) throw UsageError{"not a mask: '" + original + "'"};
    return value;
}

}  // namespace zeblo::cli
