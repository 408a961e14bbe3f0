// The X11 side of the Linux backend: one display connection for the process,
// used for the active window (_NET_ACTIVE_WINDOW, _NET_WM_PID), activation
// and closing of windows, the connection that synthesized key events
// (x11_keyboard.h) go through and the CLIPBOARD selection.
//
// X11 keeps no clipboard of its own: the owner of CLIPBOARD answers every
// request for it. While this process owns it (after setPasteboardString),
// `serve` answers requests; restoring saved contents hands them to a detached
// holder process that serves them until another client takes the selection.
#pragma once

#include <X11/Xlib.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/owned.h"

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
    bool activate(Window window);
    // Moves the input focus to the root window and back to the window that
    // has it, so that its toolkit sees a fresh focus-in. False when no window
    // has the focus.
    bool refreshFocus();
    // Asks the window (WM_DELETE_WINDOW) to close.
    bool requestClose(Window window);

    // CLIPBOARD. `pairs` are (type, data) in preference order.
    bool own(std::vector<std::pair<std::string, std::string>> pairs);
    void disown();
    // The text currently on CLIPBOARD: nothing when no client owns it or the
    // owner gives no text.
    std::optional<std::string> readText(double timeoutSeconds);
    // Hands `pairs` to a detached holder process; true once it owns CLIPBOARD.
    bool handToHolder(std::vector<std::pair<std::string, std::string>> pairs);
    bool ownsClipboard();
    // Waits up to `seconds`, answering CLIPBOARD requests meanwhile.
    void serve(double seconds);

    // The connection, for the keyboard (x11_keyboard.h).
    Display* display() const { return connection_.get(); }

private:
    X11Session() = default;
    Atom atom(const char* name);
    void handle(XEvent& event);
    void answer(const XSelectionRequestEvent& request);

    DisplayConnection connection_;
    Window window_ = 0;  // an unmapped window owning CLIPBOARD for us
    bool owner_ = false;
    std::vector<std::pair<std::string, std::string>> data_;
};

// Serves `pairs` on CLIPBOARD from a new connection until the selection is
// taken by someone else; the body of the holder process (see detach.h). One
// byte on `readyFd` says it owns CLIPBOARD.
[[noreturn]] void runClipboardHolder(std::vector<std::pair<std::string, std::string>> pairs, int readyFd);

}  // namespace zeblo::platform::linux_desktop
