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

}  // namespace
}  // namespace zeblo::testing
