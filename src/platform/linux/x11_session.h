// The X11 side of the Linux backend: one display connection for the process,
// used for the active window (_NET_ACTIVE_WINDOW, _NET_WM_PID), activation
// and closing of windows, the connection that synthesized key events
// (x11_keyboard.h) go through and the CLIPBOARD selection.
//
// X11 keeps no clipboard of its own: the owner of CLIPBOARD answers every
// request for it. While this process owns it (after setPasteboardString),
// `serve` answers requests; restoring saved contents hands them to a
// clipboard holder process (zeblo-helper hold, see detach.h) that serves
// them until another client takes the selection.
#pragma once

#include <X11/Xlib.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/owned.h"
#include "platform/linux/session.h"
#include "platform/linux/x11_selection.h"

namespace zeblo::platform::linux_desktop {

class X11Session {
public:
    // Null when the display cannot be opened or has no XTest extension.
    static std::unique_ptr<X11Session> open();
    ~X11Session();
    X11Session(const X11Session&) = delete;
    X11Session& operator=(const X11Session&) = delete;

    // Windows and processes.
    std::optional<std::int32_t> activeWindowPid();
    std::string activeWindowTitle();
    // Managed top-level windows of process `pid`, in the window manager's order.
    std::vector<Window> windowsOf(std::int32_t pid);
    std::string titleOf(Window window);
    // Where `window` is on the screen with its window manager's frame
    // (_NET_FRAME_EXTENTS); nothing when it cannot be told.
    std::optional<ScreenBox> frameOf(Window window);
    bool activate(Window window);
    // Moves the input focus to the root window and back to the window that
    // has it, so that its toolkit sees a fresh focus-in. False when no window
    // has the focus.
    bool refreshFocus();
    // Asks the window (WM_DELETE_WINDOW) to close.
    bool requestClose(Window window);

    // CLIPBOARD (x11_selection.h). Owning it with `offers`; false when
    // another client kept it.
    bool own(Offers offers);
    void disown();
    bool ownsClipboard();
    // How many requests for CLIPBOARD's data this process has answered.
    std::uint64_t clipboardDataAnswered() const { return clipboard_->dataAnswered(); }
    // What CLIPBOARD offers: our own offers while we own it, else every
    // target its owner gives (readSelection), nothing when it has no owner.
    Offers readClipboard();
    // Hands the offers we own CLIPBOARD with to a clipboard holder process;
    // true once it owns CLIPBOARD (waiting at most kHolderSeconds, answering
    // requests meanwhile).
    bool handToHolder();
    static constexpr double kHolderSeconds = 2.0;
    // Waits up to `seconds`, answering CLIPBOARD requests meanwhile.
    void serve(double seconds);

    // The connection, for the keyboard (x11_keyboard.h).
    Display* display() const { return connection_.get(); }

private:
    X11Session() = default;
    Atom atom(const char* name);

    DisplayConnection connection_;
    Window window_ = 0;  // an unmapped window owning CLIPBOARD for us
    std::unique_ptr<SelectionServer> clipboard_;
};

}  // namespace zeblo::platform::linux_desktop
