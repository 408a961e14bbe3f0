// Live smoke test on a real Mac: drives TextEdit through the library's C
// functions, as a host would. It launches TextEdit, reads its menus, chooses
// File > New, types and pastes text, reads it back through the window text and
// closes the document without saving.
//
// Run by hand, from a process that has the accessibility permission (System
// Settings > Privacy & Security > Accessibility, for the terminal that runs
// it), with a US keyboard layout:
//
//     ZEBLO_LIVE_MAC=1 ./build/tests/test_macos_live
//
// Without ZEBLO_LIVE_MAC=1 every test is skipped, so that the suite stays
// runnable on machines (and CI runners) that cannot be driven.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <deque>
#include <string>
#include <string_view>
#include <thread>

#include <nlohmann/json.hpp>

#include <zeblo/zeblo.h>

namespace {

using nlohmann::json;
using namespace std::chrono_literals;

constexpr const char* kApp = "TextEdit";
// New documents are "Untitled", "Untitled 2"...; window names match loosely.
constexpr const char* kDocument = "Untitled";

bool liveRunRequested() {
    const char* flag = std::getenv("ZEBLO_LIVE_MAC");
    return flag != nullptr && std::string_view(flag) == "1";
}

// A string the library returned, freed when it goes out of scope.
class Returned {
public:
    explicit Returned(const char* text) : text_(text) {}
    Returned(const Returned&) = delete;
    Returned& operator=(const Returned&) = delete;
    ~Returned() { zeblo_free_string(text_); }

    std::string text() const { return text_ != nullptr ? text_ : ""; }
    json parsed() const { return json::parse(text(), nullptr, /*allow_exceptions=*/false); }

private:
    const char* text_;
};

// Polls `condition` on the real desktop until it holds or `limit` passes.
template <class Condition>
bool eventually(Condition condition, std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (true) {
        if (condition()) return true;
        if (std::chrono::steady_clock::now() >= end) return false;
        std::this_thread::sleep_for(100ms);
    }
}

// Whether the menu snapshot has an item `title` under the menu bar item
// `menu` (at any depth, through untitled container layers).
bool menuHasItem(const json& snapshot, std::string_view menu, std::string_view title) {
    if (!snapshot.is_object() || !snapshot.contains("menus")) return false;
    std::deque<const json*> pending;
    for (const json& item : snapshot["menus"]) pending.push_back(&item);
    while (!pending.empty()) {
        const json& item = *pending.front();
        pending.pop_front();
        const json& path = item.value("path", json::array());
        if (item.value("title", "") == title && !path.empty() && path[0] == menu) return true;
        if (item.contains("children")) {
            for (const json& child : item["children"]) pending.push_back(&child);
        }
    }
    return false;
}

// All lines of the window's text joined, or "" when it cannot be read.
std::string windowText(const char* window) {
    const json lines = Returned(zeblo_get_window_text(kApp, window)).parsed();
    std::string joined;
    if (!lines.is_array()) return joined;
    for (const json& line : lines) {
        if (line.is_string()) joined += line.get<std::string>() + "\n";
    }
    return joined;
}

bool dismissSaveSheet() {
    // Recent systems offer "Delete" for a document never saved; older ones
    // "Don't Save" (with a typographic or a plain apostrophe).
    for (const char* button : {"Delete", "Don\xE2\x80\x99t Save", "Don't Save"}) {
        if (zeblo_click_button(kApp, kDocument, button)) return true;
    }
    return false;
}

class TextEditLive : public ::testing::Test {
protected:
    void SetUp() override {
        if (!liveRunRequested()) {
            GTEST_SKIP() << "live Mac test: set ZEBLO_LIVE_MAC=1 on a Mac whose terminal has "
                            "the accessibility permission";
        }
    }

    // A document left open by a failed run is closed without saving.
    void TearDown() override {
        if (!documentOpen_) return;
        zeblo_close_window(kApp, kDocument, -1);
        eventually(dismissSaveSheet, 3s);
    }

    bool documentOpen_ = false;
};

TEST_F(TextEditLive, NewDocumentTypePasteReadBackAndCloseWithoutSaving) {
    ASSERT_TRUE(zeblo_launch_app(kApp)) << "TextEdit could not be launched";
    // TextEdit starts with an Open panel or a document window; either will do.
    ASSERT_TRUE(zeblo_wait_for_window(kApp, nullptr, 0, 15000)) << "TextEdit showed no window";
    ASSERT_TRUE(zeblo_focus_app(kApp, nullptr, true, false, 0));

    const Returned menus(zeblo_get_app_menus(kApp));
    const json snapshot = menus.parsed();
    ASSERT_TRUE(snapshot.is_object() && !snapshot.contains("error")) << menus.text();
    EXPECT_EQ(snapshot.value("app", ""), kApp);
    ASSERT_TRUE(menuHasItem(snapshot, "File", "New")) << menus.text();

    const char* newDocument[] = {"File", "New"};
    ASSERT_TRUE(zeblo_menu_click(kApp, newDocument, 2));
    documentOpen_ = true;
    ASSERT_TRUE(zeblo_wait_for_window(kApp, kDocument, 2, 10000))
        << "no untitled document came to the front";

    const std::string typed = "Typed by ZEBLOui, 1 + 2 = 3.";
    const std::string pasted = " Pasted: caf\xC3\xA9 \xE2\x9C\x93 \xF0\x9F\x99\x82";
    ASSERT_TRUE(zeblo_type_text(typed.c_str(), false));
    ASSERT_TRUE(zeblo_paste_text(pasted.c_str()));

    std::string shown;
    EXPECT_TRUE(eventually(
        [&] {
            shown = windowText(kDocument);
            return shown.find(typed + pasted) != std::string::npos;
        },
        5s))
        << "window text was:\n" << shown;

    ASSERT_TRUE(zeblo_close_window(kApp, kDocument, -1));
    EXPECT_TRUE(eventually(dismissSaveSheet, 5s)) << "no Delete / Don't Save button appeared";
    EXPECT_TRUE(zeblo_wait_for_window(kApp, kDocument, 1, 5000)) << "the document stayed open";
    documentOpen_ = false;
}

}  // namespace
