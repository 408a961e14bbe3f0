// Direct entry into the focused field through zeblo_paste_into_focused_field:
// the trust check, the focused element, setAXValue's log lines, the direct
// children, the Return press and every failure.
#include "keyboard_support.h"
#include "ops/keyboard/keystroke.h"

namespace zeblo::testing {
namespace {

using namespace kb;

const Json kTrust = Json{{"trustCheck", Json{{"prompt", true}}}, {"trusted", true}};

std::string focusedOn(const std::string& element, const std::string& extra = "") {
    return R"({"systemWide": {"attrs": {"AXFocusedUIElement": )" + element + "}}" + extra + "}";
}

Json set(const std::string& id, const std::string& value, int result = 0) {
    return Json{{"set", "AXValue"}, {"element", id}, {"value", value}, {"result", result}};
}

std::string found(const std::string& role) { return "setAXValue: Found text field with role '" + role + "'"; }
std::string succeeded(const std::string& role) { return "setAXValue: Successfully set AXValue for role: " + role; }
std::string skipped(const std::string& role) { return "setAXValue: Skipping role '" + role + "' - not a text field"; }

class FocusedFieldTest : public SimTest {
protected:
    Json trace() { return asArray(desk().trace()); }
    std::string valueOf(const std::string& id) {
        const sim::Attr* a = desk().node(id)->findAttr("AXValue");
        return a && std::holds_alternative<std::string>(*a) ? std::get<std::string>(*a) : "<none>";
    }
};

TEST_F(FocusedFieldTest, TextFieldsTakeTheValueAndReturnFollowsOnlyWhenAsked) {
    for (const char* role : {"AXTextField", "AXTextArea", "AXSecureTextField"}) {
        load(focusedOn(std::string(R"({"id": "f", "attrs": {"AXRole": ")") + role +
                       R"(", "AXValue": "old"}, "settable": ["AXValue"]})"));
        EXPECT_TRUE(done(zeblo_paste_into_focused_field("new text", false)));
        EXPECT_EQ(trace(), asArray({kTrust, log(found(role)), set("f", "new text"), log(succeeded(role))}));
        EXPECT_EQ(valueOf("f"), "new text");

        clearTrace();
        EXPECT_TRUE(done(zeblo_paste_into_focused_field(nullptr, true)));
        std::vector<Json> want{kTrust, log(found(role)), set("f", ""), log(succeeded(role))};
        append(want, press(36, std::nullopt, kMarker));
        EXPECT_EQ(trace(), asArray(want));
        EXPECT_TRUE(traceOf("pasteboard").empty());
    }
}

TEST_F(FocusedFieldTest, DirectChildrenAreTriedInOrder) {
    load(focusedOn(R"({"id": "combo", "attrs": {"AXRole": "AXComboBox", "AXValue": "", "AXChildren": [
        {"id": "label", "attrs": {"AXRole": "AXStaticText"}},
        {"id": "group", "attrs": {"AXRole": "AXGroup", "AXChildren": [
            {"id": "deep", "attrs": {"AXRole": "AXTextField"}, "settable": ["AXValue"]}]}},
        {"id": "locked", "attrs": {"AXRole": "AXTextField"}},
        null,
        {"id": "norole", "attrs": {}},
        {"id": "numrole", "attrs": {"AXRole": 5}},
        {"id": "broken", "attrs": {"AXRole": "AXTextArea"}, "settable": ["AXValue"], "setResult": -25200},
        {"id": "inner", "attrs": {"AXRole": "AXSecureTextField"}, "settable": ["AXValue"]},
        {"id": "later", "attrs": {"AXRole": "AXTextField"}, "settable": ["AXValue"]}]},
        "settable": ["AXValue"]})"));
    EXPECT_TRUE(done(zeblo_paste_into_focused_field("pw", true)));
    std::vector<Json> want{kTrust,
                           log(skipped("AXComboBox")),
                           log(skipped("AXStaticText")),
                           log(skipped("AXGroup")),
                           log(found("AXTextField")),
                           log("setAXValue: AXValue is not settable for role: AXTextField"),
                           log("setAXValue: Could not get role"),
                           log("setAXValue: Could not get role"),
                           log(found("AXTextArea")),
                           set("broken", "pw", -25200),
                           log("setAXValue: Failed with error code -25200 for role: AXTextArea"),
                           log(found("AXSecureTextField")),
                           set("inner", "pw"),
                           log(succeeded("AXSecureTextField"))};
    append(want, press(36, std::nullopt, kMarker));
    EXPECT_EQ(trace(), asArray(want));
    EXPECT_EQ(valueOf("inner"), "pw");
    EXPECT_EQ(valueOf("deep"), "<none>");
    EXPECT_EQ(valueOf("combo"), "");
}

