// zeblo [--simulate DESKTOP.json] [--trace FILE] COMMAND [ARGS...]
//
// Runs one exported function and prints its result: JSON text for the string
// functions, "true" or "false" for the boolean ones (exit code 0 or 1).
// Usage errors exit with 2, a desktop file that cannot be read with 3.
// With --simulate the tool installs a simulated desktop read from the file;
// --trace (simulate mode only) then writes every recorded side effect as one
// JSON object per line, and a closing {"end": ...} line, to FILE ("-" for
// standard error). `zeblo mcp` serves the Model Context Protocol on standard
// input and output until its input ends (mcp/mcp_server.h).
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "cli.h"
#include "mcp_server.h"
#include "platform/platform.h"
#include "platform/sim/sim_desktop.h"

namespace {

using zeblo::cli::Args;
using zeblo::cli::Command;
using zeblo::cli::Commands;
using zeblo::cli::UsageError;

Commands allCommands() {
    Commands commands;
    zeblo::cli::addMenuCommands(commands);
    zeblo::cli::addKeyboardCommands(commands);
    zeblo::cli::addWindowCommands(commands);
    zeblo::cli::addAppCommands(commands);
    zeblo::cli::addElementCommands(commands);
    // The MCP server: requests on standard input, answers on standard output.
    commands.push_back({"mcp", "", 0, 0, {}, [](const Args&) {
                            zeblo::mcp::Server server;
                            server.serve(std::cin, std::cout);
                            return 0;
                        }});
    return commands;
}

void printUsage(const Commands& commands, std::FILE* to) {
    std::fputs("usage: zeblo [--simulate DESKTOP.json] [--trace FILE] COMMAND [ARGS...]\n\ncommands:\n", to);
    for (const Command& c : commands) {
        std::string line = "  " + c.name;
        if (!c.usage.empty()) line += " " + c.usage;
        for (const auto& flag : c.flags) line += " [" + flag + "]";
        std::fprintf(to, "%s\n", line.c_str());
    }
    std::fputs("\nAn empty argument \"\" is an empty name. Integers are decimal or 0x-hex.\n", to);
}

int usageError(const Commands& commands, const std::string& message) {
    std::fprintf(stderr, "zeblo: %s\n", message.c_str());
    printUsage(commands, stderr);
    return 2;
}

bool writeTrace(const zeblo::sim::SimDesktop& desktop, const std::string& target) {
    std::ofstream file;
    std::ostream* out = &std::cerr;
    if (target != "-") {
        file.open(target, std::ios::out | std::ios::trunc);
        if (!file) return false;
        out = &file;
    }
    for (const auto& entry : desktop.trace()) *out << entry.dump() << '\n';
    *out << desktop.endRecord().dump() << '\n';
    out->flush();
    return static_cast<bool>(*out);
}

}  // namespace

int main(int argc, char** argv) {
    const Commands commands = allCommands();
    std::string simulate;
    std::string trace;
    bool haveTrace = false;

    int i = 1;
    for (; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--simulate" || arg == "--trace") {
            if (i + 1 >= argc) return usageError(commands, arg + " needs a file");
            (arg == "--simulate" ? simulate : trace) = argv[++i];
            if (arg == "--trace") haveTrace = true;
        } else if (arg == "--help" || arg == "-h") {
            printUsage(commands, stdout);
            return 0;
        } else if (arg.size() > 1 && arg[0] == '-' && arg != "-") {
            return usageError(commands, "unknown option '" + arg + "'");
        } else {
            break;
        }
    }
    if (i >= argc) return usageError(commands, "no command given");
    if (haveTrace && simulate.empty()) return usageError(commands, "--trace needs --simulate");

    const std::string name = argv[i++];
    const Command* command = nullptr;
    for (const Command& c : commands) {
        if (c.name == name) command = &c;
    }
    if (command == nullptr) return usageError(commands, "unknown command '" + name + "'");

    Args args;
    for (; i < argc; ++i) {
        const std::string arg = argv[i];
        bool isFlag = false;
        for (const auto& flag : command->flags) {
            if (arg == flag) isFlag = true;
        }
        if (isFlag && arg == "--mark") args.mark = true;
        else if (isFlag && arg == "--enter") args.enter = true;
        else if (isFlag && arg == "--hidden") args.hidden = true;
        else args.values.push_back(arg);
    }
    if (args.values.size() < command->minArgs || args.values.size() > command->maxArgs) {
        return usageError(commands, "usage: zeblo " + command->name + " " + command->usage);
    }

    std::shared_ptr<zeblo::sim::SimDesktop> desktop;
    if (!simulate.empty()) {
        try {
            desktop = zeblo::sim::SimDesktop::fromFile(simulate);
        } catch (const std::exception& e) {
            std::fprintf(stderr, "zeblo: cannot read desktop '%s': %s\n", simulate.c_str(), e.what());
            return 3;
        }
        desktop->setRecording(haveTrace);  // a long-running `mcp` keeps nothing it will not write
        zeblo::platform::install(desktop);
    }

    int code = 0;
    try {
        code = command->run(args);
    } catch (const UsageError& e) {
        return usageError(commands, e.message);
    }
    std::fflush(stdout);

    if (desktop && haveTrace && !writeTrace(*desktop, trace)) {
        std::fprintf(stderr, "zeblo: cannot write trace '%s'\n", trace.c_str());
        return 3;
    }
    return code;
}
