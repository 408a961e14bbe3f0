// Live checks on a real Mac of what only a Mac can show: that an event tap
// reads the library's marker back from the events it posts; that a host
// calling on its main thread (which never runs its run loop) sees an
// application the library launched, also by the name the list shows, which
// may be localized (run with another system language, German say, to see
// "Rechner" launch Calculator); and that calls from a background thread work
// while the main thread runs its loop and end in bounded time while it is
// blocked.
//
// Run by hand with ZEBLO_LIVE_MAC=1 (see textedit_live_test.mm); the event tap
// also needs the Input Monitoring permission for the terminal.
#import <AppKit/AppKit.h>
#import <ApplicationServices/ApplicationServices.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "live_support.h"
#include "platform/macos/scoped_cf.h"

namespace {

using namespace zeblo::live;
using zeblo::platform::macos::ScopedCF;

// The marker the library writes into its marked events, and the field.
constexpr int64_t kMarker = 0x5A45424C4F;
constexpr auto kMarkerField = static_cast<CGEventField>(127);

// A listen-only event tap on a thread of its own that counts the keyboard
// events carrying the marker.
class MarkerTap {
public:
    MarkerTap() : thread_([this] { run(); }) {
        std::unique_lock lock(mu_);
        ready_.wait(lock, [this] { return started_; });
    }
    MarkerTap(const MarkerTap&) = delete;
    MarkerTap& operator=(const MarkerTap&) = delete;
    ~MarkerTap() {
        stop_ = true;
        thread_.join();
    }

    bool installed() const { return installed_; }
    int marked() const { return marked_; }

private:
    static CGEventRef seen(CGEventTapProxy, CGEventType type, CGEventRef event, void* self) {
        const bool key = type == kCGEventKeyDown || type == kCGEventKeyUp || type == kCGEventFlagsChanged;
        if (key && CGEventGetIntegerValueField(event, kMarkerField) == kMarker) {
            ++static_cast<MarkerTap*>(self)->marked_;
        }
        return event;
    }

    void run() {
        const CGEventMask keys =
            CGEventMaskBit(kCGEventKeyDown) | CGEventMaskBit(kCGEventKeyUp) | CGEventMaskBit(kCGEventFlagsChanged);
        const auto port = ScopedCF<CFMachPortRef>::adopt(CGEventTapCreate(
            kCGSessionEventTap, kCGHeadInsertEventTap, kCGEventTapOptionListenOnly, keys, &MarkerTap::seen, this));
        ScopedCF<CFRunLoopSourceRef> source;
        if (port) {
            source.reset(CFMachPortCreateRunLoopSource(kCFAllocatorDefault, port.get(), 0));
            CFRunLoopAddSource(CFRunLoopGetCurrent(), source.get(), kCFRunLoopCommonModes);
            CGEventTapEnable(port.get(), true);
            installed_ = true;
        }
        {
            std::lock_guard lock(mu_);
            started_ = true;
        }
        ready_.notify_one();
        while (installed_ && !stop_) CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.1, false);
    }

    std::mutex mu_;
    std::condition_variable ready_;
    bool started_ = false;
    std::atomic<bool> installed_{false};
    std::atomic<bool> stop_{false};
    std::atomic<int> marked_{0};
    std::thread thread_;
};

class SystemLive : public ::testing::Test {
protected:
    void SetUp() override { ZEBLO_LIVE_ONLY(); }
};

TEST_F(SystemLive, AnEventTapReadsTheMarkerBack) {
    MarkerTap tap;
    ASSERT_TRUE(tap.installed()) << "no event tap: give the terminal the Input Monitoring permission";
    // F13 (key code 105) does nothing in most applications.
    const uint16_t f13 = 105;
    ASSERT_TRUE(zeblo_send_global_keystroke(&f13, 1, 0));
    EXPECT_TRUE(eventually([&] { return tap.marked() >= 2; }, 2s)) << "marked events seen: " << tap.marked();
}

TEST_F(SystemLive, AMainThreadCallerSeesTheApplicationItLaunched) {
    ASSERT_TRUE(NSThread.isMainThread) << "the test must run on the main thread";
    constexpr const char* kCalculator = "Calculator";
    const char* quit[] = {kCalculator, "Quit Calculator"};
    if (zeblo_window_exists(kCalculator, nullptr)) {
        ASSERT_TRUE(zeblo_menu_click(kCalculator, quit, 2));
        ASSERT_TRUE(zeblo_wait_for_window(kCalculator, nullptr, 1, 10000)) << "Calculator did not quit";
    }
    // Nothing runs this thread's run loop: the launched application is
    // listed by its process id.
    ASSERT_TRUE(zeblo_focus_app(kCalculator, nullptr, true, true, 15000)) << "the launched Calculator was not seen";
    const json apps = Returned(zeblo_get_running_apps()).parsed();
    EXPECT_NE(std::find(apps.begin(), apps.end(), kCalculator), apps.end()) << apps.dump();
    EXPECT_TRUE(zeblo_menu_click(kCalculator, quit, 2));
}

TEST_F(SystemLive, TheNameTheListShowsLaunchesTheApplication) {
    NSString* shown = [NSFileManager.defaultManager displayNameAtPath:@"/System/Applications/Calculator.app"];
    const std::string name = shown.stringByDeletingPathExtension.UTF8String;
    const std::string menu = "Quit " + name;
    const char* quit[] = {name.c_str(), menu.c_str()};
    if (zeblo_window_exists(name.c_str(), nullptr)) {
        ASSERT_TRUE(zeblo_menu_click(name.c_str(), quit, 2));
        ASSERT_TRUE(zeblo_wait_for_window(name.c_str(), nullptr, 1, 10000));
    }
    ASSERT_TRUE(zeblo_focus_app(name.c_str(), nullptr, true, true, 15000)) << name << " was not launched or seen";
    EXPECT_TRUE(zeblo_menu_click(name.c_str(), quit, 2));
}

TEST_F(SystemLive, CallsFromABackgroundThread) {
    const uint16_t f13 = 105;
    std::atomic<bool> done{false};
    bool pressed = false;
    std::string front;
    std::thread caller([&] {
        pressed = zeblo_send_global_keystroke(&f13, 1, 0);
        front = Returned(zeblo_get_frontmost_info()).text();
        done = true;
    });
    // The main thread runs its loop, as an application's does.
    while (!done) CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.05, false);
    caller.join();
    EXPECT_TRUE(pressed);
    EXPECT_NE(front.find("\"app\""), std::string::npos) << front;

    // The main thread blocked: a keystroke still ends, after at most about
    // one reply limit waiting for it.
    const auto start = std::chrono::steady_clock::now();
    std::thread blocked([&] { pressed = zeblo_send_global_keystroke(&f13, 1, 0); });
    blocked.join();
    EXPECT_TRUE(pressed) << "the keyboard layout was read before, so the keystroke goes out";
    EXPECT_LT(std::chrono::steady_clock::now() - start, 3s);
}

}  // namespace
