// The real desktop on Linux: the platform interface implemented with libatspi
// (accessibility elements, attributes, actions, focus), the window system
// (session.h: X11 through Xlib and XTest, or a Wayland compositor: keyboard
// events, the active window, activation, closing windows, the clipboard),
// process spawning and syslog. docs/linux-backend.md
// describes how AT-SPI roles and states map to the attributes the library
// reads.
//
// Element handles hold a `Node`: a small reference-counted record around one
// AtspiAccessible (which it keeps one GObject reference to). A node remembers
// the element's role and key binding while it lives, and shares the bulk read
// (`Survey`) of the walk it was reached in; a node dies with the last handle
// that refers to it, so nothing read during an operation outlives it.
//
// libatspi and Xlib are used from one thread at a time: every operation holds
// the backend's lock. No operation throws across the platform interface:
// failures become the operation's failure value.
#pragma once

#include <atspi/atspi.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/app_list.h"
#include "platform/linux/launch_names.h"
#include "platform/linux/live_count.h"
#include "platform/linux/owned.h"
#include "platform/linux/sight.h"
#include "platform/linux/survey.h"
#include "platform/linux/session.h"
#include "platform/platform.h"

namespace zeblo::platform::linux_desktop {

// What one element handle refers to.
struct Node {
    enum class Kind : std::uint8_t {
        accessible,   // an AT-SPI object (an application, a window, a control...)
        application,  // an application that is not (or no longer) registered: every
                      // read fails
        systemWide,   // the system-wide element
        closeButton,  // a window's close button: pressing it asks the window to
                      // close
    };

    std::atomic<int> refs{1};  // the handles that refer to it
    Kind kind = Kind::accessible;
    AccessibleRef object;  // the window for a close button
    std::int32_t pid = 0;
    std::optional<AtspiRole> role;  // read once per node
    // What the node's children are judged by (sight.h); set from the element
    // it was reached through, else from its application's toolkit.
    std::optional<Sight> sight;
    // Whether a user sees the element, for one reached through the list of
    // every child ("ZBAllChildren"); unknown (seen) otherwise.
    std::optional<bool> shown;
    // The bulk read of the walk this node was reached in, if any.
    std::shared_ptr<const Survey> survey;
    std::optional<std::string> keyBinding;  // read once per node
    Counted counted;
};

// One synthesized key event, as built by createKeyboardEvent.
struct KeyEvent {
    std::atomic<int> refs{1};  // the handles that refer to it
    std::uint16_t keyCode = 0;
    bool down = true;
    std::uint64_t flags = 0;
    Counted counted;
};

class LinuxPlatform final : public Platform {
public:
    // The backend when a display and the accessibility bus can be reached,
    // otherwise null, with the reason in `why`.
    static std::shared_ptr<LinuxPlatform> connect(std::string* why);
    // Made by connect() only.
    class Key {
        friend class LinuxPlatform;
        Key() = default;
    };
    explicit LinuxPlatform(Key);
    ~LinuxPlatform() override;

    Element createApplicationElement(std::int32_t pid) override;
    Element createSystemWideElement() override;
    AttributeRead copyAttributeValue(const Element& element, std::string_view attribute) override;
    NamesRead copyAttributeNames(const Element& element) override;
    AXError setAttributeValue(const Element& element, std::string_view attribute, const SetValue& value) override;
    SettableRead isAttributeSettable(const Element& element, std::string_view attribute) override;
    // identity.cpp
    bool sameElement(const Element& a, const Element& b) override;
    // linux_attributes.cpp
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

    // Used by the element code (linux_attributes.cpp).
    Element wrap(AccessibleRef object, Node::Kind kind = Node::Kind::accessible,
                 std::shared_ptr<const Survey> survey = nullptr, std::optional<Sight> sight = std::nullopt);
    Node* node(const Element& element) const noexcept;
    // What `node`'s survey knows of it, when the survey is still current.
    const Survey::Item* surveyed(const Node& node) const;
    // The survey for a walk from `node`: its own when current, else a new one.
    const std::shared_ptr<const Survey>& surveyFor(Node& node);
    // Counts something done on the desktop (an action, a value written, a key
    // event, an activation, a pause): surveys taken before it are stale.
    void touch() { ++generation_; }
    // Held by every operation of the backend.
    [[nodiscard]] std::unique_lock<std::recursive_mutex> guard() { return std::unique_lock(lock_); }
    // The window system: X11 or a Wayland compositor (session.h).
    Session& session() { return *session_; }
    // The sight `node`'s children are judged by, set once read.
    Sight sightOf(Node& node);
    // The sight of the windows of the application `object` belongs to, from
    // its toolkit (asked for once per application).
    Sight applicationSight(AtspiAccessible* object);
    // The registered application with process id `pid`, or null.
    AccessibleRef findApplication(std::int32_t pid);
    // Handles the accessibility bus's queued signals without waiting.
    void drainEvents();

