// What the elements area reads of one element, and how it names it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ax_names.h"
#include "platform/platform.h"

namespace zeblo::elements {

// The platform's attributes beyond the ones the 25 functions read: the
// children including those a user cannot see (in order, the seen ones among
// them in the order of "AXChildren"), and whether an element reached through
// that list is seen. A backend without them shows everything it lists.
inline constexpr std::string_view kAllChildren = ax::kAllChildrenAttribute;
inline constexpr std::string_view kVisible = ax::kVisibleAttribute;
inline constexpr std::string_view kToolkitName = ax::kNameAttribute;
// An application's open pop-up menus that stand in windows of their own (a
// context menu), which its window list leaves out.
inline constexpr std::string_view kPopups = ax::kMenusAttribute;

struct Facts {
    std::string role;  // as the platform names it ("AXButton"); "AXUnknown" when unreadable
    std::string name;  // its title, else its text (labels), else its description, else its label
    std::string value;  // text, or a number as text; "" when it has none
    std::string description;  // when it is not the name
    std::optional<std::int64_t> number;  // an integer value (a check box's state, a slider's position)
    bool enabled = true;
    bool focused = false;
    bool selected = false;
    std::optional<bool> expanded;  // nothing when it cannot be expanded
    bool editable = false;
    bool visible = true;
    std::vector<std::string> actions;  // the platform's action names ("AXPress")

    bool checkable() const;
    bool checked() const { return checkable() && number == 1; }
    bool mixed() const { return checkable() && number == 2; }
};

// A list of children read together. An unnamed field among them takes the
// name of the label drawn beside it: what that needs of the others (their
// roles, frames and texts) is read once for the whole list, on first use.
class Siblings {
public:
    explicit Siblings(std::vector<platform::Element> elements) : elements_(std::move(elements)) {}
    Siblings() = default;
    const std::vector<platform::Element>& elements() const { return elements_; }
    // The text of the label a user reads as the field's at `index`, or "".
    std::string labelFor(std::size_t index) const;

private:
    struct Seen {
        std::string role;
        std::optional<platform::Frame> frame;
        std::string text;  // a label's
    };
    const std::vector<Seen>& seen() const;
    // Reads the frames of the labels and controls (once).
    void readFrames() const;
    std::vector<platform::Element> elements_;
    mutable std::optional<std::vector<Seen>> seen_;
    mutable bool framesRead_ = false;
};

// Reads the facts of `element`. `siblings` and `index` (the list it was read
// from and its place there) let an unnamed field take the name of its label.
// `withActions`: also reads the action names.
Facts readFacts(const platform::Element& element, const Siblings* siblings = nullptr, std::size_t index = 0,
                bool withActions = true);

// The role as the results show it: "AXPopUpButton" is "popupbutton".
std::string shortRole(std::string_view role);
// A role as a query gives it ("button", "AXButton", "Pop-up button"),
// reduced to compare with shortRole.
std::string roleKey(std::string_view role);
// "AXPress" is "press", "AXShowMenu" "showmenu".
std::string shortAction(std::string_view action);

// Roles whose value a user types (text fields and areas, combo boxes with an
// entry, password and search fields).
bool isTextEntryRole(std::string_view role);

}  // namespace zeblo::elements
