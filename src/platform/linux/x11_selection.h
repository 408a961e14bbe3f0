// The contents of an X selection as targets, how they are read from another
// owner and how they are served. Used by the backend's session for CLIPBOARD
// and by the clipboard holder (zeblo-helper hold), so it needs Xlib alone.
//
// Saving reads every target the owner lists in TARGETS, each as the owner
// gives it (its property type and format) (x11_selection_read.cpp), and
// serving offers each again under its own name, byte for byte
// (x11_selection_server.cpp). Large data travels in pieces (the INCR
// protocol of the ICCCM) both ways.
#pragma once

#include <X11/Xlib.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/linux/offers.h"

namespace zeblo::platform::linux_desktop {

// Waits until `display` has an event or `deadline` passes.
bool waitForEvent(Display* display, double deadline);

// The atom named `name`, made when there is none yet.
inline Atom intern(Display* display, const std::string& name) { return XInternAtom(display, name.c_str(), False); }

// Every target the owner of `selection` offers, read into `window`'s
// properties within the limits of offers.h. Skipped: the meta targets (TARGETS,
// MULTIPLE, TIMESTAMP, DELETE, SAVE_TARGETS, INSERT_*), targets given as
// another client's resources (PIXMAP, BITMAP, DRAWABLE, WINDOW, COLORMAP),
// what is refused or late, and what is over a limit. An owner that does not
// answer TARGETS is asked for UTF8_STRING and STRING. `window` must select
// PropertyChangeMask; events that are not part of the read go to `other`.
Offers readSelection(Display* display, Window window, Atom selection, const std::function<void(XEvent&)>& other);

// Owns a selection for `window` and answers its requests: TARGETS, and every
// offer under its own target. Data over the largest request size goes in
// pieces (INCR).
class SelectionServer {
public:
    SelectionServer(Display* display, Window window, Atom selection);
    // Takes the selection with `offers`; false when another client kept it.
    bool own(Offers offers);
    // Gives the selection up (no owner) and forgets the offers.
    void disown();
    // Forgets the offers without giving the selection up: someone else has it.
    void forget();
    bool owns() const { return owns_; }
    const Offers& offers() const { return offers_; }
    // How many requests for data (not for the list of targets) were answered
    // so far.
    std::uint64_t dataAnswered() const { return dataAnswered_; }
    // Handles `event` when it is the selection's (a request, the loss of the
    // selection, the progress of a transfer in pieces); false otherwise.
    // Requests for a selection not owned are refused.
    bool handle(const XEvent& event);

private:
    struct Transfer {
        Window requestor;
        Atom property;
        Offer offer;
        std::size_t sent = 0;  // bytes; the last piece is the empty one
        bool finished = false;
    };
    void answer(const XSelectionRequestEvent& request);
    void write(Window requestor, Atom property, const Offer& offer, std::size_t from, std::size_t count);
    void advance(Transfer& transfer);

    Display* display_;
    Window window_;
    Atom selection_;
    std::size_t piece_;  // bytes: larger data goes in pieces of this size
    bool owns_ = false;
    std::uint64_t dataAnswered_ = 0;
    Offers offers_;
    std::vector<Transfer> transfers_;
};

}  // namespace zeblo::platform::linux_desktop
