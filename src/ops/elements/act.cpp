// Acting on an element by its reference. The reference is resolved and
// verified first; the action is then sent to that element only. What a user
// could not do (press a disabled button, check a label) fails without
// sending anything; an action whose effect can be read back (a check box's
// state, the focus, an expansion) counts as done only once it shows.
#include <cmath>

#include "ops/elements/element_ops.h"
#include "ops/elements/walk.h"
#include "ops/lookup.h"
#include "platform/ax_names.h"

namespace zeblo::elements {

using platform::Element;

namespace {

platform::Platform& desk() { return platform::current(); }

std::string describe(const Facts& f) {
    return shortRole(f.role) + (f.name.empty() ? std::string() : " '" + f.name + "'");
}

// Sends `action`; true when it was performed (or delivered without an
// answer, which counts as performed).
bool perform(const Element& e, std::string_view action) {
    return lookup::performed(desk().performAction(e, action));
}

// Polls `holds` for up to a second: the effect of an action shows in the
// application's next update.
template <class Holds>
bool shows(Holds&& holds) {
    platform::Platform& p = desk();
    for (int i = 0; i < 50; ++i) {
        if (holds()) return true;
        p.sleep(0.02);
    }
    return holds();
}

std::optional<bool> readBool(const Element& e, std::string_view attribute) {
    auto read = platform::asBool(desk().copyAttributeValue(e, attribute));
    return read.ok() ? std::optional<bool>(read.value) : std::nullopt;
}

std::optional<std::int64_t> readNumber(const Element& e) {
    auto read = platform::asInteger(desk().copyAttributeValue(e, ax::kValueAttribute));
    return read.ok() ? std::optional<std::int64_t>(read.value) : std::nullopt;
}

void press(const Resolved& r) {
    if (perform(r.element, ax::kPressAction)) return;
    if (perform(r.element, ax::kPickAction)) return;
    throw ElementError::action("refused", "The " + describe(r.facts) + " refused to be pressed");
}

// Checks or unchecks; false when it already was so.
bool setChecked(const Resolved& r, bool wanted) {
    if (!r.facts.checkable()) {
        throw ElementError::action("notCheckable", "The " + describe(r.facts) + " cannot be checked or unchecked");
    }
    if (r.facts.checked() == wanted) return false;
    if (r.facts.role == ax::kRadioButtonRole && !wanted) {
        throw ElementError::action("notCheckable", "A radio button is unchecked by checking another one");
    }
    press(r);
    if (!shows([&] { return (readNumber(r.element) == 1) == wanted; })) {
        throw ElementError::action("noEffect", "The " + describe(r.facts) + " was pressed but did not become " +
                                                   (wanted ? "checked" : "unchecked"));
    }
    return true;
}

void writeValue(const Resolved& r, const platform::SetValue& value, const std::string& shown) {
    const platform::AXError code = desk().setAttributeValue(r.element, ax::kValueAttribute, value);
    if (!lookup::performed(code)) {
        throw ElementError::action("refused", "The " + describe(r.facts) + " did not take the value '" + shown +
                                                  "' (error " + std::to_string(code) + ")");
    }
}

// The named elements a user can choose under `ref` (menu items, and the
// buttons of a popover), as nodes by reference.
std::vector<std::pair<std::string, Json>> choices(const std::string& ref, std::int32_t pid = 0) {
    Scope scope;
    scope.ref = ref;
    if (pid > 0) {
        // The application's pop-up menus.
        scope.ref.clear();
        scope.popups = true;
        for (const platform::RunningApp& app : desk().runningApplications()) {
            if (app.pid == pid) scope.app = app.localizedName.value_or("");
        }
    }
    Limits limits;
    limits.maxNodes = 2'000;
    limits.maxDepth = 49;
    limits.maxChildren = 9'999;
    const Walk w = walk(scope, limits, [](const Visited& v) {
        // A popover itself (GTK 4 calls it a menu) is no item to choose.
        return !v.facts.name.empty() && v.facts.enabled &&
               (v.facts.role == ax::kMenuItemRole || std::find(v.facts.actions.begin(), v.facts.actions.end(),
                                                          ax::kPressAction) != v.facts.actions.end());
    });
    std::vector<std::pair<std::string, Json>> out;
    for (const Visited& v : w.nodes) {
        if (v.parent >= 0 && v.listed && !v.ref.empty()) out.emplace_back(v.ref, nodeJson(v, limits));
    }
    return out;
}

// Chooses the item named `wanted` of a pop-up button's menu (opening it).
void choose(const Resolved& r, const std::string& wanted) {
    platform::Platform& p = desk();
    (void)perform(r.element, ax::kPressAction);
    p.sleep(0.05);
    std::vector<Element> items;
    auto menu = platform::asElement(p.copyAttributeValue(r.element, ax::kMenuAttribute));
    if (!menu.ok()) {
        auto children = platform::asElementArray(p.copyAttributeValue(r.element, ax::kChildrenAttribute));
        for (Element& child : children.ok() ? children.value : std::vector<Element>{}) {
            auto role = platform::asString(p.copyAttributeValue(child, ax::kRoleAttribute));
            if (role.ok() && role.value == ax::kMenuRole) menu.value = std::move(child);
        }
    }
    if (menu.value) {
        auto children = platform::asElementArray(p.copyAttributeValue(menu.value, ax::kChildrenAttribute));
        if (children.ok()) items = std::move(children.value);
    }
    for (const Element& item : items) {
        if (!item) continue;
        auto title = platform::asString(p.copyAttributeValue(item, ax::kTitleAttribute));
        if (!title.ok() || !lookup::softMatch(title.value, wanted)) continue;
        if (perform(item, ax::kPressAction)) return;
        throw ElementError::action("refused", "The item '" + title.value + "' refused to be chosen");
    }
    (void)perform(r.element, ax::kCancelAction);
    throw ElementError::action("noSuchItem", "The " + describe(r.facts) + " has no item '" + wanted + "'");
}

enum class Kind { press, toggle, check, uncheck, focus, setValue, select, expand, collapse, openMenu, scroll,
                  increment, decrement };

std::optional<Kind> kindOf(std::string_view action) {
    std::string key;
    for (const char c : action) {
        if (c >= 'A' && c <= 'Z') key += static_cast<char>(c - 'A' + 'a');
        else if (c != '_' && c != '-' && c != ' ') key += c;
    }
    static const std::pair<std::string_view, Kind> kNames[] = {
        {"press", Kind::press},        {"click", Kind::press},         {"toggle", Kind::toggle},
        {"check", Kind::check},        {"uncheck", Kind::uncheck},     {"focus", Kind::focus},
        {"setvalue", Kind::setValue},  {"set", Kind::setValue},        {"fill", Kind::setValue},
        {"select", Kind::select},      {"expand", Kind::expand},       {"collapse", Kind::collapse},
        {"openmenu", Kind::openMenu},  {"showmenu", Kind::openMenu},   {"menu", Kind::openMenu},
        {"scrollintoview", Kind::scroll}, {"scroll", Kind::scroll},    {"increment", Kind::increment},
        {"decrement", Kind::decrement}};
    for (const auto& [name, kind] : kNames) {
        if (key == name) return kind;
    }
    return std::nullopt;
}

std::optional<bool> parseBool(std::string_view v) {
    if (v == "1" || v == "true" || v == "on" || v == "yes" || v == "checked") return true;
    if (v == "0" || v == "false" || v == "off" || v == "no" || v == "unchecked") return false;
    return std::nullopt;
}

std::optional<std::int64_t> parseInteger(const std::string& v) {
    char* end = nullptr;
    const double number = std::strtod(v.c_str(), &end);
    if (v.empty() || end != v.c_str() + v.size() || !std::isfinite(number) || std::fabs(number) > 9e15) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(std::llround(number));
}

}  // namespace

std::string act(std::string_view refText, std::string_view actionText, std::string_view valueText) {
    const std::optional<Kind> kind = kindOf(actionText);
    if (!kind) {
        throw ElementError::usage("badAction", "Unknown action '" + std::string(actionText.substr(0, 40)) +
                                                   "' (press, toggle, check, uncheck, focus, set_value, select, "
                                                   "expand, collapse, open_menu, scroll_into_view, increment, "
                                                   "decrement)");
    }
    const std::string value(valueText);
    if (*kind == Kind::setValue && valueText.data() == nullptr) {
        throw ElementError::usage("missingValue", "set_value needs a value");
    }
    const Resolved r = resolve(refText);
    const Facts& f = r.facts;
    if (!f.enabled && *kind != Kind::focus && *kind != Kind::scroll) {
        throw ElementError::action("disabled", "The " + describe(f) + " is disabled");
    }
    // Whether the element offers an action: its action names are read on the
    // first question (the verification does not read them).
    std::optional<std::vector<std::string>> actionNames;
    const auto offers = [&](std::string_view action) {
        if (!actionNames) actionNames = desk().copyActionNames(r.element).names.value_or(std::vector<std::string>{});
        return std::find(actionNames->begin(), actionNames->end(), action) != actionNames->end();
    };
    Json out = Json::object();
    out["ok"] = true;
    static constexpr const char* kCanonical[] = {"press",  "toggle",   "check",    "uncheck",   "focus",
                                                 "set_value", "select", "expand", "collapse", "open_menu",
                                                 "scroll_into_view", "increment", "decrement"};
    out["action"] = kCanonical[static_cast<int>(*kind)];
    out["ref"] = format(r.ref);
    platform::Platform& p = desk();
    switch (*kind) {
        case Kind::press: press(r); break;
        case Kind::toggle:
            if (!f.checkable() && !f.expanded) {
                throw ElementError::action("notCheckable", "The " + describe(f) + " cannot be toggled");
            }
            if (f.checkable()) {
                out["changed"] = setChecked(r, !f.checked());
            } else {
                press(r);
            }
            break;
        case Kind::check: out["changed"] = setChecked(r, true); break;
        case Kind::uncheck: out["changed"] = setChecked(r, false); break;
        case Kind::focus:
            if (f.focused) break;
            if (!lookup::performed(p.setAttributeValue(r.element, ax::kFocusedAttribute, true)) ||
                !shows([&] { return readBool(r.element, ax::kFocusedAttribute).value_or(false); })) {
                throw ElementError::action("noEffect", "The " + describe(f) + " did not take the focus");
            }
            break;
        case Kind::setValue:
            if (f.checkable()) {
                const std::optional<bool> wanted = parseBool(value);
                if (!wanted) throw ElementError::usage("badValue", "A check box's value is true or false");
                out["changed"] = setChecked(r, *wanted);
            } else if (isTextEntryRole(f.role)) {
                if (!f.editable) throw ElementError::action("notEditable", "The " + describe(f) + " is not editable");
                writeValue(r, value, value);
            } else if (f.role == ax::kPopUpButtonRole) {
                choose(r, value);
            } else if (const std::optional<std::int64_t> number = parseInteger(value); number && f.number) {
                writeValue(r, *number, value);
            } else {
                throw ElementError::action("notEditable", "The " + describe(f) + " takes no value");
            }
            break;
        case Kind::select:
            if (f.selected) break;
            if (lookup::performed(p.setAttributeValue(r.element, ax::kSelectedAttribute, true)) &&
                shows([&] { return readBool(r.element, ax::kSelectedAttribute).value_or(false); })) {
                break;
            }
            if (!offers(ax::kPressAction)) {
                throw ElementError::action("refused", "The " + describe(f) + " cannot be selected");
            }
            press(r);
            break;
        case Kind::expand:
        case Kind::collapse: {
            const bool wanted = *kind == Kind::expand;
            if (!f.expanded) throw ElementError::action("notExpandable", "The " + describe(f) + " cannot be expanded");
            if (*f.expanded == wanted) {
                out["changed"] = false;
                break;
            }
            if (!lookup::performed(p.setAttributeValue(r.element, ax::kExpandedAttribute, wanted))) press(r);
            if (!shows([&] { return readBool(r.element, ax::kExpandedAttribute) == wanted; })) {
                throw ElementError::action("noEffect", "The " + describe(f) + " did not " +
                                                           (wanted ? "expand" : "collapse"));
            }
            out["changed"] = true;
            break;
        }
        case Kind::openMenu: {
            // What the menu shows is what its window shows now and did not
            // before (a popover's items, a context menu drawn in the window).
            const std::string window = format(ancestorOf(r.ref, r.ref.path.size()));
            const auto shown = [&] {
                std::vector<std::pair<std::string, Json>> all = choices(window);
                for (auto& popup : choices({}, r.ref.pid)) all.push_back(std::move(popup));
                return all;
            };
            std::vector<std::string> before;
            for (auto& [ref, node] : shown()) before.push_back(ref);
            // The items come under the element, beside it (GTK 4 puts a menu
            // button's popover beside its inner button), anywhere in its
            // window or in a menu of their own, shortly.
            const auto appeared = [&] {
                Json items = Json::array();
                for (int attempt = 0; attempt < 10 && items.empty(); ++attempt) {
                    p.sleep(0.05);
                    for (auto& [ref, node] : shown()) {
                        if (std::find(before.begin(), before.end(), ref) == before.end()) items.push_back(std::move(node));
                    }
                }
                return items;
            };
            // A button's menu opens as the button is pressed (a menu button,
            // a pop-up button, a menu bar item); a toggle's too (GTK 3 makes
            // a menu button a toggle button), which is pressed back when no
            // menu came; any other element's menu is its context menu.
            static constexpr std::string_view kPressedOpen[] = {ax::kButtonRole, ax::kPopUpButtonRole, ax::kMenuButtonRole,
                                                                ax::kMenuBarItemRole, ax::kMenuItemRole, ax::kComboBoxRole,
                                                                ax::kCheckBoxRole};
            const bool pressedOpen =
                !offers(ax::kShowMenuAction) && offers(ax::kPressAction) &&
                std::find(std::begin(kPressedOpen), std::end(kPressedOpen), f.role) != std::end(kPressedOpen);
            if (pressedOpen) {
                press(r);
            } else if (!perform(r.element, ax::kShowMenuAction)) {
                throw ElementError::action("noMenu", "The " + describe(f) + " has no menu to open");
            }
            Json items = appeared();
            if (items.empty()) {
                if (pressedOpen && f.checkable()) (void)perform(r.element, ax::kPressAction);
                throw ElementError::action("noMenu", "No menu appeared for the " + describe(f) +
                                                         (pressedOpen && !f.checkable() ? " (it was pressed)" : ""));
            }
            out["menu"] = std::move(items);
            break;
        }
        case Kind::scroll:
            if (!perform(r.element, ax::kScrollToVisibleAction)) {
                throw ElementError::action("refused", "The " + describe(f) + " cannot be scrolled into view");
            }
            break;
        case Kind::increment:
        case Kind::decrement: {
            const char* action = *kind == Kind::increment ? ax::kIncrementAction : ax::kDecrementAction;
            if (!perform(r.element, action)) {
                throw ElementError::action("refused", "The " + describe(f) + " cannot be " +
                                                          (*kind == Kind::increment ? "incremented" : "decremented"));
            }
            break;
        }
    }
    return dumped(out);
}

}  // namespace zeblo::elements
