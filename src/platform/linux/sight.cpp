// The rules of sight.h.
#include "platform/linux/sight.h"

#include <charconv>

namespace zeblo::platform::linux_desktop {

namespace {

bool has(std::uint64_t states, AtspiStateType state) { return ((states >> state) & 1) != 0; }

}  // namespace

bool shown(Sight sight, std::uint64_t states, const std::optional<Size>& size) {
    switch (sight) {
        case Sight::everything: return true;
        case Sight::showing: return has(states, ATSPI_STATE_SHOWING);
        case Sight::visible: return has(states, ATSPI_STATE_VISIBLE);
        case Sight::sized:
            if (has(states, ATSPI_STATE_SHOWING)) return true;
            // An element that gives no size is judged by its state alone.
            return has(states, ATSPI_STATE_VISIBLE) && (!size || (size->width > 0 && size->height > 0));
    }
    return true;
}

Sight sightBelow(Sight sight, AtspiRole role) {
    if (sight == Sight::everything) return sight;
    return role == ATSPI_ROLE_DOCUMENT_WEB ? Sight::visible : sight;
}

Sight sightOfToolkit(std::string_view name, std::string_view version) {
    // GTK names itself "GTK" from version 4 on ("gtk" before).
    int major = 0;
    std::from_chars(version.data(), version.data() + version.size(), major);
    return name == "GTK" && major >= 4 ? Sight::sized : Sight::showing;
}

}  // namespace zeblo::platform::linux_desktop
