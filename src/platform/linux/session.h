// What the backend needs from the window system beside the accessibility
// bus: key presses, the active window and its process, activation, asking a
// window to close, the clipboard and its holder. One implementation per kind
// of session: X11 (x11_desktop.h: XTest, window properties, CLIPBOARD) and
// Wayland (wayland_session.h: the compositor's own ways, AT-SPI for windows).
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/linux/key_request.h"
#include "platform/linux/offers.h"

namespace zeblo::platform::linux_desktop {

// A rectangle on the screen, in pixels.
struct ScreenBox {
    std::int32_t x = 0;
    std::int32_t y = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
};

class Session {
public:
    virtual ~Session() = default;

    // Keys. Why no key can be sent in this session at all ("" when keys can
    // be sent), for the log line of every keyboard call; a session whose
    // keys need the user's consent asks for it here.
    virtual std::string keysMissing() { return {}; }
    // Why a paste cannot use the clipboard although keys can be sent ("" when
    // it can), for the log line of a paste that then leaves it untouched.
    virtual std::string clipboardMissing() { return {}; }
    // Presses the key `id` (the library's key code) standing for `key`;
    // false when the layout cannot type it (nothing pressed).
    virtual bool press(std::uint16_t id, const KeyRequest& key) = 0;
    virtual void release(std::uint16_t id) = 0;
    // A modifier key event (Shift, Control or Alt): held until its release.
    virtual void modifierKey(Modifier modifier, bool down) = 0;

    // Windows. The process and title of the active window, when known.
    virtual std::optional<std::int32_t> activeWindowPid() = 0;
    virtual std::string activeWindowTitle() = 0;
    // Brings a window of process `pid` to the front; false when it cannot.
    virtual bool activate(std::int32_t pid) = 0;
    // Asks the window of process `pid` titled `title` to close; false when
    // the request could not be made. `box` is where the accessibility bus
    // places the window on the screen, when it says: the window system's
    // title may differ from the accessible one (an alert named "Warning"
    // whose title is "Save Document?").
    virtual bool requestClose(std::int32_t pid, const std::string& title, const std::optional<ScreenBox>& box) = 0;
    // Makes the toolkit of the focused window notice its focus again; false
    // when there is no such way or no focused window.
    virtual bool refreshFocus() = 0;

    // The clipboard: what it offers (our own offers while we own it), owning
    // it (false when that did not take), clearing it, handing what we own to
    // the clipboard holder (true once the holder has it), and answering
    // requests for `seconds` (also the backend's way of pausing).
    virtual Offers readClipboard() = 0;
    virtual bool own(Offers offers) = 0;
    virtual void disown() = 0;
    virtual bool handToHolder() = 0;
    virtual void serve(double seconds) = 0;
    // Whether this process owns the clipboard now, and how many requests for
    // its data it has answered: a paste keeps the clipboard until the
    // application has taken the text (LinuxPlatform::awaitPaste). A session
    // that cannot tell never makes it wait.
    virtual bool ownsClipboard() { return false; }
    virtual std::uint64_t clipboardDataAnswered() const { return 0; }
};

}  // namespace zeblo::platform::linux_desktop
