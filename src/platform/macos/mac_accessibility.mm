// Accessibility elements, attributes, actions and the process-trust check
// (ApplicationServices, AXUIElement.h).
//
// An empty element handle, or one that another backend made, is never passed
// to the system: the call answers kAXErrorIllegalArgument, as the system
// itself does for an illegal argument.
//
// Chromium and Electron applications build their accessibility tree (a web
// page's content) only for an assistive technology that sets
// "AXManualAccessibility" on them, and keep it up from then on, at a cost.
// The backend sets it once in such an application's life, before the first
// walk over its elements (its first "AXChildren" read), never for a lookup or
// a poll, and pauses 0.2 s for the tree to come.

#include "platform/macos/mac_platform.h"

#include <cerrno>
#include <csignal>
#include <mutex>
#include <unordered_map>

#include "platform/ax_names.h"
#include "platform/reply_limit.h"

namespace zeblo::platform::macos {

namespace {

constexpr double kTreePause = 0.2;
// Applications whose kind is remembered; beyond that those ended are
// forgotten first.
constexpr std::size_t kMaxRemembered = 256;

// Whether an application runs on Chromium: Electron's or the Chromium
// Embedded Framework, or a framework named after its executable ("Google
// Chrome Framework", "Microsoft Edge Framework"...).
bool runsOnChromium(NSRunningApplication* app) {
    NSFileManager* files = NSFileManager.defaultManager;
    NSString* frameworks = [app.bundleURL.path stringByAppendingPathComponent:@"Contents/Frameworks"];
    if (frameworks == nil) return false;
    NSString* own = [app.executableURL.lastPathComponent stringByAppendingString:@" Framework.framework"];
    for (NSString* name in @[ @"Electron Framework.framework", @"Chromium Embedded Framework.framework" ]) {
        if ([files fileExistsAtPath:[frameworks stringByAppendingPathComponent:name]]) return true;
    }
    return own != nil && [files fileExistsAtPath:[frameworks stringByAppendingPathComponent:own]];
}

// What is known of each application process: whether it runs on Chromium,
// and whether it has been asked for its tree.
struct Walked {
    bool chromium = false;
    bool asked = false;
};

struct WalkRegistry {
    std::mutex mutex;
    std::unordered_map<pid_t, Walked> apps;
};

// Never destroyed: a thread may still walk while the process exits.
WalkRegistry& walkRegistry() {
    static auto* registry = new WalkRegistry;
    return *registry;
}

bool processAlive(pid_t pid) { return kill(pid, 0) == 0 || errno == EPERM; }

AXError code(::AXError result) noexcept { return static_cast<AXError>(result); }

// The value written into an attribute: a CFString, a 64-bit CFNumber or a
// CFBoolean.
ScopedCF<CFTypeRef> makeSetValue(const SetValue& value) {
    if (const auto* text = std::get_if<std::string>(&value)) {
        return ScopedCF<CFTypeRef>::adopt(makeCFString(*text).release());
    }
    if (const auto* flag = std::get_if<bool>(&value)) {
        return ScopedCF<CFTypeRef>::retain(*flag ? kCFBooleanTrue : kCFBooleanFalse);
    }
    const std::int64_t number = std::get<std::int64_t>(value);
    return ScopedCF<CFTypeRef>::adopt(
        CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &number));
}

}  // namespace

void limitReplies(AXUIElementRef element) noexcept {
    if (element != nullptr) {
        (void)AXUIElementSetMessagingTimeout(element, static_cast<float>(replyLimitMs()) / 1000.0f);
    }
}

AXUIElementRef MacPlatform::axElement(const Element& element) const noexcept {
    if (!element || element.owner() != this) return nullptr;
    return static_cast<AXUIElementRef>(element.raw());
}

Element MacPlatform::createApplicationElement(std::int32_t pid) {
    return guarded(Element(), [&] {
        ScopedCF<AXUIElementRef> app = ScopedCF<AXUIElementRef>::adopt(
            AXUIElementCreateApplication(static_cast<pid_t>(pid)));
        limitReplies(app.get());
        return Element::adopt(this, rawHandle(app.release()));
    });
}

