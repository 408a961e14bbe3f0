// A Wayland session. The compositor's own ways of sending keys are tried in
// this order: mutter's remote desktop session (GNOME), wlroots' virtual
// keyboard (sway and other wlroots compositors), KWin's fake input (KDE),
// and last the desktop portal, which asks the user first; the clipboard goes
// through mutter's session, else data control (wlroots, KWin). Without any
// way to send keys, every keyboard call fails with one log line saying why
// (keysMissing) and the clipboard is left alone.
//
// Windows come from the accessibility bus: the active window is the frame in
// the active state, its process the application's. sway's IPC gives the
// focused window when no frame says it is active, focuses windows and closes
// them; elsewhere a window is activated through its toolkit (AT-SPI's
// grab_focus on the frame, which GTK answers by presenting the window) and
// closed by pressing the Close button of its client-side title bar, or,
// when it is the active window and keys can be sent, with Alt+F4.
#pragma once

#include <atspi/atspi.h>

#include <memory>
#include <optional>
#include <string>

#include "platform/linux/kwin_keyboard.h"
#include "platform/linux/mutter_remote_desktop.h"
#include "platform/linux/owned.h"
#include "platform/linux/portal_keyboard.h"
#include "platform/linux/session.h"
#include "platform/linux/sway_ipc.h"
#include "platform/linux/wayland_display.h"
#include "platform/linux/wlr_clipboard.h"
#include "platform/linux/wlr_keyboard.h"

namespace zeblo::platform::linux_desktop {

class WaylandSession final : public Session {
public:
    // Null when WAYLAND_DISPLAY's compositor cannot be reached. With
    // `portalOnly`, keys go through the desktop portal even where the
    // compositor has a way of its own (to try the portal under mutter).
    static std::unique_ptr<WaylandSession> open(bool portalOnly = false);
    ~WaylandSession() override;

    std::string keysMissing() override;
    std::string clipboardMissing() override;
    bool press(std::uint16_t id, const KeyRequest& key) override;
    void release(std::uint16_t id) override;
    void modifierKey(Modifier modifier, bool down) override;

    std::optional<std::int32_t> activeWindowPid() override;
    std::string activeWindowTitle() override;
    bool activate(std::int32_t pid) override;
    bool requestClose(std::int32_t pid, const std::string& title, const std::optional<ScreenBox>& box) override;
    bool refreshFocus() override { return false; }

    Offers readClipboard() override;
    bool own(Offers offers) override;
    void disown() override;
    bool handToHolder() override;
    void serve(double seconds) override;
    bool ownsClipboard() override;
    std::uint64_t clipboardDataAnswered() const override;

    // Which mechanisms this session uses, for the backend's notes.
    std::string describe() const;

private:
    WaylandSession() = default;
    // The active frame of any registered application, with its process.
    std::optional<std::pair<std::int32_t, AccessibleRef>> activeFrame();
    // Whether keys can be sent now (asking no one).
    bool keysReady() const;

    std::unique_ptr<WaylandDisplay> display_;
    std::unique_ptr<RemoteDesktop> mutter_;
    std::unique_ptr<VirtualKeyboard> keyboard_;
    std::unique_ptr<FakeInputKeyboard> fakeInput_;
    std::unique_ptr<PortalKeyboard> portal_;
    std::unique_ptr<DataControlClipboard> clipboard_;
    std::optional<SwayIpc> sway_;
    std::string keysMissing_;
};

}  // namespace zeblo::platform::linux_desktop
