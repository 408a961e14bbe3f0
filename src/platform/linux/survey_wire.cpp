// Decoding and encoding the survey's messages (survey_wire.h).
#include "platform/linux/survey_wire.h"

#include <dbus/dbus.h>

#include <cstring>

#include "platform/linux/private_bus.h"

namespace zeblo::platform::linux_desktop {
namespace {

// The reply of GetItems since AT-SPI 2.34: for every object its reference,
// its application's and parent's references, index in parent, child count,
// interfaces, name, role, description and the two words of its state set.
constexpr const char* kItemsSignature = "a((so)(so)(so)iiassusau)";

// Reads an "(so)" reference at `it` and advances past it; gives the path.
std::string readReference(DBusMessageIter* it) {
    DBusMessageIter ref;
    dbus_message_iter_recurse(it, &ref);
    dbus_message_iter_next(&ref);  // the bus name
    const char* path = nullptr;
    dbus_message_iter_get_basic(&ref, &path);
    dbus_message_iter_next(it);
    return path != nullptr ? path : "";
}

template <class T>
T readBasic(DBusMessageIter* it) {
    T value{};
    dbus_message_iter_get_basic(it, &value);
    dbus_message_iter_next(it);
    return value;
}

std::string readString(DBusMessageIter* it) {
    const char* text = readBasic<const char*>(it);
    return text != nullptr ? text : "";
}

// Notes on `item` the interfaces that a walk asks about.
void noteInterface(Survey::Item& item, const std::string& interface) {
    item.hasAction |= interface == "org.a11y.atspi.Action";
    item.hasText |= interface == "org.a11y.atspi.Text";
    item.hasComponent |= interface == "org.a11y.atspi.Component";
    item.hasEditableText |= interface == "org.a11y.atspi.EditableText";
}

// Notes on `item` its state set (GetState's words) and its interfaces.
void noteStatesAndInterfaces(Survey::Item& item, const std::vector<std::uint32_t>& states,
                             const std::vector<std::string>& interfaces) {
    for (std::size_t word = 0; word < 2 && word < states.size(); ++word) {
        item.states |= std::uint64_t{states[word]} << (32 * word);
    }
    for (const std::string& interface : interfaces) noteInterface(item, interface);
}

}  // namespace

std::optional<std::vector<std::pair<std::string, Survey::Item>>> decodeItems(const Message& answer) {
    if (!answer || dbus_message_get_type(answer.get()) != DBUS_MESSAGE_TYPE_METHOD_RETURN) return std::nullopt;
    const char* signature = dbus_message_get_signature(answer.get());
    if (signature == nullptr || std::strcmp(signature, kItemsSignature) != 0) return std::nullopt;
    std::vector<std::pair<std::string, Survey::Item>> out;
    DBusMessageIter it, array;
    dbus_message_iter_init(answer.get(), &it);
    dbus_message_iter_recurse(&it, &array);
    while (dbus_message_iter_get_arg_type(&array) == DBUS_TYPE_STRUCT) {
        DBusMessageIter field;
        dbus_message_iter_recurse(&array, &field);
        std::string path = readReference(&field);
        readReference(&field);  // the application
        Survey::Item item;
        item.parentPath = readReference(&field);
        readBasic<dbus_int32_t>(&field);  // the index in the parent
        item.childCount = readBasic<dbus_int32_t>(&field);
        DBusMessageIter interfaces;
        dbus_message_iter_recurse(&field, &interfaces);
        while (dbus_message_iter_get_arg_type(&interfaces) == DBUS_TYPE_STRING) {
            noteInterface(item, readString(&interfaces));
        }
        dbus_message_iter_next(&field);
        item.name = readString(&field);
        item.role = static_cast<AtspiRole>(readBasic<dbus_uint32_t>(&field));
        item.description = readString(&field);
        DBusMessageIter states;
        dbus_message_iter_recurse(&field, &states);
        for (int word = 0; word < 2 && dbus_message_iter_get_arg_type(&states) == DBUS_TYPE_UINT32; ++word) {
            item.states |= std::uint64_t{readBasic<dbus_uint32_t>(&states)} << (32 * word);
        }
        out.emplace_back(std::move(path), std::move(item));
        dbus_message_iter_next(&array);
    }
    return out;
}

void appendObjectCalls(std::vector<Message>& calls, const char* bus, const char* path) {
    calls.push_back(methodCall(bus, path, kAccessibleInterface, "GetRole"));
    calls.push_back(propertyCall(bus, path, kAccessibleInterface, "Name"));
    calls.push_back(propertyCall(bus, path, kAccessibleInterface, "Description"));
    calls.push_back(methodCall(bus, path, kAccessibleInterface, "GetState"));
    calls.push_back(methodCall(bus, path, kAccessibleInterface, "GetInterfaces"));
    calls.push_back(methodCall(bus, path, kAccessibleInterface, "GetChildren"));
}

std::optional<Survey::Item> itemFromAnswers(const Message* answer) {
    dbus_uint32_t role = 0;
    const char* name = stringAnswer(answer[1]);
    const char* description = stringAnswer(answer[2]);
    const auto states = uint32sAnswer(answer[3]);
    const auto interfaces = stringsAnswer(answer[4]);
    if (!uint32Answer(answer[0], &role) || name == nullptr || description == nullptr || !states || !interfaces) {
        return std::nullopt;
    }
    Survey::Item item;
    item.role = static_cast<AtspiRole>(role);
    item.name = name;
    item.description = description;
    noteStatesAndInterfaces(item, *states, *interfaces);
    item.childCount = -1;
    return item;
}

void appendPropertyCalls(std::vector<Message>& calls, const char* bus, const char* path) {
    calls.push_back(methodCall(bus, path, kAccessibleInterface, "GetRole"));
    Message all = methodCall(bus, path, "org.freedesktop.DBus.Properties", "GetAll");
    if (all && !dbus_message_append_args(all.get(), DBUS_TYPE_STRING, &kAccessibleInterface, DBUS_TYPE_INVALID)) {
        all.reset();
    }
    calls.push_back(std::move(all));
    calls.push_back(methodCall(bus, path, kAccessibleInterface, "GetState"));
    calls.push_back(methodCall(bus, path, kAccessibleInterface, "GetInterfaces"));
}

std::optional<Survey::Item> itemFromPropertyAnswers(const Message* answer) {
    dbus_uint32_t role = 0;
    const auto states = uint32sAnswer(answer[2]);
    const auto interfaces = stringsAnswer(answer[3]);
    const Message& properties = answer[1];
    if (!uint32Answer(answer[0], &role) || !states || !interfaces || !properties ||
        dbus_message_get_type(properties.get()) != DBUS_MESSAGE_TYPE_METHOD_RETURN ||
        std::strcmp(dbus_message_get_signature(properties.get()), "a{sv}") != 0) {
        return std::nullopt;
    }
    Survey::Item item;
    item.role = static_cast<AtspiRole>(role);
    item.childCount = -1;
    bool named = false, described = false;
    DBusMessageIter it;
    dbus_message_iter_init(properties.get(), &it);
    forEachEntry(&it, [&](std::string_view key, DBusMessageIter* value) {
        const int type = dbus_message_iter_get_arg_type(value);
        if (key == "Name" && type == DBUS_TYPE_STRING) {
            item.name = readString(value);
            named = true;
        } else if (key == "Description" && type == DBUS_TYPE_STRING) {
            item.description = readString(value);
            described = true;
        } else if (key == "ChildCount" && type == DBUS_TYPE_INT32) {
            item.childCount = readBasic<dbus_int32_t>(value);
        } else if (key == "Parent" && type == DBUS_TYPE_STRING) {  // the (so) reference, opened
            dbus_message_iter_next(value);
            if (dbus_message_iter_get_arg_type(value) == DBUS_TYPE_OBJECT_PATH) item.parentPath = readString(value);
        }
    });
    if (!named || !described) return std::nullopt;
    noteStatesAndInterfaces(item, *states, *interfaces);
    return item;
}

}  // namespace zeblo::platform::linux_desktop
