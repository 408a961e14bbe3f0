// The portal's remote desktop on a private bus connection: each request's
// answer is the Response signal of its request object, whose path the
// library knows beforehand (its handle_token), so the signal is listened
// for before the request is sent.
#include "platform/linux/portal_keyboard.h"

#include <unistd.h>

#include <initializer_list>
#include <utility>
#include <variant>

#include "platform/linux/offers.h"
#include "platform/reply_limit.h"

namespace zeblo::platform::linux_desktop {

namespace {

constexpr const char* kPortal = "org.freedesktop.portal.Desktop";
constexpr const char* kPath = "/org/freedesktop/portal/desktop";
constexpr const char* kInterface = "org.freedesktop.portal.RemoteDesktop";
constexpr std::uint32_t kKeyboard = 1;  // AvailableDeviceTypes / SelectDevices "types"

constexpr const char* kAsked =
    "Keyboard: the desktop portal (org.freedesktop.portal.RemoteDesktop) asks the user to allow this program to send "
    "keys; nothing is typed until the user allows it in the portal's dialog";
constexpr const char* kRefused =
    "Keyboard: the user did not allow this program to send keys through the desktop portal "
    "(org.freedesktop.portal.RemoteDesktop); the next keyboard call asks again";
constexpr const char* kNoSession =
    "Keyboard: the desktop portal's remote desktop (org.freedesktop.portal.RemoteDesktop) opened no session";

using Value = std::variant<std::string, std::uint32_t>;

// An a{sv} of strings and unsigned integers.
bool appendOptions(DBusMessageIter& args, std::initializer_list<std::pair<const char*, Value>> entries) {
    DBusMessageIter dict;
    if (!dbus_message_iter_open_container(&args, DBUS_TYPE_ARRAY, "{sv}", &dict)) return false;
    for (const auto& [key, value] : entries) {
        DBusMessageIter entry, variant;
        const bool text = std::holds_alternative<std::string>(value);
        bool ok = dbus_message_iter_open_container(&dict, DBUS_TYPE_DICT_ENTRY, nullptr, &entry) &&
                  dbus_message_iter_append_basic(&entry, DBUS_TYPE_STRING, &key) &&
                  dbus_message_iter_open_container(&entry, DBUS_TYPE_VARIANT, text ? "s" : "u", &variant);
        if (text) {
            const char* s = std::get<std::string>(value).c_str();
            ok = ok && dbus_message_iter_append_basic(&variant, DBUS_TYPE_STRING, &s);
        } else {
            const dbus_uint32_t u = std::get<std::uint32_t>(value);
            ok = ok && dbus_message_iter_append_basic(&variant, DBUS_TYPE_UINT32, &u);
        }
        if (!ok || !dbus_message_iter_close_container(&entry, &variant) ||
            !dbus_message_iter_close_container(&dict, &entry)) {
            return false;
        }
    }
    return dbus_message_iter_close_container(&args, &dict);
}

bool appendPath(DBusMessageIter& args, const std::string& path) {
    const char* value = path.c_str();
    return dbus_message_iter_append_basic(&args, DBUS_TYPE_OBJECT_PATH, &value);
}

BusMessage portalCall(const char* method) {
    return BusMessage(dbus_message_new_method_call(kPortal, kPath, kInterface, method));
}

// The uint32 property `name` of the portal's remote desktop, or nothing.
std::optional<std::uint32_t> property(DBusConnection* bus, const char* name) {
    BusMessage get(dbus_message_new_method_call(kPortal, kPath, DBUS_INTERFACE_PROPERTIES, "Get"));
    if (!get || !dbus_message_append_args(get.get(), DBUS_TYPE_STRING, &kInterface, DBUS_TYPE_STRING, &name,
                                          DBUS_TYPE_INVALID)) {
        return std::nullopt;
    }
    BusError error;
    const BusMessage reply(dbus_connection_send_with_reply_and_block(bus, get.get(), replyLimitMs(), &error.error));
    DBusMessageIter args, variant;
    if (!reply || !dbus_message_iter_init(reply.get(), &args) ||
        dbus_message_iter_get_arg_type(&args) != DBUS_TYPE_VARIANT) {
        return std::nullopt;
    }
    dbus_message_iter_recurse(&args, &variant);
    if (dbus_message_iter_get_arg_type(&variant) != DBUS_TYPE_UINT32) return std::nullopt;
    dbus_uint32_t value = 0;
    dbus_message_iter_get_basic(&variant, &value);
    return value;
}

}  // namespace

std::unique_ptr<PortalKeyboard> PortalKeyboard::open(WaylandDisplay* display) {
    std::unique_ptr<PortalKeyboard> self(new PortalKeyboard(display));
    self->bus_ = openPrivateBus();
    if (!self->bus_) return nullptr;
    const std::optional<std::uint32_t> devices = property(self->bus_.get(), "AvailableDeviceTypes");
    if (!devices || !(*devices & kKeyboard)) return nullptr;
    const std::string rule = "type='signal',sender='" + std::string(kPortal) + "'";
    dbus_bus_add_match(self->bus_.get(), rule.c_str(), nullptr);
    return self;
}

void PortalKeyboard::handle(DBusMessage* message) {
    if (dbus_message_is_signal(message, "org.freedesktop.portal.Request", "Response") &&
        request_ == (dbus_message_get_path(message) != nullptr ? dbus_message_get_path(message) : "")) {
        Answer answer;
        DBusMessageIter args;
        if (!dbus_message_iter_init(message, &args) || dbus_message_iter_get_arg_type(&args) != DBUS_TYPE_UINT32) {
            return;
        }
        dbus_message_iter_get_basic(&args, &answer.response);
        dbus_message_iter_next(&args);
        if (dbus_message_iter_get_arg_type(&args) == DBUS_TYPE_ARRAY) {
            forEachEntry(&args, [&](std::string_view key, DBusMessageIter* variant) {
                const int kind = dbus_message_iter_get_arg_type(variant);
                if (key == "session_handle" && (kind == DBUS_TYPE_STRING || kind == DBUS_TYPE_OBJECT_PATH)) {
                    const char* handle = nullptr;
                    dbus_message_iter_get_basic(variant, &handle);
                    answer.sessionHandle = handle;
                }
            });
        }
        answer_ = std::move(answer);
        request_.clear();
    } else if (dbus_message_is_signal(message, "org.freedesktop.portal.Session", "Closed") &&
               session_ == (dbus_message_get_path(message) != nullptr ? dbus_message_get_path(message) : "")) {
        state_ = State::none;
        session_.clear();
    }
}

bool PortalKeyboard::send(BusMessage message, const std::string& token) {
    std::string sender = dbus_bus_get_unique_name(bus_.get());
    sender.erase(0, 1);  // ":1.42" is "1_42" in the request's path
    for (char& c : sender) c = c == '.' ? '_' : c;
    request_ = std::string(kPath) + "/request/" + sender + "/" + token;
    answer_.reset();
    BusError error;
    const BusMessage reply(
        dbus_connection_send_with_reply_and_block(bus_.get(), message.get(), replyLimitMs(), &error.error));
    if (!reply || dbus_message_get_type(reply.get()) != DBUS_MESSAGE_TYPE_METHOD_RETURN) {
        request_.clear();
        return false;
    }
    return true;
}

std::optional<PortalKeyboard::Answer> PortalKeyboard::awaitResponse(double seconds) {
    const double end = monotonicSeconds() + seconds;
    for (double left = seconds;; left = end - monotonicSeconds()) {
        if (!dbus_connection_read_write(bus_.get(), left > 0 ? static_cast<int>(left * 1000) + 1 : 0)) break;
        while (DBusMessage* raw = dbus_connection_pop_message(bus_.get())) {
            const BusMessage message(raw);
            handle(message.get());
        }
        if (answer_) return std::exchange(answer_, std::nullopt);
        if (monotonicSeconds() >= end) break;
    }
    return std::nullopt;
}

std::string PortalKeyboard::ready() {
    if (state_ == State::asked) {
        // The user's answer, if it has come meanwhile.
        const std::optional<Answer> answer = awaitResponse(0);
        if (!answer) return kAsked;
        if (!allowed(*answer)) return kRefused;
    } else {
        awaitResponse(0);  // a Closed signal, if any
    }
    if (state_ == State::started) return "";

    const double limit = replyLimitMs() / 1000.0;
    const std::string pid = std::to_string(getpid());
    const std::string create = "zeblo" + pid + "c" + std::to_string(++tokens_);
    BusMessage message = portalCall("CreateSession");
    DBusMessageIter args;
    if (!message) return kNoSession;
    dbus_message_iter_init_append(message.get(), &args);
    if (!appendOptions(args, {{"handle_token", create}, {"session_handle_token", "zeblo" + pid + "s" + create}}) ||
        !send(std::move(message), create)) {
        return kNoSession;
    }
    std::optional<Answer> created = awaitResponse(limit);
    if (!created || created->response != 0 || created->sessionHandle.empty()) return kNoSession;
    session_ = created->sessionHandle;

    const std::string select = "zeblo" + pid + "d" + std::to_string(++tokens_);
    message = portalCall("SelectDevices");
    if (!message) return kNoSession;
    dbus_message_iter_init_append(message.get(), &args);
    if (!appendPath(args, session_) || !appendOptions(args, {{"handle_token", select}, {"types", kKeyboard}}) ||
        !send(std::move(message), select)) {
        return kNoSession;
    }
    const std::optional<Answer> selected = awaitResponse(limit);
    if (!selected || selected->response != 0) return kNoSession;

    // Start shows the portal's dialog; the user's answer may take long.
    const std::string start = "zeblo" + pid + "s" + std::to_string(++tokens_);
    message = portalCall("Start");
    if (!message) return kNoSession;
    dbus_message_iter_init_append(message.get(), &args);
    const char* parent = "";
    if (!appendPath(args, session_) || !dbus_message_iter_append_basic(&args, DBUS_TYPE_STRING, &parent) ||
        !appendOptions(args, {{"handle_token", start}}) || !send(std::move(message), start)) {
        return kNoSession;
    }
    state_ = State::asked;
    const std::optional<Answer> answer = awaitResponse(limit);
    if (!answer) return kAsked;
    return allowed(*answer) ? "" : kRefused;
}

bool PortalKeyboard::allowed(const Answer& answer) {
    if (answer.response != 0) {
        state_ = State::none;
        return false;
    }
    state_ = State::started;
    // The compositor makes the session's keyboard at its first key (mutter
    // does), and a seat that had none gets one then, which its clients take
    // a moment to ask for: a keysym no key gives (NoSymbol) makes it, then
    // the keyboard settles.
    keysym(0, true);
    keysym(0, false);
    if (display_ != nullptr) {
        display_->dispatchUntil([&] { return display_->seatHasKeyboard(); }, monotonicSeconds() + 1.0);
        display_->roundtrip(1.0);
    }
    usleep(static_cast<useconds_t>(kSettleSeconds * 1e6));
    return true;
}

void PortalKeyboard::keysym(KeySym sym, bool down) {
    BusMessage message = portalCall("NotifyKeyboardKeysym");
    if (!message || session_.empty()) return;
    DBusMessageIter args;
    dbus_message_iter_init_append(message.get(), &args);
    const dbus_int32_t value = static_cast<dbus_int32_t>(sym);
    const dbus_uint32_t state = down ? 1 : 0;
    if (!appendPath(args, session_) || !appendOptions(args, {}) ||
        !dbus_message_iter_append_basic(&args, DBUS_TYPE_INT32, &value) ||
        !dbus_message_iter_append_basic(&args, DBUS_TYPE_UINT32, &state)) {
        return;
    }
    dbus_message_set_no_reply(message.get(), TRUE);
    dbus_connection_send(bus_.get(), message.get(), nullptr);
    dbus_connection_flush(bus_.get());
}

}  // namespace zeblo::platform::linux_desktop