Element MacPlatform::createSystemWideElement() {
    return guarded(Element(), [&] {
        ScopedCF<AXUIElementRef> systemWide =
            ScopedCF<AXUIElementRef>::adopt(AXUIElementCreateSystemWide());
        limitReplies(systemWide.get());
        return Element::adopt(this, rawHandle(systemWide.release()));
    });
}

AttributeRead MacPlatform::copyAttributeValue(const Element& element, std::string_view attribute) {
    return guarded(AttributeRead{kAXErrorFailure, {}}, [&]() -> AttributeRead {
        AXUIElementRef target = axElement(element);
        ScopedCF<CFStringRef> name = makeCFString(attribute);
        if (target == nullptr || !name) return {kAXErrorIllegalArgument, {}};
        if (attribute == ax::kChildrenAttribute) prepareWalk(target);
        ScopedCF<CFTypeRef> value;
        const AXError result =
            code(AXUIElementCopyAttributeValue(target, name.get(), value.InitializeInto()));
        if (result != kAXErrorSuccess) return {result, {}};
        // Success without a value gives std::monostate.
        return {kAXErrorSuccess, valueFromCF(value.get(), this)};
    });
}

NamesRead MacPlatform::copyAttributeNames(const Element& element) {
    return guarded(NamesRead{kAXErrorFailure, std::nullopt}, [&]() -> NamesRead {
        AXUIElementRef target = axElement(element);
        if (target == nullptr) return {kAXErrorIllegalArgument, std::nullopt};
        ScopedCF<CFArrayRef> names;
        const AXError result = code(AXUIElementCopyAttributeNames(target, names.InitializeInto()));
        if (result != kAXErrorSuccess) return {result, std::nullopt};
        return {kAXErrorSuccess, stringsFromCFArray(names.get())};
    });
}

AXError MacPlatform::setAttributeValue(const Element& element, std::string_view attribute,
                                       const SetValue& value) {
    return guarded(kAXErrorFailure, [&]() -> AXError {
        AXUIElementRef target = axElement(element);
        ScopedCF<CFStringRef> name = makeCFString(attribute);
        ScopedCF<CFTypeRef> newValue = makeSetValue(value);
        if (target == nullptr || !name || !newValue) return kAXErrorIllegalArgument;
        return code(AXUIElementSetAttributeValue(target, name.get(), newValue.get()));
    });
}

SettableRead MacPlatform::isAttributeSettable(const Element& element, std::string_view attribute) {
    return guarded(SettableRead{kAXErrorFailure, false}, [&]() -> SettableRead {
        AXUIElementRef target = axElement(element);
        ScopedCF<CFStringRef> name = makeCFString(attribute);
        if (target == nullptr || !name) return {kAXErrorIllegalArgument, false};
        Boolean settable = false;
        const AXError result = code(AXUIElementIsAttributeSettable(target, name.get(), &settable));
        return {result, result == kAXErrorSuccess && settable != 0};
    });
}

bool MacPlatform::sameElement(const Element& a, const Element& b) {
    return guarded(false, [&] {
        // Two AXUIElementRefs are equal when they name the same element of the
        // same process; comparing them sends no message.
        AXUIElementRef x = axElement(a);
        AXUIElementRef y = axElement(b);
        return x != nullptr && y != nullptr && CFEqual(x, y) != 0;
    });
}

std::optional<Frame> MacPlatform::frameOf(const Element& element) {
    return guarded(std::optional<Frame>(), [&]() -> std::optional<Frame> {
        AXUIElementRef target = axElement(element);
        if (target == nullptr) return std::nullopt;
        ScopedCF<CFStringRef> name = makeCFString(ax::kFrameAttribute);
        ScopedCF<CFTypeRef> value;
        if (!name || AXUIElementCopyAttributeValue(target, name.get(), value.InitializeInto()) != kAXErrorSuccess ||
            !value || CFGetTypeID(value.get()) != AXValueGetTypeID()) {
            return std::nullopt;
        }
        CGRect rect;
        if (!AXValueGetValue(static_cast<AXValueRef>(value.get()), kAXValueTypeCGRect, &rect)) return std::nullopt;
        return Frame{rect.origin.x, rect.origin.y, rect.size.width, rect.size.height};
    });
}

