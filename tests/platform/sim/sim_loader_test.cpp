// Loading desktops from their JSON form: value kinds, references, the order
// of names, defaults, bad files, and trees far deeper than the machine stack.
#include "sim_test_util.h"

namespace zeblo::sim::testing {
namespace {

constexpr const char* kDesktop = R"({
  "apps": [
    {"name": "Mail", "pid": 120, "hidden": true, "policy": 1, "element": {
      "attrs": {"AXTitle": "Mail", "AXRole": "AXApplication", "AXEnabled": true, "AXCount": 7,
                "AXRatio": 0.5, "AXNothing": null, "AXFocusedUIElement": {"ref": "field"},
                "AXChildren": [{"id": "a"}, null, {"ref": "field"}], "AXLabels": ["x", "y"],
                "AXEmpty": [], "AXWindows": [{"id": "field", "attrs": {"AXRole": "AXTextField"}}]},
      "errors": {"AXTitle": -25204},
      "actions": {"AXRaise": 0, "AXPress": 0, "AXPick": [-25200, 0]}}},
    {"pid": 130, "name": null}
  ],
  "frontmost": 130
})";

TEST_F(SimTest, LoadsEveryValueKindWithReferencesAndFileOrder) {
    load(kDesktop);
    Element mail = app(120);
    EXPECT_EQ(read(mail, "AXTitle").code, -25204);  // errors win over attrs
    EXPECT_EQ(asString(read(mail, "AXRole")).value, "AXApplication");
    EXPECT_TRUE(asBool(read(mail, "AXEnabled")).value);
    EXPECT_EQ(asInteger(read(mail, "AXCount")).value, 7);
    EXPECT_EQ(asInteger(read(mail, "AXRatio")).status, ReadStatus::wrongKind);
    EXPECT_EQ(asString(read(mail, "AXCount")).status, ReadStatus::wrongKind);
    EXPECT_EQ(asString(read(mail, "AXNothing")).status, ReadStatus::noValue);
    auto missing = asString(read(mail, "AXMissing"));
    EXPECT_EQ(missing.status, ReadStatus::failed);
    EXPECT_EQ(missing.code, kAXErrorAttributeUnsupported);
    EXPECT_EQ(idOf(child(mail, "AXFocusedUIElement")), "field");  // forward reference

    auto kids = asElementArray(read(mail, "AXChildren"));
    ASSERT_TRUE(kids.ok());
    ASSERT_EQ(kids.value.size(), 3u);
    EXPECT_EQ(idOf(kids.value[0]), "a");
    EXPECT_FALSE(kids.value[1]);  // null entries are kept
    EXPECT_EQ(idOf(kids.value[2]), "field");
    EXPECT_EQ(asStringArray(read(mail, "AXLabels")).value, (std::vector<std::string>{"x", "y"}));
    EXPECT_TRUE(asStringArray(read(mail, "AXEmpty")).ok());  // an empty array is either kind
    EXPECT_TRUE(asElementArray(read(mail, "AXEmpty")).ok());
    EXPECT_EQ(asStringArray(read(mail, "AXChildren")).status, ReadStatus::wrongKind);

    EXPECT_EQ(*desk->copyAttributeNames(mail).names,
              (std::vector<std::string>{"AXTitle", "AXRole", "AXEnabled", "AXCount", "AXRatio", "AXNothing",
                                        "AXFocusedUIElement", "AXChildren", "AXLabels", "AXEmpty", "AXWindows"}));
    EXPECT_EQ(*desk->copyActionNames(mail).names, (std::vector<std::string>{"AXRaise", "AXPress", "AXPick"}));

    auto apps = desk->runningApplications();
    ASSERT_EQ(apps.size(), 2u);
    EXPECT_EQ(apps[0].localizedName, "Mail");
    EXPECT_TRUE(apps[0].hidden);
    EXPECT_EQ(apps[0].activationPolicy, 1);
    EXPECT_FALSE(apps[1].localizedName.has_value());  // defaults
    EXPECT_FALSE(apps[1].hidden);
    EXPECT_EQ(apps[1].activationPolicy, 0);
    EXPECT_EQ(desk->frontmostApplication()->pid, 130);
    EXPECT_TRUE(desk->isProcessTrusted(false));
    EXPECT_TRUE(desk->activateApplication(apps[1], 0));
    // An application without an element gets an empty one, the same each time.
    EXPECT_EQ(app(130).raw(), app(130).raw());
    EXPECT_EQ(read(app(130), "AXTitle").code, kAXErrorAttributeUnsupported);
}

