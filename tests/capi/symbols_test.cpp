// Both shared libraries (the real one and the simulated one) export exactly
// the functions of the table of the exports and nothing else; only the
// simulated one holds the simulated desktop and reads it from the
// environment.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <utility>

#include "capi/export_table.h"

namespace {

// The external symbols the library defines, by their C names. An ELF
// library's are in its dynamic symbol table (nm -D); a Mach-O library's are
// its external symbols (nm -g), spelled with a leading underscore.
std::set<std::string> exportedSymbols(const std::string& library) {
#if defined(__APPLE__)
    const std::string command = "nm -g -U " + library;
    constexpr bool kUnderscored = true;
#else
    const std::string command = "nm -D --defined-only " + library;
    constexpr bool kUnderscored = false;
#endif
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
            std::string name = text.substr(space + 1);
            if (kUnderscored && !name.empty() && name.front() == '_') name.erase(0, 1);
            symbols.insert(std::move(name));
        }
    }
    pclose(pipe);
    return symbols;
}

bool fileContains(const std::string& path, const std::string& text) {
    std::ifstream file(path, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    return bytes.find(text) != std::string::npos;
}

TEST(SharedLibrary, ExportsOnlyTheCFunctions) {
    std::set<std::string> wanted;
    for (const zeblo::capi::Export& row : zeblo::capi::exportTable()) wanted.insert(std::string(row.name));
    EXPECT_EQ(wanted.size(), 25u);
    for (const std::string library : {ZEBLO_SHARED_LIBRARY_PATH, ZEBLO_SIMULATED_LIBRARY_PATH}) {
        const std::set<std::string> symbols = exportedSymbols(library);
        ASSERT_FALSE(symbols.empty()) << "could not read the dynamic symbol table of " << library;
        EXPECT_EQ(symbols, wanted) << library;
    }
    EXPECT_TRUE(fileContains(ZEBLO_SIMULATED_LIBRARY_PATH, "ZEBLO_SIMULATE"));
    EXPECT_FALSE(fileContains(ZEBLO_SHARED_LIBRARY_PATH, "ZEBLO_SIMULATE"));

    // The superset library and its twin: the same 25 and the element interface.
    std::set<std::string> plus = wanted;
    plus.insert({"zeblo_element_tree", "zeblo_element_find", "zeblo_element_get", "zeblo_element_act",
                 "zeblo_element_wait", "zeblo_press_keys", "zeblo_last_failure"});
    for (const std::string library : {ZEBLO_PLUS_LIBRARY_PATH, ZEBLO_PLUS_SIMULATED_LIBRARY_PATH}) {
        EXPECT_EQ(exportedSymbols(library), plus) << library;
    }
    EXPECT_FALSE(fileContains(ZEBLO_PLUS_LIBRARY_PATH, "ZEBLO_SIMULATE"));
    // The simulated desktop itself (its desktop file reader) is only in the
    // simulated library.
    EXPECT_TRUE(fileContains(ZEBLO_SIMULATED_LIBRARY_PATH, "an element id must not be empty"));
    EXPECT_FALSE(fileContains(ZEBLO_SHARED_LIBRARY_PATH, "an element id must not be empty"));
}

}  // namespace
