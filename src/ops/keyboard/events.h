// Small helpers shared by the keyboard operations for creating, marking and
// posting keyboard events.
#pragma once

#include <cstdint>
#include <string_view>

#include "platform/platform.h"

namespace zeblo::keyboard {

// A new event source in the HID system state; null when none can be made.
platform::EventSource hidEventSource();

// Creates a key event from `source` (null: no source); throws the keystroke
// failure `message` when none is created.
platform::Event keyEvent(const platform::EventSource* source, std::uint16_t keyCode, bool down,
                         std::string_view message);

// Writes the library's marker into the event's user-data field.
void mark(const platform::Event& event);

// Posts the event at the HID event tap.
void post(const platform::Event& event);

}  // namespace zeblo::keyboard
