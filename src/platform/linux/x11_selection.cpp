#include "platform/linux/x11_selection.h"

#include <X11/Xatom.h>
#include <poll.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "platform/linux/x11_owned.h"

namespace zeblo::platform::linux_desktop {

namespace {

bool isMetaTarget(std::string_view name) {
    for (std::string_view meta : {"TARGETS", "MULTIPLE", "TIMESTAMP", "DELETE", "SAVE_TARGETS"}) {
        if (name == meta) return true;
    }
    return name.rfind("INSERT_", 0) == 0;
}

// Types whose data names a resource of the owner, which dies with it.
bool isResourceType(std::string_view type) {
    for (std::string_view resource : {"PIXMAP", "BITMAP", "DRAWABLE", "WINDOW", "COLORMAP"}) {
        if (type == resource) return true;
    }
    return false;
}

Atom intern(Display* display, const std::string& name) { return XInternAtom(display, name.c_str(), False); }

std::string atomName(Display* display, Atom atom) {
    const XData name(reinterpret_cast<unsigned char*>(XGetAtomName(display, atom)));
    return name ? reinterpret_cast<const char*>(name.get()) : "";
}

// A property as read: Xlib's items (a char, short or long each) as bytes.
struct Property {
    Atom type = None;
    int format = 8;
    std::string data;
};

// Reads and deletes `property` of `window`: nothing when it is missing or
// holds more than `limit` bytes.
std::optional<Property> takeProperty(Display* display, Window window, Atom property, std::size_t limit) {
    Atom type = None;
    int format = 0;
    unsigned long count = 0, after = 0;
    unsigned char* raw = nullptr;
    const long words = static_cast<long>(limit / 4 + 1);
    if (XGetWindowProperty(display, window, property, 0, words, True, AnyPropertyType, &type, &format, &count, &after,
                           &raw) != Success) {
        return std::nullopt;
    }
    const XData owned(raw);
    if (after > 0) XDeleteProperty(display, window, property);  // not deleted when not read whole
    if (type == None || after > 0 || (format != 8 && format != 16 && format != 32)) return std::nullopt;
    Property p{type, format, {}};
    if (format == 32) {
        p.data.resize(count * 4);
        for (unsigned long i = 0; i < count; ++i) {
            const auto item = static_cast<std::uint32_t>(reinterpret_cast<const unsigned long*>(raw)[i]);
            std::memcpy(p.data.data() + 4 * i, &item, 4);
        }
    } else if (raw != nullptr) {
        p.data.assign(reinterpret_cast<const char*>(raw), count * itemSize(format));
    }
    if (p.data.size() > limit) return std::nullopt;
    return p;
}

// One save: readSelection.
class Reader {
public:
    Reader(Display* display, Window window, Atom selection, const std::function<void(XEvent&)>& other)
        : display_(display),
          window_(window),
          selection_(selection),
          other_(other),
          end_(monotonicSeconds() + kSaveSeconds) {}

    Offers run() {
        Offers offers;
        if (XGetSelectionOwner(display_, selection_) == None) return offers;
        std::vector<Atom> targets;
        if (auto list = convert(intern(display_, "TARGETS"), kTargetLimit); list && list->format == 32) {
            targets.resize(list->data.size() / 4);
            for (std::size_t i = 0; i < targets.size(); ++i) {
                std::uint32_t atom = 0;
                std::memcpy(&atom, list->data.data() + 4 * i, 4);
                targets[i] = atom;
            }
        } else {
            targets = {intern(display_, "UTF8_STRING"), XA_STRING};
        }
        std::size_t total = 0;
        for (Atom target : targets) {
            const std::string name = atomName(display_, target);
            const bool seen =
                std::any_of(offers.begin(), offers.end(), [&](const Offer& o) { return o.target == name; });
            if (name.empty() || seen || isMetaTarget(name) || name.find(kSeparator) != std::string::npos) continue;
            if (monotonicSeconds() >= end_) break;
            std::optional<Property> p = convert(target, std::min(kTargetLimit, kSaveLimit - total));
            if (!p) continue;
            std::string type = atomName(display_, p->type);
            if (isResourceType(type)) continue;
            total += p->data.size();
            offers.push_back(
                {name, std::move(type), p->format, std::make_shared<const std::string>(std::move(p->data))});
        }
        return offers;
    }

private:
    // Waits for an event that `match` accepts; other events go to `other_`.
    template <class Match>
    bool next(XEvent& event, Match match) {
        const double deadline = std::min(monotonicSeconds() + kReplySeconds, end_);
        while (waitForEvent(display_, deadline)) {
            XNextEvent(display_, &event);
            if (match(event)) return true;
            other_(event);
        }
        return false;
    }

    // The property answers arrive in. A transfer given up may still write to
    // its property later, so the next answers go to another one.
    Atom property() {
        return intern(display_, "ZEBLO_SELECTION" + (abandoned_ > 0 ? "_" + std::to_string(abandoned_) : ""));
    }
    std::nullopt_t abandon() {
        ++abandoned_;
        return std::nullopt;
    }

    // Asks for `target` and reads the answer, whole or in pieces.
    std::optional<Property> convert(Atom target, std::size_t limit) {
        const Atom into = property();
        XDeleteProperty(display_, window_, into);
        XConvertSelection(display_, selection_, target, into, window_, CurrentTime);
        XFlush(display_);
        XEvent event;
        const bool answered = next(event, [&](const XEvent& e) {
            return e.type == SelectionNotify && e.xselection.requestor == window_ &&
                   e.xselection.selection == selection_ && e.xselection.target == target;
        });
        if (!answered) return abandon();
        if (event.xselection.property == None) return std::nullopt;  // refused
        std::optional<Property> first = takeProperty(display_, window_, into, std::max<std::size_t>(limit, 4));
        if (!first || first->type != intern(display_, "INCR")) {
            if (first && first->data.size() > limit) return std::nullopt;
            return first;
        }
        // In pieces: deleting the property asks for the next one; an empty
        // piece ends the data.
        std::optional<Property> whole;
        while (true) {
            const bool arrived = next(event, [&](const XEvent& e) {
                return e.type == PropertyNotify && e.xproperty.window == window_ && e.xproperty.atom == into &&
                       e.xproperty.state == PropertyNewValue;
            });
            if (!arrived) return abandon();
            const std::size_t have = whole ? whole->data.size() : 0;
            std::optional<Property> piece = takeProperty(display_, window_, into, limit - have);
            if (!piece) return abandon();
            if (!whole) {
                whole = std::move(piece);
            } else if (!piece->data.empty()) {
                whole->data += piece->data;
            } else {
                return whole;
            }
            if (whole->data.empty()) return whole;
        }
    }

    Display* display_;
    Window window_;
    Atom selection_;
    const std::function<void(XEvent&)>& other_;
    double end_;
    int abandoned_ = 0;
};

}  // namespace

bool waitForEvent(Display* display, double deadline) {
    if (XPending(display) > 0) return true;
    const double left = deadline - monotonicSeconds();
    if (left <= 0) return false;
    pollfd fd{ConnectionNumber(display), POLLIN, 0};
    poll(&fd, 1, static_cast<int>(left * 1000) + 1);
    return XPending(display) > 0;
}

Offers readSelection(Display* display, Window window, Atom selection, const std::function<void(XEvent&)>& other) {
    return Reader(display, window, selection, other).run();
}

// --- Serving ------------------------------------------------------------------------

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
