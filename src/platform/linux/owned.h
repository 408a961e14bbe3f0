// Owning types for everything the Linux backend gets from GLib, GObject,
// libatspi, Xlib and libdbus. Every release the backend does is one of the
// deleters below; the rest of the backend never frees by hand.
//
// - `Ref<T>`: one GObject reference (an AtspiAccessible, a state set, an
//   interface...), in the shape of a scoped Core Foundation reference:
//   `adopt` takes over a reference the caller was given, `retain` adds one,
//   `get` lends, `release` hands the reference on, and `out()` lets a C
//   function that hands back an object through a pointer store it here.
// - `Owned<T, F>`: a std::unique_ptr whose deleter calls F (GError, g_malloc'd
//   text, GArray, X11 data, displays and keymaps, D-Bus messages);
//   `out(p)` does the same as `Ref::out()` for it (`GError**` arguments).
#pragma once

#include <atspi/atspi.h>
#include <dbus/dbus.h>

#include <memory>
#include <utility>
#include <vector>

#include "platform/linux/x11_owned.h"

namespace zeblo::platform::linux_desktop {

// ---------------------------------------------------------------------------
// GObject references.

template <class T>
class Ref {
public:
    Ref() noexcept = default;
    // Takes over one reference the caller holds (null gives a null Ref).
    static Ref adopt(T* object) noexcept {
        Ref r;
        r.object_ = object;
        return r;
    }
    // Adds a reference of its own to `object`.
    static Ref retain(T* object) noexcept {
        if (object != nullptr) g_object_ref(object);
        return adopt(object);
    }

    Ref(const Ref& other) noexcept : object_(other.object_) {
        if (object_ != nullptr) g_object_ref(object_);
    }
    Ref(Ref&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    Ref& operator=(Ref other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~Ref() { reset(); }

    T* get() const noexcept { return object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }
    // Hands the reference over to the caller.
    [[nodiscard]] T* release() noexcept { return std::exchange(object_, nullptr); }
    void reset() noexcept {
        if (T* old = std::exchange(object_, nullptr)) g_object_unref(old);
    }
    // For a function that stores a new reference through a `T**`.
    T** out() noexcept {
        reset();
        return &object_;
    }

private:
    T* object_ = nullptr;
};

using AccessibleRef = Ref<AtspiAccessible>;

// ---------------------------------------------------------------------------
// Single owners with a release function (`Owned`, `XData` and
// `DisplayConnection` are in x11_owned.h).

inline void freeArray(GArray* array) noexcept { g_array_free(array, TRUE); }

using Error = Owned<GError, g_error_free>;
using Text = Owned<char, g_free>;                       // g_malloc'd text
using Array = Owned<GArray, freeArray>;                 // the elements are not released
using Message = Owned<DBusMessage, dbus_message_unref>;
using HashTable = Owned<GHashTable, g_hash_table_unref>;

// Lets a C function that hands an owned pointer back through a `T**` (a
// `GError**`, say) store it in `owner`, for the length of the call:
// `atspi_accessible_get_name(object, out(error))`.
template <class T, class D>
class OutParam {
public:
    explicit OutParam(std::unique_ptr<T, D>& owner) noexcept : owner_(owner) { owner_.reset(); }
    OutParam(const OutParam&) = delete;
    OutParam& operator=(const OutParam&) = delete;
    ~OutParam() { owner_.reset(raw_); }
    operator T**() noexcept { return &raw_; }

private:
    std::unique_ptr<T, D>& owner_;
    T* raw_ = nullptr;
};

template <class T, class D>
OutParam<T, D> out(std::unique_ptr<T, D>& owner) noexcept {
    return OutParam<T, D>(owner);
}

// The AtspiAccessible objects of a GArray that libatspi handed back with a
// reference each (a Collection match), null entries left out; the array is
// freed.
inline std::vector<AccessibleRef> takeAccessibles(GArray* array) {
    const Array owner(array);
    std::vector<AccessibleRef> objects;
    if (array == nullptr) return objects;
    objects.reserve(array->len);
    for (guint i = 0; i < array->len; ++i) {
        AccessibleRef object = AccessibleRef::adopt(g_array_index(array, AtspiAccessible*, i));
        if (object) objects.push_back(std::move(object));
    }
    return objects;
}

}  // namespace zeblo::platform::linux_desktop
