// The workspace and running applications (AppKit: NSWorkspace.h,
// NSRunningApplication.h).
//
// The workspace refreshes its list of applications when the main run loop
// turns; a host that never runs it sees the list as of its last turn (pauses
// on the main thread run it, see MacPlatform::sleep).
//
// Activation is cooperative from macOS 14: a request can be accepted and not
// carried out. So every activation is checked through the application's
// "AXFrontmost" attribute, which the accessibility server answers from the
// window server's current state (the workspace's frontmostApplication is only
// as fresh as the main run loop's last turn).

#include "platform/macos/mac_platform.h"

namespace zeblo::platform::macos {

namespace {

// How long an activation is given to show before it is asked for again
// through the accessibility server, and then before it counts as refused.
constexpr double kActivationCheckSeconds = 0.05;
constexpr double kActivationPollSeconds = 0.005;

// Whether the application's element says it is frontmost; nothing when it
// cannot tell (no accessibility permission, no answer).
std::optional<bool> isFrontmost(AXUIElementRef app) {
    const ScopedCF<CFStringRef> attribute = makeCFString("AXFrontmost");
    ScopedCF<CFTypeRef> value;
    if (!attribute || AXUIElementCopyAttributeValue(app, attribute.get(), value.InitializeInto()) != kAXErrorSuccess ||
        !value || CFGetTypeID(value.get()) != CFBooleanGetTypeID()) {
        return std::nullopt;
    }
    return CFBooleanGetValue(static_cast<CFBooleanRef>(value.get())) != 0;
}

RunningApp describe(NSRunningApplication* app) {
    RunningApp record;
    if (NSString* name = app.localizedName) {
        record.localizedName = utf8FromCFString((__bridge CFStringRef)name);
    }
    record.pid = static_cast<std::int32_t>(app.processIdentifier);
    record.hidden = app.hidden;
    record.activationPolicy = static_cast<std::int64_t>(app.activationPolicy);
    return record;
}

}  // namespace

std::optional<RunningApp> MacPlatform::frontmostApplication() {
    return guarded(std::optional<RunningApp>(), [&]() -> std::optional<RunningApp> {
        @autoreleasepool {
            NSRunningApplication* app = NSWorkspace.sharedWorkspace.frontmostApplication;
            if (app == nil) return std::nullopt;
            return describe(app);
        }
    });
}

std::vector<RunningApp> MacPlatform::runningApplications() {
    return guarded(std::vector<RunningApp>(), [&] {
        @autoreleasepool {
            std::vector<RunningApp> apps;
            // In the workspace's own order, which the library keeps.
            for (NSRunningApplication* app in NSWorkspace.sharedWorkspace.runningApplications) {
                apps.push_back(describe(app));
            }
            return apps;
        }
    });
}

bool MacPlatform::launchApplication(std::string_view name) {
    return guarded(false, [&] {
        @autoreleasepool {
            NSString* appName = makeNSString(name);
            if (appName == nil) return false;
            // The name may be a full path or an application's name, with or
            // without ".app". The call is deprecated in favour of an
            // asynchronous one, but it is the one that answers at once whether
            // the launch was accepted.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations"
            return [NSWorkspace.sharedWorkspace launchApplication:appName] != NO;
#pragma clang diagnostic pop
        }
    });
}

bool MacPlatform::activateApplication(const RunningApp& app, std::uint64_t options) {
    const bool requested = guarded(false, [&] {
        @autoreleasepool {
            NSRunningApplication* running = [NSRunningApplication
                runningApplicationWithProcessIdentifier:static_cast<pid_t>(app.pid)];
            // The application has quit since the list was read.
            if (running == nil) return false;
            if (@available(macOS 14.0, *)) {
                // A host that is an application hands its activation over
                // first; without that macOS 14 may keep the host in front.
                if (NSApp != nil) [NSApp yieldActivationToApplication:running];
            }
            // 2 is NSApplicationActivateIgnoringOtherApps: before macOS 14 it
            // brings the application forward whatever is in front; from
            // macOS 14 it has no effect and the request is a plain one.
            return [running activateWithOptions:static_cast<NSApplicationActivationOptions>(options)] != NO;
        }
    });
    if (!requested) return false;
    return guarded(false, [&] {
        ScopedCF<AXUIElementRef> element =
            ScopedCF<AXUIElementRef>::adopt(AXUIElementCreateApplication(static_cast<pid_t>(app.pid)));
        if (!element) return true;
        limitReplies(element.get());
        // Polled within the pause the operation takes after activating; if
        // the request was not carried out, the accessibility server is asked
        // to bring the application forward ("AXFrontmost" set), and the
        // answer is whether it came. An application that cannot tell is
        // taken at its word.
        for (int attempt = 0; attempt < 2; ++attempt) {
            const double end = now() + kActivationCheckSeconds;
            for (;;) {
                const std::optional<bool> front = isFrontmost(element.get());
                if (!front || *front) return true;
                if (now() >= end) break;
                sleep(kActivationPollSeconds);
            }
            if (attempt == 0) {
                const ScopedCF<CFStringRef> attribute = makeCFString("AXFrontmost");
                if (attribute) (void)AXUIElementSetAttributeValue(element.get(), attribute.get(), kCFBooleanTrue);
            }
        }
        return false;
    });
}

}  // namespace zeblo::platform::macos
