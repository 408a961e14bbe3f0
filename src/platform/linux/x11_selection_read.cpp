// Saving an X selection: every target its owner offers, read whole or in
// pieces, within the limits and the time of offers.h.
#include <X11/Xatom.h>
#include <poll.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "platform/linux/x11_owned.h"
#include "platform/linux/x11_selection.h"

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

}  // namespace zeblo::platform::linux_desktop
