// Data control: offers tracked from the device's events, read over pipes,
// served by writing each asked-for type's bytes.
#include "platform/linux/wlr_clipboard.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/linux/detach.h"

namespace zeblo::platform::linux_desktop {

namespace {

constexpr double kCompositorSeconds = 1.0;

}  // namespace

const zwlr_data_control_offer_v1_listener DataControlClipboard::kOfferListener = {
    [](void* data, zwlr_data_control_offer_v1* offer, const char* type) {
        auto* self = static_cast<DataControlClipboard*>(data);
        if (PendingOffer* pending = self->pendingOf(offer)) pending->types.emplace_back(type);
    }};

const zwlr_data_control_device_v1_listener DataControlClipboard::kDeviceListener = {
    // data_offer: a new offer, whose types follow.
    [](void* data, zwlr_data_control_device_v1*, zwlr_data_control_offer_v1* offer) {
        auto* self = static_cast<DataControlClipboard*>(data);
        auto pending = std::make_unique<PendingOffer>();
        pending->offer.reset(offer);
        zwlr_data_control_offer_v1_add_listener(offer, &kOfferListener, self);
        self->pending_.push_back(std::move(pending));
    },
    // selection: the offer that is now the clipboard (null: empty).
    [](void* data, zwlr_data_control_device_v1*, zwlr_data_control_offer_v1* offer) {
        auto* self = static_cast<DataControlClipboard*>(data);
        self->selection_.reset();
        for (auto it = self->pending_.begin(); it != self->pending_.end(); ++it) {
            if ((*it)->offer.get() == offer) {
                self->selection_ = std::move(*it);
                self->pending_.erase(it);
                break;
            }
        }
    },
    // finished: the device is no longer valid.
    [](void* data, zwlr_data_control_device_v1*) {
        auto* self = static_cast<DataControlClipboard*>(data);
        self->selection_.reset();
        self->device_.reset();
    },
    // primary_selection: offers for the primary selection are dropped.
    [](void* data, zwlr_data_control_device_v1*, zwlr_data_control_offer_v1* offer) {
        auto* self = static_cast<DataControlClipboard*>(data);
        std::erase_if(self->pending_, [&](const auto& p) { return p->offer.get() == offer; });
    }};

const zwlr_data_control_source_v1_listener DataControlClipboard::kSourceListener = {
    [](void* data, zwlr_data_control_source_v1*, const char* type, int fd) {
        const Fd owned(fd);
        static_cast<DataControlClipboard*>(data)->write(type, fd);
    },
    // cancelled: another client has set the clipboard.
    [](void* data, zwlr_data_control_source_v1*) {
        auto* self = static_cast<DataControlClipboard*>(data);
        self->source_.reset();
        self->offers_.clear();
    }};

std::unique_ptr<DataControlClipboard> DataControlClipboard::open(WaylandDisplay& display) {
    std::unique_ptr<DataControlClipboard> self(new DataControlClipboard(display));
    self->manager_.reset(
        static_cast<zwlr_data_control_manager_v1*>(display.bind(&zwlr_data_control_manager_v1_interface, 2)));
    if (!self->manager_ || display.seat() == nullptr) return nullptr;
    self->device_.reset(zwlr_data_control_manager_v1_get_data_device(self->manager_.get(), display.seat()));
    zwlr_data_control_device_v1_add_listener(self->device_.get(), &kDeviceListener, self.get());
    if (!display.roundtrip(kCompositorSeconds)) return nullptr;  // the current selection arrives
    return self;
}

DataControlClipboard::~DataControlClipboard() {
    // Offers and the source go before the device and manager they came from.
    source_.reset();
    selection_.reset();
    pending_.clear();
    device_.reset();
}

DataControlClipboard::PendingOffer* DataControlClipboard::pendingOf(zwlr_data_control_offer_v1* offer) {
    for (auto& pending : pending_) {
        if (pending->offer.get() == offer) return pending.get();
    }
    return selection_ && selection_->offer.get() == offer ? selection_.get() : nullptr;
}

Offers DataControlClipboard::read() {
    display_.dispatchPending();
    if (owns()) return offers_;
    Offers out;
    if (!selection_) return out;
    const double end = monotonicSeconds() + kSaveSeconds;
    std::size_t total = 0;
    for (const std::string& type : selection_->types) {
        if (std::any_of(out.begin(), out.end(), [&](const Offer& o) { return o.target == type; })) continue;
        if (monotonicSeconds() >= end) break;
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) break;
        const Fd reading(ends[0]);
        {
            const Fd writing(ends[1]);
            zwlr_data_control_offer_v1_receive(selection_->offer.get(), type.c_str(), writing.get());
            wl_display_flush(display_.get());
        }  // our copy of the writing end closes: the end of file comes from the owner
        std::optional<std::string> data =
            readToEnd(reading.get(), std::min(kTargetLimit, kSaveLimit - total),
                      std::min(monotonicSeconds() + kReplySeconds, end));
        if (!data) continue;
        total += data->size();
        out.push_back({type, type, 8, std::make_shared<const std::string>(std::move(*data))});
    }
    return out;
}

bool DataControlClipboard::own(Offers offers) {
    if (!device_) return false;
    source_.reset(zwlr_data_control_manager_v1_create_data_source(manager_.get()));
    zwlr_data_control_source_v1_add_listener(source_.get(), &kSourceListener, this);
    std::vector<std::string> offered;
    for (const Offer& offer : offers) {
        if (std::find(offered.begin(), offered.end(), offer.target) != offered.end()) continue;
        zwlr_data_control_source_v1_offer(source_.get(), offer.target.c_str());
        offered.push_back(offer.target);
    }
    zwlr_data_control_device_v1_set_selection(device_.get(), source_.get());
    offers_ = std::move(offers);
    return display_.roundtrip(kCompositorSeconds) && owns();
}

void DataControlClipboard::disown() {
    if (device_) zwlr_data_control_device_v1_set_selection(device_.get(), nullptr);
    forget();
    display_.roundtrip(kCompositorSeconds);
}

void DataControlClipboard::forget() {
    source_.reset();
    offers_.clear();
    wl_display_flush(display_.get());
}

void DataControlClipboard::write(const std::string& type, int fd) {
    for (const Offer& offer : offers_) {
        if (offer.target != type) continue;
        ++answered_;
        writeAll(fd, *offer.data);
        return;
    }
}

void DataControlClipboard::serve(double seconds) {
    if (seconds <= 0) {
        display_.dispatchPending();
        return;
    }
    display_.dispatchUntil([] { return false; }, monotonicSeconds() + seconds);
}

}  // namespace zeblo::platform::linux_desktop
