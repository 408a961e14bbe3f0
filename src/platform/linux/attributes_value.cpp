// "AXValue": toggles' states, texts, labels and combo boxes' current items.
#include "core/unicode.h"
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

}  // namespace

std::optional<AttributeRead> readValue(const Reading& r, std::string_view attribute) {
    if (attribute != "AXValue") return std::nullopt;
    const AtspiRole role = r.role;
    if (isToggleRole(role)) {
        if (r.has(ATSPI_STATE_INDETERMINATE)) return ok(std::int64_t{2});
        return ok(std::int64_t{r.has(ATSPI_STATE_CHECKED) ? 1 : 0});
    }
    if (isTextRole(role)) {
        if (r.textInChildren()) return ok(std::string());
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
    return unsupported();
}

}  // namespace zeblo::platform::linux_desktop
