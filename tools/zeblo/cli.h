// The zeblo command-line tool: one command per exported function.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace zeblo::cli {

// A command's arguments after the command word, flags already taken out.
struct Args {
    std::vector<std::string> values;
    bool mark = false;   // --mark (type)
    bool enter = false;  // --enter (fill)
    bool hidden = false; // --hidden (tree)
};

// Thrown for a usage error: the tool prints the command's usage and exits 2.
struct UsageError {
    std::string message;
};

struct Command {
    std::string name;
    std::string usage;       // the arguments, e.g. "APP WINDOW NAME"
    std::size_t minArgs = 0;
    std::size_t maxArgs = 0;  // SIZE_MAX: any number
    std::vector<std::string> flags;  // flags the command takes: "--mark", "--enter"
    std::function<int(const Args&)> run;
};

using Commands = std::vector<Command>;

void addAppCommands(Commands& commands);
void addMenuCommands(Commands& commands);
void addKeyboardCommands(Commands& commands);
void addWindowCommands(Commands& commands);
void addElementCommands(Commands& commands);

// Prints a string result (JSON text) and a line break, frees it; exit code 0.
int printString(const char* result);
// Prints "true" or "false"; exit code 0 for true, 1 for false.
int printBool(bool result);
// Decimal or 0x-hex, with an optional minus sign; throws UsageError.
std::int64_t parseInteger(std::string_view text, std::int64_t min, std::int64_t max);
std::int32_t parseInt32(std::string_view text);
// "0" or "1"; throws UsageError.
bool parseSwitch(std::string_view text);

}  // namespace zeblo::cli