TEST_F(SimTest, BadFilesAreRefusedWithTheirPlace) {
    const std::pair<const char*, const char*> cases[] = {
        {"not json", "not valid JSON"},
        {"[]", "desktop"},
        {R"({"apps": 3})", "apps"},
        {R"({"apps": [{"name": "x"}]})", "pid"},
        {R"({"apps": [{"pid": 4294967296}]})", "apps[0].pid"},
        {R"({"apps": [{"pid": 1, "colour": 1}]})", "apps[0].colour"},
        {R"({"apps": [{"pid": 1, "element": {"attrs": {"A": [1, 2]}}}]})", "apps[0].element.attrs.A[0]"},
        {R"({"apps": [{"pid": 1, "element": {"attrs": {"A": ["s", {}]}}}]})", "attrs.A[0]"},
        {R"({"apps": [{"pid": 1, "element": {"attrs": {"A": {"ref": "nowhere"}}}}]})", "nowhere"},
        {R"({"apps": [{"pid": 1, "element": {"attrs": {"A": {"ref": "x", "id": "y"}}}}]})", "attrs.A"},
        {R"({"apps": [{"pid": 1, "element": {"id": "w", "attrs": {"A": {"id": "w"}}}}]})", "duplicate"},
        {R"({"apps": [{"pid": 1, "element": {"onPress": "explode"}}]})", "onPress"},
        {R"({"apps": [{"pid": 1, "element": {"actions": {"AXPress": []}}}]})", "actions.AXPress"},
        {R"({"apps": [{"pid": 1, "element": {"actions": {"AXPress": "ok"}}}]})", "actions.AXPress"},
        {R"({"apps": [{"pid": 1, "element": {"attrs": 5}}]})", "attrs"},
        {R"({"apps": [{"pid": 1, "element": "button"}]})", "apps[0].element"},
        {R"({"pasteboard": [{"t": {"base64": "@@@"}}]})", "pasteboard[0].t.base64"},
        {R"({"pasteboard": [{"t": 5}]})", "pasteboard[0].t"},
        {R"({"timeline": [{"frontmost": 1}]})", "at"},
        {R"({"timeline": [{"at": "soon", "frontmost": 1}]})", "at"},
        {R"({"timeline": [{"at": 1, "frontmost": "Mail"}]})", "timeline[0].frontmost"},
        {R"({"timeline": [{"at": 1, "explode": 1}]})", "explode"},
        {R"({"timeline": [{"at": 1, "removeWindow": "ghost"}]})", "ghost"},
        {R"({"timeline": [{"at": 1, "hangApp": {"pid": 1}}]})", "hangApp"},
        {R"({"timeline": [{"at": 1, "resumeApp": "Mail"}]})", "resumeApp"},
        {R"({"apps": [{"pid": 1, "hung": 0}]})", "apps[0].hung"},
        {R"({"apps": [{"pid": 1, "element": {"holdsReply": 3601}}]})", "element.holdsReply"},
        {R"({"failures": {"keyboardEvents": [0]}})", "keyboardEvents[0]"},
        {R"({"trusted": "yes"})", "trusted"},
        {R"({"extra": 1})", "extra"},
        {"{\"apps\": [{\"pid\": 1, \"name\": \"\xff\"}]}", "not valid JSON"},
    };
    for (const auto& [text, place] : cases) {
        try {
            SimDesktop::fromJson(text);
            ADD_FAILURE() << "accepted: " << text;
        } catch (const DesktopFormatError& e) {
            EXPECT_NE(std::string(e.what()).find(place), std::string::npos) << text << " → " << e.what();
        }
    }
    EXPECT_THROW(SimDesktop::fromFile("/nonexistent/desktop.json"), DesktopFormatError);
}

// A file cut short anywhere is refused as a whole, with the reader's own
// error, before anything of it is built; the whole file loads.
TEST_F(SimTest, EveryTruncationOfAFileIsRefusedCleanly) {
    const std::string text = kDesktop;
    for (std::size_t n = 0; n < text.size(); ++n) {
        try {
            SimDesktop::fromJson(text.substr(0, n));
            ADD_FAILURE() << "accepted the first " << n << " bytes";
        } catch (const DesktopFormatError& e) {
            EXPECT_TRUE(std::string(e.what()).starts_with("the desktop is not valid JSON")) << n << ": " << e.what();
        }
    }
    EXPECT_EQ(SimDesktop::fromJson(text)->runningApplications().size(), 2u);
}

TEST_F(SimTest, LoadsAndClosesATreeTenThousandLevelsDeep) {
    constexpr int kDepth = 10000;
    std::string element = R"({"id": "close", "onPress": "close", "actions": {"AXPress": 0}})";
    std::string text = R"({"apps": [{"pid": 1, "element": {"attrs": {"AXWindows": [{"id": "w", "attrs": {"AXChildren": [)";
    std::string open, close;
    for (int i = 0; i < kDepth; ++i) {
        open += R"({"attrs": {"AXChildren": [)";
        close += "]}}";
    }
    text += open + element + close + "]}}]}}}]}";
    load(text);
    Element e = app(1);
    for (int i = 0; i < kDepth + 2 && e; ++i) {
        auto kids = asElementArray(read(e, i == 0 ? "AXWindows" : "AXChildren"));
        e = kids.value.empty() ? Element{} : kids.value[0];
    }
    ASSERT_EQ(idOf(e), "close");
    EXPECT_EQ(desk->performAction(e, "AXPress"), 0);
    EXPECT_TRUE(windowIds(1).empty());  // found the window from the deepest button
}

}  // namespace
}  // namespace zeblo::sim::testing
