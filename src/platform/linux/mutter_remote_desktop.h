// Keys and the clipboard through mutter's remote desktop interface
// (org.gnome.Mutter.RemoteDesktop on the session bus, GNOME's compositor):
// a session of our own, made at the first call and kept on a private bus
// connection (the session ends with that connection), presses keysyms and
// offers and reads the clipboard. mutter asks the user nothing for it.
//
// mutter presses a keysym on the key and level of its current layout that
// gives it, holding Shift or AltGr as that level needs; a keysym the layout
// does not have is dropped. So the keys here are keysyms, and the layout
// (the keymap the compositor gives its clients, from WaylandDisplay) tells
// which ones can be typed and which only as a dead key and a space.
#pragma once

#include <dbus/dbus.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/key_request.h"
#include "platform/linux/offers.h"
#include "platform/linux/x11_owned.h"  // Owned<T, Release>
#include "platform/linux/wayland_display.h"

namespace zeblo::platform::linux_desktop {

inline void closeBus(DBusConnection* connection) noexcept {
    dbus_connection_close(connection);
    dbus_connection_unref(connection);
}
using PrivateBus = Owned<DBusConnection, closeBus>;
using BusMessage = Owned<DBusMessage, dbus_message_unref>;

class RemoteDesktop {
public:
    // Null when the session bus has no mutter remote desktop or it refuses a
    // session. `display` gives the layout and is where the keyboard shows;
    // without it (the clipboard holder) the session serves the clipboard only.
    static std::unique_ptr<RemoteDesktop> open(WaylandDisplay* display);
    static constexpr double kSettleSeconds = 0.15;

    // Keys, as VirtualKeyboard's. False (nothing pressed) for a keysym the
    // layout cannot type.
    bool press(std::uint16_t id, const KeyRequest& key);
    void release(std::uint16_t id);
    void modifierKey(Modifier modifier, bool down);
    // The keysym press() could not type, for the log line.
    KeySym lastMissing() const { return missing_; }

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
    RemoteDesktop() = default;
    BusMessage call(const char* method, const std::function<bool(DBusMessageIter&)>& arguments);
    bool keysym(KeySym sym, bool down);
    void handle(DBusMessage* message);
    void transfer(const std::string& type, std::uint32_t serial);
    bool typeable(KeySym sym) const;

    PrivateBus bus_;
    std::string session_;
    WaylandDisplay* display_ = nullptr;
    Modifiers held_ = 0;
    // Keys down: the keysyms pressed for each, in order.
    std::map<std::uint16_t, std::vector<KeySym>> pressed_;
    KeySym missing_ = 0;
    bool clipboardOn_ = false;
    std::vector<std::string> ownerTypes_;  // the other owner's types, from SelectionOwnerChanged
    bool owner_ = false;
    bool echoDue_ = false;  // SetSelection made us the owner; its SelectionOwnerChanged is not yet read
    Offers offers_;
    std::uint64_t answered_ = 0;
};

}  // namespace zeblo::platform::linux_desktop
