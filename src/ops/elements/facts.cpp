#include "ops/elements/facts.h"

#include <algorithm>

namespace zeblo::elements {

using platform::Element;

namespace {

platform::Platform& desk() { return platform::current(); }

std::string readText(const Element& e, std::string_view attribute) {
    auto read = platform::asString(desk().copyAttributeValue(e, attribute));
    return read.ok() ? std::move(read.value) : std::string();
}

std::optional<bool> readBool(const Element& e, std::string_view attribute) {
    auto read = platform::asBool(desk().copyAttributeValue(e, attribute));
    if (read.ok()) return read.value;
    return std::nullopt;
}

std::string lower(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (const char c : text) {
        if (c >= 'A' && c <= 'Z') {
            out += static_cast<char>(c - 'A' + 'a');
        } else if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9')) {
            out += c;
        }
    }
    return out;
}

bool isFieldRole(std::string_view role) {
    return isTextEntryRole(role) || role == ax::kPopUpButtonRole || role == ax::kSliderRole || role == ax::kIncrementorRole;
}

bool isLabelRole(std::string_view role) { return role == ax::kStaticTextRole; }

bool sameRow(const platform::Frame& a, const platform::Frame& b) {
    const double overlap = std::min(a.y + a.height, b.y + b.height) - std::max(a.y, b.y);
    return overlap > 0 && overlap >= std::min(a.height, b.height) / 2;
}

bool isControlRole(std::string_view role) {
    return isFieldRole(role) || role == ax::kButtonRole || role == ax::kCheckBoxRole || role == ax::kRadioButtonRole;
}

}  // namespace

const std::vector<Siblings::Seen>& Siblings::seen() const {
    if (!seen_) {
        seen_.emplace(elements_.size());
        for (std::size_t j = 0; j < elements_.size(); ++j) {
            if (!elements_[j]) continue;
            Seen& s = (*seen_)[j];
            s.role = readText(elements_[j], ax::kRoleAttribute);
            if (isLabelRole(s.role)) {
                s.text = readText(elements_[j], ax::kValueAttribute);
                if (s.text.empty()) s.text = readText(elements_[j], ax::kTitleAttribute);
            }
        }
    }
    return *seen_;
}

void Siblings::readFrames() const {
    if (framesRead_) return;
    framesRead_ = true;
    platform::Platform& p = desk();
    std::vector<Seen>& all = *seen_;
    for (std::size_t j = 0; j < elements_.size(); ++j) {
        if (elements_[j] && (isLabelRole(all[j].role) || isControlRole(all[j].role))) all[j].frame = p.frameOf(elements_[j]);
    }
}

std::string Siblings::labelFor(std::size_t index) const {
    // As a user reads it: the nearest label to the field's left on its row,
    // else the nearest above it, as they are drawn (a grid may list its cells
    // in any order). Without frames, the label just before it in the list,
    // unless a control stands between them.
    const std::vector<Seen>& all = seen();
    // The label before the field in the list, with no control between them.
    std::string before;
    for (std::size_t back = 1; back <= 2 && back <= index; ++back) {
        const Seen& s = all[index - back];
        if (isLabelRole(s.role) && !s.text.empty()) {
            before = s.text;
            break;
        }
        if (isControlRole(s.role)) break;
    }
    // A label just before and none just after: the list is in reading
    // order, and its frames need not be read.
    const bool labelAfter = index + 1 < all.size() && isLabelRole(all[index + 1].role);
    if (!before.empty() && !labelAfter) return before;
    readFrames();
    const std::optional<platform::Frame>& field = all[index].frame;
    if (!field || field->width <= 0 || field->height <= 0) return before;
    constexpr double kRowAbove = 100'000;  // a label above counts after any on the row
    const Seen* best = nullptr;
    double bestDistance = 0;
    for (std::size_t j = 0; j < all.size(); ++j) {
        const Seen& s = all[j];
        if (j == index || s.text.empty() || !s.frame || s.frame->width <= 0 || s.frame->height <= 0) continue;
        const platform::Frame& f = *s.frame;
        double distance = 0;
        if (sameRow(f, *field) && f.x + f.width <= field->x + 2) {
            distance = field->x - (f.x + f.width);
        } else if (f.y + f.height <= field->y + 2 && field->y - (f.y + f.height) <= std::max(field->height, 40.0) &&
                   f.x < field->x + field->width && f.x + f.width > field->x) {
            // Just above it (a caption over the field), not anywhere above.
            distance = kRowAbove + field->y - (f.y + f.height);
        } else {
            continue;
        }
        if (best == nullptr || distance < bestDistance) {
            best = &s;
            bestDistance = distance;
        }
    }
    if (best == nullptr) return {};
    for (std::size_t j = 0; j < all.size(); ++j) {
        // Another control between the label and the field: the label is its.
        const Seen& s = all[j];
        if (j == index || !isControlRole(s.role) || !s.frame || bestDistance >= kRowAbove) continue;
        if (sameRow(*s.frame, *field) && s.frame->x >= best->frame->x + best->frame->width - 2 &&
            s.frame->x + s.frame->width <= field->x + 2) {
            return {};
        }
    }
    return best->text;
}

