// Keys through the desktop portal's remote desktop
// (org.freedesktop.portal.RemoteDesktop, xdg-desktop-portal), the last
// resort where the compositor offers the library no way of its own (KWin
// for a host it does not trust, a compositor reached only through the
// portal). The portal asks the user: its Start shows a dialog, and keys go
// through only once the user has allowed them, as NotifyKeyboardKeysym on
// the portal's session (its backend types them on the compositor's layout,
// as mutter does). The library never waits for the user longer than the
// reply limit: the first keyboard call asks and fails with a line saying
// that the user must allow it, and later calls see the answer once it has
// come. A refusal, or a session the portal has closed, is asked again at
// the next keyboard call. The portal of Debian 12 (version 1 of the
// interface, xdg-desktop-portal 1.16) gives no clipboard.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/linux/keysym_keyboard.h"
#include "platform/linux/private_bus.h"

namespace zeblo::platform::linux_desktop {

class PortalKeyboard final : public KeysymKeyboard {
public:
    // Null when the session bus has no portal whose remote desktop offers a
    // keyboard. Asks nothing yet.
    static std::unique_ptr<PortalKeyboard> open(WaylandDisplay* display);
    static constexpr double kSettleSeconds = 0.15;

    // Whether the user has allowed keys (without asking anything).
    bool started() const { return state_ == State::started; }
    // "" once the user has allowed keys; otherwise the log line that says
    // why keys cannot be sent yet, after asking the user when nobody has
    // been asked.
    std::string ready();

private:
    enum class State : std::uint8_t { none, asked, started };
    struct Answer {
        std::uint32_t response = 2;  // 0 allowed, 1 refused by the user, 2 otherwise
        std::string sessionHandle;   // CreateSession's
    };

    explicit PortalKeyboard(WaylandDisplay* display) : KeysymKeyboard(display) {}
    void keysym(KeySym sym, bool down) override;
    // Sends `message` (whose options carry handle_token `token`), the
    // request whose Response the portal signals later; false when the
    // portal refused it.
    bool send(BusMessage message, const std::string& token);
    // Waits up to `seconds` for the Response to the request sent last.
    std::optional<Answer> awaitResponse(double seconds);
    void handle(DBusMessage* message);
    // Takes the answer to Start: true (keys from now on) when the user allowed them.
    bool allowed(const Answer& answer);

    PrivateBus bus_;
    State state_ = State::none;
    std::string session_;  // the portal's session, once created
    std::string request_;  // the path of the request whose Response is awaited
    std::optional<Answer> answer_;
    unsigned tokens_ = 0;
};

}  // namespace zeblo::platform::linux_desktop
