// The Wayland session: the compositor's mechanisms chosen at the opening,
// windows from the accessibility bus (and sway's IPC), the clipboard holder.
#include "platform/linux/wayland_session.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <deque>
#include <filesystem>

#include "platform/linux/accessible.h"
#include "platform/linux/app_list.h"
#include "platform/linux/detach.h"
#include "platform/linux/linux_platform.h"

namespace zeblo::platform::linux_desktop {

namespace {

constexpr double kCompositorSeconds = 1.0;
constexpr double kHolderSeconds = 2.0;
constexpr std::uint16_t kF4 = 118;  // the library's key codes
constexpr std::uint16_t kTab = 48;
constexpr double kActivationSeconds = 0.15;
constexpr double kMappingSeconds = 0.5;  // for sway to list a window the accessibility bus shows
constexpr int kSwitchSteps = 8;  // windows tried at most

// This program's executable, as a compositor sees it.
std::string programPath() {
    std::error_code error;
    const std::filesystem::path path = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::string("this program") : path.string();
}

// The shown windows of `app` (none when they cannot be read).
std::vector<AccessibleRef> framesOf(AtspiAccessible* app) {
    return windowsOf(app, Sight::showing).value_or(std::vector<AccessibleRef>{});
}

// The application registered with process id `pid`, or null.
AccessibleRef applicationOf(std::int32_t pid) {
    const std::vector<ListedApp> apps = listApplications(nullptr);
    for (std::size_t i = 0; i < apps.size(); ++i) {
        if (apps[i].pid == pid) return applicationObject(apps[i], i);
    }
    return {};
}

// The window of `app` titled `title`, else its only window.
AccessibleRef windowOf(AtspiAccessible* app, const std::string& title) {
    std::vector<AccessibleRef> windows = framesOf(app);
    for (AccessibleRef& w : windows) {
        if (nameOf(w.get()) == title) return std::move(w);
    }
    return windows.size() == 1 ? std::move(windows.front()) : AccessibleRef();
}

// The Close button of a client-side title bar: a push button named "Close"
// within the first three levels below the window (GTK: frame, title bar,
// box, button), the nearest first.
AccessibleRef titleBarClose(AtspiAccessible* window) {
    std::deque<std::pair<AccessibleRef, int>> queue;
    queue.emplace_back(AccessibleRef::retain(window), 0);
    while (!queue.empty()) {
        auto [object, depth] = std::move(queue.front());
        queue.pop_front();
        if (depth > 0 && roleOfObject(object.get()) == ATSPI_ROLE_PUSH_BUTTON && nameOf(object.get()) == "Close") {
            return std::move(object);
        }
        if (depth < 3) {
            for (AccessibleRef& child : childrenOf(object.get())) {
                if (child) queue.emplace_back(std::move(child), depth + 1);
            }
        }
    }
    return {};
}

bool pressObject(AtspiAccessible* object) {
    const Ref<AtspiAction> action = Ref<AtspiAction>::adopt(atspi_accessible_get_action_iface(object));
    if (!action) return false;
    Error error;
    return atspi_action_do_action(action.get(), 0, out(error)) && !error;
}

}  // namespace

std::unique_ptr<WaylandSession> WaylandSession::open(bool portalOnly) {
    std::unique_ptr<WaylandSession> self(new WaylandSession());
    self->display_ = WaylandDisplay::connect(kCompositorSeconds);
    if (!self->display_) return nullptr;
    self->sway_ = SwayIpc::find();
    WaylandDisplay& display = *self->display_;
    if (!portalOnly) self->mutter_ = RemoteDesktop::open(&display);
    if (!self->mutter_ && !portalOnly) {
        if (display.offers("zwp_virtual_keyboard_manager_v1")) {
            self->keyboard_ = VirtualKeyboard::open(display);
        } else if (display.offers("org_kde_kwin_fake_input")) {
            self->fakeInput_ = FakeInputKeyboard::open(display);
        }
        if (display.offers("zwlr_data_control_manager_v1")) self->clipboard_ = DataControlClipboard::open(display);
    }
    if (!self->mutter_ && !self->keyboard_ && !self->fakeInput_) self->portal_ = PortalKeyboard::open(&display);
    if (!self->mutter_ && !self->keyboard_ && !self->fakeInput_ && !self->portal_) {
        self->keysMissing_ =
            "Keyboard: no way to send keys in this Wayland session: the compositor offers no virtual keyboard "
            "(zwp_virtual_keyboard_v1) and no fake input (org_kde_kwin_fake_input), and the session bus no mutter "
            "remote desktop (org.gnome.Mutter.RemoteDesktop) and no desktop portal with a remote desktop "
            "(org.freedesktop.portal.RemoteDesktop)";
        if (display.offers("org_kde_plasma_shell") || display.offers("org_kde_kwin_server_decoration_manager")) {
            // KWin announces fake input only to the programs it was told to trust.
            self->keysMissing_ += "; KWin lets a program use fake input when a desktop file whose Exec is " +
                                  programPath() + " lists org_kde_kwin_fake_input under X-KDE-Wayland-Interfaces";
        } else {
            self->keysMissing_ += "; run sway (or another wlroots compositor), GNOME or KDE, or an X11 session";
        }
    }
    return self;
}

WaylandSession::~WaylandSession() {
    // Protocol objects go before the connection they belong to.
    clipboard_.reset();
    keyboard_.reset();
    fakeInput_.reset();
    portal_.reset();
    mutter_.reset();
}

std::string WaylandSession::describe() const {
    if (mutter_) return "mutter's remote desktop";
    std::string out = keyboard_    ? "a virtual keyboard"
                      : fakeInput_ ? "KWin's fake input"
                      : portal_    ? "the desktop portal"
                                   : "no keyboard";
    out += clipboard_ ? " and data control" : " and no clipboard";
    return out;
}

// --- Keys

bool WaylandSession::keysReady() const { return mutter_ || keyboard_ || fakeInput_ || (portal_ && portal_->started()); }

std::string WaylandSession::keysMissing() { return portal_ ? portal_->ready() : keysMissing_; }

std::string WaylandSession::clipboardMissing() {
    if (mutter_ || clipboard_ || (!keyboard_ && !fakeInput_ && !portal_)) return {};
    return portal_ ? "Pasteboard: the desktop portal gives no clipboard (org.freedesktop.portal.RemoteDesktop "
                     "version 1); nothing is pasted and the clipboard is left untouched"
                   : "Pasteboard: the compositor offers no clipboard (zwlr_data_control_manager_v1); nothing is "
                     "pasted and the clipboard is left untouched";
}

bool WaylandSession::press(std::uint16_t id, const KeyRequest& key) {
    if (mutter_) return mutter_->press(id, key);
    if (fakeInput_) return fakeInput_->press(id, key);
    if (portal_) return portal_->started() && portal_->press(id, key);
    return keyboard_ && keyboard_->press(id, key);
}

void WaylandSession::release(std::uint16_t id) {
    if (mutter_) mutter_->release(id);
    if (keyboard_) keyboard_->release(id);
    if (fakeInput_) fakeInput_->release(id);
    if (portal_) portal_->release(id);
}

void WaylandSession::modifierKey(Modifier modifier, bool down) {
    if (mutter_) mutter_->modifierKey(modifier, down);
    if (keyboard_) keyboard_->modifierKey(modifier, down);
    if (fakeInput_) fakeInput_->modifierKey(modifier, down);
    if (portal_ && portal_->started()) portal_->modifierKey(modifier, down);
}

// --- Windows

std::optional<std::pair<std::int32_t, AccessibleRef>> WaylandSession::activeFrame() {
    const std::vector<ListedApp> apps = listApplications(nullptr);
    for (std::size_t i = 0; i < apps.size(); ++i) {
        if (apps[i].pid == 0) continue;
        const AccessibleRef app = applicationObject(apps[i], i);
        if (!app) continue;
        for (AccessibleRef& window : framesOf(app.get())) {
            if (hasState(window.get(), ATSPI_STATE_ACTIVE)) return std::make_pair(apps[i].pid, std::move(window));
        }
    }
    return std::nullopt;
}

std::optional<std::int32_t> WaylandSession::activeWindowPid() {
    if (auto frame = activeFrame()) return frame->first;
    if (sway_) {
        if (const std::optional<SwayView> view = sway_->focused()) return view->pid;
    }
    return std::nullopt;
}

std::string WaylandSession::activeWindowTitle() {
    if (auto frame = activeFrame()) return nameOf(frame->second.get());
    if (sway_) {
        if (const std::optional<SwayView> view = sway_->focused()) return view->name;
    }
    return {};
}

bool WaylandSession::activate(std::int32_t pid) {
    if (sway_) {
        // A window the accessibility bus shows may not be mapped yet: sway
        // lists it a moment later.
        std::optional<SwayView> view = sway_->viewOf(pid, "");
        for (const double end = monotonicSeconds() + kMappingSeconds; !view && monotonicSeconds() < end;) {
            usleep(10000);
            view = sway_->viewOf(pid, "");
        }
        return view && sway_->run(view->id, "focus");
    }
    const AccessibleRef app = applicationOf(pid);
    if (!app) return false;
    const std::vector<AccessibleRef> windows = framesOf(app.get());
    if (windows.empty()) return false;
    for (const AccessibleRef& w : windows) {
        if (hasState(w.get(), ATSPI_STATE_ACTIVE)) return true;
    }
    const auto active = [&] {
        // The toolkit tells a moment after the compositor has moved the focus.
        for (const double end = monotonicSeconds() + kActivationSeconds; monotonicSeconds() < end; usleep(10000)) {
            for (const AccessibleRef& w : framesOf(app.get())) {
                if (hasState(w.get(), ATSPI_STATE_ACTIVE)) return true;
            }
        }
        return false;
    };
    const Ref<AtspiComponent> component =
        Ref<AtspiComponent>::adopt(atspi_accessible_get_component_iface(windows.back().get()));
    Error error;
    if (component && atspi_component_grab_focus(component.get(), out(error)) && !error && active()) return true;
    // The compositor's window switching, backwards through its list of
    // windows (the least recently used first), until the process's window
    // is active: mutter's Shift+Alt+Tab, which it handles itself without a
    // shell.
    if (!keysReady()) return false;
    for (int i = 0; i < kSwitchSteps; ++i) {
        if (!press(kTab, KeyRequest{0xff09 /* Tab */, 0, static_cast<Modifiers>(kAltBit | kShiftBit)})) return false;
        release(kTab);
        if (active()) return true;
    }
    return false;
}

bool WaylandSession::requestClose(std::int32_t pid, const std::string& title, const std::optional<ScreenBox>& /*box*/) {
    if (sway_) {
        const std::optional<SwayView> view = sway_->viewOf(pid, title);
        return view && sway_->run(view->id, "kill");
    }
    const AccessibleRef app = applicationOf(pid);
    const AccessibleRef window = app ? windowOf(app.get(), title) : AccessibleRef();
    if (!window) return false;
    if (const AccessibleRef close = titleBarClose(window.get())) return pressObject(close.get());
    // The compositor's own shortcut, for the active window only.
    if (!keysReady() || !hasState(window.get(), ATSPI_STATE_ACTIVE)) return false;
    if (!press(kF4, KeyRequest{0xffc1 /* F4 */, 0, kAltBit})) return false;
    release(kF4);
    return true;
}

// --- The clipboard

bool WaylandSession::ownsClipboard() {
    serve(0);
    return mutter_ ? mutter_->owns() : clipboard_ && clipboard_->owns();
}

std::uint64_t WaylandSession::clipboardDataAnswered() const {
    if (mutter_) return mutter_->answered();
    return clipboard_ ? clipboard_->answered() : 0;
}

Offers WaylandSession::readClipboard() {
    if (mutter_) return mutter_->readClipboard();
    return clipboard_ ? clipboard_->read() : Offers();
}

// Without a way to paste, the clipboard is not touched.
bool WaylandSession::own(Offers offers) {
    if (!keysReady()) return false;
    if (mutter_) return mutter_->own(std::move(offers));
    return clipboard_ && clipboard_->own(std::move(offers));
}

void WaylandSession::disown() {
    if (!keysReady()) return;
    if (mutter_) mutter_->disown();
    if (clipboard_) clipboard_->disown();
}

void WaylandSession::serve(double seconds) {
    if (mutter_) {
        mutter_->serve(seconds);
    } else if (clipboard_) {
        clipboard_->serve(seconds);
    } else if (seconds > 0) {
        display_->dispatchUntil([] { return false; }, monotonicSeconds() + seconds);
    }
    display_->dispatchPending();
}

bool WaylandSession::handToHolder() {
    if (!ownsClipboard()) return false;
    const std::string payload = serializeOffers(mutter_ ? mutter_->offers() : clipboard_->offers());
    const Fd channel = startHelper({"hold", mutter_ ? "mutter" : "wayland"});
    if (!channel) return false;
    const bool ready = sendToHolder(channel.get(), payload, kHolderSeconds, [this] { serve(0); });
    serve(0);
    if (ready) {  // the holder has it now
        if (mutter_) mutter_->forget();
        if (clipboard_) clipboard_->forget();
    }
    return ready;
}

}  // namespace zeblo::platform::linux_desktop
