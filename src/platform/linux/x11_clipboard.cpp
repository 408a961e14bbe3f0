// The CLIPBOARD selection of the session: owning it, answering requests,
// reading it from another owner, and handing it to the clipboard holder
// process that keeps restored contents available after this process stops
// serving them.
#include <poll.h>
#include <sys/socket.h>

#include <cerrno>

#include "platform/linux/detach.h"
#include "platform/linux/x11_session.h"

namespace zeblo::platform::linux_desktop {

bool X11Session::own(Offers offers) { return clipboard_->own(std::move(offers)); }

void X11Session::disown() { clipboard_->disown(); }

bool X11Session::ownsClipboard() {
    serve(0);
    return clipboard_->owns() && XGetSelectionOwner(display(), atom("CLIPBOARD")) == window_;
}

void X11Session::serve(double secondsToWait) {
    const double deadline = monotonicSeconds() + (secondsToWait > 0 ? secondsToWait : 0);
    do {
        while (XPending(display()) > 0) {
            XEvent event;
            XNextEvent(display(), &event);
            clipboard_->handle(event);
        }
    } while (waitForEvent(display(), deadline) || monotonicSeconds() < deadline);
}

Offers X11Session::readClipboard() {
    if (ownsClipboard()) return clipboard_->offers();
    return readSelection(display(), window_, atom("CLIPBOARD"), [this](XEvent& event) { clipboard_->handle(event); });
}

bool X11Session::handToHolder() {
    const std::string payload = serializeOffers(clipboard_->offers());
    const Fd channel = startHelper({"hold"});
    if (!channel) return false;
    // Send the offers, then wait for the byte that says the holder owns
    // CLIPBOARD; requests still addressed to us are answered meanwhile.
    std::size_t sent = 0;
    bool ready = false;
    for (const double deadline = monotonicSeconds() + kHolderSeconds; monotonicSeconds() < deadline; serve(0)) {
        const bool sending = sent < payload.size();
        pollfd fd{channel.get(), static_cast<short>(sending ? POLLOUT : POLLIN), 0};
        if (poll(&fd, 1, 10) <= 0) continue;
        if (!sending) {
            char byte = 0;
            const ssize_t got = recv(channel.get(), &byte, 1, MSG_DONTWAIT);
            ready = got == 1;
            if (ready || got == 0 || (errno != EAGAIN && errno != EINTR)) break;  // ready, or the holder has gone
            continue;
        }
        const ssize_t n =
            send(channel.get(), payload.data() + sent, payload.size() - sent, MSG_DONTWAIT | MSG_NOSIGNAL);
        if (n < 0 && errno != EAGAIN && errno != EINTR) break;  // the holder has gone
        if (n > 0) sent += static_cast<std::size_t>(n);
        if (sent == payload.size()) shutdown(channel.get(), SHUT_WR);
    }
    serve(0);
    if (ready) clipboard_->forget();  // the holder has it now
    return ready;
}

}  // namespace zeblo::platform::linux_desktop
