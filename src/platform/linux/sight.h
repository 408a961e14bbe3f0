// What a user can see of a window. AT-SPI lists every element an application
// has made, shown or not: hidden widgets, the pages of a stack that are not
// shown, the items of closed menus, the pages of background tabs. A walk over
// a window keeps only the children a user can see, as a window's tree on
// macOS holds only what is on screen. Toolkits say it in different ways, so
// every element is judged by a "sight" it inherits from the element the walk
// reached it through.
#pragma once

#include <atspi/atspi.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace zeblo::platform::linux_desktop {

enum class Sight : std::uint8_t {
    // Everything: the menus reached through the menu bar or a popup, which
    // are navigated closed.
    everything,
    // The showing state (GTK 3, Qt, the browsers' own windows).
    showing,
    // Inside a web page: the visible state. A part of the page scrolled out
    // of view is not showing, but it is the page's text all the same.
    visible,
    // GTK 4 up to now sets showing on its windows only: the visible state
    // and a size on screen (a stack's hidden pages have none).
    sized,
};

// An element's size on screen, when the toolkit gives one.
struct Size {
    std::int32_t width = 0;
    std::int32_t height = 0;
};

// Where an element is drawn in its window.
struct Box {
    std::int32_t x = 0, y = 0, width = 0, height = 0;
};

// Whether an element with `states` (bit n: AtspiStateType n) and, for
// Sight::sized, `size` (none: not known) is shown under `sight`.
bool shown(Sight sight, std::uint64_t states, const std::optional<Size>& size);

// Whether `sight` needs the elements' sizes.
inline bool needsSize(Sight sight) { return sight == Sight::sized; }

// The sight the children of an element with `role`, itself seen under
// `sight`, are judged by: a web page's content is judged as a page.
Sight sightBelow(Sight sight, AtspiRole role);

// The sight an application's windows and what they hold are judged by, from
// its toolkit's name and version ("GTK", "4.8.3").
Sight sightOfToolkit(std::string_view name, std::string_view version);

}  // namespace zeblo::platform::linux_desktop
