// The compositor connection: registry, seat, keymap and bounded dispatch.
#include "platform/linux/wayland_display.h"

#include <poll.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstring>

#include "platform/linux/detach.h"
#include "platform/linux/offers.h"

namespace zeblo::platform::linux_desktop {

namespace {

int millisecondsUntil(double deadline) {
    const double left = deadline - monotonicSeconds();
    return left <= 0 ? 0 : static_cast<int>(std::ceil(left * 1000));
}

}  // namespace

// The listeners are members so that they reach the private state.
void WaylandDisplay::global(void* data, wl_registry*, std::uint32_t name, const char* interface,
                            std::uint32_t version) {
    auto* self = static_cast<WaylandDisplay*>(data);
    self->globals_.try_emplace(interface, name, version);
}

void WaylandDisplay::globalRemove(void* data, wl_registry*, std::uint32_t name) {
    auto* self = static_cast<WaylandDisplay*>(data);
    for (auto it = self->globals_.begin(); it != self->globals_.end(); ++it) {
        if (it->second.first == name) {
            self->globals_.erase(it);
            return;
        }
    }
}

void WaylandDisplay::capabilities(void* data, wl_seat*, std::uint32_t caps) {
    auto* self = static_cast<WaylandDisplay*>(data);
    self->capabilities_ = caps;
    self->watchKeyboard();
}

void WaylandDisplay::seatName(void*, wl_seat*, const char*) {}

void WaylandDisplay::keymapEvent(void* data, wl_keyboard*, std::uint32_t format, int fd, std::uint32_t size) {
    auto* self = static_cast<WaylandDisplay*>(data);
    const Fd owned(fd);
    if (format != WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1 || size == 0) return;
    void* map = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, fd, 0);
    if (map == MAP_FAILED) return;
    const std::string text(static_cast<const char*>(map), strnlen(static_cast<const char*>(map), size));
    munmap(map, size);
    XkbKeymap keymap(xkb_keymap_new_from_string(self->xkb_.get(), text.c_str(), XKB_KEYMAP_FORMAT_TEXT_V1,
                                                XKB_KEYMAP_COMPILE_NO_FLAGS));
    if (keymap) self->keymap_ = std::move(keymap);
}

namespace {

void ignoreEnter(void*, wl_keyboard*, std::uint32_t, wl_surface*, wl_array*) {}
void ignoreLeave(void*, wl_keyboard*, std::uint32_t, wl_surface*) {}
void ignoreKey(void*, wl_keyboard*, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t) {}
void ignoreModifiers(void*, wl_keyboard*, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t,
                     std::uint32_t) {}
void ignoreRepeat(void*, wl_keyboard*, std::int32_t, std::int32_t) {}

}  // namespace

// The seat's keyboard is asked for only for its keymap: this client has no
// surface, so it never has the focus and gets no keys.
void WaylandDisplay::watchKeyboard() {
    if (!seatHasKeyboard()) {
        keyboard_.reset();
        return;
    }
    if (keyboard_) return;
    keyboard_.reset(wl_seat_get_keyboard(seat_.get()));
    static const wl_keyboard_listener listener = {&WaylandDisplay::keymapEvent, ignoreEnter, ignoreLeave,
                                                  ignoreKey, ignoreModifiers, ignoreRepeat};
    wl_keyboard_add_listener(keyboard_.get(), &listener, this);
}

std::unique_ptr<WaylandDisplay> WaylandDisplay::connect(double seconds) {
    WaylandConnection connection(wl_display_connect(nullptr));
    if (!connection) return nullptr;
    std::unique_ptr<WaylandDisplay> self(new WaylandDisplay());
    self->connection_ = std::move(connection);
    self->xkb_.reset(xkb_context_new(XKB_CONTEXT_NO_ENVIRONMENT_NAMES));
    self->registry_.reset(wl_display_get_registry(self->get()));
    static const wl_registry_listener listener = {&WaylandDisplay::global, &WaylandDisplay::globalRemove};
    wl_registry_add_listener(self->registry_.get(), &listener, self.get());
    if (!self->roundtrip(seconds)) return nullptr;
    self->seat_.reset(static_cast<wl_seat*>(self->bind(&wl_seat_interface, 5)));
    if (self->seat_) {
        static const wl_seat_listener listener = {&WaylandDisplay::capabilities, &WaylandDisplay::seatName};
        wl_seat_add_listener(self->seat_.get(), &listener, self.get());
        if (!self->roundtrip(seconds) || !self->roundtrip(seconds)) return nullptr;  // the seat, then its keymap
    }
    return self;
}

WaylandDisplay::~WaylandDisplay() {
    // Proxies go before the connection they belong to.
    keyboard_.reset();
    seat_.reset();
    registry_.reset();
}

void* WaylandDisplay::bind(const wl_interface* interface, std::uint32_t maxVersion) {
    const auto found = globals_.find(interface->name);
    if (found == globals_.end()) return nullptr;
    const std::uint32_t version = std::min(found->second.second, maxVersion);
    return wl_registry_bind(registry_.get(), found->second.first, interface, version);
}

bool WaylandDisplay::broken() const { return wl_display_get_error(get()) != 0; }

bool WaylandDisplay::dispatchUntil(const std::function<bool()>& done, double deadline) {
    wl_display* display = get();
    while (true) {
        if (wl_display_dispatch_pending(display) < 0) return false;
        if (done()) return true;
        while (wl_display_prepare_read(display) != 0) {
            if (wl_display_dispatch_pending(display) < 0) return false;
        }
        if (wl_display_flush(display) < 0 && errno != EAGAIN) {
            wl_display_cancel_read(display);
            return false;
        }
        pollfd fd{wl_display_get_fd(display), POLLIN, 0};
        const int timeout = millisecondsUntil(deadline);
        if (timeout <= 0 || poll(&fd, 1, timeout) <= 0) {
            wl_display_cancel_read(display);
            if (timeout <= 0) return done();
            continue;
        }
        if (wl_display_read_events(display) < 0) return false;
    }
}

bool WaylandDisplay::roundtrip(double seconds) {
    bool done = false;
    const Proxy<wl_callback> callback(wl_display_sync(get()));
    static const wl_callback_listener listener = {[](void* data, wl_callback*, std::uint32_t) {
        *static_cast<bool*>(data) = true;
    }};
    wl_callback_add_listener(callback.get(), &listener, &done);
    return dispatchUntil([&] { return done; }, monotonicSeconds() + seconds);
}

void WaylandDisplay::dispatchPending() {
    dispatchUntil([] { return true; }, 0);
    // Events already on the socket are read without waiting.
    wl_display* display = get();
    if (wl_display_prepare_read(display) == 0) {
        pollfd fd{wl_display_get_fd(display), POLLIN, 0};
        if (poll(&fd, 1, 0) > 0) {
            wl_display_read_events(display);
        } else {
            wl_display_cancel_read(display);
        }
    }
    wl_display_dispatch_pending(display);
}

}  // namespace zeblo::platform::linux_desktop
