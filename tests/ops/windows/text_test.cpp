// Window text with its de-duplication and limits, and popup menus.
#include <random>

#include "ops/windows/text_lines.h"
#include "window_fixture.h"

namespace zeblo::testing {
namespace {

Json text(const std::string& value, const std::string& title = "") {
    Json t = el("AXStaticText", title);
    t["attrs"]["AXValue"] = value;
    return t;
}
Json described(Json e, const std::string& description) {
    e["attrs"]["AXDescription"] = description;
    return e;
}

class WindowText : public WindowTest {
protected:
    Json textOf(Json windowElement) {
        loadWindows({std::move(windowElement)});
        return takeJson(zeblo_get_window_text("Notes", nullptr));
    }
};

TEST_F(WindowText, LinesAndDeDuplication) {
    EXPECT_EQ(textOf(window("Note", {text("Hello"), described(button("OK"), "OK")})),
              Json::parse(R"(["[AXWindow Title] Note","[AXStaticText] Hello","[AXButton Title] OK"])"));
    EXPECT_EQ(textOf(window("", {text("Hello", "Hello")})), Json::parse(R"(["[AXStaticText] Hello"])"));
    // Values repeat; titles already shown anywhere do not.
    EXPECT_EQ(textOf(window("", {text("Ready"), text("Ready"), button("Ready"), button("Ready")})),
              Json::parse(R"(["[AXStaticText] Ready","[AXStaticText] Ready"])"));
    EXPECT_EQ(textOf(window("W", {button("Title")})), Json::parse(R"(["[AXWindow Title] W"])"));
    // Case-sensitive, and a match never spans two lines.
    EXPECT_EQ(textOf(window("", {text("ab"), text("cd"), button("ab[AXStaticText]"), button("Ab"), button("b")})),
              Json::parse(R"(["[AXStaticText] ab","[AXStaticText] cd","[AXButton Title] ab[AXStaticText]",
                              "[AXButton Title] Ab"])"));
    EXPECT_EQ(textOf(window("", {text("caf\u00e9 au lait"), button("\u00e9 au"), described(el("AXImage"), "Warn")})),
              Json::parse(R"(["[AXStaticText] café au lait","[AXImage Description] Warn"])"));
}

TEST_F(WindowText, UnknownRolesAndValuesOfOtherKinds) {
    Json noRole = {{"attrs", {{"AXValue", "x"}}}};
    Json numberRole = {{"attrs", {{"AXRole", 3}, {"AXTitle", "t"}}}};
    Json numberValue = el("AXSlider", "Volume");
    numberValue["attrs"]["AXValue"] = 7;
    EXPECT_EQ(textOf(window("", {noRole, numberRole, numberValue, nullptr})),
              Json::parse(R"(["[Unknown] x","[Unknown Title] t","[AXSlider Title] Volume"])"));
    EXPECT_EQ(takeJson(zeblo_get_window_text("Notes", "Prefs"))["error"],
              "Window 'Prefs' not found. Check if the window exists and is visible.");
}

TEST_F(WindowText, StopsAfter1000Lines) {
    Json one = Json::array(), three = Json::array();
    for (int i = 0; i < 1'100; ++i) {
        const std::string n = std::to_string(i);
        one.push_back(text("v" + n + ";"));
        three.push_back(described(text("v" + n + ";", "t" + n + ";"), "d" + n + ";"));
    }
    EXPECT_EQ(textOf(window("", one)).size(), 1'000u);
    const Json lines = textOf(window("", three));
    ASSERT_EQ(lines.size(), 1'002u);  // the 334th element passes the check at 999 and adds three
    EXPECT_EQ(lines.back(), "[AXStaticText Description] d333;");
}

TEST_F(WindowText, LongTextsKeepTheSameRule) {
    const std::string longValue = std::string(40'000, 'a') + "zq";
    EXPECT_EQ(textOf(window("", {text(longValue), text("mid"), button("zq[AXStaticText] mid"), button("aaaz"),
                                 button("\u00e9"), button("\u00e9"), button("Q"), button("Q")})),
              Json({"[AXStaticText] " + longValue, "[AXStaticText] mid", "[AXButton Title] zq[AXStaticText] mid",
                    "[AXButton Title] \u00e9", "[AXButton Title] Q"}));
}

// The indexed search gives the same answers as looking through every line,
// for needles and lines with NUL bytes too (a needle never matches across
// two lines).
TEST(TextLines, AgreesWithAPlainSearchOfEveryLine) {
    std::mt19937 random(7);
    const std::vector<std::string> pieces = {"a", "b", "ab", " ", "\u00e9", "\n", "[X] ", std::string(1, '\0')};
    auto make = [&](int n) {
        std::string s;
        for (int i = 0; i < n; ++i) s += pieces[random() % pieces.size()];
        return s;
    };
    TextLines lines;
    std::vector<std::string> plain;
    for (int round = 0; round < 3'000; ++round) {
        const std::string needle = make(1 + static_cast<int>(random() % 6));
        bool expected = false;
        for (const auto& l : plain) expected = expected || l.find(needle) != std::string::npos;
        ASSERT_EQ(lines.anyContains(needle), expected) << "round " << round << " needle '" << needle << "'";
        const std::string line = make(static_cast<int>(random() % 40));
        lines.append(line);
        plain.push_back(line);
    }
    EXPECT_EQ(lines.lines(), plain);
    EXPECT_FALSE(lines.anyContains(""));
}

Json popup(const std::string& title, Json attrs, Json children = nullptr) {
    Json p = el("AXPopUpButton", title, std::move(children));
    p["id"] = "popup-" + title;
    p["attrs"].update(attrs);
    p["actions"] = {{"AXPress", 0}};
    return p;
}
Json menu(std::vector<std::string> titles) {
    Json items = Json::array();
    for (auto& t : titles) items.push_back(el("AXMenuItem", t));
    items.push_back(nullptr);
    return el("AXMenu", "", items);
}

TEST_F(WindowText, PopupMenusAsAttributeOrChild) {
    loadWindows({window("Format", {popup("Size", {{"AXMenu", menu({"Small", "", "Large"})}}),
                                   popup("Font", Json::object(), {el("AXGroup"), menu({"Serif", "Sans"})}),
                                   popup("Style", {{"AXMenu", "not an element"}}, Json::array({menu({"Bold"})})),
                                   popup("Empty", Json::object())})});
    EXPECT_EQ(take(zeblo_get_popup_menu_items("Notes", nullptr, "size")), R"(["Small","Large"])");
    EXPECT_EQ(take(zeblo_get_popup_menu_items("Notes", nullptr, "Font")), R"(["Serif","Sans"])");
    EXPECT_EQ(take(zeblo_get_popup_menu_items("Notes", nullptr, "Style")), R"(["Bold"])");
    EXPECT_EQ(take(zeblo_get_popup_menu_items("Notes", nullptr, "Empty")), "[]");
    EXPECT_EQ(take(zeblo_get_popup_menu_items("Notes", nullptr, "Color")),
              R"({"error": "Button 'Color' not found in window"})");
    // Each found popup is pressed once, then 0.05 s pass before the menu is read.
    std::vector<std::string> steps;
    for (const auto& e : desk().trace()) {
        if (e.contains("action")) steps.push_back(e["element"].get<std::string>());
        if (e.contains("sleep")) steps.push_back("sleep " + e["sleep"].dump());
    }
    EXPECT_EQ(steps, (std::vector<std::string>{"popup-Size", "sleep 0.05", "popup-Font", "sleep 0.05",
                                               "popup-Style", "sleep 0.05", "popup-Empty", "sleep 0.05"}));
}

}  // namespace
}  // namespace zeblo::testing
