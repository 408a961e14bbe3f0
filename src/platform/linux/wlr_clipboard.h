// The clipboard through wlroots' data control protocol
// (zwlr_data_control_manager_v1): read and set without the keyboard focus.
// Reading asks the current offer for each of its MIME types in turn, over a
// pipe each, within the limits of offers.h; owning offers each saved type
// again under its own name and writes its bytes to whoever asks, while
// `serve` runs. A compositor keeps no clipboard of its own: the clipboard
// holder (zeblo-helper hold wayland) serves restored contents after a call.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/offers.h"
#include "platform/linux/wayland_display.h"
#include "wlr-data-control-unstable-v1-client-protocol.h"

namespace zeblo::platform::linux_desktop {

// The protocol's destructor requests (generated as static functions).
inline void destroyDataDevice(zwlr_data_control_device_v1* device) noexcept {
    zwlr_data_control_device_v1_destroy(device);
}
inline void destroyDataSource(zwlr_data_control_source_v1* source) noexcept {
    zwlr_data_control_source_v1_destroy(source);
}
inline void destroyDataOffer(zwlr_data_control_offer_v1* offer) noexcept { zwlr_data_control_offer_v1_destroy(offer); }
inline void destroyDataManager(zwlr_data_control_manager_v1* manager) noexcept {
    zwlr_data_control_manager_v1_destroy(manager);
}

class DataControlClipboard {
public:
    // Null when the compositor offers no data control.
    static std::unique_ptr<DataControlClipboard> open(WaylandDisplay& display);
    ~DataControlClipboard();

    // What the clipboard offers: our own offers while we own it, else every
    // MIME type of the current selection with its bytes.
    Offers read();
    // Sets the clipboard to `offers`; false when the compositor did not take it.
    bool own(Offers offers);
    // Clears the clipboard (no selection), whoever set it.
    void disown();
    // Forgets our offers without clearing: the holder has taken over.
    void forget();
    bool owns() const { return source_ != nullptr; }
    const Offers& offers() const { return offers_; }
    // How many requests for our offers' data have been answered.
    std::uint64_t answered() const { return answered_; }
    // Answers requests for our offers for `seconds` (0: those waiting now).
    void serve(double seconds);

private:
    struct PendingOffer {
        Owned<zwlr_data_control_offer_v1, destroyDataOffer> offer;
        std::vector<std::string> types;
    };
    explicit DataControlClipboard(WaylandDisplay& display) : display_(display) {}
    static const zwlr_data_control_device_v1_listener kDeviceListener;
    static const zwlr_data_control_offer_v1_listener kOfferListener;
    static const zwlr_data_control_source_v1_listener kSourceListener;
    PendingOffer* pendingOf(zwlr_data_control_offer_v1* offer);
    void write(const std::string& type, int fd);

    WaylandDisplay& display_;
    Owned<zwlr_data_control_manager_v1, destroyDataManager> manager_;
    Owned<zwlr_data_control_device_v1, destroyDataDevice> device_;
    std::vector<std::unique_ptr<PendingOffer>> pending_;  // announced, not yet the selection
    std::unique_ptr<PendingOffer> selection_;             // the current selection, if another client's
    Owned<zwlr_data_control_source_v1, destroyDataSource> source_;  // ours, while we own the clipboard
    Offers offers_;
    std::uint64_t answered_ = 0;
};

}  // namespace zeblo::platform::linux_desktop
