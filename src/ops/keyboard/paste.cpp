// Pasting through the general pasteboard, with the user's contents put back.
#include <utility>

#include "ops/keyboard/events.h"
#include "ops/keyboard/keystroke.h"

namespace zeblo {
namespace {

using SavedPair = std::pair<std::string, std::optional<platform::Bytes>>;

// Every (type, data) pair of every item, in order; types whose data cannot be
// read are left out.
std::vector<SavedPair> savePasteboard(platform::Platform& p) {
    std::vector<SavedPair> saved;
    std::optional<std::vector<platform::PasteboardItem>> items = p.pasteboardItems();
    if (!items) return saved;
    for (platform::PasteboardItem& item : *items) {
        for (auto& [type, data] : item.entries) {
            if (data) saved.emplace_back(std::move(type), std::move(data));
        }
    }
    return saved;
}

}  // namespace

void Keystroke::pasteText(const std::string& text) {
    platform::Platform& p = platform::current();
    // A pasteboard that cannot be saved without the system asking the user
    // (or that the system will not let us read) is not touched at all: the
    // user's contents would be lost.
    if (!p.canReadPasteboard()) throw keystrokeFailure("Pasteboard cannot be read without asking the user");
    std::vector<SavedPair> saved = savePasteboard(p);

    // From here until the restore the pasteboard holds the text alone; a
    // failure below leaves it so (the saved contents are dropped).
    p.clearPasteboard();
    p.setPasteboardString(text, platform::kPasteboardTypeString);
    p.sleep(0.01);

    {
        const platform::EventSource source = keyboard::hidEventSource();
        if (!source) throw keystrokeFailure("Failed to create event source");
        for (bool down : {true, false}) {
            const platform::Event event = keyboard::keyEvent(
                &source, keyboard::kVKeyCode, down,
                down ? "Failed to create Cmd+V key down" : "Failed to create Cmd+V key up");
            p.setEventFlags(event, platform::kEventFlagCommand);
            keyboard::mark(event);
            keyboard::post(event);
        }
    }
    p.sleep(0.05);

    p.clearPasteboard();
    if (saved.empty()) return;
    // All saved pairs come back on one item, in saved order.
    platform::PasteboardItem restored;
    restored.entries = std::move(saved);
    p.writePasteboardItems({std::move(restored)});
}

}  // namespace zeblo
