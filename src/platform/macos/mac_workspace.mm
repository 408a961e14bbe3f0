// The workspace and running applications (AppKit: NSWorkspace.h,
// NSRunningApplication.h).
//
// The workspace's list of applications and their properties change only when
// the host's main run loop turns in a common mode; a host that calls from a
// thread whose main loop is busy or never runs would see an old list. So
// nothing here waits for that list to change:
//   - the frontmost application is the one the accessibility server names
//     ("AXFocusedApplication" of the system-wide element), from the window
//     server's current state;
//   - an application launched here is added to the list by its process id
//     until the workspace lists it itself (or it ends).
// What still comes from the workspace's list alone: applications started by
// others since the host's main loop last turned, and changes of the hidden
// state and activation policy of running applications.
//
// Activation is cooperative from macOS 14: a request can be accepted and not
// carried out. So every activation is checked through the application's
// "AXFrontmost" attribute, and asked for again through it.

#include "platform/macos/mac_platform.h"

#include <cerrno>
#include <csignal>
#include <mutex>
#include <set>

#include "platform/ax_names.h"
#include "platform/reply_limit.h"

namespace zeblo::platform::macos {

namespace {

// How long an activation is given to show before it is asked for again
// through the accessibility server, and then before it counts as refused.
constexpr double kActivationCheckSeconds = 0.05;
constexpr double kActivationPollSeconds = 0.005;
// Applications launched here and not yet in the workspace's list.
constexpr std::size_t kMaxLaunched = 64;

// Whether the application's element says it is frontmost; nothing when it
// cannot tell (no accessibility permission, no answer).
std::optional<bool> isFrontmost(AXUIElementRef app) {
    const ScopedCF<CFStringRef> attribute = makeCFString(ax::kFrontmostAttribute);
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

bool processAlive(pid_t pid) { return kill(pid, 0) == 0 || errno == EPERM; }

struct Launched {
    std::mutex mutex;
    std::vector<NSRunningApplication*> apps;
};

// Never destroyed: a launch may still report while the process exits.
Launched& launched() {
    static auto* list = new Launched;
    return *list;
}

void rememberLaunched(NSRunningApplication* app) {
    Launched& list = launched();
    const std::lock_guard lock(list.mutex);
    for (NSRunningApplication* known : list.apps) {
        if (known.processIdentifier == app.processIdentifier) return;
    }
    if (list.apps.size() >= kMaxLaunched) list.apps.erase(list.apps.begin());
    list.apps.push_back(app);
}

// The process id of the application with the keyboard focus, as the
// accessibility server sees it now.
std::optional<pid_t> focusedApplicationPid() {
    const auto systemWide = ScopedCF<AXUIElementRef>::adopt(AXUIElementCreateSystemWide());
    const ScopedCF<CFStringRef> attribute = makeCFString(ax::kFocusedApplicationAttribute);
    if (!systemWide || !attribute) return std::nullopt;
    limitReplies(systemWide.get());
    ScopedCF<CFTypeRef> value;
    if (AXUIElementCopyAttributeValue(systemWide.get(), attribute.get(), value.InitializeInto()) != kAXErrorSuccess ||
        !value || CFGetTypeID(value.get()) != AXUIElementGetTypeID()) {
        return std::nullopt;
    }
    pid_t pid = 0;
    if (AXUIElementGetPid(static_cast<AXUIElementRef>(value.get()), &pid) != kAXErrorSuccess) return std::nullopt;
    return pid;
}

// The application `name` stands for, as an application bundle: a path (with
// or without ".app"); the name it is installed under, as Launch Services
// finds it; or the name the list of running applications shows (which may be
// localized: "Rechner" for Calculator on a German Mac), of an application
// that runs or lies in an application folder.
NSURL* applicationURL(NSString* name) {
    NSFileManager* files = NSFileManager.defaultManager;
    if ([name hasPrefix:@"/"] || [name hasPrefix:@"~"]) {
        NSString* path = name.stringByExpandingTildeInPath;
        for (NSString* candidate in @[ path, [path stringByAppendingString:@".app"] ]) {
            if ([files fileExistsAtPath:candidate]) return [NSURL fileURLWithPath:candidate];
        }
        return nil;
    }
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations"
    // Deprecated without a replacement that takes a name; the resolution
    // the old launch call used.
    if (NSString* path = [NSWorkspace.sharedWorkspace fullPathForApplication:name]) {
        return [NSURL fileURLWithPath:path];
    }
#pragma clang diagnostic pop
    for (NSRunningApplication* app in NSWorkspace.sharedWorkspace.runningApplications) {
        if ([app.localizedName isEqualToString:name] && app.bundleURL != nil) return app.bundleURL;
    }
    for (NSString* folder in @[ @"/Applications", @"/Applications/Utilities", @"/System/Applications",
                                @"/System/Applications/Utilities", @"~/Applications".stringByExpandingTildeInPath ]) {
        for (NSString* entry in [files contentsOfDirectoryAtPath:folder error:nil]) {
            if (![entry hasSuffix:@".app"]) continue;
            NSString* path = [folder stringByAppendingPathComponent:entry];
            if ([[files displayNameAtPath:path].stringByDeletingPathExtension isEqualToString:name]) {
                return [NSURL fileURLWithPath:path];
            }
        }
    }
    return nil;
}

// What a launch's completion handler reported, shared with the handler,
// which may run after the launch call has stopped waiting for it.
struct LaunchReport {
    std::mutex mutex;
    bool reported = false;
    std::string error;  // empty when the application was opened
};

}  // namespace

std::optional<RunningApp> MacPlatform::frontmostApplication() {
    return guarded(std::optional<RunningApp>(), [&]() -> std::optional<RunningApp> {
        @autoreleasepool {
            if (const std::optional<pid_t> pid = focusedApplicationPid()) {
                if (NSRunningApplication* app = [NSRunningApplication runningApplicationWithProcessIdentifier:*pid]) {
                    return describe(app);
                }
            }
            // The accessibility server cannot tell (no permission, no answer).
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
            std::set<pid_t> listed;
            // In the workspace's own order, which the library keeps.
            for (NSRunningApplication* app in NSWorkspace.sharedWorkspace.runningApplications) {
                apps.push_back(describe(app));
                listed.insert(app.processIdentifier);
            }
            std::vector<NSRunningApplication*> unlisted;
            {
                Launched& list = launched();
                const std::lock_guard lock(list.mutex);
                std::erase_if(list.apps, [&](NSRunningApplication* app) {
                    return listed.count(app.processIdentifier) != 0 || !processAlive(app.processIdentifier);
                });
                unlisted = list.apps;
            }
            for (NSRunningApplication* app : unlisted) apps.push_back(describe(app));
            return apps;
        }
    });
}

bool MacPlatform::launchApplication(std::string_view name) {
    return guarded(false, [&] {
        @autoreleasepool {
            NSString* appName = makeNSString(name);
            NSURL* url = appName.length != 0 ? applicationURL(appName) : nil;
            if (url == nil) {
                log("Launch: no application '" + std::string(name) + "' was found");
                return false;
            }
            // Opens the application, or brings it to the front when it runs.
            const auto report = std::make_shared<LaunchReport>();
            dispatch_semaphore_t done = dispatch_semaphore_create(0);
            [NSWorkspace.sharedWorkspace openApplicationAtURL:url
                                                configuration:[NSWorkspaceOpenConfiguration configuration]
                                            completionHandler:^(NSRunningApplication* app, NSError* error) {
                                              if (app != nil) rememberLaunched(app);
                                              const std::lock_guard lock(report->mutex);
                                              report->reported = true;
                                              if (app == nil) {
                                                  report->error = error != nil
                                                                      ? utf8FromCFString((__bridge CFStringRef)
                                                                                             error.localizedDescription)
                                                                      : "no application was opened";
                                              }
                                              dispatch_semaphore_signal(done);
                                            }];
            // The handler runs on a queue of AppKit's own. One that has not
            // reported within the reply limit is a launch under way.
            const auto limit = static_cast<std::int64_t>(replyLimitMs()) * static_cast<std::int64_t>(NSEC_PER_MSEC);
            dispatch_semaphore_wait(done, dispatch_time(DISPATCH_TIME_NOW, limit));
            const std::lock_guard lock(report->mutex);
            if (!report->reported || report->error.empty()) return true;
            log("Launch: '" + std::string(name) + "' could not be opened: " + report->error);
            return false;
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
                // NSApplication is for the main thread only.
                if (NSApp != nil && !runOnMainThread(^{
                      if (@available(macOS 14.0, *)) [NSApp yieldActivationToApplication:running];
                    })) {
                    log("Activation: the main thread did not answer within " + std::to_string(replyLimitMs()) +
                        " ms; the host hands its activation over when it does");
                }
            }
            // 2 is NSApplicationActivateIgnoringOtherApps. Deprecated from
            // macOS 14, where Apple says it has no effect; field reports see
            // it still bring applications forward on 14 and 15. Either way
            // the outcome is checked below.
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
                const ScopedCF<CFStringRef> attribute = makeCFString(ax::kFrontmostAttribute);
                if (attribute) (void)AXUIElementSetAttributeValue(element.get(), attribute.get(), kCFBooleanTrue);
            }
        }
        return false;
    });
}

}  // namespace zeblo::platform::macos
