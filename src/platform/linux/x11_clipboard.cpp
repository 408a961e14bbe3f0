// The CLIPBOARD selection: owning it, answering requests, reading it from
// another owner, and the detached holder process that keeps restored
// contents available after this process stops serving them.
#include <X11/Xatom.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>

#include "platform/linux/detach.h"
#include "platform/linux/x11_session.h"

namespace zeblo::platform::linux_desktop {

namespace {

using Pairs = std::vector<std::pair<std::string, std::string>>;

// The X targets under which plain text is offered and asked for.
constexpr const char* kTextTargets[] = {"UTF8_STRING", "text/plain;charset=utf-8", "STRING", "TEXT",
                                        "text/plain"};
constexpr std::string_view kPlainTextType = "public.utf8-plain-text";

bool isTextTarget(const char* name) {
    for (const char* t : kTextTargets) {
        if (std::strcmp(t, name) == 0) return true;
    }
    return false;
}

// Answers one request for the selection from `pairs` (our types, with the
// plain text also offered under the usual X text targets).
void answerRequest(Display* display, const Pairs& pairs, const XSelectionRequestEvent& request) {
    XSelectionEvent reply{};
    reply.type = SelectionNotify;
    reply.display = request.display;
    reply.requestor = request.requestor;
    reply.selection = request.selection;
    reply.target = request.target;
    reply.time = request.time;
    reply.property = None;
    const Atom property = request.property != None ? request.property : request.target;

    const XData targetName(reinterpret_cast<unsigned char*>(XGetAtomName(display, request.target)));
    const std::string target = targetName ? reinterpret_cast<const char*>(targetName.get()) : "";

    const std::string* text = nullptr;
    for (const auto& [type, data] : pairs) {
        if (type == kPlainTextType) text = &data;
    }
    if (target == "TARGETS") {
        std::vector<Atom> targets{XInternAtom(display, "TARGETS", False)};
        if (text != nullptr) {
            for (const char* t : kTextTargets) targets.push_back(XInternAtom(display, t, False));
        }
        for (const auto& entry : pairs) {
            if (entry.first != kPlainTextType) targets.push_back(XInternAtom(display, entry.first.c_str(), False));
        }
        XChangeProperty(display, request.requestor, property, XA_ATOM, 32, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(targets.data()), static_cast<int>(targets.size()));
        reply.property = property;
    } else {
        const std::string* data = nullptr;
        if (isTextTarget(target.c_str())) data = text;
        for (const auto& entry : pairs) {
            if (data == nullptr && entry.first == target) data = &entry.second;
        }
        if (data != nullptr) {
            XChangeProperty(display, request.requestor, property, request.target, 8, PropModeReplace,
                            reinterpret_cast<const unsigned char*>(data->data()), static_cast<int>(data->size()));
            reply.property = property;
        }
    }
    XSendEvent(display, request.requestor, False, NoEventMask, reinterpret_cast<XEvent*>(&reply));
    XFlush(display);
}

double seconds() {
    using S = std::chrono::duration<double>;
    return std::chrono::duration_cast<S>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// Waits until the connection has an event or `deadline` passes.
bool waitForEvent(Display* display, double deadline) {
    if (XPending(display) > 0) return true;
    const double left = deadline - seconds();
    if (left <= 0) return false;
    pollfd fd{ConnectionNumber(display), POLLIN, 0};
    poll(&fd, 1, static_cast<int>(left * 1000) + 1);
    return XPending(display) > 0;
}

}  // namespace

void X11Session::answer(const XSelectionRequestEvent& request) { answerRequest(display(), data_, request); }

void X11Session::handle(XEvent& event) {
    if (event.type == SelectionRequest) {
        if (owner_) {
            answer(event.xselectionrequest);
        } else {
            answerRequest(display(), {}, event.xselectionrequest);  // refuse
        }
    } else if (event.type == SelectionClear && event.xselectionclear.window == window_) {
        owner_ = false;
        data_.clear();
    }
}

bool X11Session::own(Pairs pairs) {
    const Atom clipboard = atom("CLIPBOARD");
    data_ = std::move(pairs);
    XSetSelectionOwner(display(), clipboard, window_, CurrentTime);
    owner_ = XGetSelectionOwner(display(), clipboard) == window_;
    if (!owner_) data_.clear();
    return owner_;
}

void X11Session::disown() {
    XSetSelectionOwner(display(), atom("CLIPBOARD"), None, CurrentTime);
    XSync(display(), False);
    owner_ = false;
    data_.clear();
}

bool X11Session::ownsClipboard() {
    serve(0);
    return owner_ && XGetSelectionOwner(display(), atom("CLIPBOARD")) == window_;
}

void X11Session::serve(double secondsToWait) {
    const double deadline = seconds() + (secondsToWait > 0 ? secondsToWait : 0);
    do {
        while (XPending(display()) > 0) {
            XEvent event;
            XNextEvent(display(), &event);
            handle(event);
        }
    } while (waitForEvent(display(), deadline) || seconds() < deadline);
}

std::optional<std::string> X11Session::readText(double timeoutSeconds) {
    if (ownsClipboard()) {
        for (const auto& [type, data] : data_) {
            if (type == kPlainTextType) return data;
        }
        return std::nullopt;
    }
    const Atom clipboard = atom("CLIPBOARD");
    if (XGetSelectionOwner(display(), clipboard) == None) return std::nullopt;
    const Atom property = atom("ZEBLO_SELECTION");
    for (const char* target : {"UTF8_STRING", "STRING"}) {
        XConvertSelection(display(), clipboard, atom(target), property, window_, CurrentTime);
        XFlush(display());
        const double deadline = seconds() + timeoutSeconds;
        while (waitForEvent(display(), deadline)) {
            XEvent event;
            XNextEvent(display(), &event);
            if (event.type != SelectionNotify || event.xselection.requestor != window_) {
                handle(event);
                continue;
            }
            if (event.xselection.property == None) break;  // refused: try the next target
            Atom type = None;
            int format = 0;
            unsigned long count = 0, after = 0;
            unsigned char* data = nullptr;
            std::optional<std::string> text;
            if (XGetWindowProperty(display(), window_, property, 0, 1 << 24, True, AnyPropertyType, &type, &format,
                                   &count, &after, &data) == Success &&
                data != nullptr) {
                const XData owned(data);
                if (format == 8 && type != atom("INCR")) text.emplace(reinterpret_cast<const char*>(data), count);
            }
            return text;
        }
    }
    return std::nullopt;
}

bool X11Session::handToHolder(Pairs pairs) {
    const int ready = startDetached([&](int readyFd) { runClipboardHolder(std::move(pairs), readyFd); });
    if (ready < 0) return false;
    // The holder writes one byte once it owns CLIPBOARD; meanwhile keep
    // answering requests that are still addressed to us.
    bool ok = false;
    const double deadline = seconds() + 2.0;
    while (!ok && seconds() < deadline) {
        pollfd fd{ready, POLLIN, 0};
        if (poll(&fd, 1, 10) > 0) {
            char byte = 0;
            ok = read(ready, &byte, 1) == 1;
            break;
        }
        serve(0);
    }
    close(ready);
    serve(0);
    if (ok) {
        owner_ = false;
        data_.clear();
    }
    return ok;
}

void runClipboardHolder(Pairs pairs, int readyFd) {
    DisplayConnection connection(XOpenDisplay(nullptr));
    if (!connection) _exit(1);
    Display* display = connection.get();
    const Window window = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 1, 1, 0, 0, 0);
    const Atom clipboard = XInternAtom(display, "CLIPBOARD", False);
    XSetSelectionOwner(display, clipboard, window, CurrentTime);
    if (XGetSelectionOwner(display, clipboard) != window) _exit(1);
    const char byte = 1;
    if (write(readyFd, &byte, 1) != 1) _exit(1);
    close(readyFd);
    while (true) {
        XEvent event;
        XNextEvent(display, &event);
        if (event.type == SelectionRequest) answerRequest(display, pairs, event.xselectionrequest);
        if (event.type == SelectionClear) break;
    }
    connection.reset();
    _exit(0);
}

}  // namespace zeblo::platform::linux_desktop
