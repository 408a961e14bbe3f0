// Owning types for what the Wayland side of the backend gets from
// libwayland-client and libxkbcommon: the connection, protocol objects
// (proxies) and XKB contexts, keymaps and states. Every release is one of the
// deleters below; nothing is destroyed by hand.
#pragma once

#include <wayland-client.h>
#include <xkbcommon/xkbcommon.h>

#include "platform/linux/x11_owned.h"  // Owned<T, Release>

namespace zeblo::platform::linux_desktop {

inline void disconnectWayland(wl_display* display) noexcept { wl_display_disconnect(display); }
// A protocol object without a destructor request of its own (a registry, a
// seat, a callback): only the client's proxy goes.
template <class T>
inline void destroyProxy(T* proxy) noexcept {
    wl_proxy_destroy(reinterpret_cast<wl_proxy*>(proxy));
}

using WaylandConnection = Owned<wl_display, disconnectWayland>;
template <class T>
using Proxy = Owned<T, destroyProxy<T>>;

using XkbContext = Owned<xkb_context, xkb_context_unref>;
using XkbKeymap = Owned<xkb_keymap, xkb_keymap_unref>;
using XkbState = Owned<xkb_state, xkb_state_unref>;

}  // namespace zeblo::platform::linux_desktop
