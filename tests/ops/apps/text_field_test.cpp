// zeblo_is_in_text_field: the answer comes from the role of the element that
// has the keyboard focus, and every failure is a silent false.
#include "support/sim_fixture.h"

namespace zeblo::testing {
namespace {

class TextFieldTest : public SimTest {
protected:
    bool inTextFieldWith(const std::string& systemWide, const std::string& extra = "") {
        load(R"({"systemWide": )" + systemWide + extra + "}");
        const bool answer = done(zeblo_is_in_text_field());
        EXPECT_TRUE(logs().empty()) << systemWide;
        return answer;
    }
    bool inTextFieldWithRole(const std::string& roleJson) {
        return inTextFieldWith(R"({"attrs": {"AXFocusedUIElement": {"attrs": {"AXRole": )" + roleJson + "}}}}");
    }
};

TEST_F(TextFieldTest, TextRolesAreTextFields) {
    for (const char* role : {"AXTextField", "AXTextArea", "AXComboBox", "AXSearchField"}) {
        EXPECT_TRUE(inTextFieldWithRole(std::string("\"") + role + "\"")) << role;
    }
    // Only the role counts: a read-only, disabled text area still takes the answer true,
    // and so does one in a process that is not trusted.
    EXPECT_TRUE(inTextFieldWith(R"({"attrs": {"AXFocusedUIElement": {"attrs": {
        "AXRole": "AXTextArea", "AXSubrole": "AXSecureTextField", "AXEnabled": false}}}})",
                                R"(, "trusted": false)"));
}

TEST_F(TextFieldTest, OtherRolesAndUnreadableRolesAreNot) {
    for (const char* role : {"\"AXSecureTextField\"", "\"AXButton\"", "\"AXList\"", "\"AXWebArea\"",
                             "\"axtextfield\"", "\"AXTextField \"", "\"\"", "null", "7", "1.5", "true",
                             "[\"AXTextField\"]"}) {
        EXPECT_FALSE(inTextFieldWithRole(role)) << role;
    }
    EXPECT_FALSE(inTextFieldWith(R"({"attrs": {"AXFocusedUIElement": {"errors": {"AXRole": -25204}}}})"));
    EXPECT_FALSE(inTextFieldWith(R"({"attrs": {"AXFocusedUIElement": {"attrs": {}}}})"));
}

TEST_F(TextFieldTest, NoFocusedElement) {
    EXPECT_FALSE(inTextFieldWith(R"({"attrs": {}})"));
    EXPECT_FALSE(inTextFieldWith(R"({"attrs": {"AXFocusedUIElement": null}})"));
    EXPECT_FALSE(inTextFieldWith(R"({"attrs": {"AXFocusedUIElement": "AXTextField"}})"));
    EXPECT_FALSE(inTextFieldWith(R"({"errors": {"AXFocusedUIElement": -25211}})"));
    load("{}");
    EXPECT_FALSE(done(zeblo_is_in_text_field()));
}

// The commands of the applications area, run as the zeblo tool on the example desktop.
std::string onExample(const std::string& args) {
    return "--simulate " + sourcePath("examples/desktop.json") + " " + args;
}

TEST(AppCommands, FocusLaunchAndTextField) {
    const ToolRun focus = runTool(onExample("--trace - focus notes '' 1 0 0 2>&1"));
    EXPECT_EQ(focus.exitCode, 0);
    EXPECT_EQ(focus.out.rfind("true\n", 0), 0u) << focus.out;
    EXPECT_NE(focus.out.find(R"({"activate":202,"options":2,"accepted":true})"), std::string::npos) << focus.out;

    const ToolRun missing = runTool(onExample("focus nowhere '' 1 0 0"));
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_EQ(missing.out, "false\n");

    EXPECT_EQ(runTool(onExample("launch Sketchpad")).out, "true\n");
    const ToolRun refused = runTool(onExample("launch Nowhere"));
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_EQ(refused.out, "false\n");

    EXPECT_EQ(runTool(onExample("in-text-field")).out, "true\n");
}

TEST(AppCommands, UsageErrors) {
    for (const char* args : {"focus notes '' 1 0", "focus notes '' 2 0 0", "focus notes '' 1 yes 0",
                             "focus notes '' 1 0 soon", "focus notes '' 1 0 0x100000000", "launch",
                             "launch a b", "in-text-field now"}) {
        EXPECT_EQ(runTool(onExample(args) + " 2>/dev/null").exitCode, 2) << args;
    }
    EXPECT_EQ(runTool(onExample("focus notes '' 1 0 -1")).exitCode, 0);
}

}  // namespace
}  // namespace zeblo::testing
