// Batches of D-Bus calls and the reading of their simple answers.
#include "platform/linux/bus_batch.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <unordered_map>
#include <utility>

#include "platform/reply_limit.h"

namespace zeblo::platform::linux_desktop {

namespace {

// The first argument of `answer`, looked at through one variant; false when
// the answer is missing or an error.
bool firstArgument(const Message& answer, int type, void* value) {
    if (!answer || dbus_message_get_type(answer.get()) != DBUS_MESSAGE_TYPE_METHOD_RETURN) return false;
    DBusMessageIter it;
    if (!dbus_message_iter_init(answer.get(), &it)) return false;
    DBusMessageIter inner;
    if (dbus_message_iter_get_arg_type(&it) == DBUS_TYPE_VARIANT) {
        dbus_message_iter_recurse(&it, &inner);
        it = inner;
    }
    if (dbus_message_iter_get_arg_type(&it) != type) return false;
    dbus_message_iter_get_basic(&it, value);
    return true;
}

// Reads the elements of an answer whose whole signature is `signature` (an
// array); false when it is another.
template <class Read>
bool eachElement(const Message& answer, const char* signature, Read read) {
    if (!answer || dbus_message_get_type(answer.get()) != DBUS_MESSAGE_TYPE_METHOD_RETURN) return false;
    const char* actual = dbus_message_get_signature(answer.get());
    if (actual == nullptr || std::strcmp(actual, signature) != 0) return false;
    DBusMessageIter it, element;
    dbus_message_iter_init(answer.get(), &it);
    dbus_message_iter_recurse(&it, &element);
    for (; dbus_message_iter_get_arg_type(&element) != DBUS_TYPE_INVALID; dbus_message_iter_next(&element)) {
        read(&element);
    }
    return true;
}

const char* basicString(DBusMessageIter* it) {
    const char* text = nullptr;
    dbus_message_iter_get_basic(it, &text);
    return text != nullptr ? text : "";
}

}  // namespace

Message methodCall(const char* destination, const char* path, const char* interface, const char* member) {
    if (destination == nullptr || path == nullptr || !dbus_validate_path(path, nullptr)) return nullptr;
    return Message(dbus_message_new_method_call(destination, path, interface, member));
}

Message propertyCall(const char* destination, const char* path, const char* interface, const char* property) {
    Message call = methodCall(destination, path, "org.freedesktop.DBus.Properties", "Get");
    if (call && !dbus_message_append_args(call.get(), DBUS_TYPE_STRING, &interface, DBUS_TYPE_STRING, &property,
                                          DBUS_TYPE_INVALID)) {
        call.reset();
    }
    return call;
}

namespace {

// The answers of one batch as they come: a filter on the connection takes
// every reply whose serial is one of the batch's calls. Replies do not go
// through pending calls: each of those adds a timeout to the connection,
// which libatspi's main loop binding keeps in a list that every removal
// scans (an eighth of a 6,000-call batch went there).
class Catcher {
public:
    Catcher(DBusConnection* bus, std::vector<Message>& answers) : bus_(bus), answers_(answers) {
        added_ = dbus_connection_add_filter(bus_, &Catcher::filter, this, nullptr) != 0;
    }
    ~Catcher() {
        if (added_) dbus_connection_remove_filter(bus_, &Catcher::filter, this);
    }
    Catcher(const Catcher&) = delete;
    Catcher& operator=(const Catcher&) = delete;

    bool added() const { return added_; }
    // Waits for the answer to the call of `index`, sent as `serial`.
    void expect(dbus_uint32_t serial, std::size_t index) { waiting_.emplace(serial, index); }
    // A call no longer waited for: a late answer is dropped.
    void forget(dbus_uint32_t serial) { waiting_.erase(serial); }
    bool waiting(dbus_uint32_t serial) const { return waiting_.count(serial) != 0; }

private:
    static DBusHandlerResult filter(DBusConnection*, DBusMessage* message, void* data) {
        auto* self = static_cast<Catcher*>(data);
        const int type = dbus_message_get_type(message);
        if (type != DBUS_MESSAGE_TYPE_METHOD_RETURN && type != DBUS_MESSAGE_TYPE_ERROR) {
            return DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
        }
        const auto found = self->waiting_.find(dbus_message_get_reply_serial(message));
        if (found == self->waiting_.end()) return DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
        self->answers_[found->second] = Message(dbus_message_ref(message));
        self->waiting_.erase(found);
        return DBUS_HANDLER_RESULT_HANDLED;
    }

