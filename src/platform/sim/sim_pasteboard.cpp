// The simulated desktop's pasteboard: its items as given or written, every
// change in the trace.
#include "platform/sim/sim_state.h"

namespace zeblo::sim {

using Json = nlohmann::ordered_json;

bool SimDesktop::canReadPasteboard() {
    std::lock_guard lock(impl_->mu);
    return impl_->pasteboardReadable;
}

std::optional<std::vector<platform::PasteboardItem>> SimDesktop::pasteboardItems() {
    std::lock_guard lock(impl_->mu);
    std::vector<platform::PasteboardItem> out;
    out.reserve(impl_->pasteboard.size());
    for (const auto& item : impl_->pasteboard) out.push_back({item.entries});
    return out;
}

void SimDesktop::clearPasteboard() {
    std::lock_guard lock(impl_->mu);
    impl_->record(Json{{"pasteboard", "clear"}});
    impl_->pasteboard.clear();
}

bool SimDesktop::setPasteboardString(std::string_view text, std::string_view type) {
    std::lock_guard lock(impl_->mu);
    impl_->record(Json{{"pasteboard", "setString"}, {"type", traceText(type)}, {"text", traceText(text)}});
    SimPasteboardItem item;
    item.entries.emplace_back(std::string(type), platform::Bytes(text.begin(), text.end()));
    impl_->pasteboard.push_back(std::move(item));
    return true;
}

bool SimDesktop::writePasteboardItems(const std::vector<platform::PasteboardItem>& items) {
    std::vector<SimPasteboardItem> added;
    added.reserve(items.size());
    for (const auto& item : items) added.push_back({item.entries});
    std::lock_guard lock(impl_->mu);
    impl_->record(Json{{"pasteboard", "write"}, {"items", pasteboardJson(added)}});
    for (auto& item : added) impl_->pasteboard.push_back(std::move(item));
    return true;
}

}  // namespace zeblo::sim
