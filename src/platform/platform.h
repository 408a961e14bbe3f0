// The platform layer: every operation the library performs on the desktop
// (accessibility elements, keyboard events, the workspace, the pasteboard,
// sleeping, the clock and the log) goes through the `Platform` interface
// declared here; the names it reads and performs are in ax_names.h. The
// operations see only the files beside this one. Backends live in folders
// of their own and never include one another:
// - `linux/`: the real desktop on Linux. Elements through AT-SPI2 on the
//   accessibility bus; keys, the clipboard and windows through the session's
//   window system (session.h): X11 (XTest, Xlib) or a Wayland compositor's
//   own interfaces (wlroots' virtual keyboard and data control, mutter's
//   remote desktop, sway's IPC). Launches and the clipboard holder go
//   through the helper process (detach.h).
// - `macos/`: the real desktop on macOS (ApplicationServices, CoreGraphics,
//   AppKit).
// - `sim/`: a simulated desktop in memory, built in code or read from a
//   desktop file, with a virtual clock and a trace; for the tests, the
//   command-line tool and the simulated library. It is an archive of its
//   own, which the production library does not link.
// - `default/`: the choice of the default backend (default_platform.cpp),
//   the backend when no desktop can be reached (no_desktop.h), and the
//   simulated library's default (simulated_library.cpp).
//
// Ownership follows the Core Foundation rule: whatever a Copy or Create
// operation hands back is owned by the caller. Here that ownership is held by
// RAII handles (`Element`, `Event`, `EventSource`), so a handle can never leak,
// whatever path (including an exception) the caller leaves by.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace zeblo::platform {

class Platform;

// ---------------------------------------------------------------------------
// Result codes of the accessibility interface (32-bit; 0 is success).

using AXError = std::int32_t;
inline constexpr AXError kAXErrorSuccess = 0;
inline constexpr AXError kAXErrorFailure = -25200;
inline constexpr AXError kAXErrorIllegalArgument = -25201;
inline constexpr AXError kAXErrorInvalidUIElement = -25202;
inline constexpr AXError kAXErrorCannotComplete = -25204;
inline constexpr AXError kAXErrorAttributeUnsupported = -25205;
inline constexpr AXError kAXErrorActionUnsupported = -25206;
inline constexpr AXError kAXErrorAPIDisabled = -25211;
inline constexpr AXError kAXErrorNoValue = -25212;

// ---------------------------------------------------------------------------
// Handles.

// What a raw handle refers to; backends use it to pick the right release.
enum class HandleKind : std::uint8_t { element, event, eventSource };

// An owning, reference-counted handle to one backend object. Copying retains,
// destruction releases. A default-constructed handle is null.
template <HandleKind K>
class Handle {
public:
    Handle() noexcept = default;

    // Takes over one reference the backend has already counted.
    static Handle adopt(Platform* owner, void* raw) noexcept {
        Handle h;
        if (raw != nullptr) {
            h.owner_ = owner;
            h.raw_ = raw;
        }
        return h;
    }

    Handle(const Handle& other) noexcept;
    Handle(Handle&& other) noexcept
        : owner_(std::exchange(other.owner_, nullptr)), raw_(std::exchange(other.raw_, nullptr)) {}
    Handle& operator=(Handle other) noexcept {
        std::swap(owner_, other.owner_);
        std::swap(raw_, other.raw_);
        return *this;
    }
    ~Handle();

    explicit operator bool() const noexcept { return raw_ != nullptr; }
    void* raw() const noexcept { return raw_; }
    Platform* owner() const noexcept { return owner_; }

private:
    Platform* owner_ = nullptr;
    void* raw_ = nullptr;
};

using Element = Handle<HandleKind::element>;
using Event = Handle<HandleKind::event>;
using EventSource = Handle<HandleKind::eventSource>;

// ---------------------------------------------------------------------------
// Attribute values.

// A value of a kind the library never reads (a floating-point number, a
// dictionary, a mixed array...). Kept only so it can be told apart.
struct OtherValue {
    std::string description;
};

// An attribute value as the accessibility interface hands it back. Strings are
// UTF-8; backends replace ill-formed text with U+FFFD before handing it up.
// An array of elements keeps its null entries as null `Element`s.
using Value = std::variant<std::monostate,            // succeeded with no value
                           std::string,               // text
                           bool,                      // boolean
                           std::int64_t,              // integer number
                           Element,                   // accessibility element
                           std::vector<Element>,      // array of elements
                           std::vector<std::string>,  // array of strings
                           OtherValue>;               // anything else