TEST_F(FocusedFieldTest, NoElementTakesTheValue) {
    const std::string fields[] = {
        R"({"attrs": {"AXRole": "AXTextField"}})",                                          // not settable
        R"({"attrs": {"AXRole": "AXSearchField", "AXChildren": []}, "settable": ["AXValue"]})",
        R"({"attrs": {"AXRole": "AXTextField"}, "settable": ["AXValue"], "setResult": -25200,
            "errors": {"AXChildren": -25204}})",
        R"({"attrs": {"AXRole": "AXGroup", "AXChildren": "not a list"}})",
    };
    for (const std::string& field : fields) {
        load(focusedOn(field));
        EXPECT_FALSE(done(zeblo_paste_into_focused_field("x", true)));
        const std::vector<std::string> lines = logs();
        ASSERT_FALSE(lines.empty());
        EXPECT_EQ(lines.back(), "zeblo_paste_into_focused_field error: Could not set value on focused element");
        EXPECT_TRUE(traceOf("key").empty()) << field;
    }
}

TEST_F(FocusedFieldTest, PercentSignsAreLoggedLiterally) {
    load(focusedOn(R"({"attrs": {"AXRole": "%s%n", "AXChildren": [
        {"attrs": {"AXRole": "AXTextField"}, "settable": ["AXValue"], "setResult": -25200}]}})"));
    EXPECT_FALSE(done(zeblo_paste_into_focused_field("%d%%", false)));
    EXPECT_EQ(logs(), (std::vector<std::string>{
                          "setAXValue: Skipping role '%s%n' - not a text field",
                          found("AXTextField"),
                          "setAXValue: Failed with error code -25200 for role: AXTextField",
                          "zeblo_paste_into_focused_field error: Could not set value on focused element",
                      }));
}

TEST_F(FocusedFieldTest, NoFocusedElement) {
    const std::pair<std::string, std::string> cases[] = {
        {R"({"systemWide": {"attrs": {}}})", "-25205"},
        {R"({"systemWide": {"errors": {"AXFocusedUIElement": -25212}}})", "-25212"},
        {R"({"systemWide": {"attrs": {"AXFocusedUIElement": null}}})", "0"},
        {R"({"systemWide": {"attrs": {"AXFocusedUIElement": "text"}}})", "0"},
    };
    for (const auto& [desktop, code] : cases) {
        load(desktop);
        EXPECT_FALSE(done(zeblo_paste_into_focused_field("x", true)));
        EXPECT_EQ(trace(), asArray({kTrust, log("zeblo_paste_into_focused_field error: Could not get focused element: " +
                                                code)}));
    }
    // The failure carries the result code; the others carry -1.
    load(R"({"systemWide": {"errors": {"AXFocusedUIElement": -25212}}})");
    try {
        Keystroke::pasteIntoFocusedField("x", false);
        ADD_FAILURE() << "no failure";
    } catch (const MessageError& e) {
        EXPECT_EQ(e.domain(), "Keystroke");
        EXPECT_EQ(e.code(), -25212);
    }
    load(focusedOn(R"({"attrs": {"AXRole": "AXButton"}})"));
    try {
        Keystroke::pasteIntoFocusedField("x", false);
        ADD_FAILURE() << "no failure";
    } catch (const MessageError& e) {
        EXPECT_EQ(e.domain(), "Keystroke");
        EXPECT_EQ(e.code(), -1);
    }
    EXPECT_EQ(desk().liveHandles(), 0);
}

TEST_F(FocusedFieldTest, UntrustedProcessChangesNothing) {
    load(focusedOn(R"({"id": "f", "attrs": {"AXRole": "AXTextField", "AXValue": "old"}, "settable": ["AXValue"]})",
                   R"(, "trusted": false)"));
    EXPECT_FALSE(done(zeblo_paste_into_focused_field("new", true)));
    EXPECT_EQ(trace(), asArray({Json{{"trustCheck", Json{{"prompt", true}}}, {"trusted", false}},
                                 log("zeblo_paste_into_focused_field error: Accessibility permission not granted")}));
    EXPECT_EQ(valueOf("f"), "old");
}

TEST_F(FocusedFieldTest, ReturnThatCannotBePostedStillSucceeds) {
    const std::string field = R"({"id": "f", "attrs": {"AXRole": "AXTextField"}, "settable": ["AXValue"]})";
    load(focusedOn(field, R"(, "failures": {"eventSource": true})"));
    EXPECT_TRUE(done(zeblo_paste_into_focused_field("a", true)));
    EXPECT_TRUE(traceOf("key").empty());

    for (int failing : {1, 2}) {
        load(focusedOn(field, R"(, "failures": {"keyboardEvents": [)" + std::to_string(failing) + "]}"));
        EXPECT_TRUE(done(zeblo_paste_into_focused_field("a", true)));
        // Only a key-down created before the failure is posted.
        const std::vector<Json> want = failing == 1 ? std::vector<Json>{} : std::vector<Json>{key(36, true, std::nullopt, kMarker)};
        EXPECT_EQ(asArray(traceOf("key")), asArray(want));
        EXPECT_EQ(logs().size(), 2u);  // setAXValue's two lines, no error line
    }
}

}  // namespace
}  // namespace zeblo::testing
