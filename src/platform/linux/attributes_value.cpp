// "AXValue": toggles' states, texts, labels and combo boxes' current items.
#include <cmath>
#include <string_view>
#include <vector>

#include "core/unicode.h"
#include "platform/ax_names.h"
#include "platform/linux/accessible.h"
#include "platform/linux/attributes.h"

namespace zeblo::platform::linux_desktop {

namespace {

// The whole text of a node, from its survey while that is current.
std::optional<std::string> textOf(const Reading& r) {
    if (r.item != nullptr) {
        if (const std::string* known = r.node.survey->text(r.object)) return *known;
    }
    return textContents(r.object);
}

constexpr std::string_view kEmbeddedObject = "\xEF\xBF\xBC";  // U+FFFC

// The names of `r`'s children in order; nothing when they cannot be read.
std::optional<std::vector<std::string>> childNames(const Reading& r) {
    std::vector<std::string> names;
    if (r.item != nullptr && r.item->childrenKnown) {
        for (AtspiAccessible* child : r.item->children) {
            const Survey::Item* known = r.node.survey->find(child);
            names.push_back(known != nullptr ? known->name : nameOf(child));
        }
        return names;
    }
    bool answered = true;
    for (const AccessibleRef& child : childrenOf(r.object, &answered)) {
        names.push_back(child ? nameOf(child.get()) : std::string());
    }
    if (!answered) return std::nullopt;
    return names;
}

// The text a block shows of its own. Its Text holds one U+FFFC (embedded
// object) for each child that stands inside the text (a link in a
// paragraph), which is given here by the child's name. A block with more
// children than embedded objects has its runs of text in children of their
// own (Chromium): they show the text, and the block gives none.
std::optional<std::string> ownText(const Reading& r) {
    std::optional<std::string> text = textOf(r);
    if (!text) return std::nullopt;
    std::size_t objects = 0;
    for (std::size_t at = text->find(kEmbeddedObject); at != std::string::npos;
         at = text->find(kEmbeddedObject, at + kEmbeddedObject.size())) {
        ++objects;
    }
    const int children = r.childCount();
    if (children < 0) return std::nullopt;
    if (static_cast<std::size_t>(children) != objects) return std::string();
    if (objects == 0) return text;
    std::string own;
    bool words = false;  // text of the block's own, not only its children's
    const std::optional<std::vector<std::string>> names = childNames(r);
    if (!names || names->size() != objects) return std::string();
    std::size_t from = 0;
    for (const std::string& name : *names) {
        const std::size_t at = text->find(kEmbeddedObject, from);
        const std::string_view run(text->data() + from, at - from);
        words = words || run.find_first_not_of(" \t\n") != std::string_view::npos;
        own.append(run).append(name);
        from = at + kEmbeddedObject.size();
    }
    const std::string_view rest(text->data() + from, text->size() - from);
    words = words || rest.find_first_not_of(" \t\n") != std::string_view::npos;
    own.append(rest);
    return words ? own : std::string();
}

}  // namespace

std::optional<AttributeRead> readValue(const Reading& r, std::string_view attribute) {
    if (attribute != ax::kValueAttribute) return std::nullopt;
    const AtspiRole role = r.role;
    if (isToggleRole(role)) {
        if (r.has(ATSPI_STATE_INDETERMINATE)) return ok(std::int64_t{2});
        return ok(std::int64_t{r.has(ATSPI_STATE_CHECKED) ? 1 : 0});
    }
    if (isTextBlockRole(role)) {
        // A paragraph or another block of a document.
        std::optional<std::string> own = ownText(r);
        if (!own) return role == ATSPI_ROLE_PARAGRAPH ? AttributeRead{kAXErrorCannotComplete, {}} : unsupported();
        return ok(std::move(*own));
    }
    if (isTextRole(role)) {
        auto text = textOf(r);
        if (!text) return AttributeRead{kAXErrorCannotComplete, {}};
        if (role == ATSPI_ROLE_PASSWORD_TEXT) {
            // A password is never read back, whatever the toolkit exposes:
            // one bullet per character shown.
            std::string bullets;
            for (std::size_t i = 0, n = text::graphemes(*text).size(); i < n; ++i) bullets += "\xE2\x80\xA2";
            return ok(std::move(bullets));
        }
        return ok(std::move(*text));
    }
    if (role == ATSPI_ROLE_LABEL || role == ATSPI_ROLE_STATIC) {
        std::string label = r.name();
        if (label.empty()) label = textOf(r).value_or("");
        return ok(std::move(label));
    }
    if (role == ATSPI_ROLE_COMBO_BOX) return ok(r.name());
    if (role == ATSPI_ROLE_SLIDER || role == ATSPI_ROLE_SCROLL_BAR || role == ATSPI_ROLE_PROGRESS_BAR ||
        role == ATSPI_ROLE_DIAL) {
        // A position: read as the nearest whole number.
        const Ref<AtspiValue> value = Ref<AtspiValue>::adopt(atspi_accessible_get_value_iface(r.object));
        if (!value) return unsupported();
        Error error;
        const double current = atspi_value_get_current_value(value.get(), out(error));
        if (error) return AttributeRead{kAXErrorCannotComplete, {}};
        return ok(static_cast<std::int64_t>(std::llround(current)));
    }
    return unsupported();
}

}  // namespace zeblo::platform::linux_desktop
