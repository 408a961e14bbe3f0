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
    const bool ready = sendToHolder(channel.get(), payload, kHolderSeconds, [this] { serve(0); });
    serve(0);
    if (ready) clipboard_->forget();  // the holder has it now
    return ready;
}

}  // namespace zeblo::platform::linux_desktop
