// The workspace and running applications (AppKit: NSWorkspace.h,
// NSRunningApplication.h).
//
// The workspace refreshes its list of applications when the main run loop
// turns; a host that never runs it sees the list as of its last turn.

#include "platform/macos/mac_platform.h"

namespace zeblo::platform::macos {

namespace {

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
    return guarded(false, [&] {
        @autoreleasepool {
            NSRunningApplication* running = [NSRunningApplication
                runningApplicationWithProcessIdentifier:static_cast<pid_t>(app.pid)];
            // The application has quit since the list was read.
            if (running == nil) return false;
            // 2 is NSApplicationActivateIgnoringOtherApps, which recent systems
            // treat as a plain activation request.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations"
            return [running activateWithOptions:static_cast<NSApplicationActivationOptions>(options)] !=
                   NO;
#pragma clang diagnostic pop
        }
    });
}

}  // namespace zeblo::platform::macos
