// Actions: "AXPress"/"AXPick" run the element's click, press, activate or
// toggle action (or a twin's); showing an element's menu, stepping a value,
// scrolling it into view; closing a window.
#include <algorithm>
#include <chrono>
#include <initializer_list>
#include <span>

#include "platform/ax_names.h"
#include "platform/linux/accessible.h"
#include "platform/linux/linux_actions.h"
#include "platform/linux/linux_platform.h"
#include "platform/reply_limit.h"

namespace zeblo::platform::linux_desktop {

namespace {

// Matched without regard to case: GTK names its actions "click", Qt "Press"
// and "Toggle", Chromium a check box's "check" or "uncheck" (whichever the
// press does).
constexpr const char* kPressActions[] = {"click", "press", "activate", "toggle", "check", "uncheck"};

bool isPressName(const std::string& name) {
    for (const char* press : kPressActions) {
        if (g_ascii_strcasecmp(name.c_str(), press) == 0) return true;
    }
    return false;
}

// The index among `names` of the first of `wanted` (in any case) that is
// there, or -1.
int indexAmong(const std::vector<std::string>& names, std::span<const char* const> wanted) {
    for (const char* name : wanted) {
        for (std::size_t i = 0; i < names.size(); ++i) {
            if (g_ascii_strcasecmp(names[i].c_str(), name) == 0) return static_cast<int>(i);
        }
    }
    return -1;
}

}  // namespace

// What a call that acts gave: kAXErrorCannotComplete when it failed because
// its reply did not come within the reply limit (see press()).
AXError outcome(std::chrono::steady_clock::time_point start, bool failed, gboolean done) {
    if (!failed) return done ? kAXErrorSuccess : kAXErrorFailure;
    const auto waited = std::chrono::steady_clock::now() - start;
    return waited >= std::chrono::milliseconds(replyLimitMs()) ? kAXErrorCannotComplete : kAXErrorFailure;
}

namespace {

// Runs the element's press-like action. Insensitive elements, and elements
// without such an action, fail: AT-SPI itself reports success for them. A
// call that gets no reply within the reply limit was delivered and is still
// running (an action that opens a modal dialog answers when it closes): it
// gives kAXErrorCannotComplete, as on macOS, which callers count as done;
// every other failure gives kAXErrorFailure.
AXError press(AtspiAccessible* object) {
    const std::optional<std::uint64_t> states = statesOf(object);
    if (!states || ((*states >> ATSPI_STATE_SENSITIVE) & 1) == 0) return kAXErrorFailure;
    std::optional<std::vector<std::string>> names = actionNamesOf(object);
    // Firefox counts an element's actions only once asked for them: its
    // first answer for a button can be none. An element a user can focus is
    // asked again, for a moment.
    if ((*states >> ATSPI_STATE_FOCUSABLE) & 1) {
        for (const int pause : {10, 20, 40}) {
            if (!names || !names->empty()) break;
            g_usleep(pause * 1000);
            names = actionNamesOf(object);
        }
    }
    if (!names) return kAXErrorFailure;
    return doAction(object, indexAmong(*names, kPressActions));
}

// Whether `object` has a press-like action.
bool hasPressAction(AtspiAccessible* object) {
    for (const std::string& name : actionNamesOf(object).value_or(std::vector<std::string>{})) {
        if (isPressName(name)) return true;
    }
    return false;
}

// The nearest element of the same name as `object` that can be pressed,
// inside it or around it (GTK 4 makes a menu button of two nested push
// buttons of one name, and only the inner one has an action), or null.
AccessibleRef pressableTwin(AtspiAccessible* object) {
    constexpr int kLevels = 3;
    const std::string name = nameOf(object);
    if (name.empty()) return {};
    std::vector<AccessibleRef> level;
    level.push_back(AccessibleRef::retain(object));
    for (int depth = 0; depth < kLevels && !level.empty(); ++depth) {
        std::vector<AccessibleRef> next;
        for (const AccessibleRef& at : level) {
            for (AccessibleRef& child : childrenOf(at.get())) {
                if (!child) continue;
                if (nameOf(child.get()) == name && hasPressAction(child.get())) return std::move(child);
                next.push_back(std::move(child));
            }
        }
        level = std::move(next);
    }
    AccessibleRef up = AccessibleRef::retain(object);
    for (int depth = 0; depth < kLevels && up; ++depth) {
        up = AccessibleRef::adopt(atspi_accessible_get_parent(up.get(), nullptr));
        if (up && nameOf(up.get()) == name && hasPressAction(up.get())) return up;
    }
    return {};
}

// Toggles `object`, a check box without any action (GTK 4.8 gives its check
// buttons none, and no way to give them the focus), as a user would with the
// keyboard: its window is brought to the front, Tab moves the focus until it
// is on the check box, and Space toggles it. Done when its checked state has
// changed within the reply limit; nothing but the focus has moved otherwise.
AXError toggleByKey(LinuxPlatform& p, AtspiAccessible* object) {
    const auto has = [](const std::optional<std::uint64_t>& states, AtspiStateType state) {
        return states && ((*states >> state) & 1) != 0;
    };
    const std::optional<std::uint64_t> before = statesOf(object);
    if (!has(before, ATSPI_STATE_SENSITIVE) || !has(before, ATSPI_STATE_FOCUSABLE)) return kAXErrorActionUnsupported;
    Error error;
    const auto pid = static_cast<std::int32_t>(atspi_accessible_get_process_id(object, out(error)));
    if (error) return kAXErrorFailure;
    Session& session = p.session();
    if (session.activeWindowPid() != pid && !session.activate(pid)) return kAXErrorFailure;
    const auto tap = [&](std::uint16_t id, KeySym keysym) {
        if (!session.press(id, KeyRequest{keysym, 0, 0})) return false;
        session.release(id);
        p.touch();
        return true;
    };
    // A short wait for the toolkit to show what a key did.
    const auto within = [&](double seconds, auto done) {
        for (const double end = p.now() + seconds; !done(); p.sleep(0.005)) {
            if (p.now() >= end) return false;
        }
        return true;
    };
    const auto focused = [&] { return session.activeWindowPid() == pid && has(statesOf(object), ATSPI_STATE_FOCUSED); };
    constexpr int kMostTabs = 64;
    constexpr std::uint16_t kTab = 48, kSpace = 49;  // the library's key codes
    bool reached = within(0.1, focused);
    for (int tabs = 0; !reached && tabs < kMostTabs; ++tabs) {
        if (!tap(kTab, 0xff09 /* Tab */)) return kAXErrorFailure;
        reached = within(0.05, focused);
    }
    if (!reached) {
        p.log("Check box without an action: the focus did not reach it with Tab");
        return kAXErrorFailure;
    }
    if (!tap(kSpace, 0x20 /* space */)) return kAXErrorFailure;
    const bool checked = has(before, ATSPI_STATE_CHECKED);
    const bool changed =
        within(replyLimitMs() / 1000.0, [&] { return has(statesOf(object), ATSPI_STATE_CHECKED) != checked; });
    return changed ? kAXErrorSuccess : kAXErrorFailure;
}

}  // namespace

// Presses `object`, or the twin that can be pressed in its place, or for a
// check box without any action, toggles it by key.
AXError pressOrTwin(LinuxPlatform& p, AtspiAccessible* object) {
    const AXError code = press(object);
    if (code != kAXErrorActionUnsupported) return code;
    if (const AccessibleRef twin = pressableTwin(object)) return press(twin.get());
    const AtspiRole role = roleOfObject(object);
    if (isToggleRole(role) && role != ATSPI_ROLE_CHECK_MENU_ITEM && role != ATSPI_ROLE_RADIO_MENU_ITEM) {
        return toggleByKey(p, object);
    }
    return code;
}

namespace {

bool performedCode(AXError code) { return code == kAXErrorSuccess || code == kAXErrorCannotComplete; }

// Brings the window of `object` to the front when it is not, so that the
// focus and keys reach it.
bool frontWindowOf(LinuxPlatform& p, AtspiAccessible* object) {
    Error error;
    const auto pid = static_cast<std::int32_t>(atspi_accessible_get_process_id(object, out(error)));
    if (error) return false;
    Session& session = p.session();
    return session.activeWindowPid() == pid || session.activate(pid);
}

}  // namespace

// Gives `object` the keyboard focus; done once it shows the focused state.
AXError focus(LinuxPlatform& p, AtspiAccessible* object) {
    if (!hasState(object, ATSPI_STATE_FOCUSABLE)) return kAXErrorActionUnsupported;
    if (!frontWindowOf(p, object)) return kAXErrorFailure;
    const Ref<AtspiComponent> component = Ref<AtspiComponent>::adopt(atspi_accessible_get_component_iface(object));
    if (!component) return kAXErrorActionUnsupported;
    Error error;
    const auto start = std::chrono::steady_clock::now();
    const gboolean done = atspi_component_grab_focus(component.get(), out(error));
    return outcome(start, error != nullptr, done);
}

int actionIndex(AtspiAccessible* object, std::initializer_list<const char*> wanted) {
    return indexAmong(actionNamesOf(object).value_or(std::vector<std::string>{}),
                      std::span<const char* const>(wanted.begin(), wanted.size()));
}

AXError doAction(AtspiAccessible* object, int index) {
    if (index < 0) return kAXErrorActionUnsupported;
    switch (runAction(object, index)) {
        case ActionRun::done: return kAXErrorSuccess;
        case ActionRun::unanswered: return kAXErrorCannotComplete;
        case ActionRun::refused: break;
    }
    return kAXErrorFailure;
}

namespace {

// The actions that open an element's menu: Qt's "ShowMenu", Chromium's
// context menu.
constexpr std::initializer_list<const char*> kMenuActions = {"showmenu", "show menu", "showcontextmenu", "popup",
                                                             "context menu"};

// Opens the menu of `object`: its own action, else as a user would with the
// keyboard, the element focused and Shift+F10 pressed (GTK, Qt and the
// browsers open an element's context menu so).
AXError showMenu(LinuxPlatform& p, AtspiAccessible* object) {
    if (!hasState(object, ATSPI_STATE_SENSITIVE)) return kAXErrorFailure;
    if (const int index = actionIndex(object, kMenuActions); index >= 0) return doAction(object, index);
    if (!performedCode(focus(p, object))) return kAXErrorActionUnsupported;
    Session& session = p.session();
    constexpr std::uint16_t kF10 = 109;  // the library's key code
    if (!session.press(kF10, KeyRequest{0xffc7 /* F10 */, 0, kShiftBit})) return kAXErrorFailure;
    session.release(kF10);
    p.touch();
    return kAXErrorSuccess;
}

// Moves a slider or spin button by its step (1 when it gives none).
AXError step(AtspiAccessible* object, int direction) {
    const Ref<AtspiValue> value = Ref<AtspiValue>::adopt(atspi_accessible_get_value_iface(object));
    if (!value) return kAXErrorActionUnsupported;
    if (!hasState(object, ATSPI_STATE_SENSITIVE)) return kAXErrorFailure;
    Error error;
    const double current = atspi_value_get_current_value(value.get(), out(error));
    double increment = error ? 0 : atspi_value_get_minimum_increment(value.get(), out(error));
    const double low = error ? 0 : atspi_value_get_minimum_value(value.get(), out(error));
    const double high = error ? 0 : atspi_value_get_maximum_value(value.get(), out(error));
    if (error) return kAXErrorCannotComplete;
    if (increment <= 0) increment = 1;
    const double wanted = std::clamp(current + direction * increment, low, std::max(low, high));
    const auto start = std::chrono::steady_clock::now();
    const gboolean done = atspi_value_set_current_value(value.get(), wanted, out(error));
    return outcome(start, error != nullptr, done);
}

// Asks the window system to close `window` (an AT-SPI frame or dialog): the
// process's window titled with the frame's name (session.h).
AXError closeWindow(LinuxPlatform& p, AtspiAccessible* window) {
    Error error;
    const auto pid = static_cast<std::int32_t>(atspi_accessible_get_process_id(window, out(error)));
    if (error) return kAXErrorFailure;
    const std::string title = takeText(atspi_accessible_get_name(window, out(error)));
    if (error) return kAXErrorFailure;
    return p.session().requestClose(pid, title, screenBoxOf(window)) ? kAXErrorSuccess : kAXErrorFailure;
}

}  // namespace

AXError LinuxPlatform::performAction(const Element& element, std::string_view action) {
    const auto locked = guard();
    touch();
    Node* n = node(element);
    if (n == nullptr) return kAXErrorIllegalArgument;
    try {
        if (n->kind == Node::Kind::accessible) {
            AtspiAccessible* object = n->object.get();
            if (action == ax::kShowMenuAction) return showMenu(*this, object);
            if (action == ax::kIncrementAction || action == ax::kDecrementAction) return step(object, action == ax::kIncrementAction ? 1 : -1);
            if (action == ax::kScrollToVisibleAction) {
                const Ref<AtspiComponent> component =
                    Ref<AtspiComponent>::adopt(atspi_accessible_get_component_iface(object));
                if (!component) return kAXErrorActionUnsupported;
                Error error;
                const gboolean done = atspi_component_scroll_to(component.get(), ATSPI_SCROLL_ANYWHERE, out(error));
                return error ? kAXErrorFailure : done ? kAXErrorSuccess : kAXErrorFailure;
            }
        }
        if (action != ax::kPressAction && action != ax::kPickAction) return kAXErrorActionUnsupported;
        switch (n->kind) {
            case Node::Kind::closeButton: return closeWindow(*this, n->object.get());
            case Node::Kind::accessible: return pressOrTwin(*this, n->object.get());
            default: return kAXErrorActionUnsupported;
        }
    } catch (...) {
        return kAXErrorFailure;
    }
}

NamesRead LinuxPlatform::copyActionNames(const Element& element) {
    const auto locked = guard();
    Node* n = node(element);
    if (n == nullptr) return {kAXErrorIllegalArgument, std::nullopt};
    if (n->kind == Node::Kind::closeButton) return {kAXErrorSuccess, std::vector<std::string>{ax::kPressAction}};
    if (n->kind != Node::Kind::accessible) return {kAXErrorSuccess, std::vector<std::string>{}};
    // A walk's elements read their action names from its survey, all in
    // one batch.
    const std::vector<std::string>* known = surveyed(*n) != nullptr ? n->survey->actions(n->object.get()) : nullptr;
    std::optional<std::vector<std::string>> names = known != nullptr ? std::optional(*known)
                                                                     : actionNamesOf(n->object.get());
    if (!names) return {kAXErrorCannotComplete, std::nullopt};
    // Press-like actions are listed under the name the library presses.
    std::vector<std::string> out;
    bool pressListed = false;
    for (std::string& name : *names) {
        bool menu = false;
        for (const char* m : kMenuActions) menu = menu || g_ascii_strcasecmp(name.c_str(), m) == 0;
        if (isPressName(name)) {
            if (!pressListed) out.emplace_back(ax::kPressAction);
            pressListed = true;
        } else if (menu) {
            out.emplace_back(ax::kShowMenuAction);
        } else {
            out.push_back(std::move(name));
        }
    }
    return {kAXErrorSuccess, std::move(out)};
}

}  // namespace zeblo::platform::linux_desktop
