// One client connection to the Wayland compositor (WAYLAND_DISPLAY): the
// globals it announces, the first seat, and the layout the compositor gives
// that seat's keyboard. Every wait on the compositor has a deadline, so a
// compositor that stops answering never holds a call longer than that.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "platform/linux/wayland_owned.h"

namespace zeblo::platform::linux_desktop {

class WaylandDisplay {
public:
    // Null when no compositor answers within `seconds`.
    static std::unique_ptr<WaylandDisplay> connect(double seconds);
    ~WaylandDisplay();
    WaylandDisplay(const WaylandDisplay&) = delete;
    WaylandDisplay& operator=(const WaylandDisplay&) = delete;

    wl_display* get() const { return connection_.get(); }
    wl_seat* seat() const { return seat_.get(); }
    // Whether the compositor announces `interface`.
    bool offers(const std::string& interface) const { return globals_.count(interface) != 0; }
    // Binds the announced global `interface` at its version or `maxVersion`,
    // whichever is lower; null when it is not announced. The caller owns it.
    void* bind(const wl_interface* interface, std::uint32_t maxVersion);

    // Handles the compositor's events until `done` holds (true) or
    // `deadline` (monotonicSeconds) passes or the connection breaks (false).
    bool dispatchUntil(const std::function<bool()>& done, double deadline);
    // Sends what is queued and waits until the compositor has handled it.
    bool roundtrip(double seconds);
    // Handles the events that have arrived, without waiting.
    void dispatchPending();
    bool broken() const;

    // Whether the seat has a keyboard (a real one, or a virtual one of any
    // client) as far as the compositor has told.
    bool seatHasKeyboard() const { return (capabilities_ & WL_SEAT_CAPABILITY_KEYBOARD) != 0; }
    // The keymap the compositor last gave the seat's keyboard (the user's
    // layout, or the one of the keyboard that typed last), or null.
    xkb_keymap* keymap() const { return keymap_.get(); }

private:
    WaylandDisplay() = default;
    static void global(void* data, wl_registry* registry, std::uint32_t name, const char* interface,
                       std::uint32_t version);
    static void globalRemove(void* data, wl_registry* registry, std::uint32_t name);
    static void capabilities(void* data, wl_seat* seat, std::uint32_t caps);
    static void seatName(void* data, wl_seat* seat, const char* name);
    static void keymapEvent(void* data, wl_keyboard* keyboard, std::uint32_t format, int fd, std::uint32_t size);
    void watchKeyboard();

    WaylandConnection connection_;
    Proxy<wl_registry> registry_;
    Proxy<wl_seat> seat_;
    Proxy<wl_keyboard> keyboard_;
    std::map<std::string, std::pair<std::uint32_t, std::uint32_t>> globals_;  // interface: name, version
    std::uint32_t capabilities_ = 0;
    XkbContext xkb_;
    XkbKeymap keymap_;
};

}  // namespace zeblo::platform::linux_desktop
