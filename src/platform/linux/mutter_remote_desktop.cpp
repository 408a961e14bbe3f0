// mutter's remote desktop session over a private session-bus connection:
// keysyms sent without waiting for answers (in order, on one connection),
// the clipboard through EnableClipboard, SetSelection, SelectionRead and
// SelectionWrite, its signals read from the same connection.
#include "platform/linux/mutter_remote_desktop.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/linux/detach.h"
#include "platform/reply_limit.h"

namespace zeblo::platform::linux_desktop {

namespace {

constexpr const char* kService = "org.gnome.Mutter.RemoteDesktop";
constexpr const char* kSessionInterface = "org.gnome.Mutter.RemoteDesktop.Session";
// A type no application asks for (mutter's clipboard keeps only text and images).
constexpr const char* kUncopiedType = "application/x-zeblo-nothing";

bool appendString(DBusMessageIter& args, const std::string& text) {
    const char* value = text.c_str();
    return dbus_message_iter_append_basic(&args, DBUS_TYPE_STRING, &value);
}

// An a{sv} with `mimeTypes` under "mime-types" (none: an empty dictionary,
// which SetSelection takes as "no owner").
bool appendOptions(DBusMessageIter& args, const std::vector<std::string>* mimeTypes) {
    DBusMessageIter dict, entry, variant, list;
    if (!dbus_message_iter_open_container(&args, DBUS_TYPE_ARRAY, "{sv}", &dict)) return false;
    if (mimeTypes != nullptr) {
        const char* key = "mime-types";
        bool ok = dbus_message_iter_open_container(&dict, DBUS_TYPE_DICT_ENTRY, nullptr, &entry) &&
                  dbus_message_iter_append_basic(&entry, DBUS_TYPE_STRING, &key) &&
                  dbus_message_iter_open_container(&entry, DBUS_TYPE_VARIANT, "as", &variant) &&
                  dbus_message_iter_open_container(&variant, DBUS_TYPE_ARRAY, "s", &list);
        for (const std::string& type : *mimeTypes) ok = ok && appendString(list, type);
        ok = ok && dbus_message_iter_close_container(&variant, &list) &&
             dbus_message_iter_close_container(&entry, &variant) && dbus_message_iter_close_container(&dict, &entry);
        if (!ok) return false;
    }
    return dbus_message_iter_close_container(&args, &dict);
}

// The "mime-types" and "session-is-owner" of SelectionOwnerChanged's a{sv}.
void readOwner(DBusMessage* message, std::vector<std::string>& types, bool& ours) {
    types.clear();
    ours = false;
    DBusMessageIter args;
    if (!dbus_message_iter_init(message, &args) || dbus_message_iter_get_arg_type(&args) != DBUS_TYPE_ARRAY) return;
    // mutter sends the list of types inside a structure: (as).
    forEachEntry(&args, [&](std::string_view name, DBusMessageIter* variant) {
        const int kind = dbus_message_iter_get_arg_type(variant);
        if (name == "session-is-owner" && kind == DBUS_TYPE_BOOLEAN) {
            dbus_bool_t value = FALSE;
            dbus_message_iter_get_basic(variant, &value);
            ours = value != FALSE;
        } else if (name == "mime-types" && kind == DBUS_TYPE_ARRAY) {
            DBusMessageIter list;
            for (dbus_message_iter_recurse(variant, &list); dbus_message_iter_get_arg_type(&list) == DBUS_TYPE_STRING;
                 dbus_message_iter_next(&list)) {
                const char* type = nullptr;
                dbus_message_iter_get_basic(&list, &type);
                types.emplace_back(type);
            }
        }
    });
}

// The file descriptor a reply carries (ours to close), or none.
Fd replyFd(const BusMessage& reply) {
    int fd = -1;
    BusError error;
    if (!reply || !dbus_message_get_args(reply.get(), &error.error, DBUS_TYPE_UNIX_FD, &fd, DBUS_TYPE_INVALID)) {
        return Fd();
    }
    return Fd(fd);
}

}  // namespace

std::unique_ptr<RemoteDesktop> RemoteDesktop::open(WaylandDisplay* display) {
    std::unique_ptr<RemoteDesktop> self(new RemoteDesktop(display));
    BusError error;
    self->bus_ = openPrivateBus();
    if (!self->bus_) return nullptr;
    const BusMessage create(
        dbus_message_new_method_call(kService, "/org/gnome/Mutter/RemoteDesktop", kService, "CreateSession"));
    const BusMessage made(dbus_connection_send_with_reply_and_block(self->bus_.get(), create.get(), replyLimitMs(),
                                                                 &error.error));
    const char* path = nullptr;
    if (!made || !dbus_message_get_args(made.get(), &error.error, DBUS_TYPE_OBJECT_PATH, &path, DBUS_TYPE_INVALID)) {
        return nullptr;
    }
    self->session_ = path;
    const std::string rule = "type='signal',interface='" + std::string(kSessionInterface) + "',path='" +
                             self->session_ + "'";
    dbus_bus_add_match(self->bus_.get(), rule.c_str(), nullptr);
    // Keys need a started session; the clipboard does not (the holder).
    if (display != nullptr && !self->call("Start", nullptr)) return nullptr;
    // From now on every change of the clipboard's owner is signalled, with
    // the types it offers.
    self->clipboardOn_ = static_cast<bool>(
        self->call("EnableClipboard", [](DBusMessageIter& args) { return appendOptions(args, nullptr); }));
    if (display != nullptr) {
        // mutter makes the session's keyboard at its first key press; a
        // keysym no key gives (NoSymbol) makes it without typing anything.
        // A seat that had no keyboard has one now, and its clients take a
        // moment to ask for it: keys before that are lost.
        self->keysym(0, true);
        self->keysym(0, false);
        display->dispatchUntil([&] { return display->seatHasKeyboard(); }, monotonicSeconds() + 1.0);
        display->roundtrip(1.0);
        usleep(static_cast<useconds_t>(kSettleSeconds * 1e6));
    }
    return self;
}

BusMessage RemoteDesktop::call(const char* method, const std::function<bool(DBusMessageIter&)>& arguments) {
    BusMessage message(dbus_message_new_method_call(kService, session_.c_str(), kSessionInterface, method));
    if (!message) return {};
    if (arguments) {
        DBusMessageIter args;
        dbus_message_iter_init_append(message.get(), &args);
        if (!arguments(args)) return {};
    }
    BusError error;
    BusMessage reply(
        dbus_connection_send_with_reply_and_block(bus_.get(), message.get(), replyLimitMs(), &error.error));
    return reply;
}

void RemoteDesktop::keysym(KeySym sym, bool down) {
    const BusMessage message(
        dbus_message_new_method_call(kService, session_.c_str(), kSessionInterface, "NotifyKeyboardKeysym"));
    const auto value = static_cast<dbus_uint32_t>(sym);
    const dbus_bool_t state = down ? TRUE : FALSE;
    if (!message || !dbus_message_append_args(message.get(), DBUS_TYPE_UINT32, &value, DBUS_TYPE_BOOLEAN, &state,
                                              DBUS_TYPE_INVALID)) {
        return;
    }
    dbus_message_set_no_reply(message.get(), TRUE);
    dbus_connection_send(bus_.get(), message.get(), nullptr);
    dbus_connection_flush(bus_.get());
}

// --- The clipboard

void RemoteDesktop::handle(DBusMessage* message) {
    if (dbus_message_is_signal(message, kSessionInterface, "SelectionOwnerChanged")) {
        bool ours = false;
        std::vector<std::string> types;
        readOwner(message, types, ours);
        // mutter tells of our own SetSelection before it answers it; a
        // change it told of before that echo was overtaken by ours, even
        // when it is read after SetSelection's answer.
        if (ours) {
            echoDue_ = false;
        } else if (!echoDue_) {
            ownerTypes_ = std::move(types);
            owner_ = false;
            offers_.clear();
        }
    } else if (dbus_message_is_signal(message, kSessionInterface, "SelectionTransfer")) {
        const char* type = nullptr;
        dbus_uint32_t serial = 0;
        BusError error;
        if (dbus_message_get_args(message, &error.error, DBUS_TYPE_STRING, &type, DBUS_TYPE_UINT32, &serial,
                                  DBUS_TYPE_INVALID)) {
            transfer(type, serial);
        }
    }
}

void RemoteDesktop::transfer(const std::string& type, std::uint32_t serial) {
    const auto offer =
        std::find_if(offers_.begin(), offers_.end(), [&](const Offer& o) { return o.target == type; });
    bool written = false;
    if (offer != offers_.end()) {
        ++answered_;
        const Fd fd = replyFd(call("SelectionWrite", [&](DBusMessageIter& args) {
            const dbus_uint32_t value = serial;
            return dbus_message_iter_append_basic(&args, DBUS_TYPE_UINT32, &value);
        }));
        written = fd && writeAll(fd.get(), *offer->data);
    }
    call("SelectionWriteDone", [&](DBusMessageIter& args) {
        const dbus_uint32_t value = serial;
        const dbus_bool_t success = written ? TRUE : FALSE;
        return dbus_message_iter_append_basic(&args, DBUS_TYPE_UINT32, &value) &&
               dbus_message_iter_append_basic(&args, DBUS_TYPE_BOOLEAN, &success);
    });
}

void RemoteDesktop::serve(double seconds) {
    const double end = monotonicSeconds() + std::max(seconds, 0.0);
    do {
        const double left = end - monotonicSeconds();
        dbus_connection_read_write(bus_.get(), left > 0 ? static_cast<int>(left * 1000) + 1 : 0);
        while (DBusMessage* raw = dbus_connection_pop_message(bus_.get())) {
            const BusMessage message(raw);
            handle(message.get());
        }
    } while (monotonicSeconds() < end && dbus_connection_get_is_connected(bus_.get()));
}

Offers RemoteDesktop::readClipboard() {
    if (!clipboardOn_) {
        clipboardOn_ = static_cast<bool>(
            call("EnableClipboard", [](DBusMessageIter& args) { return appendOptions(args, nullptr); }));
    }
    serve(0);
    if (owner_) return offers_;
    Offers out;
    const double end = monotonicSeconds() + kSaveSeconds;
    std::size_t total = 0;
    for (const std::string& type : ownerTypes_) {
        if (monotonicSeconds() >= end) break;
        const Fd fd = replyFd(call("SelectionRead", [&](DBusMessageIter& args) { return appendString(args, type); }));
        if (!fd) continue;
        std::optional<std::string> data = readToEnd(fd.get(), std::min(kTargetLimit, kSaveLimit - total),
                                                    std::min(monotonicSeconds() + kReplySeconds, end));
        if (!data) continue;
        total += data->size();
        out.push_back({type, type, 8, std::make_shared<const std::string>(std::move(*data))});
    }
    return out;
}

bool RemoteDesktop::own(Offers offers) {
    if (!clipboardOn_) readClipboard();
    std::vector<std::string> types;
    for (const Offer& offer : offers) {
        if (std::find(types.begin(), types.end(), offer.target) == types.end()) types.push_back(offer.target);
    }
    offers_ = std::move(offers);
    owner_ = static_cast<bool>(call("SetSelection", [&](DBusMessageIter& args) { return appendOptions(args, &types); }));
    echoDue_ = owner_;
    // What mutter sent before its answer: the echo, and what came before it.
    serve(0);
    return owner_;
}

// Whoever set the clipboard, it is left empty. Only our own selection can
// be unset, and mutter keeps a copy of every owner's text to offer again
// when the clipboard is left without an owner: an owner offering nothing it
// copies comes first.
void RemoteDesktop::disown() {
    const std::vector<std::string> uncopied{kUncopiedType};
    offers_.clear();
    echoDue_ =
        static_cast<bool>(call("SetSelection", [&](DBusMessageIter& args) { return appendOptions(args, &uncopied); }));
    serve(0);
    call("SetSelection", [](DBusMessageIter& args) { return appendOptions(args, nullptr); });
    forget();
}

}  // namespace zeblo::platform::linux_desktop
