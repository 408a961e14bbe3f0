// Live smoke test on a real Mac: drives TextEdit through the library's C
// functions, as a host would. It launches TextEdit, reads its menus, chooses
// File > New, types and pastes text, reads it back through the window text,
// checks that the paste put the user's clipboard back byte for byte, and
// closes the document without saving; then types and undoes under German and
// French keyboard layouts.
//
// Run by hand, from a process that has the accessibility permission (System
// Settings > Privacy & Security > Accessibility, for the terminal that runs
// it; from macOS 15.4 the system may ask once whether it may paste from other
// applications), with any keyboard layout; the layout test switches to German
// and French and back:
//
//     ZEBLO_LIVE_MAC=1 ./build/tests/test_macos_live
//
// Without ZEBLO_LIVE_MAC=1 every test is skipped, so that the suite stays
// runnable on machines (and CI runners) that cannot be driven.
#import <AppKit/AppKit.h>
#import <Carbon/Carbon.h>

#include <algorithm>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "live_support.h"
#include "platform/macos/scoped_cf.h"

namespace {

using namespace zeblo::live;
using zeblo::platform::macos::Ownership;
using zeblo::platform::macos::ScopedCF;

constexpr const char* kApp = "TextEdit";
// New documents are "Untitled", "Untitled 2"...; window names match loosely.
constexpr const char* kDocument = "Untitled";

// A clipboard as (type, bytes) pairs, item by item.
using Entries = std::vector<std::pair<std::string, std::vector<std::uint8_t>>>;

NSString* nsString(const std::string& text) { return [NSString stringWithUTF8String:text.c_str()]; }

void writeClipboard(const std::vector<Entries>& items) {
    NSMutableArray<NSPasteboardItem*>* objects = [NSMutableArray arrayWithCapacity:items.size()];
    for (const Entries& entries : items) {
        NSPasteboardItem* item = [[NSPasteboardItem alloc] init];
        for (const auto& [type, bytes] : entries) {
            [item setData:[NSData dataWithBytes:bytes.data() length:bytes.size()] forType:nsString(type)];
        }
        [objects addObject:item];
    }
    [NSPasteboard.generalPasteboard clearContents];
    [NSPasteboard.generalPasteboard writeObjects:objects];
}

// Every (type, bytes) pair on the clipboard, whatever item holds it.
Entries readClipboard() {
    Entries pairs;
    for (NSPasteboardItem* item in NSPasteboard.generalPasteboard.pasteboardItems) {
        for (NSPasteboardType type in item.types) {
            NSData* data = [item dataForType:type];
            if (data == nil) continue;
            const auto* first = static_cast<const std::uint8_t*>(data.bytes);
            pairs.emplace_back(type.UTF8String, std::vector<std::uint8_t>(first, first + data.length));
        }
    }
    return pairs;
}

// Whether the menu snapshot has an item `title` under the menu bar item
// `menu` (at any depth, through untitled container layers).
bool menuHasItem(const json& snapshot, std::string_view menu, std::string_view title) {
    if (!snapshot.is_object() || !snapshot.contains("menus")) return false;
    std::deque<const json*> pending;
    for (const json& item : snapshot["menus"]) pending.push_back(&item);
    while (!pending.empty()) {
        const json& item = *pending.front();
        pending.pop_front();
        const json& path = item.value("path", json::array());
        if (item.value("title", "") == title && !path.empty() && path[0] == menu) return true;
        if (item.contains("children")) {
            for (const json& child : item["children"]) pending.push_back(&child);
        }
    }
    return false;
}

// All lines of the window's text joined, or "" when it cannot be read.
std::string windowText(const char* window) {
    const json lines = Returned(zeblo_get_window_text(kApp, window)).parsed();
    std::string joined;
    if (!lines.is_array()) return joined;
    for (const json& line : lines) {
        if (line.is_string()) joined += line.get<std::string>() + "\n";
    }
    return joined;
}

bool dismissSaveSheet() {
    // Recent systems offer "Delete" for a document never saved; older ones
    // "Don't Save" (with a typographic or a plain apostrophe).
    for (const char* button : {"Delete", "Don\xE2\x80\x99t Save", "Don't Save"}) {
        if (zeblo_click_button(kApp, kDocument, button)) return true;
    }
    return false;
}

// Switches the keyboard layout for the life of the object, and back.
class LayoutSwitch {
public:
    explicit LayoutSwitch(NSString* layoutId) {
        previous_.reset(TISCopyCurrentKeyboardInputSource());
        const void* keys[] = {kTISPropertyInputSourceID};
        const void* values[] = {(__bridge CFStringRef)layoutId};
        const auto filter = ScopedCF<CFDictionaryRef>::adopt(CFDictionaryCreate(
            kCFAllocatorDefault, keys, values, 1, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
        const auto found = ScopedCF<CFArrayRef>::adopt(TISCreateInputSourceList(filter.get(), true));
        if (!found || CFArrayGetCount(found.get()) == 0) return;
        layout_.reset(static_cast<TISInputSourceRef>(const_cast<void*>(CFArrayGetValueAtIndex(found.get(), 0))),
                      Ownership::retain);
        const auto enabled = static_cast<CFBooleanRef>(
            TISGetInputSourceProperty(layout_.get(), kTISPropertyInputSourceIsEnabled));
        enabledHere_ = (enabled == nullptr || !CFBooleanGetValue(enabled)) && TISEnableInputSource(layout_.get()) == noErr;
        switched_ = TISSelectInputSource(layout_.get()) == noErr;
        std::this_thread::sleep_for(500ms);
    }
    LayoutSwitch(const LayoutSwitch&) = delete;
    LayoutSwitch& operator=(const LayoutSwitch&) = delete;
    ~LayoutSwitch() {
        if (previous_) TISSelectInputSource(previous_.get());
        if (enabledHere_) TISDisableInputSource(layout_.get());
    }

    bool switched() const { return switched_; }

private:
    ScopedCF<TISInputSourceRef> previous_;
    ScopedCF<TISInputSourceRef> layout_;
    bool enabledHere_ = false;
    bool switched_ = false;
};

class TextEditLive : public ::testing::Test {
protected:
    void SetUp() override { ZEBLO_LIVE_ONLY(); }

    // A document left open by a failed run is closed without saving.
    void TearDown() override {
        if (!documentOpen_) return;
        zeblo_close_window(kApp, kDocument, -1);
        eventually(dismissSaveSheet, 3s);
    }

    // Launches TextEdit and opens a new document in front.
    void openDocument() {
        ASSERT_TRUE(zeblo_launch_app(kApp)) << "TextEdit could not be launched";
        // TextEdit starts with an Open panel or a document window; either will do.
        ASSERT_TRUE(zeblo_wait_for_window(kApp, nullptr, 0, 15000)) << "TextEdit showed no window";
        ASSERT_TRUE(zeblo_focus_app(kApp, nullptr, true, false, 0));
        const char* newDocument[] = {"File", "New"};
        ASSERT_TRUE(zeblo_menu_click(kApp, newDocument, 2));
        documentOpen_ = true;
        ASSERT_TRUE(zeblo_wait_for_window(kApp, kDocument, 2, 10000)) << "no untitled document came to the front";
    }

    void closeDocument() {
        ASSERT_TRUE(zeblo_close_window(kApp, kDocument, -1));
        EXPECT_TRUE(eventually(dismissSaveSheet, 5s)) << "no Delete / Don't Save button appeared";
        EXPECT_TRUE(zeblo_wait_for_window(kApp, kDocument, 1, 5000)) << "the document stayed open";
        documentOpen_ = false;
    }

    // Whether the document shows `text` within a few seconds.
    bool shows(const std::string& text, bool yes = true) {
        std::string shown;
        const bool seen = eventually(
            [&] {
                shown = windowText(kDocument);
                return (shown.find(text) != std::string::npos) == yes;
            },
            5s);
        if (!seen) ADD_FAILURE() << "window text was:\n" << shown;
        return seen;
    }

    bool documentOpen_ = false;
};

TEST_F(TextEditLive, NewDocumentTypePasteReadBackAndCloseWithoutSaving) {
    ASSERT_NO_FATAL_FAILURE(openDocument());
    const Returned menus(zeblo_get_app_menus(kApp));
    const json snapshot = menus.parsed();
    ASSERT_TRUE(snapshot.is_object() && !snapshot.contains("error")) << menus.text();
    EXPECT_EQ(snapshot.value("app", ""), kApp);
    EXPECT_TRUE(menuHasItem(snapshot, "File", "New")) << menus.text();

    const std::string typed = "Typed by ZEBLOui, 1 + 2 = 3.";
    const std::string pasted = " Pasted: caf\xC3\xA9 \xE2\x9C\x93 \xF0\x9F\x99\x82";
    ASSERT_TRUE(zeblo_type_text(typed.c_str(), false));

    // The user's clipboard: two items, several types, bytes that are no text.
    std::vector<std::uint8_t> binary;
    for (int i = 0; i < 256; ++i) binary.push_back(static_cast<std::uint8_t>(255 - i));
    const std::vector<Entries> clipboard = {
        {{"public.utf8-plain-text", {'f', 'i', 'r', 's', 't'}}, {"com.zeblo.live.binary", binary}},
        {{"public.rtf", {'{', '\\', 'r', 't', 'f', '1', ' ', 'x', '}'}}, {"com.zeblo.live.bytes", {0, 1, 0}}},
    };
    writeClipboard(clipboard);
    Entries before = readClipboard();
    ASSERT_EQ(before.size(), 4u) << "the clipboard did not take the test's items";
    // From macOS 15.4 the paste is refused only when the user denied this
    // terminal the pasteboard for good; the clipboard then stays as it was.
    bool denied = false;
#if __MAC_OS_X_VERSION_MAX_ALLOWED >= 150400
    if (@available(macOS 15.4, *)) {
        denied = NSPasteboard.generalPasteboard.accessBehavior == NSPasteboardAccessBehaviorAlwaysDeny;
    }
#endif
    ASSERT_EQ(zeblo_paste_text(pasted.c_str()), !denied);
    // Every pair comes back with the same bytes (gathered into one item).
    Entries after = readClipboard();
    std::sort(before.begin(), before.end());
    std::sort(after.begin(), after.end());
    EXPECT_EQ(after, before);

    EXPECT_TRUE(shows(denied ? typed : typed + pasted));
    closeDocument();
}

// Typing and a shortcut give under German and French layouts what they give
// under a US one: Command-Z undoes the typing (it is Command-Y on the German
// key at the US "z").
TEST_F(TextEditLive, TypingAndShortcutsFollowTheKeyboardLayout) {
    // No quotes or dashes: TextEdit would make them typographic.
    const std::string typed = "Typed by ZEBLOui, 1 + 2 = 3; a@b.c [x] {y} <z> |\\/ ~^` #$%&*_!?";
    for (NSString* layout in @[ @"com.apple.keylayout.German", @"com.apple.keylayout.French" ]) {
        SCOPED_TRACE(layout.UTF8String);
        const LayoutSwitch keyboard(layout);
        ASSERT_TRUE(keyboard.switched()) << "the layout could not be selected";
        ASSERT_NO_FATAL_FAILURE(openDocument());
        ASSERT_TRUE(zeblo_type_text(typed.c_str(), false));
        EXPECT_TRUE(shows(typed));
        ASSERT_TRUE(zeblo_send_keystroke(kApp, "z", 8));
        EXPECT_TRUE(shows("ZEBLOui", false)) << "Command-Z did not undo the typing";
        closeDocument();
    }
}

}  // namespace
