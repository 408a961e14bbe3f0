// The zeblo command-line tool: one command per exported function, made from
// the tables of the exports (capi/export_table.h, and the superset library's
// capi/plus/plus_export_table.h). A command's words name the
// export's parameters; how each argument is read follows from its
// parameter's kind.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "capi/export_table.h"

namespace zeblo::cli {

// One word of a command's usage and the export parameter it gives:
//   "APP"      a positional argument
//   "[APP]"    a positional argument that may be left out ("")
//   "TITLE..." the remaining arguments (a menu path needs one at least)
//   "--mark"   a flag, true when given anywhere after the command word
// A word of a query parameter (a JSON object) gives one field of it: a
// string, left out when empty, a flag's true, or a number of milliseconds.
struct Word {
    std::string_view word;
    std::string_view param;
    std::string_view field = {};
    bool milliseconds = false;
};

struct Command {
    std::string_view name;
    std::string_view exportName;
    std::vector<Word> words;
};

// The commands, in the order the usage lists them.
const std::vector<Command>& commands();

// The positional words, e.g. "APP WINDOW NAME", and the flags, e.g. "--mark".
std::string usageOf(const Command& command);
std::vector<std::string_view> flagsOf(const Command& command);

// Thrown for a usage error: the tool prints the command's usage and exits 2.
struct UsageError {
    std::string message;
};

// The arguments of a call of `command`'s export, read from the words after
// the command word. Throws UsageError.
std::vector<capi::Argument> read(const Command& command, const std::vector<std::string>& words);

// Calls `command`'s export, prints the result (a string's JSON and a line
// break, or "true"/"false") and gives the exit code: 0 for a string or true,
// 1 for false or an error object.
int run(const Command& command, const std::vector<capi::Argument>& arguments);

// Decimal or 0x-hex, with an optional sign, within [min, max]; throws
// UsageError.
std::int64_t parseInteger(std::string_view text, std::int64_t min, std::int64_t max);
// An unsigned 64-bit mask, decimal or 0x-hex, no sign; throws UsageError.
std::uint64_t parseMask(std::string_view text);

}  // namespace zeblo::cli
