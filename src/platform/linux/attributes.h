// The attribute reads of one element, split by family: each family answers
// the attributes it knows and gives nothing for the others. The dispatch
// (LinuxPlatform::readAttribute, linux_attributes.cpp) asks them in turn.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/linux_platform.h"

namespace zeblo::platform::linux_desktop {

// One read of an AT-SPI element (a node of the accessible kind).
struct Reading {
    LinuxPlatform& platform;
    Node& node;
    AtspiAccessible* object;  // node.object
    AtspiRole role;           // roleOf(node), never invalid
    // What the walk's survey knows of the node while it is current, or null:
    // names, descriptions and states then come from it.
    const Survey::Item* item;

    bool has(AtspiStateType state) const;
    std::string name(bool* good = nullptr) const;
    // Whether the node is a heading or paragraph with child elements (the
    // inline parts of a web page): it gives no title of its own.
    bool textInChildren() const;
    // The number of children, from the survey when it knows them; -1 when
    // the node does not answer.
    int childCount() const;
};

inline AttributeRead ok(Value value) { return {kAXErrorSuccess, std::move(value)}; }
inline AttributeRead unsupported() { return {kAXErrorAttributeUnsupported, {}}; }
inline AttributeRead noValue() { return {kAXErrorNoValue, {}}; }

bool isMenuItemRole(AtspiRole role);

// "AXRole", "AXTitle", "AXDescription" (attributes_identity.cpp).
std::optional<AttributeRead> readIdentity(const Reading& r, std::string_view attribute);
// "AXValue" (attributes_value.cpp).
std::optional<AttributeRead> readValue(const Reading& r, std::string_view attribute);
// "AXEnabled" and menu items' marks and key equivalents (attributes_state.cpp).
std::optional<AttributeRead> readState(const Reading& r, std::string_view attribute);
// "AXChildren", an application's windows, menu bar and focus, a combo box's
// menu, a window's close button (attributes_tree.cpp).
std::optional<AttributeRead> readTree(const Reading& r, std::string_view attribute);
// The system-wide element's "AXFocusedUIElement" (attributes_tree.cpp).
AttributeRead readSystemWide(LinuxPlatform& p, std::string_view attribute);

}  // namespace zeblo::platform::linux_desktop
