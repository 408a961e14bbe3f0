// The AT-SPI messages behind a survey (survey.h) as they travel on the bus:
// the reply of Cache.GetItems decoded into items, and the calls that read
// one object the cache does not hold (or, for an application without
// GetItems, any object) and the item their answers describe.
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

// The calls that read one object of an application that gives an object's
// properties in one answer (Properties.GetAll): its role, its name,
// description, parent and child count at once, its states and its
// interfaces. Its children are then the objects under the walk's root that
// name it as their parent, so no child list is asked for. Qt's
// applications must never get GetAll: they fall over on it (they read a
// second argument that it does not have).
inline constexpr std::size_t kCallsPerObjectWithProperties = 4;
void appendPropertyCalls(std::vector<Message>& calls, const char* bus, const char* path);

// The item the answers to appendPropertyCalls' calls describe (its parent
// and child count set, its children not), or nothing when the object is gone
// or answers oddly.
std::optional<Survey::Item> itemFromPropertyAnswers(const Message* answers);

}  // namespace zeblo::platform::linux_desktop