// The outcome of one attribute read: a result code and, on success, a value
// (or none).
struct AttributeRead {
    AXError code = kAXErrorFailure;
    Value value;
};

// How a typed look at an attribute read came out.
enum class ReadStatus : std::uint8_t {
    failed,     // the read failed with `code`
    noValue,    // the read succeeded with no value
    ok,         // a value of the expected kind
    wrongKind,  // a value of another kind
};

// A typed view of an attribute read: the four outcomes the library tells apart.
template <class T>
struct Read {
    ReadStatus status = ReadStatus::failed;
    AXError code = kAXErrorFailure;
    T value{};

    bool ok() const noexcept { return status == ReadStatus::ok; }
    explicit operator bool() const noexcept { return ok(); }
};

// Typed views. An empty array counts as an array of either kind.
Read<std::string> asString(AttributeRead&& r);
Read<bool> asBool(AttributeRead&& r);
Read<std::int64_t> asInteger(AttributeRead&& r);
Read<Element> asElement(AttributeRead&& r);
Read<std::vector<Element>> asElementArray(AttributeRead&& r);
Read<std::vector<std::string>> asStringArray(AttributeRead&& r);

// A value the library writes into an attribute: text (direct entry into a text
// field), an integer number (a checkbox's value, a slider's position) or a
// boolean (the focus, a selection, an expansion: "AXFocused", "AXSelected",
// "AXExpanded").
using SetValue = std::variant<std::string, std::int64_t, bool>;

// A list of names (attributes or actions) with the result code of the query.
struct NamesRead {
    AXError code = kAXErrorFailure;
    std::optional<std::vector<std::string>> names;
};

struct SettableRead {
    AXError code = kAXErrorFailure;
    bool settable = false;
};

// Where an element is drawn: its top-left corner and its size, in points,
// relative to its window or the screen (one of them for every element of one
// window, so that two elements' frames can be compared).
struct Frame {
    double x = 0, y = 0, width = 0, height = 0;
};

// ---------------------------------------------------------------------------
// Workspace.

// The workspace's record of one running application, read when the list or
// the frontmost application was asked for.
struct RunningApp {
    std::optional<std::string> localizedName;
    std::int32_t pid = 0;
    bool hidden = false;
    std::int64_t activationPolicy = 0;  // 0 regular, 1 accessory, 2 prohibited
};

inline constexpr std::uint64_t kActivateIgnoringOtherApps = 2;

// ---------------------------------------------------------------------------
// Keyboard events.

inline constexpr std::int32_t kEventSourceStateHIDSystemState = 1;

// Modifier bits of a keyboard event's flags.
inline constexpr std::uint64_t kEventFlagShift = 0x20000;
inline constexpr std::uint64_t kEventFlagControl = 0x40000;
inline constexpr std::uint64_t kEventFlagOption = 0x80000;
inline constexpr std::uint64_t kEventFlagCommand = 0x100000;
inline constexpr std::uint64_t kEventFlagModifiers =
    kEventFlagShift | kEventFlagControl | kEventFlagOption | kEventFlagCommand;
inline constexpr std::uint32_t kHIDEventTap = 0;

// ---------------------------------------------------------------------------
// Pasteboard.

using Bytes = std::vector<std::uint8_t>;

// The type of plain text on the pasteboard.
inline constexpr std::string_view kPasteboardTypeString = "public.utf8-plain-text";

// One pasteboard item as read: its types in the item's order, each with its
// data, or no data when the item could not provide it.
struct PasteboardItem {
    std::vector<std::pair<std::string, std::optional<Bytes>>> entries;
};

// ---------------------------------------------------------------------------
// The interface.

class Platform {
public:
    virtual ~Platform() = default;

