// The shared library exports exactly the zeblo_* functions and nothing else.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <set>
#include <string>

namespace {

std::set<std::string> exportedSymbols() {
    const std::string command = std::string("nm -D --defined-only ") + ZEBLO_SHARED_LIBRARY_PATH;
    std::set<std::string> symbols;
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return symbols;
    std::array<char, 512> line{};
    while (fgets(line.data(), line.size(), pipe) != nullptr) {
        std::string text(line.data());
        while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
        const auto space = text.rfind(' ');
        const std::string type = space >= 2 ? text.substr(space - 1, 1) : "";
        if (type == "T" || type == "W" || type == "D" || type == "B" || type == "R" || type == "V" ||
            type == "i" || type == "u") {
            symbols.insert(text.substr(space + 1));
        }
    }
    pclose(pipe);
    return symbols;
}

TEST(SharedLibrary, ExportsOnlyTheCFunctions) {
    const std::set<std::string> symbols = exportedSymbols();
    ASSERT_FALSE(symbols.empty()) << "could not read the dynamic symbol table";
    for (const auto& s : symbols) {
        EXPECT_EQ(s.rfind("zeblo_", 0), 0u) << "unexpected export: " << s;
    }
    for (const char* wanted : {"zeblo_get_frontmost_info", "zeblo_get_running_apps", "zeblo_free_string"}) {
        EXPECT_EQ(symbols.count(wanted), 1u) << wanted;
    }
}

}  // namespace