bool Facts::checkable() const {
    return role == ax::kCheckBoxRole || role == ax::kRadioButtonRole || role == ax::kSwitchRole || role == ax::kToggleRole;
}

bool isTextEntryRole(std::string_view role) {
    return role == ax::kTextFieldRole || role == ax::kTextAreaRole || role == ax::kComboBoxRole || role == ax::kSecureTextFieldRole ||
           role == ax::kSearchFieldRole;
}

std::string shortRole(std::string_view role) {
    if (role.size() > 2 && role.substr(0, 2) == "AX") role.remove_prefix(2);
    return lower(role);
}

std::string roleKey(std::string_view role) {
    // "AXButton" and "axButton" are "button"; "axe" stays itself.
    const bool prefixed = role.size() > 2 && (role[0] == 'A' || role[0] == 'a') && (role[1] == 'X' || role[1] == 'x') &&
                          role[2] >= 'A' && role[2] <= 'Z';
    return lower(prefixed ? role.substr(2) : role);
}

std::string shortAction(std::string_view action) { return shortRole(action); }

Facts readFacts(const Element& e, const Siblings* siblings, std::size_t index, bool withActions) {
    platform::Platform& p = desk();
    Facts f;
    f.role = readText(e, ax::kRoleAttribute);
    if (f.role.empty()) f.role = ax::kUnknownRole;
    const std::string title = readText(e, ax::kTitleAttribute);
    f.description = readText(e, ax::kDescriptionAttribute);

    platform::AttributeRead value = p.copyAttributeValue(e, ax::kValueAttribute);
    if (value.code == platform::kAXErrorSuccess) {
        if (auto* text = std::get_if<std::string>(&value.value)) {
            f.value = std::move(*text);
        } else if (auto* number = std::get_if<std::int64_t>(&value.value)) {
            f.number = *number;
            if (!f.checkable()) f.value = std::to_string(*number);
        } else if (auto* other = std::get_if<platform::OtherValue>(&value.value)) {
            f.value = other->description;
        }
    }

    f.name = title;
    if (f.name.empty() && (isLabelRole(f.role) || f.role == ax::kHeadingRole) && !f.value.empty()) {
        f.name = std::move(f.value);  // a label's text is its name
        f.value.clear();
    }
    if (f.name.empty() && !f.description.empty()) f.name = std::move(f.description);
    if (f.name.empty() && isFieldRole(f.role)) {
        // A field is called by its accessible label, else by the label
        // beside it, else by the hint it shows while empty (which stays its
        // name once it is filled in, so that a reference to it stays good).
        f.name = readText(e, kToolkitName);
        if (f.name.empty() && siblings != nullptr && index < siblings->elements().size()) {
            f.name = siblings->labelFor(index);
        }
        if (f.name.empty()) f.name = readText(e, ax::kPlaceholderValueAttribute);
    }
    if (f.description == f.name) f.description.clear();

    f.enabled = readBool(e, ax::kEnabledAttribute).value_or(true);
    f.focused = readBool(e, ax::kFocusedAttribute).value_or(false);
    f.selected = readBool(e, ax::kSelectedAttribute).value_or(false);
    f.expanded = readBool(e, ax::kExpandedAttribute);
    if (isTextEntryRole(f.role)) {
        const platform::SettableRead settable = p.isAttributeSettable(e, ax::kValueAttribute);
        f.editable = settable.code == platform::kAXErrorSuccess && settable.settable;
    }
    if (withActions) {
        platform::NamesRead names = p.copyActionNames(e);
        if (names.names) f.actions = std::move(*names.names);
    }
    return f;
}

}  // namespace zeblo::elements