    // Accessibility elements and attributes. Attributes are named as on
    // macOS ("AXRole", "AXTitle", "AXValue", "AXChildren", "AXFocused"...).
    // Two are the library's own, for backends that list elements a user
    // cannot see (Linux): "ZBAllChildren", the children including those, in
    // order, the others among them in the order of "AXChildren"; and
    // "ZBVisible", whether an element reached through that list is seen. A
    // backend that lists only what is seen may leave both unsupported. A
    // third, "ZBName", is the name the toolkit gives an element whose name
    // is not its title (a text field's accessible label on Linux).
    virtual Element createApplicationElement(std::int32_t pid) = 0;
    virtual Element createSystemWideElement() = 0;
    virtual AttributeRead copyAttributeValue(const Element& element, std::string_view attribute) = 0;
    virtual NamesRead copyAttributeNames(const Element& element) = 0;
    virtual AXError setAttributeValue(const Element& element, std::string_view attribute,
                                      const SetValue& value) = 0;
    virtual SettableRead isAttributeSettable(const Element& element, std::string_view attribute) = 0;
    // Whether two handles refer to the same element of the other application,
    // however they were reached (two reads of one child give two handles).
    // Walks use it to notice a child that leads back to an element they are
    // already inside. False when either handle is null or not this backend's.
    virtual bool sameElement(const Element& a, const Element& b) = 0;
    // Where the element is drawn, when the backend can tell (macOS:
    // "AXFrame"; Linux: the Component extents in its window).
    virtual std::optional<Frame> frameOf(const Element& element) {
        (void)element;
        return std::nullopt;
    }

    // Accessibility actions and trust.
    virtual AXError performAction(const Element& element, std::string_view action) = 0;
    virtual NamesRead copyActionNames(const Element& element) = 0;
    virtual bool isProcessTrusted(bool prompt) = 0;

    // Keyboard events. A creation that fails gives a null handle.
    virtual EventSource createEventSource(std::int32_t stateId) = 0;
    virtual Event createKeyboardEvent(const EventSource* source, std::uint16_t keyCode, bool keyDown) = 0;
    virtual void setEventFlags(const Event& event, std::uint64_t flags) = 0;
    virtual void setEventIntegerField(const Event& event, std::uint32_t field, std::int64_t value) = 0;
    virtual void postEvent(std::uint32_t tap, const Event& event) = 0;

    // Workspace and running applications.
    virtual std::optional<RunningApp> frontmostApplication() = 0;
    virtual std::vector<RunningApp> runningApplications() = 0;
    virtual bool launchApplication(std::string_view name) = 0;
    virtual bool activateApplication(const RunningApp& app, std::uint64_t options) = 0;

    // General pasteboard. `pasteboardItems` gives nothing when the pasteboard
    // has no item list at all. `canReadPasteboard` tells whether its data can
    // be read now without the system asking the user (or refusing).
    virtual bool canReadPasteboard() { return true; }
    virtual std::optional<std::vector<PasteboardItem>> pasteboardItems() = 0;
    virtual void clearPasteboard() = 0;
    virtual bool setPasteboardString(std::string_view text, std::string_view type) = 0;
    virtual bool writePasteboardItems(const std::vector<PasteboardItem>& items) = 0;

    // Sleeping, the clock (seconds from an arbitrary origin) and the log.
    virtual void sleep(double seconds) = 0;
    virtual double now() = 0;
    // Writes one log line: hands it to the calling thread's LogCapture, if
    // any, then to the backend's own log (`writeLog`, which only backends and
    // platforms that forward to another call).
    void log(std::string_view line);
    virtual void writeLog(std::string_view line) = 0;

    // Reference counting of raw handles; used by `Handle` only.
    virtual void retainHandle(HandleKind kind, void* raw) noexcept = 0;
    virtual void releaseHandle(HandleKind kind, void* raw) noexcept = 0;
};

// Collects the log lines written on the calling thread while it lives (they
// still go to the log too), so that a caller can tell what an operation said,
// e.g. why it failed. Captures nest: the innermost one collects.
class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    const std::vector<std::string>& lines() const { return lines_; }

private:
    friend class Platform;
    std::vector<std::string> lines_;
    LogCapture* outer_;
};

template <HandleKind K>
Handle<K>::Handle(const Handle& other) noexcept : owner_(other.owner_), raw_(other.raw_) {
    if (raw_ != nullptr) owner_->retainHandle(K, raw_);
}

template <HandleKind K>
Handle<K>::~Handle() {
    if (raw_ != nullptr) owner_->releaseHandle(K, raw_);
}

// ---------------------------------------------------------------------------
// The process-wide backend.

// The backend every operation uses. Until one is installed this is the
// machine's default: the real desktop where the library has a backend for it
// and the desktop can be reached, otherwise no desktop (default/no_desktop.h).
Platform& current();

// Installs `backend` for every later call; null goes back to the default.
// Install before calling into the library from other threads: handles obtained
// from one backend must not outlive it.
void install(std::shared_ptr<Platform> backend);

}  // namespace zeblo::platform
