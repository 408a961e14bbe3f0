// Keys and the clipboard through mutter's remote desktop interface
// (org.gnome.Mutter.RemoteDesktop on the session bus, GNOME's compositor):
// a session of our own, made at the first call and kept on a private bus
// connection (the session ends with that connection), presses keysyms
// (keysym_keyboard.h) and offers and reads the clipboard. mutter asks the
// user nothing for it.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/key_request.h"
#include "platform/linux/keysym_keyboard.h"
#include "platform/linux/offers.h"
#include "platform/linux/private_bus.h"
#include "platform/linux/wayland_display.h"

namespace zeblo::platform::linux_desktop {

class RemoteDesktop final : public KeysymKeyboard {
public:
    // Null when the session bus has no mutter remote desktop or it refuses a
    // session. `display` gives the layout and is where the keyboard shows;
    // without it (the clipboard holder) the session serves the clipboard only.
    static std::unique_ptr<RemoteDesktop> open(WaylandDisplay* display);
    static constexpr double kSettleSeconds = 0.15;

    // The clipboard (see offers.h): what it offers (ours while we own it),
    // owning it with offers, clearing it, and answering requests meanwhile.
    Offers readClipboard();
    bool own(Offers offers);
    void disown();
    void forget() { offers_.clear(), owner_ = false; }
    bool owns() const { return owner_; }
    const Offers& offers() const { return offers_; }
    // How many requests for our offers' data (SelectionTransfer) have been
    // answered. mutter's own clipboard asks for the text of every new owner
    // at once: that request is answered within own().
    std::uint64_t answered() const { return answered_; }
    void serve(double seconds);

private:
    explicit RemoteDesktop(WaylandDisplay* display) : KeysymKeyboard(display) {}
    BusMessage call(const char* method, const std::function<bool(DBusMessageIter&)>& arguments);
    void keysym(KeySym sym, bool down) override;
    void handle(DBusMessage* message);
    void transfer(const std::string& type, std::uint32_t serial);

    PrivateBus bus_;
    std::string session_;
    bool clipboardOn_ = false;
    std::vector<std::string> ownerTypes_;  // the other owner's types, from SelectionOwnerChanged
    bool owner_ = false;
    bool echoDue_ = false;  // SetSelection made us the owner; its SelectionOwnerChanged is not yet read
    Offers offers_;
    std::uint64_t answered_ = 0;
};

}  // namespace zeblo::platform::linux_desktop