    // Types `text` key by key into the focused, empty text field, for fields
    // that take keys but offer no way to set their text (web pages' inputs).
    // Only text the US key table can name is typed (false, and nothing
    // pressed, otherwise).
    bool typeIntoEmptyField(std::string_view text);

private:
    // A handle that owns `payload` (a Node or a KeyEvent, with one reference).
    template <class H, class T>
    H handOut(std::unique_ptr<T> payload) noexcept {
        return H::adopt(this, payload.release());
    }
    AttributeRead readAttribute(Node& node, std::string_view attribute);

    // Waits, before the clipboard is given up or restored, until the text a
    // paste put there has been taken (see clearPasteboard).
    void awaitPaste();

    std::unique_ptr<Session> session_;
    // A paste in progress: set when text is put on the clipboard, and, once
    // a key is pressed, how many requests for the clipboard's data had been
    // answered then and when.
    struct Paste {
        std::optional<std::uint64_t> answeredAtKey;
        double keyTime = 0;
    };
    std::optional<Paste> paste_;
    std::uint64_t generation_ = 0;  // see touch()
    AppMemory appMemory_;           // the application list's names
    LaunchNames launchNames_;       // listed names' executables, for launching
    // Serialises the backend's use of libatspi and Xlib across threads.
    std::recursive_mutex lock_;
};

// ---------------------------------------------------------------------------
// Helpers shared by the backend's files.

// The AT-SPI role of `node`, read once (ATSPI_ROLE_INVALID when it cannot
// be read; `answered` as for roleOfObject, and such a failure is not kept).
AtspiRole roleOf(Node& node, bool* answered = nullptr);
// The role name the library sees for `node` ("AXButton", "AXWindow"...).
std::string axRole(Node& node);
bool hasState(AtspiAccessible* object, AtspiStateType state);
bool isWindowRole(AtspiRole role);
// Text from libatspi (may be null; freed here), as valid UTF-8.
std::string takeText(char* text);
// The unique bus name of `object`'s application, or null.
const char* busOf(AtspiAccessible* object);
// The object path of `object` ("" when it has none).
std::string pathOf(AtspiAccessible* object);
// The connection libatspi reaches `object`'s application on, or null.
DBusConnection* connectionOf(AtspiAccessible* object);
// The children of `object`; null entries kept. `answered` (when given) is
// false when the object did not answer within the reply limit.
std::vector<AccessibleRef> childrenOf(AtspiAccessible* object, bool* answered = nullptr);

// Roles whose value is text (entries, spin buttons, password fields, text
// views, paragraphs).
inline bool isTextRole(AtspiRole role) {
    return role == ATSPI_ROLE_TEXT || role == ATSPI_ROLE_ENTRY || role == ATSPI_ROLE_SPIN_BUTTON ||
           role == ATSPI_ROLE_PASSWORD_TEXT || role == ATSPI_ROLE_PARAGRAPH || role == ATSPI_ROLE_DOCUMENT_TEXT;
}

// Roles of the blocks of a document (a web page's headings, paragraphs,
// <div>s, quotes, list items), whose text may be kept on the block itself
// (Firefox) or on text children (Chromium); see Reading::ownText.
inline bool isTextBlockRole(AtspiRole role) {
    return role == ATSPI_ROLE_PARAGRAPH || role == ATSPI_ROLE_HEADING || role == ATSPI_ROLE_SECTION ||
           role == ATSPI_ROLE_BLOCK_QUOTE || role == ATSPI_ROLE_LIST_ITEM || role == ATSPI_ROLE_CAPTION ||
           role == ATSPI_ROLE_ARTICLE;
}

// Roles whose value is an on/off state, read and written as 0 or 1.
inline bool isToggleRole(AtspiRole role) {
    return role == ATSPI_ROLE_CHECK_BOX || role == ATSPI_ROLE_TOGGLE_BUTTON || role == ATSPI_ROLE_RADIO_BUTTON ||
           role == ATSPI_ROLE_CHECK_MENU_ITEM || role == ATSPI_ROLE_RADIO_MENU_ITEM;
}

}  // namespace zeblo::platform::linux_desktop