    DBusConnection* bus_;
    std::vector<Message>& answers_;
    std::unordered_map<dbus_uint32_t, std::size_t> waiting_;
    bool added_ = false;
};

}  // namespace

std::vector<Message> callAll(DBusConnection* bus, const std::vector<Message>& calls, const std::vector<int>& limitsMs) {
    std::vector<Message> answers(calls.size());
    if (bus == nullptr) return answers;
    Catcher catcher(bus, answers);
    if (!catcher.added()) return answers;
    // At most this many calls wait for answers at once, well below the
    // buses' limit on pending replies per connection.
    constexpr std::size_t kInFlight = 4096;
    using Clock = std::chrono::steady_clock;
    std::vector<dbus_uint32_t> serials;
    std::vector<Clock::time_point> due;
    for (std::size_t first = 0; first < calls.size(); first += kInFlight) {
        const std::size_t end = std::min(calls.size(), first + kInFlight);
        serials.assign(end - first, 0);
        due.assign(end - first, {});
        const Clock::time_point sent = Clock::now();
        for (std::size_t i = first; i < end; ++i) {
            const int limit = limitsMs.empty() ? replyLimitMs() : limitsMs[i];
            due[i - first] = sent + std::chrono::milliseconds(limit);
            dbus_uint32_t serial = 0;
            if (calls[i] && dbus_connection_send(bus, calls[i].get(), &serial)) {
                serials[i - first] = serial;
                catcher.expect(serial, i);
            }
        }
        dbus_connection_flush(bus);
        // One wait for the whole batch, each call up to its own limit counted
        // from the send (blocking on each call in turn would add the limits
        // of the calls that go unanswered). `open` is the first call still
        // waiting; the ones before it are answered or past their deadline.
        std::size_t open = 0;
        for (;;) {
            const Clock::time_point now = Clock::now();
            while (open < serials.size() && (serials[open] == 0 || !catcher.waiting(serials[open]) || due[open] <= now)) {
                ++open;
            }
            if (open == serials.size()) break;
            const auto wait = std::chrono::ceil<std::chrono::milliseconds>(due[open] - now).count();
            if (!dbus_connection_read_write_dispatch(bus, static_cast<int>(wait))) break;  // disconnected
        }
        for (const dbus_uint32_t serial : serials) catcher.forget(serial);
    }
    return answers;
}

const char* stringAnswer(const Message& answer) {
    const char* text = nullptr;
    return firstArgument(answer, DBUS_TYPE_STRING, &text) ? text : nullptr;
}

bool int32Answer(const Message& answer, dbus_int32_t* value) { return firstArgument(answer, DBUS_TYPE_INT32, value); }

bool uint32Answer(const Message& answer, dbus_uint32_t* value) {
    return firstArgument(answer, DBUS_TYPE_UINT32, value);
}

std::optional<std::vector<Reference>> referencesAnswer(const Message& answer) {
    std::vector<Reference> out;
    const bool read = eachElement(answer, "a(so)", [&](DBusMessageIter* element) {
        DBusMessageIter field;
        dbus_message_iter_recurse(element, &field);
        Reference& reference = out.emplace_back();
        reference.first = basicString(&field);
        dbus_message_iter_next(&field);
        reference.second = basicString(&field);
    });
    if (!read) return std::nullopt;
    return out;
}

std::optional<std::vector<std::uint32_t>> uint32sAnswer(const Message& answer) {
    std::vector<std::uint32_t> out;
    const bool read = eachElement(answer, "au", [&](DBusMessageIter* element) {
        dbus_uint32_t word = 0;
        dbus_message_iter_get_basic(element, &word);
        out.push_back(word);
    });
    if (!read) return std::nullopt;
    return out;
}

std::optional<std::vector<std::string>> stringsAnswer(const Message& answer) {
    std::vector<std::string> out;
    const bool read =
        eachElement(answer, "as", [&](DBusMessageIter* element) { out.emplace_back(basicString(element)); });
    if (!read) return std::nullopt;
    return out;
}

bool booleanAnswer(const Message& answer, bool* value) {
    dbus_bool_t b = FALSE;
    if (!firstArgument(answer, DBUS_TYPE_BOOLEAN, &b)) return false;
    *value = b != FALSE;
    return true;
}

bool isErrorAnswer(const Message& answer) {
    return answer && dbus_message_get_type(answer.get()) == DBUS_MESSAGE_TYPE_ERROR;
}

std::optional<std::array<std::int32_t, 4>> rectangleAnswer(const Message& answer) {
    if (!answer || dbus_message_get_type(answer.get()) != DBUS_MESSAGE_TYPE_METHOD_RETURN) return std::nullopt;
    const char* signature = dbus_message_get_signature(answer.get());
    if (signature == nullptr || std::strcmp(signature, "(iiii)") != 0) return std::nullopt;
    DBusMessageIter it, field;
    dbus_message_iter_init(answer.get(), &it);
    dbus_message_iter_recurse(&it, &field);
    std::array<std::int32_t, 4> rectangle{};
    for (std::int32_t& value : rectangle) {
        dbus_int32_t word = 0;
        dbus_message_iter_get_basic(&field, &word);
        value = word;
        dbus_message_iter_next(&field);
    }
    return rectangle;
}

}  // namespace zeblo::platform::linux_desktop
