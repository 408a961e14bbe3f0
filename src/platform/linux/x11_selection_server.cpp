// Serving an X selection: owning it with saved offers and answering every
// request for them, large data in pieces.
#include <X11/Xatom.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "platform/linux/x11_selection.h"

namespace zeblo::platform::linux_desktop {

SelectionServer::SelectionServer(Display* display, Window window, Atom selection)
    : display_(display), window_(window), selection_(selection) {
    // Within the largest request without BIG-REQUESTS, in whole 32-bit items.
    const long largest = XMaxRequestSize(display) * 4 - 100;
    piece_ = static_cast<std::size_t>(std::clamp(largest, 4096L, 256L * 1024)) & ~std::size_t{3};
}

bool SelectionServer::own(Offers offers) {
    offers_ = std::move(offers);
    XSetSelectionOwner(display_, selection_, window_, CurrentTime);
    owns_ = XGetSelectionOwner(display_, selection_) == window_;
    if (!owns_) {
        offers_.clear();
        return false;
    }
    // A SelectionClear read by now was sent before we took the selection
    // (our own clearing just before sends one): it is not about this
    // ownership.
    XEvent stale;
    const auto isClear = [](Display*, XEvent* event, XPointer self) {
        const auto* server = reinterpret_cast<const SelectionServer*>(self);
        return Bool(event->type == SelectionClear && event->xselectionclear.window == server->window_ &&
                    event->xselectionclear.selection == server->selection_);
    };
    while (XCheckIfEvent(display_, &stale, isClear, reinterpret_cast<XPointer>(this))) {
    }
    return true;
}

void SelectionServer::disown() {
    XSetSelectionOwner(display_, selection_, None, CurrentTime);
    XSync(display_, False);
    forget();
}

void SelectionServer::forget() {
    owns_ = false;
    offers_.clear();
}

bool SelectionServer::handle(const XEvent& event) {
    if (event.type == SelectionRequest) {
        answer(event.xselectionrequest);
        return true;
    }
    if (event.type == SelectionClear) {
        if (event.xselectionclear.window != window_ || event.xselectionclear.selection != selection_) return false;
        forget();
        return true;
    }
    if (event.type != PropertyNotify || event.xproperty.state != PropertyDelete) return false;
    const auto transfer = std::find_if(transfers_.begin(), transfers_.end(), [&](const Transfer& t) {
        return t.requestor == event.xproperty.window && t.property == event.xproperty.atom;
    });
    if (transfer == transfers_.end()) return false;
    advance(*transfer);
    if (transfer->finished) {
        const Window requestor = transfer->requestor;
        transfers_.erase(transfer);
        const bool more = std::any_of(transfers_.begin(), transfers_.end(),
                                      [&](const Transfer& t) { return t.requestor == requestor; });
        if (!more && requestor != window_) XSelectInput(display_, requestor, NoEventMask);
    }
    return true;
}

void SelectionServer::answer(const XSelectionRequestEvent& request) {
    XSelectionEvent reply{};
    reply.type = SelectionNotify;
    reply.display = request.display;
    reply.requestor = request.requestor;
    reply.selection = request.selection;
    reply.target = request.target;
    reply.time = request.time;
    reply.property = None;  // refused unless answered below
    const Atom property = request.property != None ? request.property : request.target;  // obsolete requestors

    const auto offer = std::find_if(offers_.begin(), offers_.end(),
                                    [&](const Offer& o) { return intern(display_, o.target) == request.target; });
    if (!owns_ || request.selection != selection_) {
        // not ours to answer
    } else if (request.target == intern(display_, "TARGETS")) {
        std::vector<Atom> targets{request.target};
        for (const Offer& o : offers_) targets.push_back(intern(display_, o.target));
        XChangeProperty(display_, request.requestor, property, XA_ATOM, 32, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(targets.data()), static_cast<int>(targets.size()));
        reply.property = property;
    } else if (offer != offers_.end() && offer->data->size() > piece_) {
        // Too large for one request: announce the size; each deletion of the
        // property by the requestor asks for the next piece.
        std::erase_if(transfers_,
                      [&](const Transfer& t) { return t.requestor == request.requestor && t.property == property; });
        XSelectInput(display_, request.requestor, PropertyChangeMask);
        const long size = static_cast<long>(offer->data->size());
        XChangeProperty(display_, request.requestor, property, intern(display_, "INCR"), 32, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(&size), 1);
        transfers_.push_back({request.requestor, property, *offer});
        reply.property = property;
        ++dataAnswered_;
    } else if (offer != offers_.end()) {
        write(request.requestor, property, *offer, 0, offer->data->size());
        reply.property = property;
        ++dataAnswered_;
    }
    XSendEvent(display_, request.requestor, False, NoEventMask, reinterpret_cast<XEvent*>(&reply));
    XFlush(display_);
}

void SelectionServer::write(Window requestor, Atom property, const Offer& offer, std::size_t from, std::size_t count) {
    const char* bytes = offer.data->data() + from;
    const Atom type = intern(display_, offer.type);
    if (offer.format == 32) {
        std::vector<long> items(count / 4);  // Xlib takes a long per 32-bit item
        for (std::size_t i = 0; i < items.size(); ++i) {
            std::uint32_t item = 0;
            std::memcpy(&item, bytes + 4 * i, 4);
            items[i] = static_cast<long>(item);
        }
        XChangeProperty(display_, requestor, property, type, 32, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(items.data()), static_cast<int>(items.size()));
    } else if (offer.format == 16) {
        std::vector<short> items(count / 2);
        std::memcpy(items.data(), bytes, items.size() * 2);
        XChangeProperty(display_, requestor, property, type, 16, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(items.data()), static_cast<int>(items.size()));
    } else {
        XChangeProperty(display_, requestor, property, type, 8, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(bytes), static_cast<int>(count));
    }
}

void SelectionServer::advance(Transfer& transfer) {
    const std::size_t size = transfer.offer.data->size();
    const std::size_t count = std::min(piece_, size - transfer.sent);
    write(transfer.requestor, transfer.property, transfer.offer, transfer.sent, count);  // empty at the end
    transfer.sent += count;
    transfer.finished = count == 0;
    XFlush(display_);
}

}  // namespace zeblo::platform::linux_desktop
