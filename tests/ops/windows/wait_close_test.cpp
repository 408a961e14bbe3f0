// Window titles, existence, waiting and closing, on the virtual clock.
#include "window_fixture.h"

namespace zeblo::testing {
namespace {

Json closable(const std::string& title, const std::string& id, Json press = 0) {
    Json w = window(title);
    w["id"] = id;
    w["attrs"]["AXCloseButton"] = {{"id", id + "-close"}, {"attrs", {{"AXRole", "AXButton"}}},
                                   {"actions", {{"AXPress", std::move(press)}}}, {"onPress", "close"}};
    return w;
}

class Waiting : public WindowTest {
protected:
    void SetUp() override {
        Json mail = app("Mail", 9, {window("Inbox")});
        mail["element"]["attrs"]["AXFocusedWindow"] = {{"ref", "inbox"}};
        mail["element"]["attrs"]["AXWindows"][0]["id"] = "inbox";
        loadDesk({{"apps", {app("Notes", 7, {closable("Draft", "draft")}), mail}},
                  {"frontmost", 7},
                  {"timeline",
                   {{{"at", 0.12}, {"addWindow", {{"pid", 7}, {"window", window("Report")}}}},
                    {{"at", 0.2}, {"removeWindow", "draft"}},
                    {{"at", 0.3}, {"frontmost", 9}}}}});
    }
};

TEST_F(Waiting, NothingIsCheckedWithoutTimeOrAKnownCondition) {
    EXPECT_FALSE(done(zeblo_wait_for_window("Notes", "Draft", 0, 0)));
    EXPECT_FALSE(done(zeblo_wait_for_window("Notes", "Draft", 0, -5)));
    EXPECT_FALSE(done(zeblo_wait_for_window("Notes", "Draft", 3, 5000)));
    EXPECT_FALSE(done(zeblo_wait_for_window("Notes", "Draft", -1, 5000)));
    EXPECT_TRUE(desk().trace().empty());
    EXPECT_EQ(desk().clock(), 0.0);
}

TEST_F(Waiting, ConditionsHoldingAtOnceDoNotSleep) {
    EXPECT_TRUE(done(zeblo_wait_for_window(nullptr, nullptr, 2, 1000)));
    EXPECT_TRUE(done(zeblo_wait_for_window("Gone", nullptr, 1, 1000)));
    EXPECT_TRUE(done(zeblo_wait_for_window("notes", "draft", 0, 1000)));
    EXPECT_TRUE(traceOf("sleep").empty());
}

TEST_F(Waiting, ProbesEvery50msAndNotAfterTheLastSleep) {
    EXPECT_FALSE(done(zeblo_wait_for_window("Notes", "Never", 0, 120)));
    EXPECT_EQ(probesAndSleeps(), "PSPSPS");  // probes at 0, 0.05, 0.1
    EXPECT_DOUBLE_EQ(desk().clock(), 0.15);

    desk().sleep(0.1);
    clearTrace();  // from 0.25: probes at +0 and +0.05; +0.1 is not less than the limit
    EXPECT_FALSE(done(zeblo_wait_for_window("Notes", "Never", 0, 100)));
    EXPECT_EQ(probesAndSleeps(), "PSPS");
    EXPECT_DOUBLE_EQ(desk().clock(), 0.35);
}

TEST_F(Waiting, WindowsAppearDisappearAndComeToTheFront) {
    EXPECT_TRUE(done(zeblo_wait_for_window("Notes", "Report", 0, 1000)));  // appears at 0.12
    EXPECT_EQ(probesAndSleeps(), "PSPSPSP");
    EXPECT_DOUBLE_EQ(desk().clock(), 0.15);
    EXPECT_TRUE(done(zeblo_wait_for_window("Notes", "Draft", 1, 1000)));  // removed at 0.2
    EXPECT_DOUBLE_EQ(desk().clock(), 0.2);
    EXPECT_FALSE(done(zeblo_wait_for_window("Mail", "Outbox", 2, 200)));
    EXPECT_TRUE(done(zeblo_wait_for_window("mail", "inbox", 2, 1000)));  // in front at 0.3
    EXPECT_DOUBLE_EQ(desk().clock(), 0.4);
}

TEST_F(Waiting, NothingInFrontIsNotInFront) {
    loadDesk({{"apps", {app("Notes", 7, {window("Draft")})}}, {"timeline", {{{"at", 0.1}, {"frontmost", 7}}}}});
    EXPECT_FALSE(done(zeblo_wait_for_window(nullptr, nullptr, 2, 100)));  // in front only from 0.1
    EXPECT_TRUE(done(zeblo_wait_for_window(nullptr, nullptr, 2, 100)));
}

TEST_F(Waiting, TitlesUseTheLooseMatchOnly) {
    Json odd = app("Mail Sync", 3, {window("Sync"), window(""), {{"attrs", {{"AXTitle", 4}}}}, nullptr});
    odd["element"]["attrs"]["AXWindows"][1]["attrs"]["AXTitle"] = "";
    loadDesk({{"apps", {odd, app("Mail", 4, {window("Inbox")})}}, {"frontmost", 4}});
    EXPECT_EQ(take(zeblo_get_window_titles("Mail")), R"(["Sync",""])");
    EXPECT_EQ(take(zeblo_get_window_titles(nullptr)), R"(["Inbox"])");
    EXPECT_EQ(take(zeblo_get_window_titles("NoSuchApp")), "[]");
    EXPECT_TRUE(logs().empty());
    EXPECT_TRUE(done(zeblo_window_exists("Mail", "inbox")));  // exact pass here
    EXPECT_FALSE(done(zeblo_window_exists("Mail", "Outbox")));
}

class Closing : public WindowTest {};

TEST_F(Closing, SingleAttempt) {
    Json noButton = window("Plain");
    Json wrongKind = window("Odd");
    wrongKind["attrs"]["AXCloseButton"] = "button";
    loadWindows({closable("Doc", "doc", -25200), noButton, wrongKind, closable("Done", "done")});
    for (const char* name : {"Doc", "Plain", "Odd"}) {
        EXPECT_FALSE(done(zeblo_close_window("Notes", name, -1)));
        EXPECT_EQ(logs().back(), "zeblo_close_window error: Failed to close window");
    }
    EXPECT_TRUE(done(zeblo_close_window("Notes", "Done", -1)));
    EXPECT_EQ(traceOf("action").size(), 2u);
    EXPECT_EQ(take(zeblo_get_window_titles("Notes")), R"(["Doc","Plain","Odd"])");
    EXPECT_TRUE(traceOf("sleep").empty());

    clearTrace();  // a zero retry time only checks whether the window is gone
    EXPECT_FALSE(done(zeblo_close_window("Notes", "Doc", 0)));
    EXPECT_EQ(logs().back(), "zeblo_close_window error: Operation timed out");
    EXPECT_TRUE(done(zeblo_close_window("Notes", "Done", 0)));
    EXPECT_TRUE(traceOf("action").empty());
}

TEST_F(Closing, RetriesUntilGoneOrTimedOut) {
    loadWindows({closable("Doc", "doc", Json::array({-25200, 0})), closable("B", "b"), closable("C", "c"),
                 closable("Stuck", "stuck", -25200)});
    EXPECT_TRUE(done(zeblo_close_window("Notes", "Doc", 1000)));  // refused once, then accepted
    auto actions = traceOf("action");
    ASSERT_EQ(actions.size(), 2u);
    EXPECT_EQ(actions[0]["result"], -25200);
    EXPECT_EQ(actions[1]["result"], 0);
    EXPECT_DOUBLE_EQ(desk().clock(), 0.2);

    clearTrace();
    EXPECT_FALSE(done(zeblo_close_window("Notes", "Stuck", 250)));  // attempts at +0, +0.1, +0.2
    EXPECT_EQ(traceOf("action").size(), 3u);
    EXPECT_EQ(logs().back(), "zeblo_close_window error: Operation timed out");

    clearTrace();  // no name: whichever window is first, until none is left
    EXPECT_FALSE(done(zeblo_close_window("Notes", nullptr, 2000)));  // "Stuck" stays
    EXPECT_EQ(traceOf("action").front()["element"], "b-close");
    EXPECT_EQ(traceOf("action")[1]["element"], "c-close");
    EXPECT_EQ(take(zeblo_get_window_titles("Notes")), R"(["Stuck"])");
}

TEST_F(Closing, AllWindowsOrTheApplicationGone) {
    loadDesk({{"apps", {app("Notes", 7, {closable("A", "a"), closable("B", "b"), closable("C", "c")}),
                        app("Quitter", 8, {closable("Q", "q", -25200)})}},
              {"timeline", {{{"at", 0.45}, {"removeApp", 8}}}}});
    EXPECT_TRUE(done(zeblo_close_window("Notes", nullptr, 2000)));
    EXPECT_EQ(traceOf("action").size(), 3u);
    EXPECT_DOUBLE_EQ(desk().clock(), 0.3);
    EXPECT_TRUE(done(zeblo_close_window("Quitter", "Q", 2000)));  // refused at 0.3 and 0.4, gone at 0.45
    EXPECT_EQ(traceOf("action").size(), 5u);
    EXPECT_DOUBLE_EQ(desk().clock(), 0.5);
}

}  // namespace
}  // namespace zeblo::testing
