// Sleeping, the clock and the log (Foundation), the reference counting behind
// the handles, and the factory that makes this backend the default on macOS.

#include "platform/macos/mac_platform.h"

#include <chrono>
#include <cmath>
#include <memory>

#include "platform/default_platform.h"

namespace zeblo::platform {

std::shared_ptr<Platform> makeDefaultPlatform() {
    return std::make_shared<macos::MacPlatform>();
}

}  // namespace zeblo::platform

namespace zeblo::platform::macos {

void MacPlatform::sleep(double seconds) {
    if (!(seconds > 0) || !std::isfinite(seconds)) return;
    guardedVoid([&] {
        if (!NSThread.isMainThread) {
            [NSThread sleepForTimeInterval:seconds];
            return;
        }
        // On the main thread the pause runs the main run loop in the default
        // mode until its deadline, so that the workspace's list of
        // applications and their properties, which change only when that
        // loop turns, are current when the pause ends. The host's timers and
        // sources can fire meanwhile. A loop with nothing to run returns at
        // once: the rest of the pause is slept.
        @autoreleasepool {
            NSDate* deadline = [NSDate dateWithTimeIntervalSinceNow:seconds];
            while (deadline.timeIntervalSinceNow > 0) {
                if (![NSRunLoop.mainRunLoop runMode:NSDefaultRunLoopMode beforeDate:deadline]) {
                    const NSTimeInterval rest = deadline.timeIntervalSinceNow;
                    if (rest > 0) [NSThread sleepForTimeInterval:rest];
                    break;
                }
            }
        }
    });
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
