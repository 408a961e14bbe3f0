// The shared library exports exactly the zeblo_* functions and nothing else.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <set>
#include <string>
#include <utility>

namespace {

// The external symbols the library defines, by their C names. An ELF
// library's are in its dynamic symbol table (nm -D); a Mach-O library's are
// its external symbols (nm -g), spelled with a leading underscore.
std::set<std::string> exportedSymbols() {
#if defined(__APPLE__)
    const std::string command = std::string("nm -g -U ") + ZEBLO_SHARED_LIBRARY_PATH;
    constexpr bool kUnderscored = true;
#else
    const std::string command = std::string("nm -D --defined-only ") + ZEBLO_SHARED_LIBRARY_PATH;
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

TEST(SharedLibrary, ExportsOnlyTheCFunctions) {
    const std::set<std::string> symbols = exportedSymbols();
    ASSERT_FALSE(symbols.empty()) << "could not read the dynamic symbol table";
    for (const auto& s : symbols) {
        EXPECT_EQ(s.rfind("zeblo_", 0), 0u) << "unexpected export: " << s;
    }
    const std::set<std::string> wanted = {
        "zeblo_get_app_menus", "zeblo_menu_click", "zeblo_menu_item_exists", "zeblo_menu_item_enabled",
        "zeblo_send_keystroke", "zeblo_send_global_keystroke", "zeblo_type_text", "zeblo_paste_text",
        "zeblo_paste_into_focused_field", "zeblo_click_button", "zeblo_click_checkbox",
        "zeblo_get_window_buttons", "zeblo_set_checkbox_value", "zeblo_get_popup_menu_items",
        "zeblo_get_window_text", "zeblo_get_frontmost_info", "zeblo_get_running_apps", "zeblo_focus_app",
        "zeblo_launch_app", "zeblo_is_in_text_field", "zeblo_window_exists", "zeblo_get_window_titles",
        "zeblo_wait_for_window", "zeblo_close_window", "zeblo_free_string"};
    EXPECT_EQ(wanted.size(), 25u);
    EXPECT_EQ(symbols, wanted);
}

}  // namespace
