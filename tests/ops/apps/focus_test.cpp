// Finding, launching and activating applications through zeblo_focus_app and
// zeblo_launch_app: which application is chosen, what is asked of the
// workspace, and what is logged when it fails.
#include "support/sim_fixture.h"

namespace zeblo::testing {
namespace {

using nlohmann::json;
using nlohmann::ordered_json;

std::string appErrorLine(const std::string& exportName, int caseNumber) {
    return exportName + " error: The operation couldn\xe2\x80\x99t be completed. (ZEBLOui.AppError error " +
           std::to_string(caseNumber) + ".)";
}

class FocusTest : public SimTest {
protected:
    // Focuses by name only (switch on, no launch, no waiting) and returns the
    // pids that were activated; none when the call failed.
    std::vector<int> activatedFor(const char* name) {
        clearTrace();
        const bool ok = done(zeblo_focus_app(name, nullptr, true, false, 0));
        std::vector<int> pids;
        for (auto& a : traceOf("activate")) {
            pids.push_back(a["activate"].get<int>());
            EXPECT_EQ(a["options"], 2);
        }
        EXPECT_EQ(ok, pids.size() == 1) << name;
        EXPECT_EQ(logs().size(), ok ? 0u : 1u) << name;
        return pids;
    }
};

TEST_F(FocusTest, LooseNameMatchChoosesTheApplication) {
    load(R"({"apps": [
        {"name": "Quick Notes", "pid": 1}, {"name": "Activity Monitor", "pid": 2}, {"name": "Mail", "pid": 3},
        {"name": "notes", "pid": 4}, {"name": "Mail\u00a0Box", "pid": 5}, {"name": "R\u00e9sum\u00e9", "pid": 6},
        {"pid": 7}]})");
    EXPECT_EQ(activatedFor("notes"), std::vector<int>{1});  // first loose match wins over the exact one
    EXPECT_EQ(activatedFor("activity mon"), std::vector<int>{2});
    EXPECT_EQ(activatedFor("mailbox"), std::vector<int>{5});  // "Mail" is no match, "Mail Box" is
    EXPECT_EQ(activatedFor("re\xcc\x81sume\xcc\x81"), std::vector<int>{6});  // decomposed é
    EXPECT_EQ(activatedFor("Quick Notes"), std::vector<int>{1});
    EXPECT_EQ(activatedFor("quicknotes"), std::vector<int>{1});
    EXPECT_EQ(activatedFor("Quick Notes Pro").size(), 0u);  // the candidate must hold the wanted text
}

TEST_F(FocusTest, VisibleChoiceSkipsHiddenAndBackgroundApps) {
    load(R"J({"apps": [
        {"name": "Code Worker", "pid": 10, "hidden": true},
        {"name": "Code Worker (GPU)", "pid": 11, "policy": 1},
        {"name": "Code", "pid": 12}]})J");
    EXPECT_EQ(activatedFor("code"), std::vector<int>{12});
    EXPECT_EQ(activatedFor("worker").size(), 0u);
    ASSERT_FALSE(logs().empty());
    EXPECT_EQ(logs().back(), appErrorLine("zeblo_focus_app", 0));
}

TEST_F(FocusTest, AfterALaunchThePlainChoiceTakesAnyState) {
    // "Code" itself is only launched now and lands last in the list; the plain
    // choice then finds the hidden "Code Worker" first.
    load(R"J({"apps": [
        {"name": "Code Worker", "pid": 10, "hidden": true},
        {"name": "Code Worker (GPU)", "pid": 11, "policy": 1}],
        "launchable": {"Code": {"name": "Code", "pid": 12}}})J");
    EXPECT_TRUE(done(zeblo_focus_app("Code", "", true, true, 0)));
    EXPECT_EQ(desk().trace(), (std::vector<ordered_json>{
        {{"launch", "Code"}, {"accepted", true}}, {{"sleep", 0.5}},
        {{"activate", 10}, {"options", 2}, {"accepted", true}}}));
    EXPECT_DOUBLE_EQ(desk().clock(), 0.5);
}

