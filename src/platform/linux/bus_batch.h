// D-Bus calls sent together: every call of a batch is sent before the first
// answer is awaited, so a batch costs about one round trip, not one per call.
#pragma once

#include <dbus/dbus.h>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/owned.h"

namespace zeblo::platform::linux_desktop {

// A method call, or null when it cannot be made.
Message methodCall(const char* destination, const char* path, const char* interface, const char* member);

// A Properties.Get call for `property` of `interface` on `path`.
Message propertyCall(const char* destination, const char* path, const char* interface, const char* property);

// Sends `calls` on `bus` and waits for all the answers. The answers stand in
// the order of the calls; an answer is null where the call was null, could
// not be sent, failed or timed out. Each call waits at most its entry of
// `limitsMs` (milliseconds), or the reply limit (reply_limit.h) when
// `limitsMs` is empty; all wait at once, so the batch waits at most the
// largest of them.
std::vector<Message> callAll(DBusConnection* bus, const std::vector<Message>& calls,
                             const std::vector<int>& limitsMs = {});

// The first argument of a successful answer, when it has the given basic
// type (or is a variant holding it); null otherwise.
const char* stringAnswer(const Message& answer);
bool int32Answer(const Message& answer, dbus_int32_t* value);
bool uint32Answer(const Message& answer, dbus_uint32_t* value);

// The first argument of a successful answer as an array: of object
// references (bus name, path), of 32-bit words, or of strings. Nothing when
// the answer is missing, an error or of another signature.
using Reference = std::pair<std::string, std::string>;
std::optional<std::vector<Reference>> referencesAnswer(const Message& answer);
std::optional<std::vector<std::uint32_t>> uint32sAnswer(const Message& answer);
std::optional<std::vector<std::string>> stringsAnswer(const Message& answer);
bool booleanAnswer(const Message& answer, bool* value);
// Whether `answer` came and is an error (a refusal, not a silence).
bool isErrorAnswer(const Message& answer);
// A successful answer that is one structure of four 32-bit integers (a
// rectangle: x, y, width, height); nothing otherwise.
std::optional<std::array<std::int32_t, 4>> rectangleAnswer(const Message& answer);

}  // namespace zeblo::platform::linux_desktop
