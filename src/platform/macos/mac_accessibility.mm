// Accessibility elements, attributes, actions and the process-trust check
// (ApplicationServices, AXUIElement.h).
//
// An empty element handle, or one that another backend made, is never passed
// to the system: the call answers kAXErrorIllegalArgument, as the system
// itself does for an illegal argument.

#include "platform/macos/mac_platform.h"
#include "platform/reply_limit.h"

namespace zeblo::platform::macos {

namespace {

AXError code(::AXError result) noexcept { return static_cast<AXError>(result); }

// The value written into an attribute: a CFString or a 64-bit CFNumber.
ScopedCF<CFTypeRef> makeSetValue(const SetValue& value) {
    if (const auto* text = std::get_if<std::string>(&value)) {
        return ScopedCF<CFTypeRef>::adopt(makeCFString(*text).release());
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
        // Chromium and Electron applications build their accessibility tree
        // only for an assistive technology that asks for it this way; other
        // applications refuse the attribute, which changes nothing.
        const ScopedCF<CFStringRef> manual = makeCFString("AXManualAccessibility");
        if (manual) (void)AXUIElementSetAttributeValue(app.get(), manual.get(), kCFBooleanTrue);
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
