// The wait of zeblo_focus_app for a window to come to the front, timed on the
// simulated desktop's virtual clock: when it probes, when it stops, and that a
// window that never comes is not a failure.
#include <gmock/gmock.h>

#include <memory>

#include "ops/apps/probe_recorder.h"
#include "platform/platform.h"
#include "support/sim_fixture.h"

namespace zeblo::testing {
namespace {

using ::testing::DoubleNear;
using ::testing::ElementsAre;
using ::testing::Pointwise;

class FocusWaitTest : public SimTest {
protected:
    // Loads a desktop and installs a recorder of frontmost queries over it.
    void loadWatched(const std::string& desktopJson) {
        load(desktopJson);
        recorder_ = std::make_shared<ProbeRecorder>(sharedDesk());
        platform::install(recorder_);
    }
    const std::vector<double>& probes() const { return recorder_->probes(); }
    std::size_t sleeps() const { return traceOf("sleep").size(); }

    // Probe times 0, 0.05, ... (n of them) after `start`.
    static std::vector<double> every50ms(double start, int n) {
        std::vector<double> t;
        for (int i = 0; i < n; ++i) t.push_back(start + 0.05 * i);
        return t;
    }

private:
    std::shared_ptr<ProbeRecorder> recorder_;
};

// "Mail" runs with "Inbox – 3 unread" focused; "Quick Notes" shows "Inbox (3)";
// "Finder" shows "Inbox" too, so a window test alone would match it.
const std::string kDesktop = R"J({"apps": [
    {"name": "Finder", "pid": 1, "element": {"attrs": {"AXFocusedWindow": {"attrs": {"AXTitle": "Inbox"}}}}},
    {"name": "Quick Notes", "pid": 2, "element": {"attrs": {"AXFocusedWindow": {"attrs": {"AXTitle": "Inbox (3)"}}}}},
    {"name": "Mail", "pid": 3, "element": {"attrs": {"AXFocusedWindow": {"attrs": {"AXTitle": "Inbox \u2013 3 unread"}}}}}
  ], "frontmost": 1)J";

TEST_F(FocusWaitTest, MatchingWindowEndsTheWaitAtTheFirstProbe) {
    loadWatched(kDesktop + "}");
    EXPECT_TRUE(done(zeblo_focus_app("notes", "inbox", true, false, 1000)));
    EXPECT_THAT(probes(), ElementsAre(0.0));
    EXPECT_EQ(sleeps(), 0u);

    EXPECT_TRUE(done(zeblo_focus_app("mail", "INBOX", true, false, 1000)));
    EXPECT_EQ(probes().size(), 2u);
    EXPECT_TRUE(logs().empty());
}

TEST_F(FocusWaitTest, NoProbeWithoutWindowNameOrPositiveTimeout) {
    loadWatched(kDesktop + "}");
    EXPECT_TRUE(done(zeblo_focus_app("notes", "", true, false, 1000)));
    EXPECT_TRUE(done(zeblo_focus_app("notes", nullptr, true, false, 1000)));
    EXPECT_TRUE(done(zeblo_focus_app("notes", "inbox", true, false, 0)));
    EXPECT_TRUE(done(zeblo_focus_app("notes", "inbox", true, false, -5)));
    EXPECT_TRUE(probes().empty());
    EXPECT_EQ(sleeps(), 0u);
    EXPECT_EQ(traceOf("activate").size(), 4u);
}

TEST_F(FocusWaitTest, WindowThatNeverComesTimesOutQuietly) {
    loadWatched(kDesktop + "}");
    // Only watching: Finder stays in front, and its "Inbox" does not count for Mail.
    EXPECT_TRUE(done(zeblo_focus_app("mail", "inbox", false, false, 1000)));
    EXPECT_THAT(probes(), Pointwise(DoubleNear(1e-9), every50ms(0.0, 20)));
    EXPECT_EQ(sleeps(), 20u);
    EXPECT_DOUBLE_EQ(desk().clock(), 1.0);
    EXPECT_TRUE(traceOf("activate").empty());
    EXPECT_TRUE(logs().empty());
}

TEST_F(FocusWaitTest, WatchingSeesAWindowBroughtForwardByOthers) {
    loadWatched(kDesktop + R"(, "timeline": [{"at": 0.12, "frontmost": 2}]})");
    EXPECT_TRUE(done(zeblo_focus_app("notes", "inbox (3)", false, false, 1000)));
    EXPECT_THAT(probes(), Pointwise(DoubleNear(1e-9), every50ms(0.0, 4)));
    EXPECT_DOUBLE_EQ(desk().clock(), 0.15);
}

TEST_F(FocusWaitTest, NoProbeAfterTheSleepOnWhichTimeRanOut) {
    // The window arrives exactly when the limit is reached: too late.
    loadWatched(kDesktop + R"(, "timeline": [{"at": 0.15, "frontmost": 2}]})");
    EXPECT_TRUE(done(zeblo_focus_app("notes", "inbox", false, false, 150)));
    EXPECT_THAT(probes(), Pointwise(DoubleNear(1e-9), every50ms(0.0, 3)));
    EXPECT_EQ(sleeps(), 3u);
    EXPECT_DOUBLE_EQ(desk().clock(), 0.15);

    // A limit that is not a multiple of the interval still probes once more
    // after the last full interval.
    loadWatched(kDesktop + "}");
    EXPECT_TRUE(done(zeblo_focus_app("mail", "nothing", false, false, 101)));
    EXPECT_THAT(probes(), Pointwise(DoubleNear(1e-9), every50ms(0.0, 3)));
}

TEST_F(FocusWaitTest, NoFrontmostAppIsAFailedProbeAndTheWaitGoesOn) {
    loadWatched(R"({"apps": [{"name": "Mail", "pid": 3, "element": {"attrs": {
                      "AXFocusedWindow": {"attrs": {"AXTitle": "Inbox"}}}}}],
                    "timeline": [{"at": 0.1, "frontmost": 3}]})");
    EXPECT_TRUE(done(zeblo_focus_app("mail", "inbox", false, false, 500)));
    EXPECT_THAT(probes(), Pointwise(DoubleNear(1e-9), every50ms(0.0, 3)));
    EXPECT_TRUE(logs().empty());
}

TEST_F(FocusWaitTest, WaitStartsAfterTheLaunchPause) {
    loadWatched(R"({"apps": [], "launchable": {"Sketchpad": {"name": "Sketchpad", "pid": 5, "element": {
                      "attrs": {"AXFocusedWindow": {"attrs": {"AXTitle": "Canvas"}}}}}}})");
    // Activation makes Sketchpad frontmost, but its window is not the one asked for.
    EXPECT_TRUE(done(zeblo_focus_app("Sketchpad", "Palette", true, true, 100)));
    EXPECT_THAT(probes(), Pointwise(DoubleNear(1e-9), every50ms(0.5, 2)));
    EXPECT_DOUBLE_EQ(desk().clock(), 0.6);
    const auto sleepsSeen = traceOf("sleep");
    ASSERT_EQ(sleepsSeen.size(), 3u);
    EXPECT_EQ(sleepsSeen[0]["sleep"], 0.5);
    EXPECT_EQ(sleepsSeen[1]["sleep"], 0.05);

    // The activated application's own window ends the wait at once.
    clearTrace();
    EXPECT_TRUE(done(zeblo_focus_app("sketch", "canvas", true, false, 1000)));
    EXPECT_EQ(probes().size(), 3u);
    EXPECT_TRUE(traceOf("sleep").empty());
}

}  // namespace
}  // namespace zeblo::testing
