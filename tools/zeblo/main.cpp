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
#include <memory>
#include <string>
#include <vector>

#include "cli.h"
#include "mcp_server.h"
#include "platform/platform.h"
#include "platform/sim/sim_desktop.h"

namespace {

using zeblo::cli::Command;
using zeblo::cli::UsageError;

// The MCP server is a command of its own: requests on standard input, answers
// on standard output.
constexpr std::string_view kMcp = "mcp";

void printUsage(std::FILE* to) {
    std::fputs("usage: zeblo [--simulate DESKTOP.json] [--trace FILE] COMMAND [ARGS...]\n\ncommands:\n", to);
    for (const Command& c : zeblo::cli::commands()) {
        std::string line = "  " + std::string(c.name);
        if (const std::string usage = zeblo::cli::usageOf(c); !usage.empty()) line += " " + usage;
        for (const std::string_view flag : zeblo::cli::flagsOf(c)) line += " [" + std::string(flag) + "]";
        std::fprintf(to, "%s\n", line.c_str());
    }
    std::fprintf(to, "  %s\n", std::string(kMcp).c_str());
    std::fputs("\nAn empty argument \"\" is an empty name. Integers are decimal or 0x-hex.\n", to);
}

int usageError(const std::string& message) {
    std::fprintf(stderr, "zeblo: %s\n", message.c_str());
    printUsage(stderr);
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
    std::string simulate;
    std::string trace;
    bool haveTrace = false;

    int i = 1;
    for (; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--simulate" || arg == "--trace") {
            if (i + 1 >= argc) return usageError(arg + " needs a file");
            (arg == "--simulate" ? simulate : trace) = argv[++i];
            if (arg == "--trace") haveTrace = true;
        } else if (arg == "--help" || arg == "-h") {
            printUsage(stdout);
            return 0;
        } else if (arg.size() > 1 && arg[0] == '-' && arg != "-") {
            return usageError("unknown option '" + arg + "'");
        } else {
            break;
        }
    }
    if (i >= argc) return usageError("no command given");
    if (haveTrace && simulate.empty()) return usageError("--trace needs --simulate");

    const std::string name = argv[i++];
    const Command* command = nullptr;
    for (const Command& c : zeblo::cli::commands()) {
        if (c.name == name) command = &c;
    }
    if (command == nullptr && name != kMcp) return usageError("unknown command '" + name + "'");
    const std::vector<std::string> words(argv + i, argv + argc);
    if (command == nullptr && !words.empty()) return usageError("usage: zeblo mcp");
    std::vector<zeblo::capi::Argument> arguments;
    try {
        if (command != nullptr) arguments = zeblo::cli::read(*command, words);
    } catch (const UsageError& e) {
        return usageError(e.message);
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
    if (command == nullptr) {
        zeblo::mcp::Server server;
        server.serve(std::cin, std::cout);
    } else {
        code = zeblo::cli::run(*command, arguments);
    }
    std::fflush(stdout);

    if (desktop && haveTrace && !writeTrace(*desktop, trace)) {
        std::fprintf(stderr, "zeblo: cannot write trace '%s'\n", trace.c_str());
        return 3;
    }
    return code;
}
