// Single owners with a release function, and those for what Xlib hands out
// (data to XFree, display connections, XKB keymaps). Apart from owned.h so that the helper
// executable, which uses Xlib alone, can use them too.
#pragma once

#include <memory>

struct _XDisplay;
struct _XkbDesc;
extern "C" int XFree(void*);
extern "C" int XCloseDisplay(struct _XDisplay*);
extern "C" void XkbFreeKeyboard(struct _XkbDesc*, unsigned int, int);

namespace zeblo::platform::linux_desktop {

template <auto Release>
struct Releaser {
    template <class T>
    void operator()(T* p) const noexcept {
        Release(p);
    }
};

template <class T, auto Release>
using Owned = std::unique_ptr<T, Releaser<Release>>;

inline void freeXData(void* data) noexcept { XFree(data); }
inline void closeDisplay(_XDisplay* display) noexcept { XCloseDisplay(display); }
inline void freeKeyboardMap(_XkbDesc* map) noexcept { XkbFreeKeyboard(map, 0, 1); }

using XData = Owned<unsigned char, freeXData>;  // what Xlib hands back to XFree
using DisplayConnection = Owned<_XDisplay, closeDisplay>;
using KeyboardMap = Owned<_XkbDesc, freeKeyboardMap>;  // an XKB keymap (XkbGetMap)

}  // namespace zeblo::platform::linux_desktop
