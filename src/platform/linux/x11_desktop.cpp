// The X11 session's windows and keys.
#include "platform/linux/x11_desktop.h"

#include <algorithm>

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
namespace {

// How much two rectangles cover each other: the area they share over the
// area they cover together (1 for the same rectangle, 0 for disjoint ones).
double overlap(const ScreenBox& a, const ScreenBox& b) {
    const auto shared = [](std::int64_t from1, std::int64_t to1, std::int64_t from2, std::int64_t to2) {
        return std::max<std::int64_t>(0, std::min(to1, to2) - std::max(from1, from2));
    };
    const std::int64_t both = shared(a.x, a.x + a.width, b.x, b.x + b.width) *
                              shared(a.y, a.y + a.height, b.y, b.y + b.height);
    const std::int64_t either = std::int64_t{a.width} * a.height + std::int64_t{b.width} * b.height - both;
    return either > 0 ? static_cast<double>(both) / static_cast<double>(either) : 0.0;
}

}  // namespace

bool X11Desktop::requestClose(std::int32_t pid, const std::string& title, const std::optional<ScreenBox>& box) {
    // The process's window of that title; else the one where the
    // accessibility bus places the window (most of it, frame included);
    // else its only window.
    const std::vector<Window> windows = x11_->windowsOf(pid);
    for (Window w : windows) {
        if (x11_->titleOf(w) == title) return x11_->requestClose(w);
    }
    constexpr double kSameWindow = 0.5;
    Window best = 0;
    double bestOverlap = kSameWindow;
    for (Window w : windows) {
        const std::optional<ScreenBox> frame = box ? x11_->frameOf(w) : std::nullopt;
        const double covered = frame ? overlap(*frame, *box) : 0.0;
        if (covered > bestOverlap) {
            best = w;
            bestOverlap = covered;
        }
    }
    if (best != 0) return x11_->requestClose(best);
    return windows.size() == 1 && x11_->requestClose(windows.front());
}

}  // namespace zeblo::platform::linux_desktop
