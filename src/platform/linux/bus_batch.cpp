// Batches of D-Bus calls and the reading of their simple answers.
#include "platform/linux/bus_batch.h"

#include <utility>

namespace zeblo::platform::linux_desktop {

namespace {

constexpr int kReplyTimeoutMs = 5000;

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

std::vector<Message> callAll(DBusConnection* bus, const std::vector<Message>& calls) {
    std::vector<Message> answers(calls.size());
    if (bus == nullptr) return answers;
    std::vector<DBusPendingCall*> pending(calls.size(), nullptr);
    for (std::size_t i = 0; i < calls.size(); ++i) {
        if (!calls[i] || !dbus_connection_send_with_reply(bus, calls[i].get(), &pending[i], kReplyTimeoutMs)) {
            pending[i] = nullptr;
        }
    }
    dbus_connection_flush(bus);
    for (std::size_t i = 0; i < calls.size(); ++i) {
        if (pending[i] == nullptr) continue;
        dbus_pending_call_block(pending[i]);
        answers[i] = Message(dbus_pending_call_steal_reply(pending[i]));
        dbus_pending_call_unref(pending[i]);
    }
    return answers;
}

const char* stringAnswer(const Message& answer) {
    const char* text = nullptr;
    return firstArgument(answer, DBUS_TYPE_STRING, &text) ? text : nullptr;
}

bool int32Answer(const Message& answer, dbus_int32_t* value) {
    return firstArgument(answer, DBUS_TYPE_INT32, value);
}

bool uint32Answer(const Message& answer, dbus_uint32_t* value) {
    return firstArgument(answer, DBUS_TYPE_UINT32, value);
}

}  // namespace zeblo::platform::linux_desktop
