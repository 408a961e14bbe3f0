// Single owners with a release function, and those for what Xlib hands out
// (data to XFree, display connections). Apart from owned.h so that the helper
// executable, which uses Xlib alone, can use them too.
#pragma once

#include <memory>

struct _XDisplay;
extern "C" int XFree(void*);
extern "C" int XCloseDisplay(struct _XDisplay*);

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

using XData = Owned<unsigned char, freeXData>;  // what Xlib hands back to XFree
using DisplayConnection = Owned<_XDisplay, closeDisplay>;

}  // namespace zeblo::platform::linux_desktop