TEST_F(FocusTest, HiddenOrAccessoryAppIsLaunchedThenFound) {
    for (const char* state : {R"("hidden": true)", R"("policy": 1)", R"("policy": 2)"}) {
        load(std::string(R"({"apps": [{"name": "Mail", "pid": 3, )") + state + "}]}");
        EXPECT_FALSE(done(zeblo_focus_app("mail", "", true, false, 0))) << state;
        EXPECT_EQ(logs(), std::vector<std::string>{appErrorLine("zeblo_focus_app", 0)});
        EXPECT_TRUE(traceOf("launch").empty());

        clearTrace();
        // The workspace resolves the launch name exactly; the host's text is
        // passed on unchanged.
        EXPECT_TRUE(done(zeblo_focus_app("Mail", "", true, true, 0))) << state;
        EXPECT_EQ(desk().trace(), (std::vector<ordered_json>{
            {{"launch", "Mail"}, {"accepted", true}}, {{"sleep", 0.5}},
            {{"activate", 3}, {"options", 2}, {"accepted", true}}}));
    }
}

TEST_F(FocusTest, FailuresAndTheirLogLines) {
    load(R"({"apps": [{"name": "Stubborn", "pid": 8, "activate": false}, {"name": "Mail", "pid": 3}],
             "launchable": {"Sketchpad": {"name": "Drawing Board", "pid": 9}}})");
    const std::string notFound = appErrorLine("zeblo_focus_app", 0);

    // Launch refused by the workspace: not found, not a launch failure.
    EXPECT_FALSE(done(zeblo_focus_app("Nowhere", "", true, true, 0)));
    EXPECT_EQ(logs(), std::vector<std::string>{notFound});
    EXPECT_EQ(desk().trace().front(), (ordered_json{{"launch", "Nowhere"}, {"accepted", false}}));
    EXPECT_TRUE(traceOf("sleep").empty());

    // Launch accepted, but nothing by that name runs half a second later.
    clearTrace();
    EXPECT_FALSE(done(zeblo_focus_app("Sketchpad", "", true, true, 0)));
    EXPECT_EQ(logs(), std::vector<std::string>{notFound});
    EXPECT_EQ(traceOf("sleep").size(), 1u);
    EXPECT_TRUE(traceOf("activate").empty());

    // Activation refused.
    clearTrace();
    EXPECT_FALSE(done(zeblo_focus_app("stubborn", "", true, false, 0)));
    EXPECT_EQ(logs(), std::vector<std::string>{appErrorLine("zeblo_focus_app", 2)});
    EXPECT_EQ(traceOf("activate").front(), (ordered_json{{"activate", 8}, {"options", 2}, {"accepted", false}}));

    // Without switching, a found application is not touched at all.
    clearTrace();
    EXPECT_TRUE(done(zeblo_focus_app("stubborn", "", false, false, 0)));
    EXPECT_TRUE(desk().trace().empty());
}

TEST_F(FocusTest, EmptyOrNullNameDoesNothing) {
    load(R"({"apps": [{"pid": 7}]})");
    EXPECT_TRUE(done(zeblo_focus_app("", "Inbox", true, true, 1000)));
    EXPECT_TRUE(done(zeblo_focus_app(nullptr, nullptr, true, true, 1000)));
    EXPECT_TRUE(desk().trace().empty());
    EXPECT_DOUBLE_EQ(desk().clock(), 0.0);
    // A nameless application is no match for a real name.
    EXPECT_FALSE(done(zeblo_focus_app("mail", "", true, false, 0)));
}

TEST_F(FocusTest, LaunchExport) {
    load(R"({"apps": [{"name": "Mail", "pid": 3, "hidden": true}],
             "launchable": {"Sketchpad": {"name": "Sketchpad", "pid": 5}}})");
    EXPECT_FALSE(done(zeblo_launch_app("sketchpad")));  // passed unchanged, not matched loosely
    EXPECT_EQ(logs(), std::vector<std::string>{appErrorLine("zeblo_launch_app", 3)});
    EXPECT_EQ(desk().trace().front(), (ordered_json{{"launch", "sketchpad"}, {"accepted", false}}));

    clearTrace();
    EXPECT_TRUE(done(zeblo_launch_app("Sketchpad")));
    EXPECT_TRUE(done(zeblo_launch_app("Mail")));  // already running: accepted, not activated
    EXPECT_EQ(desk().trace(), (std::vector<ordered_json>{{{"launch", "Sketchpad"}, {"accepted", true}},
                                                          {{"launch", "Mail"}, {"accepted", true}}}));
    EXPECT_EQ(take(zeblo_get_running_apps()), R"(["Mail","Sketchpad"])");

    clearTrace();
    EXPECT_FALSE(done(zeblo_launch_app(nullptr)));
    EXPECT_EQ(logs(), std::vector<std::string>{appErrorLine("zeblo_launch_app", 3)});
    EXPECT_DOUBLE_EQ(desk().clock(), 0.0);
}

}  // namespace
}  // namespace zeblo::testing
