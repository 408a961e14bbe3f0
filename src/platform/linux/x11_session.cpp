// Windows, activation and closing (Xlib; XTest is asked for at the opening).
#include "platform/linux/x11_session.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>

#include <cstring>

namespace zeblo::platform::linux_desktop {

namespace {

// One property of `window` as a list of 32-bit items (windows, atoms, numbers).
std::vector<unsigned long> longProperty(Display* display, Window window, Atom property, Atom type) {
    std::vector<unsigned long> out;
    Atom actualType = None;
    int actualFormat = 0;
    unsigned long count = 0;
    unsigned long after = 0;
    unsigned char* data = nullptr;
    if (XGetWindowProperty(display, window, property, 0, 1 << 16, False, type, &actualType, &actualFormat, &count,
                           &after, &data) == Success &&
        data != nullptr) {
        const XData owned(data);
        if (actualFormat == 32) {
            const auto* items = reinterpret_cast<const unsigned long*>(data);  // longs, as Xlib hands them
            out.assign(items, items + count);
        }
    }
    return out;
}

int ignoreErrors(Display*, XErrorEvent*) { return 0; }

// A 32-bit client message of `type` about `window` with two data words.
XEvent clientMessage(Window window, Atom type, long first, long second) {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = type;
    event.xclient.format = 32;
    event.xclient.data.l[0] = first;
    event.xclient.data.l[1] = second;
    return event;
}

}  // namespace

std::unique_ptr<X11Session> X11Session::open() {
    DisplayConnection connection(XOpenDisplay(nullptr));
    if (!connection) return nullptr;
    Display* display = connection.get();
    int eventBase = 0, errorBase = 0, major = 0, minor = 0;
    if (!XTestQueryExtension(display, &eventBase, &errorBase, &major, &minor)) return nullptr;
    // A window that has gone away between two calls is not an error worth
    // ending the host process for.
    XSetErrorHandler(ignoreErrors);
    std::unique_ptr<X11Session> session(new X11Session());
    session->connection_ = std::move(connection);
    session->window_ = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 1, 1, 0, 0, 0);
    XSelectInput(display, session->window_, PropertyChangeMask);
    session->clipboard_ = std::make_unique<SelectionServer>(display, session->window_, session->atom("CLIPBOARD"));
    return session;
}

X11Session::~X11Session() {
    if (connection_) {
        if (clipboard_->owns()) serve(0);  // answer what is already queued
        XDestroyWindow(display(), window_);
    }  // the connection closes after this
}

Atom X11Session::atom(const char* name) { return XInternAtom(display(), name, False); }

std::optional<std::int32_t> X11Session::activeWindowPid() {
    const Window root = DefaultRootWindow(display());
    const auto active = longProperty(display(), root, atom("_NET_ACTIVE_WINDOW"), XA_WINDOW);
    if (active.empty() || active[0] == 0) return std::nullopt;
    const auto pid = longProperty(display(), static_cast<Window>(active[0]), atom("_NET_WM_PID"), XA_CARDINAL);
    if (pid.empty()) return std::nullopt;
    return static_cast<std::int32_t>(pid[0]);
}

std::string X11Session::titleOf(Window window) {
    Atom actualType = None;
    int actualFormat = 0;
    unsigned long count = 0, after = 0;
    unsigned char* data = nullptr;
    std::string title;
    if (XGetWindowProperty(display(), window, atom("_NET_WM_NAME"), 0, 1 << 16, False, atom("UTF8_STRING"), &actualType,
                           &actualFormat, &count, &after, &data) == Success &&
        data != nullptr) {
        const XData owned(data);
        if (actualFormat == 8) title.assign(reinterpret_cast<const char*>(data), count);
    }
    return title;
}

std::string X11Session::activeWindowTitle() {
    const auto active = longProperty(display(), DefaultRootWindow(display()), atom("_NET_ACTIVE_WINDOW"), XA_WINDOW);
    if (active.empty() || active[0] == 0) return {};
    return titleOf(static_cast<Window>(active[0]));
}

std::vector<Window> X11Session::windowsOf(std::int32_t pid) {
    std::vector<Window> out;
    const auto clients = longProperty(display(), DefaultRootWindow(display()), atom("_NET_CLIENT_LIST"), XA_WINDOW);
    const Atom pidAtom = atom("_NET_WM_PID");
    for (unsigned long client : clients) {
        const auto owner = longProperty(display(), static_cast<Window>(client), pidAtom, XA_CARDINAL);
        if (!owner.empty() && static_cast<std::int32_t>(owner[0]) == pid) out.push_back(static_cast<Window>(client));
    }
    return out;
}

std::optional<ScreenBox> X11Session::frameOf(Window window) {
    XWindowAttributes attributes{};
    if (XGetWindowAttributes(display(), window, &attributes) == 0) return std::nullopt;
    int x = 0, y = 0;
    Window child = 0;
    if (XTranslateCoordinates(display(), window, attributes.root, 0, 0, &x, &y, &child) == 0) return std::nullopt;
    ScreenBox box{x, y, attributes.width, attributes.height};
    const auto frame = longProperty(display(), window, atom("_NET_FRAME_EXTENTS"), XA_CARDINAL);
    if (frame.size() == 4) {  // left, right, top, bottom
        box.x -= static_cast<std::int32_t>(frame[0]);
        box.y -= static_cast<std::int32_t>(frame[2]);
        box.width += static_cast<std::int32_t>(frame[0] + frame[1]);
        box.height += static_cast<std::int32_t>(frame[2] + frame[3]);
    }
    return box;
}

bool X11Session::activate(Window window) {
    // Source 2: the request comes from a pager-like tool.
    XEvent event = clientMessage(window, atom("_NET_ACTIVE_WINDOW"), 2, CurrentTime);
    const Status sent = XSendEvent(display(), DefaultRootWindow(display()), False,
                                   SubstructureRedirectMask | SubstructureNotifyMask, &event);
    XRaiseWindow(display(), window);
    // Window managers may leave the keyboard focus where it was when the
    // window already counts as active: give it the focus as well.
    XWindowAttributes attributes{};
    if (XGetWindowAttributes(display(), window, &attributes) != 0 && attributes.map_state == IsViewable) {
        XSetInputFocus(display(), window, RevertToParent, CurrentTime);
    }
    XSync(display(), False);
    return sent != 0;
}

bool X11Session::refreshFocus() {
    Window focus = None;
    int revertTo = RevertToParent;
    XGetInputFocus(display(), &focus, &revertTo);
    if (focus == None || focus == PointerRoot || focus == DefaultRootWindow(display())) return false;
    XSetInputFocus(display(), PointerRoot, RevertToPointerRoot, CurrentTime);
    XSetInputFocus(display(), focus, revertTo, CurrentTime);
    XSync(display(), False);
    return true;
}

bool X11Session::requestClose(Window window) {
    XEvent event =
        clientMessage(window, atom("WM_PROTOCOLS"), static_cast<long>(atom("WM_DELETE_WINDOW")), CurrentTime);
    const Status sent = XSendEvent(display(), window, False, NoEventMask, &event);
    XSync(display(), False);
    return sent != 0;
}

}  // namespace zeblo::platform::linux_desktop
