// Sleeping, the clock and the log (Foundation), work handed to the main
// thread, the reference counting behind the handles, and the factory that
// makes this backend the default on macOS.

#include "platform/macos/mac_platform.h"

#include <atomic>
#include <chrono>
#include <cmath>
#include <memory>
#include <thread>

#include "platform/default_platform.h"
#include "platform/reply_limit.h"

namespace zeblo::platform {

std::shared_ptr<Platform> makeDefaultPlatform() {
    return std::make_shared<macos::MacPlatform>();
}

}  // namespace zeblo::platform

namespace zeblo::platform::macos {

void MacPlatform::sleep(double seconds) {
    if (!(seconds > 0) || !std::isfinite(seconds)) return;
    // A plain sleep on every thread: nothing the library reads depends on
    // the host's main run loop turning (see mac_workspace.mm).
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

bool runOnMainThread(void (^work)(void)) {
    if (NSThread.isMainThread) {
        work();
        return true;
    }
    // Hops that ran out of time and have not run yet. While there is one, the
    // main thread is not serving its queue: later hops do not wait for it.
    static std::atomic<int> stalled{0};
    if (stalled.load() > 0) return false;
    // 0 waiting, 1 ran in time, 2 given up by the caller.
    const auto outcome = std::make_shared<std::atomic<int>>(0);
    dispatch_semaphore_t done = dispatch_semaphore_create(0);
    dispatch_async(dispatch_get_main_queue(), ^{
        work();
        int waiting = 0;
        if (!outcome->compare_exchange_strong(waiting, 1)) stalled.fetch_sub(1);
        dispatch_semaphore_signal(done);
    });
    const auto limit = static_cast<std::int64_t>(replyLimitMs()) * static_cast<std::int64_t>(NSEC_PER_MSEC);
    if (dispatch_semaphore_wait(done, dispatch_time(DISPATCH_TIME_NOW, limit)) == 0) return true;
    int waiting = 0;
    if (!outcome->compare_exchange_strong(waiting, 2)) return true;  // it ran just now
    stalled.fetch_add(1);
    return false;
}

double MacPlatform::now() {
    // A monotonic clock: waits measured with it are not thrown off when the
    // wall clock is set.
    using Seconds = std::chrono::duration<double>;
    return std::chrono::duration_cast<Seconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

void MacPlatform::writeLog(std::string_view line) {
    guardedVoid([&] {
        @autoreleasepool {
            NSString* text = makeNSString(line);
            if (text == nil) return;
            // The line is an argument, never the format: a '%' in it is printed
            // as it stands.
            NSLog(@"%@", text);
        }
    });
}

// Every handle kind holds a Core Foundation object (AXUIElementRef,
// CGEventRef, CGEventSourceRef), so one retain and one release serve all.
void MacPlatform::retainHandle(HandleKind /*kind*/, void* raw) noexcept {
    if (raw != nullptr) CFRetain(raw);
}

void MacPlatform::releaseHandle(HandleKind /*kind*/, void* raw) noexcept {
    if (raw != nullptr) CFRelease(raw);
}

}  // namespace zeblo::platform::macos
