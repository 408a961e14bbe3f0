// Tree attributes: children, an application's windows, menu bar and focus, a
// combo box's menu, a window's close button, and the system-wide focus.
#include <algorithm>

#include "platform/linux/accessible.h"
#include "platform/linux/attributes.h"
#include "platform/linux/focus.h"
#include "platform/linux/x11_session.h"

namespace zeblo::platform::linux_desktop {

namespace {

Value elementArray(LinuxPlatform& p, std::vector<AccessibleRef> objects) {
    std::vector<Element> elements;
    elements.reserve(objects.size());
    for (AccessibleRef& object : objects) elements.push_back(p.wrap(std::move(object)));
    return elements;
}

AttributeRead elementOrNoValue(LinuxPlatform& p, AccessibleRef object) {
    return object ? ok(p.wrap(std::move(object))) : noValue();
}

AttributeRead children(const Reading& r) {
    LinuxPlatform& p = r.platform;
    if (r.role == ATSPI_ROLE_APPLICATION) return ok(elementArray(p, windowsOf(r.object)));
    // A walk starts here: one bulk read serves it (and its children).
    const std::shared_ptr<const Survey> survey = p.surveyFor(r.node);
    const Survey::Item* known = p.surveyed(r.node);
    std::vector<Element> elements;
    if (known != nullptr && known->childrenKnown) {
        elements.reserve(known->children.size());
        for (AtspiAccessible* child : known->children) {
            elements.push_back(p.wrap(AccessibleRef::retain(child), Node::Kind::accessible, survey));
        }
    } else {
        for (AccessibleRef& child : childrenOf(r.object)) {
            elements.push_back(p.wrap(std::move(child), Node::Kind::accessible, survey));
        }
    }
    return ok(std::move(elements));
}

// The menu bar of the focused window, else of the first window with one.
AttributeRead menuBar(const Reading& r) {
    std::vector<AccessibleRef> windows = windowsOf(r.object);
    const AtspiAccessible* focused = focusedAmong(r.platform, r.object, windows);
    std::stable_partition(windows.begin(), windows.end(), [&](const AccessibleRef& w) { return w.get() == focused; });
    AccessibleRef bar;
    for (const AccessibleRef& w : windows) {
        if (!bar) bar = findByRole(w.get(), ATSPI_ROLE_MENU_BAR);
    }
    return elementOrNoValue(r.platform, std::move(bar));
}

std::optional<AttributeRead> readApplication(const Reading& r, std::string_view attribute) {
    if (attribute == "AXWindows") return ok(elementArray(r.platform, windowsOf(r.object)));
    if (attribute == "AXFocusedWindow") return elementOrNoValue(r.platform, focusedWindowOf(r.platform, r.object));
    if (attribute == "AXMenuBar") return menuBar(r);
    if (attribute == "AXFocusedUIElement") {
        return elementOrNoValue(r.platform, focusedElementOf(r.platform, r.object));
    }
    return unsupported();
}

}  // namespace

std::optional<AttributeRead> readTree(const Reading& r, std::string_view attribute) {
    if (attribute == "AXChildren") return children(r);
    if (r.role == ATSPI_ROLE_APPLICATION) return readApplication(r, attribute);
    if (attribute == "AXMenu" && r.role == ATSPI_ROLE_COMBO_BOX) {
        // GTK's popup is a menu, Qt's a list.
        AccessibleRef menu = findByRole(r.object, ATSPI_ROLE_MENU);
        if (!menu) menu = findByRole(r.object, ATSPI_ROLE_LIST);
        return elementOrNoValue(r.platform, std::move(menu));
    }
    if (attribute == "AXCloseButton" && isWindowRole(r.role)) {
        return ok(r.platform.wrap(AccessibleRef::retain(r.object), Node::Kind::closeButton));
    }
    return std::nullopt;
}

AttributeRead readSystemWide(LinuxPlatform& p, std::string_view attribute) {
    if (attribute != "AXFocusedUIElement") return unsupported();
    // The focused element of the frontmost application's focused window.
    const std::optional<std::int32_t> pid = p.x11().activeWindowPid();
    const AccessibleRef app = pid ? p.findApplication(*pid) : AccessibleRef();
    if (!app) return noValue();
    return elementOrNoValue(p, focusedElementOf(p, app.get()));
}

}  // namespace zeblo::platform::linux_desktop
