// The X11 session's windows and keys.
#include "platform/linux/x11_desktop.h"

namespace zeblo::platform::linux_desktop {

std::unique_ptr<X11Desktop> X11Desktop::open() {
    std::unique_ptr<X11Session> x11 = X11Session::open();
    if (!x11) return nullptr;
    return std::unique_ptr<X11Desktop>(new X11Desktop(std::move(x11)));
}

bool X11Desktop::press(std::uint16_t id, const KeyRequest& key) { return keyboard_.press(x11_->display(), id, key); }

void X11Desktop::release(std::uint16_t id) { keyboard_.release(x11_->display(), id); }

void X11Desktop::modifierKey(Modifier modifier, bool down) { keyboard_.modifierKey(x11_->display(), modifier, down); }

// The last managed window of the process.
bool X11Desktop::activate(std::int32_t pid) {
    const std::vector<Window> windows = x11_->windowsOf(pid);
    return !windows.empty() && x11_->activate(windows.back());
}

// The X window of the process with the frame's title, or its only window.
bool X11Desktop::requestClose(std::int32_t pid, const std::string& title) {
    const std::vector<Window> windows = x11_->windowsOf(pid);
    for (Window w : windows) {
        if (x11_->titleOf(w) == title) return x11_->requestClose(w);
    }
    return windows.size() == 1 && x11_->requestClose(windows.front());
}

}  // namespace zeblo::platform::linux_desktop