AXError MacPlatform::performAction(const Element& element, std::string_view action) {
    return guarded(kAXErrorFailure, [&]() -> AXError {
        AXUIElementRef target = axElement(element);
        ScopedCF<CFStringRef> name = makeCFString(action);
        if (target == nullptr || !name) return kAXErrorIllegalArgument;
        return code(AXUIElementPerformAction(target, name.get()));
    });
}

NamesRead MacPlatform::copyActionNames(const Element& element) {
    return guarded(NamesRead{kAXErrorFailure, std::nullopt}, [&]() -> NamesRead {
        AXUIElementRef target = axElement(element);
        if (target == nullptr) return {kAXErrorIllegalArgument, std::nullopt};
        ScopedCF<CFArrayRef> names;
        const AXError result = code(AXUIElementCopyActionNames(target, names.InitializeInto()));
        if (result != kAXErrorSuccess) return {result, std::nullopt};
        return {kAXErrorSuccess, stringsFromCFArray(names.get())};
    });
}

void MacPlatform::prepareWalk(AXUIElementRef element) {
    pid_t pid = 0;
    if (AXUIElementGetPid(element, &pid) != kAXErrorSuccess) return;
    WalkRegistry& registry = walkRegistry();
    const auto settled = [&] {
        const auto known = registry.apps.find(pid);
        // A process id that has ended (and may come back for another
        // application) is looked at afresh.
        return known != registry.apps.end() && (!known->second.chromium || known->second.asked) &&
               processAlive(pid);
    };
    {
        const std::lock_guard lock(registry.mutex);
        if (settled()) return;
    }
    bool chromium = false;
    @autoreleasepool {
        NSRunningApplication* app = [NSRunningApplication runningApplicationWithProcessIdentifier:pid];
        chromium = app != nil && runsOnChromium(app);
    }
    {
        const std::lock_guard lock(registry.mutex);
        if (settled()) return;  // another thread got there first
        if (registry.apps.size() >= kMaxRemembered) {
            std::erase_if(registry.apps, [](const auto& entry) { return !processAlive(entry.first); });
        }
        if (registry.apps.size() >= kMaxRemembered) registry.apps.clear();
        registry.apps[pid] = Walked{chromium, chromium};
    }
    if (!chromium) return;
    // Asked once, whatever the answer: an application that does not answer
    // costs one reply limit in its life.
    const auto application = ScopedCF<AXUIElementRef>::adopt(AXUIElementCreateApplication(pid));
    const ScopedCF<CFStringRef> manual = makeCFString(ax::kManualAccessibilityAttribute);
    if (!application || !manual) return;
    limitReplies(application.get());
    if (AXUIElementSetAttributeValue(application.get(), manual.get(), kCFBooleanTrue) == kAXErrorSuccess) {
        sleep(kTreePause);
    }
}

bool MacPlatform::isProcessTrusted(bool prompt) {
    return guarded(false, [&] {
        // {kAXTrustedCheckOptionPrompt: prompt}; with true the system may ask
        // the user to grant this process the accessibility permission.
        const void* keys[] = {kAXTrustedCheckOptionPrompt};
        const void* values[] = {prompt ? kCFBooleanTrue : kCFBooleanFalse};
        ScopedCF<CFDictionaryRef> options = ScopedCF<CFDictionaryRef>::adopt(
            CFDictionaryCreate(kCFAllocatorDefault, keys, values, 1, &kCFTypeDictionaryKeyCallBacks,
                               &kCFTypeDictionaryValueCallBacks));
        if (!options) return false;
        return AXIsProcessTrustedWithOptions(options.get()) != 0;
    });
}

}  // namespace zeblo::platform::macos
