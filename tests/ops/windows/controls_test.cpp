// Buttons and checkboxes, the window-buttons list and the walk limits.
#include "window_fixture.h"

namespace zeblo::testing {
namespace {

using Lines = std::vector<std::string>;

Json withId(Json e, const std::string& id) {
    e["id"] = id;
    return e;
}
Json checkbox(const std::string& title, Json press = 0) {
    Json c = el("AXCheckBox", title);
    c["attrs"]["AXValue"] = 1;
    c["actions"] = {{"AXPress", std::move(press)}, {"AXPick", 0}};
    c["settable"] = {"AXValue"};
    return c;
}

class Controls : public WindowTest {};

TEST_F(Controls, ButtonsAreFoundInPreOrderAndPressedOrPicked) {
    Json pickOnly = withId(button("Export", -25206), "export");
    pickOnly["actions"]["AXPick"] = 0;
    Json refuses = withId(button("Print", -25200), "print");
    loadWindows({window("Main", {el("AXGroup", "", {withId(button("Save As\u2026"), "save-as")}),
                                 withId(button("Save"), "save"), withId(button("Sav"), "sav"),
                                 withId(checkbox("OK"), "ok-box"), pickOnly, refuses}),
                 window("Other", {withId(button("Save"), "other-save")})});

    EXPECT_TRUE(done(zeblo_click_button("Notes", nullptr, "save")));  // first window, first in pre-order
    EXPECT_TRUE(done(zeblo_click_button("Notes", "main", "Export")));
    EXPECT_FALSE(done(zeblo_click_button("Notes", "main", "ok")));  // roles compare exactly
    EXPECT_EQ(logs().back(), "zeblo_click_button error: Button 'ok' not found in window");
    EXPECT_FALSE(done(zeblo_click_button("Notes", "main", "Print")));
    EXPECT_EQ(logs().back(), "zeblo_click_button error: Failed to perform click action");

    Json expected = Json::array();
    expected.push_back({{"action", "AXPress"}, {"element", "save-as"}, {"result", 0}});
    expected.push_back({{"action", "AXPress"}, {"element", "export"}, {"result", -25206}});
    expected.push_back({{"action", "AXPick"}, {"element", "export"}, {"result", 0}});
    expected.push_back({{"action", "AXPress"}, {"element", "print"}, {"result", -25200}});
    expected.push_back({{"action", "AXPick"}, {"element", "print"}, {"result", -25206}});
    EXPECT_EQ(Json(traceOf("action")), expected);
}

TEST_F(Controls, CheckboxesArePressedOrWrittenNeverPicked) {
    Json refused = withId(checkbox("Wrap", -25200), "wrap");
    Json readOnly = withId(checkbox("Locked"), "locked");
    readOnly["setResult"] = -25200;
    loadWindows({window("Prefs", {withId(checkbox("Spelling"), "spell"), refused, readOnly})});

    EXPECT_TRUE(done(zeblo_click_checkbox("Notes", "prefs", "spell")));
    EXPECT_FALSE(done(zeblo_click_checkbox("Notes", "prefs", "wrap")));
    EXPECT_EQ(logs().back(), "zeblo_click_checkbox error: Failed to perform click action");
    EXPECT_FALSE(done(zeblo_click_checkbox("Notes", "prefs", "Grammar")));
    EXPECT_EQ(logs().back(), "zeblo_click_checkbox error: Checkbox 'Grammar' not found in window");
    EXPECT_EQ(traceOf("action").size(), 2u);  // no AXPick fallback for checkboxes

    EXPECT_TRUE(done(zeblo_set_checkbox_value("Notes", "", "Wrap", 1)));  // already 1: written anyway
    EXPECT_TRUE(done(zeblo_set_checkbox_value("Notes", "", "Wrap", 2)));
    const auto sets = traceOf("set");
    ASSERT_EQ(sets.size(), 2u);
    EXPECT_EQ(sets[0]["value"], 1);
    EXPECT_EQ(sets[1]["value"], 2);
    EXPECT_EQ(sets[1]["element"], "wrap");
    EXPECT_FALSE(done(zeblo_set_checkbox_value("Notes", "", "Locked", 0)));
    EXPECT_EQ(logs().back(), "zeblo_set_checkbox_value error: Failed to perform click action");
    EXPECT_FALSE(done(zeblo_set_checkbox_value("Notes", "", "Nope", 0)));
    EXPECT_EQ(logs().back(), "zeblo_set_checkbox_value error: Checkbox 'Nope' not found in window");
}

TEST_F(Controls, WindowButtonsListWithItsLogLines) {
    loadWindows({window("Dialog", {button("OK"), button(""), el("AXGroup", "", {button("Cancel")}), button("OK")})});
    EXPECT_EQ(take(zeblo_get_window_buttons("Notes", nullptr)), R"(["OK","Cancel","OK"])");
    const auto all = logs();
    EXPECT_EQ(all.front(), "zeblo_get_window_buttons called");
    EXPECT_EQ(all[1], "Calling WindowOps.getWindowButtons(app: 'Notes', window: '')");
    EXPECT_EQ(all[2], "getWindowButtons called: app=Notes, window=");
    EXPECT_EQ(all[3], "Got app: Notes");
    EXPECT_EQ(all[4], "About to call getWindow...");
    EXPECT_EQ(lastLogs(11), (Lines{"Successfully got window", "Got window, collecting buttons...",
                                   "getAllButtons: Starting collection", "getAllButtons: Calling collectElements",
                                   "collectElements: Found button 'OK'", "collectElements: Found button 'Cancel'",
                                   "collectElements: Found button 'OK'",
                                   "getAllButtons: Collection complete, found 3 buttons", "Found 3 buttons",
                                   "Successfully got 3 buttons, serializing to JSON",
                                   "Returning JSON: [\"OK\",\"Cancel\",\"OK\"]"}));

    clearTrace();
    EXPECT_EQ(take(zeblo_get_window_buttons("Nope", "")), R"({"error": "Application 'Nope' not found"})");
    EXPECT_EQ(logs().back(), "WindowError caught: appNotFound(\"Nope\")");
    EXPECT_EQ(take(zeblo_get_window_buttons("Notes", "Say \"hi\"")),
              R"({"error": "Window 'Say \"hi\"' not found"})");
    EXPECT_EQ(lastLogs(2), (Lines{"getWindow threw error: windowNotFound(\"Say \\\"hi\\\"\")",
                                  "WindowError caught: windowNotFound(\"Say \\\"hi\\\"\")"}));
}

// A chain of groups with a button "Save" at `depth` (the window is depth 0).
Json chain(int depth) {
    Json node = button("Save");
    for (int d = depth - 1; d >= 1; --d) node = el("AXGroup", "", Json::array({node}));
    return window("Deep", Json::array({node}));
}

TEST_F(Controls, DepthLimitIs49) {
    loadWindows({chain(49), chain(50)});
    EXPECT_TRUE(done(zeblo_click_button("Notes", "", "save")));
    EXPECT_EQ(take(zeblo_get_window_buttons("Notes", "")), R"(["Save"])");
    EXPECT_FALSE(logged("collectElements: Hit max recursion depth"));

    loadWindows({chain(50)});
    EXPECT_FALSE(done(zeblo_click_button("Notes", "", "save")));
    EXPECT_EQ(take(zeblo_get_window_buttons("Notes", "")), "[]");
    EXPECT_EQ(logCount("collectElements: Hit max recursion depth"), 1u);
    EXPECT_EQ(takeJson(zeblo_get_window_text("Notes", "")), nlohmann::json::parse(R"(["[AXWindow Title] Deep"])"));
}

TEST_F(Controls, ChildrenThatLeadBackUpAreNotEntered) {
    // The walks give the same answers on the window whose group lists itself
    // (twice) and the window among its children as on the tree without them.
    std::vector<std::string> answers[2];
    for (bool looping : {false, true}) {
        Json kids = {button("OK"), el("AXStaticText", "Ready")};
        if (looping) kids.insert(kids.begin(), {{{"ref", "g"}}, {{"ref", "win"}}, {{"ref", "g"}}});
        Json group = withId(el("AXGroup", "Tools", kids), "g");
        loadWindows({withId(window("Main", {group, button("Cancel")}), "win")});
        answers[looping] = {take(zeblo_get_window_buttons("Notes", "")), take(zeblo_get_window_text("Notes", "")),
                            done(zeblo_click_button("Notes", "", "Help")) ? "found" : "not found"};
    }
    EXPECT_EQ(answers[1], answers[0]);
    EXPECT_EQ(answers[0][0], R"(["OK","Cancel"])");
}

Json wide(std::size_t n) {
    Json kids = Json::array();
    for (std::size_t i = 0; i + 1 < n; ++i) kids.push_back(el("AXStaticText"));
    kids.push_back(button("Save"));
    return window("Wide", kids);
}

TEST_F(Controls, ChildListsOf10000AreNotEntered) {
    loadWindows({wide(9'999)});
    EXPECT_TRUE(done(zeblo_click_button("Notes", "", "save")));
    EXPECT_EQ(take(zeblo_get_window_buttons("Notes", "")), R"(["Save"])");
    loadWindows({wide(10'000)});
    EXPECT_FALSE(done(zeblo_click_button("Notes", "", "save")));
    EXPECT_EQ(take(zeblo_get_window_buttons("Notes", "")), "[]");
    EXPECT_EQ(take(zeblo_get_window_text("Notes", "")), R"(["[AXWindow Title] Wide"])");
}

TEST_F(Controls, AtMost1000ButtonTitles) {
    Json kids = Json::array();
    for (int i = 0; i < 1'500; ++i) kids.push_back(button("B" + std::to_string(i)));
    loadWindows({window("Many", kids)});
    const Json titles = takeJson(zeblo_get_window_buttons("Notes", ""));
    ASSERT_EQ(titles.size(), 1'000u);
    EXPECT_EQ(titles.back(), "B999");
    EXPECT_EQ(logCount("collectElements: Hit max results count"), 500u);
}

}  // namespace
}  // namespace zeblo::testing
