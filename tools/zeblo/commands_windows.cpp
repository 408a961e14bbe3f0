// Commands of the windows area. APP and WINDOW may be "" (the frontmost
// application, the first window).
#include "cli.h"
#include "zeblo/zeblo.h"

namespace zeblo::cli {

namespace {

const char* arg(const Args& a, std::size_t i) { return a.values[i].c_str(); }

}  // namespace

void addWindowCommands(Commands& commands) {
    commands.push_back({"click-button", "APP WINDOW NAME", 3, 3, {}, [](const Args& a) {
                            return printBool(zeblo_click_button(arg(a, 0), arg(a, 1), arg(a, 2)));
                        }});
    commands.push_back({"click-checkbox", "APP WINDOW NAME", 3, 3, {}, [](const Args& a) {
                            return printBool(zeblo_click_checkbox(arg(a, 0), arg(a, 1), arg(a, 2)));
                        }});
    commands.push_back({"set-checkbox", "APP WINDOW NAME VALUE", 4, 4, {}, [](const Args& a) {
                            const std::int32_t value = parseInt32(a.values[3]);
                            return printBool(zeblo_set_checkbox_value(arg(a, 0), arg(a, 1), arg(a, 2), value));
                        }});
    commands.push_back({"buttons", "APP WINDOW", 2, 2, {}, [](const Args& a) {
                            return printString(zeblo_get_window_buttons(arg(a, 0), arg(a, 1)));
                        }});
    commands.push_back({"popup-items", "APP WINDOW NAME", 3, 3, {}, [](const Args& a) {
                            return printString(zeblo_get_popup_menu_items(arg(a, 0), arg(a, 1), arg(a, 2)));
                        }});
    commands.push_back({"window-text", "APP WINDOW", 2, 2, {}, [](const Args& a) {
                            return printString(zeblo_get_window_text(arg(a, 0), arg(a, 1)));
                        }});
    commands.push_back({"window-exists", "APP WINDOW", 2, 2, {}, [](const Args& a) {
                            return printBool(zeblo_window_exists(arg(a, 0), arg(a, 1)));
                        }});
    commands.push_back({"windows", "APP", 1, 1, {}, [](const Args& a) {
                            return printString(zeblo_get_window_titles(arg(a, 0)));
                        }});
    commands.push_back({"wait-window", "APP WINDOW CONDITION TIMEOUT", 4, 4, {}, [](const Args& a) {
                            const std::int32_t condition = parseInt32(a.values[2]);
                            const std::int32_t timeout = parseInt32(a.values[3]);
                            return printBool(zeblo_wait_for_window(arg(a, 0), arg(a, 1), condition, timeout));
                        }});
    commands.push_back({"close-window", "APP WINDOW RETRY", 3, 3, {}, [](const Args& a) {
                            const std::int32_t retry = parseInt32(a.values[2]);
                            return printBool(zeblo_close_window(arg(a, 0), arg(a, 1), retry));
                        }});
}

}  // namespace zeblo::cli
