// Elements and attributes over libatspi: the dispatch of attribute reads to
// their families (attributes.h) and the attribute names of an element. The
// mapping from AT-SPI roles, states and interfaces to the attribute names the
// library reads is in docs/linux-backend.md.
#include "platform/linux/accessible.h"
#include "platform/ax_names.h"
#include "platform/linux/attributes.h"

namespace zeblo::platform::linux_desktop {

AttributeRead LinuxPlatform::readAttribute(Node& node, std::string_view attribute) {
    if (node.kind == Node::Kind::application && !node.object) return {kAXErrorCannotComplete, {}};
    if (node.kind == Node::Kind::systemWide) return readSystemWide(*this, attribute);
    if (node.kind == Node::Kind::closeButton) {
        if (attribute == ax::kRoleAttribute) return ok(std::string(ax::kButtonRole));
        if (attribute == ax::kEnabledAttribute) return ok(true);
        return unsupported();
    }

    bool answered = true;
    const AtspiRole role = roleOf(node, &answered);
    if (role == ATSPI_ROLE_INVALID) return {answered ? kAXErrorInvalidUIElement : kAXErrorCannotComplete, {}};
    const Reading reading{*this, node, node.object.get(), role, surveyed(node)};
    for (const auto family : {readIdentity, readValue, readState, readTree}) {
        if (std::optional<AttributeRead> read = family(reading, attribute)) return std::move(*read);
    }
    return unsupported();
}

AttributeRead LinuxPlatform::copyAttributeValue(const Element& element, std::string_view attribute) {
    const auto locked = guard();
    Node* n = node(element);
    if (n == nullptr) return {kAXErrorIllegalArgument, {}};
    try {
        return readAttribute(*n, attribute);
    } catch (...) {
        return {kAXErrorFailure, {}};
    }
}

std::optional<Frame> LinuxPlatform::frameOf(const Element& element) {
    const auto locked = guard();
    Node* n = node(element);
    if (n == nullptr || n->kind != Node::Kind::accessible) return std::nullopt;
    try {
        // A walk's elements from its survey, all asked for at once.
        std::optional<Box> box = surveyed(*n) != nullptr ? n->survey->box(n->object.get()) : std::nullopt;
        if (!box) box = boxOf(n->object.get());
        if (!box) return std::nullopt;
        return Frame{static_cast<double>(box->x), static_cast<double>(box->y), static_cast<double>(box->width),
                     static_cast<double>(box->height)};
    } catch (...) {
        return std::nullopt;
    }
}

NamesRead LinuxPlatform::copyAttributeNames(const Element& element) {
    const auto locked = guard();
    Node* n = node(element);
    if (n == nullptr) return {kAXErrorIllegalArgument, std::nullopt};
    std::vector<std::string> names{ax::kRoleAttribute};
    if (n->kind == Node::Kind::systemWide)
        return {kAXErrorSuccess, std::vector<std::string>{ax::kFocusedUIElementAttribute}};
    if (n->kind != Node::Kind::accessible) return {kAXErrorSuccess, names};
    const AtspiRole role = roleOf(*n);
    if (role == ATSPI_ROLE_INVALID) return {kAXErrorInvalidUIElement, std::nullopt};
    for (const char* name :
         {ax::kTitleAttribute, ax::kDescriptionAttribute, ax::kEnabledAttribute, ax::kChildrenAttribute})
        names.emplace_back(name);
    if (isToggleRole(role) || isTextRole(role) || isTextBlockRole(role) || role == ATSPI_ROLE_LABEL ||
        role == ATSPI_ROLE_COMBO_BOX)
        names.emplace_back(ax::kValueAttribute);
    if (role == ATSPI_ROLE_APPLICATION) {
        for (const char* name : {ax::kWindowsAttribute, ax::kFocusedWindowAttribute, ax::kMenuBarAttribute,
                                 ax::kFocusedUIElementAttribute})
            names.emplace_back(name);
    }
    if (isMenuItemRole(role)) {
        for (const char* name :
             {ax::kMenuItemMarkCharAttribute, ax::kMenuItemCmdCharAttribute, ax::kMenuItemCmdModifiersAttribute})
            names.emplace_back(name);
    }
    if (role == ATSPI_ROLE_COMBO_BOX) names.emplace_back(ax::kMenuAttribute);
    if (isWindowRole(role)) names.emplace_back(ax::kCloseButtonAttribute);
    return {kAXErrorSuccess, std::move(names)};
}

}  // namespace zeblo::platform::linux_desktop
