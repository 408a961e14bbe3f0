// An owning reference to one Core Foundation object (a CFString, a CFArray,
// an AXUIElement, a CGEvent...), shaped like std::unique_ptr: copying retains,
// destruction releases. Every object a Copy or Create call hands back goes into
// one of these at once, so no path (early return, exception) can leak it and
// no code in the backend calls CFRelease by hand.
//
//   ScopedCF<CFStringRef> s = ScopedCF<CFStringRef>::adopt(CFStringCreate...(...));
//   ScopedCF<CFTypeRef> value;
//   AXUIElementCopyAttributeValue(element, name, value.InitializeInto());
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <utility>

namespace zeblo::platform::macos {

// Whether a wrapper takes over a reference the caller already owns (the
// result of a Copy or Create call) or adds one of its own (a borrowed object,
// such as an entry of an array).
enum class Ownership { adopt, retain };

template <class T>
class ScopedCF {
public:
    ScopedCF() noexcept = default;

    explicit ScopedCF(T object, Ownership ownership = Ownership::adopt) noexcept
        : object_(object) {
        if (object_ != nullptr && ownership == Ownership::retain) CFRetain(object_);
    }

    // Takes over the reference a Copy or Create call returned.
    static ScopedCF adopt(T object) noexcept { return ScopedCF(object, Ownership::adopt); }
    // Adds a reference to a borrowed object.
    static ScopedCF retain(T object) noexcept { return ScopedCF(object, Ownership::retain); }

    ScopedCF(const ScopedCF& other) noexcept : object_(other.object_) {
        if (object_ != nullptr) CFRetain(object_);
    }
    ScopedCF(ScopedCF&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    ScopedCF& operator=(ScopedCF other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~ScopedCF() { reset(); }

    T get() const noexcept { return object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }

    // Releases the held object (if any) and holds `object` instead.
    void reset(T object = nullptr, Ownership ownership = Ownership::adopt) noexcept {
        if (object != nullptr && ownership == Ownership::retain) CFRetain(object);
        T old = std::exchange(object_, object);
        if (old != nullptr) CFRelease(old);
    }

    // Gives up ownership: the caller now owns the reference.
    [[nodiscard]] T release() noexcept { return std::exchange(object_, nullptr); }

    // For the Copy functions that fill an output pointer: releases what is
    // held and hands out the slot, which then owns whatever is written there.
    T* InitializeInto() noexcept {
        reset();
        return &object_;
    }

private:
    T object_ = nullptr;
};

}  // namespace zeblo::platform::macos
