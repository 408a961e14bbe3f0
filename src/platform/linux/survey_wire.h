// The AT-SPI messages behind a survey (survey.h) as they travel on the bus:
// the reply of Cache.GetItems decoded into items, and, for an application
// without GetItems, the calls that read one object and the item their
// answers describe.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/bus_batch.h"
#include "platform/linux/survey.h"

namespace zeblo::platform::linux_desktop {

inline constexpr const char* kAccessibleInterface = "org.a11y.atspi.Accessible";

// The items of a GetItems reply by object path (their children not set), or
// nothing when `answer` is no such reply: no answer, an error, or a layout
// older or newer than AT-SPI 2.34's.
std::optional<std::vector<std::pair<std::string, Survey::Item>>> decodeItems(const Message& answer);

// The calls that read one object without GetItems: what GetItems gives of
// it, and its child list (the last).
inline constexpr std::size_t kCallsPerObject = 6;
void appendObjectCalls(std::vector<Message>& calls, const char* bus, const char* path);

// The item the answers to appendObjectCalls' calls describe (its parent and
// children not set), or nothing when the object is gone or answers oddly.
std::optional<Survey::Item> itemFromAnswers(const Message* answers);

}  // namespace zeblo::platform::linux_desktop
