// The X11 session: XTest keys on the active XKB layout (x11_keyboard.h), the
// active window from _NET_ACTIVE_WINDOW, activation and WM_DELETE_WINDOW
// through the window manager, CLIPBOARD and its holder (x11_session.h).
#pragma once

#include <memory>

#include "platform/linux/session.h"
#include "platform/linux/x11_keyboard.h"
#include "platform/linux/x11_session.h"

namespace zeblo::platform::linux_desktop {

class X11Desktop final : public Session {
public:
    // Null when DISPLAY cannot be opened or has no XTest extension.
    static std::unique_ptr<X11Desktop> open();

    bool press(std::uint16_t id, const KeyRequest& key) override;
    void release(std::uint16_t id) override;
    void modifierKey(Modifier modifier, bool down) override;

    std::optional<std::int32_t> activeWindowPid() override { return x11_->activeWindowPid(); }
    std::string activeWindowTitle() override { return x11_->activeWindowTitle(); }
    bool activate(std::int32_t pid) override;
    bool requestClose(std::int32_t pid, const std::string& title, const std::optional<ScreenBox>& box) override;
    bool refreshFocus() override { return x11_->refreshFocus(); }

    Offers readClipboard() override { return x11_->readClipboard(); }
    bool own(Offers offers) override { return x11_->own(std::move(offers)); }
    void disown() override { x11_->disown(); }
    bool handToHolder() override { return x11_->handToHolder(); }
    void serve(double seconds) override { x11_->serve(seconds); }
    bool ownsClipboard() override { return x11_->ownsClipboard(); }
    std::uint64_t clipboardDataAnswered() const override { return x11_->clipboardDataAnswered(); }

private:
    explicit X11Desktop(std::unique_ptr<X11Session> x11) : x11_(std::move(x11)) {}
    std::unique_ptr<X11Session> x11_;
    X11Keyboard keyboard_;  // the keys held
};

}  // namespace zeblo::platform::linux_desktop
