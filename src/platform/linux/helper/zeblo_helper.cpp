// zeblo-helper: starts the applications libZEBLOui launches and holds the
// clipboard it restores, so that the library never forks its host process.
// The library starts it with posix_spawn; the protocol is in detach.h. This
// program is single-threaded, so it may fork and go on in the child.
#include <X11/Xlib.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <string>

#include "platform/linux/detach.h"
#include "platform/linux/x11_owned.h"
#include "platform/linux/mutter_remote_desktop.h"
#include "platform/linux/wlr_clipboard.h"
#include "platform/linux/x11_selection.h"

using namespace zeblo::platform::linux_desktop;

namespace {

// Leaves the library's process: a session of our own and a child that init
// adopts; the first process ends here (the library waits for it). When the
// child cannot be made, `reportError` sends errno on the channel first.
void detach(bool reportError) {
    setsid();
    const pid_t child = fork();
    if (child == 0) return;
    if (child < 0 && reportError) {
        const int error = errno;
        (void)!write(kHelperChannel, &error, sizeof error);
    }
    _exit(child < 0 ? 1 : 0);
}

int launch(char** command) {
    detach(true);
    // Toolkits that read the session's accessibility switch only as they
    // start (Chromium, Electron) or not at all (Qt, without the switch) join
    // the accessibility bus all the same.
    setenv("ACCESSIBILITY_ENABLED", "1", 1);
    setenv("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1", 1);
    fcntl(kHelperChannel, F_SETFD, FD_CLOEXEC);  // closes with the exec: success
    execvp(command[0], command);
    const int error = errno;
    (void)!write(kHelperChannel, &error, sizeof error);
    return 127;
}

constexpr double kCompositorSeconds = 1.0;

int ignoreErrors(Display*, XErrorEvent*) { return 0; }

// Everything the library sends, up to the end of its stream.
std::optional<std::string> readAll(const Fd& channel) {
    std::string bytes;
    char buffer[1 << 16];
    while (true) {
        pollfd fd{channel.get(), POLLIN, 0};
        if (poll(&fd, 1, 5000) <= 0) return std::nullopt;  // the library stopped sending
        const ssize_t n = read(channel.get(), buffer, sizeof buffer);
        if (n == 0) return bytes;
        if (n < 0 && errno != EINTR) return std::nullopt;
        if (n > 0) bytes.append(buffer, static_cast<std::size_t>(n));
    }
}

// Tells the library that the clipboard is ours: one byte, then the channel
// closes (a library that gave up waiting is still served).
void ready(Fd& channel) {
    const char byte = 1;
    (void)send(channel.get(), &byte, 1, MSG_NOSIGNAL);
    channel = Fd();
}

int holdX11(Offers offers, Fd channel) {
    const DisplayConnection connection(XOpenDisplay(nullptr));
    if (!connection) return 1;
    Display* display = connection.get();
    XSetErrorHandler(ignoreErrors);  // a requestor that has gone away is no reason to stop
    const Window window = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 1, 1, 0, 0, 0);
    SelectionServer clipboard(display, window, XInternAtom(display, "CLIPBOARD", False));
    if (!clipboard.own(std::move(offers))) return 1;
    ready(channel);
    while (clipboard.owns()) {
        XEvent event;
        XNextEvent(display, &event);
        clipboard.handle(event);
    }
    return 0;
}

int holdWayland(Offers offers, Fd channel) {
    const std::unique_ptr<WaylandDisplay> display = WaylandDisplay::connect(kCompositorSeconds);
    if (!display) return 1;
    const std::unique_ptr<DataControlClipboard> clipboard = DataControlClipboard::open(*display);
    if (!clipboard || !clipboard->own(std::move(offers))) return 1;
    ready(channel);
    while (clipboard->owns() && !display->broken()) clipboard->serve(60);
    return 0;
}

// mutter's clipboard lives in a remote desktop session of the helper's own,
// on its own bus connection.
int holdMutter(Offers offers, Fd channel) {
    const std::unique_ptr<RemoteDesktop> session = RemoteDesktop::open(nullptr);
    if (!session || !session->own(std::move(offers))) return 1;
    ready(channel);
    while (session->owns()) session->serve(60);
    return 0;
}

// `kind` names the session's clipboard: "" for X11's CLIPBOARD, "wayland"
// for data control, "mutter" for mutter's remote desktop.
int hold(const std::string& kind) {
    detach(false);
    if (chdir("/") != 0) return 1;
    Fd channel(kHelperChannel);
    const std::optional<std::string> bytes = readAll(channel);
    std::optional<Offers> offers = bytes ? parseOffers(*bytes) : std::nullopt;
    if (!offers) return 1;
    if (kind == "wayland") return holdWayland(std::move(*offers), std::move(channel));
    if (kind == "mutter") return holdMutter(std::move(*offers), std::move(channel));
    return holdX11(std::move(*offers), std::move(channel));
}

}  // namespace

int main(int argc, char** argv) {
    close_range(kHelperChannel + 1, ~0U, 0);
    if (argc >= 3 && std::strcmp(argv[1], "launch") == 0) return launch(argv + 2);
    if ((argc == 2 || argc == 3) && std::strcmp(argv[1], "hold") == 0) return hold(argc == 3 ? argv[2] : "");
    std::fputs("usage: zeblo-helper launch PROGRAM [ARG...] | zeblo-helper hold [wayland|mutter]\n", stderr);
    return 2;
}
