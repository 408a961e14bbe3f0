// Tree attributes: children, an application's windows, menu bar and focus, a
// combo box's menu, a window's close button, and the system-wide focus.
#include <algorithm>

#include "platform/ax_names.h"
#include "platform/linux/accessible.h"
#include "platform/linux/app_list.h"
#include "platform/linux/attributes.h"
#include "platform/linux/focus.h"
#include "platform/reply_limit.h"

namespace zeblo::platform::linux_desktop {

namespace {

AttributeRead elementOrNoValue(LinuxPlatform& p, AccessibleRef object, std::optional<Sight> sight = std::nullopt) {
    return object ? ok(p.wrap(std::move(object), Node::Kind::accessible, nullptr, sight)) : noValue();
}

// The application's windows shown to the user, or kAXErrorCannotComplete
// when it does not answer (a silent application is not one without
// windows).
AttributeRead windows(const Reading& r) {
    LinuxPlatform& p = r.platform;
    std::optional<std::vector<AccessibleRef>> objects = windowsOf(r.object, p.applicationSight(r.object));
    if (!objects) {
        const std::int32_t pid = r.node.pid;
        p.log("Application " + (pid > 0 ? programName(pid) + " (process " + std::to_string(pid) + ")" : "") +
              " did not answer within " + std::to_string(replyLimitMs()) + " ms: its windows are not known");
        return {kAXErrorCannotComplete, {}};
    }
    std::vector<Element> elements;
    elements.reserve(objects->size());
    for (AccessibleRef& object : *objects) elements.push_back(p.wrap(std::move(object)));
    return ok(std::move(elements));
}

// Whether `child` is shown under `sight`, from the survey when it knows the
// child, else read live; and its role (for the sight of its own children).
bool seen(Sight sight, AtspiAccessible* child, const Survey* survey, AtspiRole& role) {
    const Survey::Item* item = survey != nullptr ? survey->find(child) : nullptr;
    std::optional<std::uint64_t> states;
    if (item != nullptr) {
        role = item->role;
        states = item->states;
    } else {
        role = roleOfObject(child);
        states = statesOf(child);
    }
    // An element whose states cannot be read is kept: it may be gone, or
    // its application busy, and the walk's own reads will tell.
    if (!states) return true;
    std::optional<Size> size;
    if (needsSize(sight)) size = item != nullptr ? survey->size(child) : sizeOf(child);
    return shown(sight, *states, size);
}

// The children a user can see (all of them under Sight::everything), each
// to be judged in turn by the sight below this node; with `all`, every child,
// each marked with whether it is seen.
AttributeRead children(const Reading& r, bool all) {
    LinuxPlatform& p = r.platform;
    if (r.role == ATSPI_ROLE_APPLICATION) return windows(r);
    // A walk starts here: one bulk read serves it (and its children).
    const std::shared_ptr<const Survey> survey = p.surveyFor(r.node);
    const Survey::Item* known = p.surveyed(r.node);
    const Sight sight = p.sightOf(r.node);
    std::vector<AtspiAccessible*> borrowed;
    std::vector<AccessibleRef> owned;
    if (known != nullptr && known->childrenKnown) {
        borrowed = known->children;
    } else {
        owned = childrenOf(r.object);
        for (const AccessibleRef& child : owned) borrowed.push_back(child.get());
    }
    std::vector<Element> elements;
    elements.reserve(borrowed.size());
    for (AtspiAccessible* child : borrowed) {
        if (child == nullptr) {
            elements.emplace_back();  // kept as the null entry it is
            continue;
        }
        AtspiRole role = ATSPI_ROLE_INVALID;
        const bool shown = sight == Sight::everything || seen(sight, child, survey.get(), role);
        if (!shown && !all) continue;
        Element element =
            p.wrap(AccessibleRef::retain(child), Node::Kind::accessible, survey, sightBelow(sight, role));
        if (all) p.node(element)->shown = shown && r.node.shown.value_or(true);
        elements.push_back(std::move(element));
    }
    return ok(std::move(elements));
}

// The menu bar of the focused window, else of the first window with one. Its
// menus are navigated closed: everything under it is seen.
AttributeRead menuBar(const Reading& r) {
    std::vector<AccessibleRef> windows =
        windowsOf(r.object, r.platform.applicationSight(r.object)).value_or(std::vector<AccessibleRef>{});
    const AtspiAccessible* focused = focusedAmong(r.platform, r.object, windows);
    std::stable_partition(windows.begin(), windows.end(), [&](const AccessibleRef& w) { return w.get() == focused; });
    AccessibleRef bar;
    for (const AccessibleRef& w : windows) {
        if (!bar) bar = findByRole(w.get(), ATSPI_ROLE_MENU_BAR);
    }
    return elementOrNoValue(r.platform, std::move(bar), Sight::everything);
}

std::optional<AttributeRead> readApplication(const Reading& r, std::string_view attribute) {
    if (attribute == ax::kWindowsAttribute) return windows(r);
    if (attribute == ax::kFocusedWindowAttribute) return elementOrNoValue(r.platform, focusedWindowOf(r.platform, r.object));
    if (attribute == ax::kMenuBarAttribute) return menuBar(r);
    if (attribute == ax::kMenusAttribute) {
        // The application's shown pop-up menus in windows of their own (a
        // context menu); everything in them is seen.
        std::vector<Element> menus;
        for (AccessibleRef& popup : popupsOf(r.object)) {
            menus.push_back(r.platform.wrap(std::move(popup), Node::Kind::accessible, nullptr, Sight::showing));
        }
        return ok(std::move(menus));
    }
    if (attribute == ax::kFocusedUIElementAttribute) {
        return elementOrNoValue(r.platform, focusedElementOf(r.platform, r.object));
    }
    return unsupported();
}

}  // namespace

std::optional<AttributeRead> readTree(const Reading& r, std::string_view attribute) {
    if (attribute == ax::kChildrenAttribute) return children(r, false);
    if (attribute == ax::kAllChildrenAttribute) return children(r, true);
    if (attribute == ax::kVisibleAttribute) return ok(r.node.shown.value_or(true));
    if (r.role == ATSPI_ROLE_APPLICATION) return readApplication(r, attribute);
    if (attribute == ax::kMenuAttribute && r.role == ATSPI_ROLE_COMBO_BOX) {
        // GTK's popup is a menu, Qt's a list.
        AccessibleRef menu = findByRole(r.object, ATSPI_ROLE_MENU);
        if (!menu) menu = findByRole(r.object, ATSPI_ROLE_LIST);
        return elementOrNoValue(r.platform, std::move(menu), Sight::everything);
    }
    if (attribute == ax::kCloseButtonAttribute && isWindowRole(r.role)) {
        return ok(r.platform.wrap(AccessibleRef::retain(r.object), Node::Kind::closeButton));
    }
    return std::nullopt;
}

AttributeRead readSystemWide(LinuxPlatform& p, std::string_view attribute) {
    if (attribute != ax::kFocusedUIElementAttribute) return unsupported();
    // The focused element of the frontmost application's focused window.
    const std::optional<std::int32_t> pid = p.session().activeWindowPid();
    const AccessibleRef app = pid ? p.findApplication(*pid) : AccessibleRef();
    if (!app) return noValue();
    return elementOrNoValue(p, focusedElementOf(p, app.get()));
}

}  // namespace zeblo::platform::linux_desktop
