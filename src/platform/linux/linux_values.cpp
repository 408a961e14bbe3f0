// Settable values: "AXValue" is written through the EditableText interface
// (text), the Value interface (a slider's position) or by toggling a check
// box until it shows the wanted state; "AXFocused", "AXSelected" and
// "AXExpanded" give an element the focus, select it in its parent, expand or
// collapse it.
#include <chrono>

#include "platform/ax_names.h"
#include "platform/linux/accessible.h"
#include "platform/linux/linux_actions.h"
#include "platform/linux/linux_platform.h"

namespace zeblo::platform::linux_desktop {

namespace {

// Selects `object` among its parent's children (a tab, a list row).
AXError select(AtspiAccessible* object) {
    if (!hasState(object, ATSPI_STATE_SELECTABLE)) return kAXErrorActionUnsupported;
    Error error;
    const AccessibleRef parent = AccessibleRef::adopt(atspi_accessible_get_parent(object, out(error)));
    const int index = error ? -1 : atspi_accessible_get_index_in_parent(object, out(error));
    const Ref<AtspiSelection> selection =
        parent ? Ref<AtspiSelection>::adopt(atspi_accessible_get_selection_iface(parent.get())) : Ref<AtspiSelection>();
    if (!selection || index < 0) return kAXErrorActionUnsupported;
    const auto start = std::chrono::steady_clock::now();
    const gboolean done = atspi_selection_select_child(selection.get(), index, out(error));
    return outcome(start, error != nullptr, done);
}

// Expands or collapses `object` through its own action; done when its
// expanded state is the wanted one already.
AXError expand(LinuxPlatform& p, AtspiAccessible* object, bool wanted) {
    if (!hasState(object, ATSPI_STATE_EXPANDABLE)) return kAXErrorActionUnsupported;
    if (hasState(object, ATSPI_STATE_EXPANDED) == wanted) return kAXErrorSuccess;
    if (const int index = actionIndex(object, {"expand or contract", wanted ? "expand" : "collapse", "toggle"});
        index >= 0) {
        return doAction(object, index);
    }
    return pressOrTwin(p, object);
}

}  // namespace

AXError LinuxPlatform::setAttributeValue(const Element& element, std::string_view attribute, const SetValue& value) {
    const auto locked = guard();
    touch();
    Node* n = node(element);
    if (n == nullptr || n->kind != Node::Kind::accessible) return kAXErrorIllegalArgument;
    try {
        if (const auto* flag = std::get_if<bool>(&value)) {
            AtspiAccessible* object = n->object.get();
            if (attribute == ax::kFocusedAttribute) return *flag ? focus(*this, object) : kAXErrorAttributeUnsupported;
            if (attribute == ax::kSelectedAttribute) return *flag ? select(object) : kAXErrorAttributeUnsupported;
            if (attribute == ax::kExpandedAttribute) return expand(*this, object, *flag);
            return kAXErrorAttributeUnsupported;
        }
    } catch (...) {
        return kAXErrorFailure;
    }
    if (attribute != ax::kValueAttribute) return kAXErrorAttributeUnsupported;
    const AtspiRole role = roleOf(*n);
    if (const auto* text = std::get_if<std::string>(&value)) {
        if (!isTextRole(role)) return kAXErrorAttributeUnsupported;
        const Ref<AtspiEditableText> editable =
            Ref<AtspiEditableText>::adopt(atspi_accessible_get_editable_text_iface(n->object.get()));
        if (!editable) {
            // A field that only takes keys (a web page's input) is typed into
            // while it has the focus and is empty. Its old text is never
            // erased by keys: Chromium, where such fields are, comes down on
            // a deletion or caret move while accessibility is on.
            if (!hasState(n->object.get(), ATSPI_STATE_EDITABLE) || !hasState(n->object.get(), ATSPI_STATE_FOCUSED)) {
                return kAXErrorAttributeUnsupported;
            }
            const Ref<AtspiText> old = Ref<AtspiText>::adopt(atspi_accessible_get_text_iface(n->object.get()));
            Error error;
            const gint length = old ? atspi_text_get_character_count(old.get(), out(error)) : 0;
            if (error || length != 0) {
                log("setAXValue: the field's text cannot be replaced, only typed into while it is empty");
                return kAXErrorFailure;
            }
            return typeIntoEmptyField(*text) ? kAXErrorSuccess : kAXErrorFailure;
        }
        Error error;
        const auto start = std::chrono::steady_clock::now();
        const gboolean done = atspi_editable_text_set_text_contents(editable.get(), text->c_str(), out(error));
        return outcome(start, error != nullptr, done);
    }
    const std::int64_t wanted = std::get<std::int64_t>(value);
    if (!isToggleRole(role)) {
        // A position (a slider's).
        const Ref<AtspiValue> position = Ref<AtspiValue>::adopt(atspi_accessible_get_value_iface(n->object.get()));
        if (!position) return kAXErrorAttributeUnsupported;
        Error error;
        const auto start = std::chrono::steady_clock::now();
        const gboolean done = atspi_value_set_current_value(position.get(), static_cast<double>(wanted), out(error));
        return outcome(start, error != nullptr, done);
    }
    if (wanted != 0 && wanted != 1) return kAXErrorIllegalArgument;
    const bool checked = hasState(n->object.get(), ATSPI_STATE_CHECKED);
    if (checked == (wanted == 1)) return kAXErrorSuccess;
    return pressOrTwin(*this, n->object.get());
}

SettableRead LinuxPlatform::isAttributeSettable(const Element& element, std::string_view attribute) {
    const auto locked = guard();
    Node* n = node(element);
    if (n == nullptr) return {kAXErrorIllegalArgument, false};
    if (n->kind != Node::Kind::accessible || attribute != ax::kValueAttribute) return {kAXErrorSuccess, false};
    const AtspiRole role = roleOf(*n);
    if (role == ATSPI_ROLE_INVALID) return {kAXErrorInvalidUIElement, false};
    if (isToggleRole(role)) return {kAXErrorSuccess, hasState(n->object.get(), ATSPI_STATE_SENSITIVE)};
    if (!isTextRole(role)) return {kAXErrorSuccess, false};
    if (const Survey::Item* item = surveyed(*n)) {
        const auto has = [&](AtspiStateType s) { return ((item->states >> s) & 1) != 0; };
        return {kAXErrorSuccess, (item->hasEditableText || has(ATSPI_STATE_FOCUSED)) && has(ATSPI_STATE_EDITABLE)};
    }
    // Without the EditableText interface only the focused field can be
    // written (by typing into it).
    const bool editable = Ref<AtspiEditableText>::adopt(atspi_accessible_get_editable_text_iface(n->object.get())) ||
                          hasState(n->object.get(), ATSPI_STATE_FOCUSED);
    return {kAXErrorSuccess, editable && hasState(n->object.get(), ATSPI_STATE_EDITABLE)};
}

}  // namespace zeblo::platform::linux_desktop
