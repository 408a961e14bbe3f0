// The real desktop on macOS: the platform interface implemented with
// ApplicationServices (accessibility elements, the trust check), CoreGraphics
// events, AppKit (workspace, pasteboard) and Foundation (sleep, log).
//
// Objective-C++ compiled with ARC. Objective-C objects are managed by ARC;
// Core Foundation objects from Copy and Create calls are held in `ScopedCF`;
// the raw pointers inside `Element`, `Event` and `EventSource` handles are an
// AXUIElementRef, a CGEventRef and a CGEventSourceRef, each carrying one
// reference that the handle releases.
//
// Every operation catches whatever is thrown inside it (an NSException raised
// by AppKit, a C++ exception) and answers with its failure value instead:
// nothing is thrown across the platform interface.
//
// Each accessibility call is a message to another process and can block until
// that process answers or its messaging timeout runs out: every element the
// backend creates or hands up carries the reply limit (reply_limit.h) as its
// own timeout (see limitReplies).
//
// Threads: operations run on the caller's thread. What Apple allows only on
// the main thread (AppKit's NSApplication, the input source manager behind
// keyboard layouts) is handed to it with runOnMainThread. The process-wide
// state (the keyboard layout, the applications launched, the Chromium
// applications asked for their content) sits behind locks of its own, held
// for no call to another process.
#pragma once

#import <AppKit/AppKit.h>
#import <ApplicationServices/ApplicationServices.h>
#import <Foundation/Foundation.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/macos/key_layout.h"
#include "platform/macos/scoped_cf.h"
#include "platform/platform.h"

namespace zeblo::platform::macos {

class MacPlatform final : public Platform {
public:
    Element createApplicationElement(std::int32_t pid) override;
    Element createSystemWideElement() override;
    AttributeRead copyAttributeValue(const Element& element, std::string_view attribute) override;
    NamesRead copyAttributeNames(const Element& element) override;
    AXError setAttributeValue(const Element& element, std::string_view attribute,
                              const SetValue& value) override;
    SettableRead isAttributeSettable(const Element& element, std::string_view attribute) override;
    bool sameElement(const Element& a, const Element& b) override;
    std::optional<Frame> frameOf(const Element& element) override;

    AXError performAction(const Element& element, std::string_view action) override;
    NamesRead copyActionNames(const Element& element) override;
    bool isProcessTrusted(bool prompt) override;

    EventSource createEventSource(std::int32_t stateId) override;
    Event createKeyboardEvent(const EventSource* source, std::uint16_t keyCode, bool keyDown) override;
    void setEventFlags(const Event& event, std::uint64_t flags) override;
    void setEventIntegerField(const Event& event, std::uint32_t field, std::int64_t value) override;
    void postEvent(std::uint32_t tap, const Event& event) override;

    std::optional<RunningApp> frontmostApplication() override;
    std::vector<RunningApp> runningApplications() override;
    bool launchApplication(std::string_view name) override;
    bool activateApplication(const RunningApp& app, std::uint64_t options) override;

    bool canReadPasteboard() override;
    std::optional<std::vector<PasteboardItem>> pasteboardItems() override;
    void clearPasteboard() override;
    bool setPasteboardString(std::string_view text, std::string_view type) override;
    bool writePasteboardItems(const std::vector<PasteboardItem>& items) override;

    void sleep(double seconds) override;
    double now() override;
    void writeLog(std::string_view line) override;

    void retainHandle(HandleKind kind, void* raw) noexcept override;
    void releaseHandle(HandleKind kind, void* raw) noexcept override;

private:
    // Before the first event of a keystroke: reads the keyboard layout again
    // if it has changed, and says in the log why the keystroke may not arrive.
    void beginKeystroke();
    // Before a walk over an application's elements (its first "AXChildren"
    // read): asks a Chromium or Electron application, once in its life, to
    // build its accessibility tree (mac_accessibility.mm).
    void prepareWalk(AXUIElementRef element);

    // The AXUIElementRef inside `element`, or null when the handle is empty or
    // belongs to another backend.
    AXUIElementRef axElement(const Element& element) const noexcept;
    CGEventRef cgEvent(const Event& event) const noexcept;
    CGEventSourceRef cgEventSource(const EventSource& source) const noexcept;
};

// ---------------------------------------------------------------------------
// Running an operation without letting anything escape.

// Runs `body` and returns what it returns; any exception, Objective-C or C++,
// turns into `failure`.
template <class R, class F>
R guarded(R failure, F&& body) noexcept {
    @try {
        try {
            return body();
        } catch (...) {
            return failure;
        }
    } @catch (NSException*) {
        return failure;
    }
}

template <class F>
void guardedVoid(F&& body) noexcept {
    @try {
        try {
            body();
        } catch (...) {
        }
    } @catch (NSException*) {
    }
}

// ---------------------------------------------------------------------------
// The main thread (mac_platform.mm).

// Runs `work` on the main thread: at once when called there, otherwise on
// the main queue, waiting for it at most the reply limit. False when it did
// not run in that time; it then still runs whenever the main thread gets to
// it (so it must own what it uses), and until it has, later calls from other
// threads return false at once instead of waiting again.
bool runOnMainThread(void (^work)(void));

// ---------------------------------------------------------------------------
// The keyboard layout (mac_keyboard_layout.mm).

// Reads the current keyboard layout on the main thread when it has changed
// since the last read (the first read also makes the process's first
// keyboard event there). False when the main thread did not answer in time.
bool refreshKeyboardLayout();

// The table of the layout last read; null before the first read.
std::shared_ptr<const LayoutTable> keyboardLayout();

// Whether this thread may create keyboard events: the main thread always,
// other threads once the first event has been made on the main thread.
bool keyboardEventsAllowed();

// ---------------------------------------------------------------------------
// Text and values (mac_text.mm, mac_values.mm).

// `text` as a new CFString. Ill-formed UTF-8 becomes U+FFFD; null only when
// the text is too long to convert (over 2^31 - 1 bytes).
ScopedCF<CFStringRef> makeCFString(std::string_view text);

// The same as an NSString owned by ARC, or nil.
NSString* makeNSString(std::string_view text);

// The UTF-8 form of a CFString (or of an NSString, bridged); unpaired
// surrogates become U+FFFD. Never fails; null gives "".
std::string utf8FromCFString(CFStringRef string);

// The description Core Foundation gives of any object, for values of a kind
// the library never reads.
std::string describeCF(CFTypeRef object);

// Gives `element` the reply limit as its messaging timeout: a call to it that
// gets no answer in that time fails with kAXErrorCannotComplete. Elements do
// not inherit it: each one read from an attribute is given it here. On the
// system-wide element the timeout is the process's default for elements that
// have none of their own (the host's included).
void limitReplies(AXUIElementRef element) noexcept;

// An attribute value as the library sees it, told apart by Core Foundation
// type ids. Elements found in it are retained for the handles made here.
Value valueFromCF(CFTypeRef object, Platform* owner);

// The strings of a CFArray of names (attribute or action names); entries that
// are not strings are left out.
std::vector<std::string> stringsFromCFArray(CFArrayRef array);

// A handle's raw pointer for a Core Foundation object: the same address
// without its const qualifier.
inline void* rawHandle(CFTypeRef object) noexcept { return const_cast<void*>(object); }

}  // namespace zeblo::platform::macos
