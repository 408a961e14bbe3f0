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
    return isTextEntryRole(role) || role == "AXPopUpButton" || role == "AXSlider" || role == "AXIncrementor";
}

bool isLabelRole(std::string_view role) { return role == "AXStaticText"; }

// The text of the label shown just before a field among its siblings: the
// nearest of the two siblings before it that is a label, unless a control
// stands between them.
std::string labelBefore(const std::vector<Element>& siblings, std::size_t index) {
    for (std::size_t back = 1; back <= 2 && back <= index; ++back) {
        const Element& sibling = siblings[index - back];
        if (!sibling) continue;
        const std::string role = readText(sibling, "AXRole");
        if (isLabelRole(role)) {
            std::string text = readText(sibling, "AXValue");
            if (text.empty()) text = readText(sibling, "AXTitle");
            if (!text.empty()) return text;
            continue;
        }
        if (isFieldRole(role) || role == "AXButton" || role == "AXCheckBox" || role == "AXRadioButton") break;
    }
    return {};
}

bool sameRow(const platform::Frame& a, const platform::Frame& b) {
    const double overlap = std::min(a.y + a.height, b.y + b.height) - std::max(a.y, b.y);
    return overlap > 0 && overlap >= std::min(a.height, b.height) / 2;
}

// The text of the label a user reads as a field's: the nearest label to its
// left on the same row, else the nearest above it, among its siblings, as
// they are drawn (a grid may list them in any order). Without frames, the
// label just before it in the list.
std::string labelFor(const std::vector<Element>& siblings, std::size_t index) {
    platform::Platform& p = desk();
    const std::optional<platform::Frame> field = p.frameOf(siblings[index]);
    if (!field || field->width <= 0 || field->height <= 0) return labelBefore(siblings, index);
    struct Candidate {
        double distance = 0;
        std::string text;
        platform::Frame frame;
    };
    std::optional<Candidate> best;
    std::vector<platform::Frame> controls;  // others that a label to the left must not be behind
    for (std::size_t j = 0; j < siblings.size(); ++j) {
        if (j == index || !siblings[j]) continue;
        const std::optional<platform::Frame> frame = p.frameOf(siblings[j]);
        if (!frame || frame->width <= 0 || frame->height <= 0) continue;
        const std::string role = readText(siblings[j], "AXRole");
        if (!isLabelRole(role)) {
            if (isFieldRole(role) || role == "AXButton" || role == "AXCheckBox") controls.push_back(*frame);
            continue;
        }
        double distance = 0;
        if (sameRow(*frame, *field) && frame->x + frame->width <= field->x + 2) {
            distance = field->x - (frame->x + frame->width);
        } else if (frame->y + frame->height <= field->y + 2 && frame->x < field->x + field->width &&
                   frame->x + frame->width > field->x) {
            distance = 100'000 + field->y - (frame->y + frame->height);  // a row above counts after the row
        } else {
            continue;
        }
        if (best && best->distance <= distance) continue;
        std::string text = readText(siblings[j], "AXValue");
        if (text.empty()) text = readText(siblings[j], "AXTitle");
        if (!text.empty()) best = Candidate{distance, std::move(text), *frame};
    }
    if (!best) return {};
    for (const platform::Frame& c : controls) {
        // Another control between the label and the field: the label is its.
        if (best->distance < 100'000 && sameRow(c, *field) && c.x >= best->frame.x + best->frame.width - 2 &&
            c.x + c.width <= field->x + 2) {
            return {};
        }
    }
    return best->text;
}

}  // namespace

bool Facts::checkable() const {
    return role == "AXCheckBox" || role == "AXRadioButton" || role == "AXSwitch" || role == "AXToggle";
}

bool isTextEntryRole(std::string_view role) {
    return role == "AXTextField" || role == "AXTextArea" || role == "AXComboBox" || role == "AXSecureTextField" ||
           role == "AXSearchField";
}

std::string shortRole(std::string_view role) {
    if (role.size() > 2 && role.substr(0, 2) == "AX") role.remove_prefix(2);
    return lower(role);
}

std::string roleKey(std::string_view role) {
    std::string key = lower(role);
    if (key.size() > 2 && key.compare(0, 2, "ax") == 0 && role.size() > 2 && (role[0] == 'A' || role[0] == 'a') &&
        (role[1] == 'X' || role[1] == 'x') && role[2] >= 'A' && role[2] <= 'Z') {
        key.erase(0, 2);
    }
    return key;
}

std::string shortAction(std::string_view action) { return shortRole(action); }

Facts readFacts(const Element& e, const std::vector<Element>* siblings, std::size_t index, bool withActions) {
    platform::Platform& p = desk();
    Facts f;
    f.role = readText(e, "AXRole");
    if (f.role.empty()) f.role = "AXUnknown";
    const std::string title = readText(e, "AXTitle");
    f.description = readText(e, "AXDescription");

    platform::AttributeRead value = p.copyAttributeValue(e, "AXValue");
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
    if (f.name.empty() && (isLabelRole(f.role) || f.role == "AXHeading") && !f.value.empty()) {
        f.name = std::move(f.value);  // a label's text is its name
        f.value.clear();
    }
    if (f.name.empty() && !f.description.empty()) f.name = std::move(f.description);
    if (f.name.empty() && isFieldRole(f.role)) {
        // A field is called by its accessible label, else by the hint it
        // shows while empty, else by the label before it.
        f.name = readText(e, kToolkitName);
        if (f.name.empty()) f.name = readText(e, "AXPlaceholderValue");
        if (f.name.empty() && siblings != nullptr && index < siblings->size()) f.name = labelFor(*siblings, index);
    }
    if (f.description == f.name) f.description.clear();

    f.enabled = readBool(e, "AXEnabled").value_or(true);
    f.focused = readBool(e, "AXFocused").value_or(false);
    f.selected = readBool(e, "AXSelected").value_or(false);
    f.expanded = readBool(e, "AXExpanded");
    if (isTextEntryRole(f.role)) {
        const platform::SettableRead settable = p.isAttributeSettable(e, "AXValue");
        f.editable = settable.code == platform::kAXErrorSuccess && settable.settable;
    }
    if (withActions) {
        platform::NamesRead names = p.copyActionNames(e);
        if (names.names) f.actions = std::move(*names.names);
    }
    return f;
}

}  // namespace zeblo::elements
