// The simulated desktop: an in-memory implementation of the platform
// interface. It holds running applications with their element trees, a
// pasteboard, a virtual clock that only sleeps advance, a timeline of changes
// applied as that clock passes given times, injected failures, a count of live
// handles, and a trace of every side effect in the order it happened.
//
// All public members are thread-safe: one mutex guards the whole desktop.
// A desktop is built from its JSON form (docs/desktop-format.md) or in code.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <nlohmann/json.hpp>

#include "platform/platform.h"

namespace zeblo::sim {

struct Node;

// No value: the read succeeds and gives nothing.
struct Null {};

// An attribute's value in the simulation. A floating-point number is a kind no
// read of the library accepts. Null entries of an element array are kept.
using Attr = std::variant<Null, std::string, bool, std::int64_t, double, Node*, std::vector<Node*>,
                          std::vector<std::string>>;

enum class OnPress : std::uint8_t {
    nothing,
    close,   // remove the window holding the element from its application's "AXWindows"
    toggle,  // flip "AXValue" between 0 and 1
};

// One accessibility element. Nodes are owned by their desktop and live as long
// as it does; attributes refer to other nodes by pointer.
struct Node {
    std::string id;                                          // may be empty
    std::vector<std::pair<std::string, Attr>> attrs;         // in the file's order
    std::map<std::string, platform::AXError, std::less<>> errors;  // reads of these fail
    // Result codes of actions, consumed in order, the last one repeating.
    std::vector<std::pair<std::string, std::vector<platform::AXError>>> actions;
    std::optional<platform::AXError> actionNamesError;
    std::set<std::string, std::less<>> settable;
    std::optional<platform::AXError> setResult;
    OnPress onPress = OnPress::nothing;
    // The element of a process that is gone: every read fails.
    bool dead = false;
    // Not seen by a user: left out of "AXChildren" reads (still in
    // "ZBAllChildren", with "ZBVisible" false).
    bool hidden = false;
    // The id of an element that a successful "AXPress" or "AXShowMenu" of
    // this one shows (a menu button's popover); empty: none.
    std::string reveals;
    // Where it is drawn ("frame": [x, y, width, height]); none: not known.
    std::optional<platform::Frame> frame;
    // A hung element: every read, write and action waits this long (virtual
    // microseconds) for a reply that does not come and fails with
    // kAXErrorCannotComplete. A write or action is delivered all the same.
    // 0: it answers.
    std::int64_t hungMicros = 0;
    // Only writes and actions wait this long and fail so, after taking
    // effect (a button whose press opens a modal dialog); 0: they answer.
    std::int64_t holdsReplyMicros = 0;

    // Finds or adds an attribute; convenience for code that builds trees.
    Attr* findAttr(std::string_view name);
    void setAttr(std::string name, Attr value);
};

// One running application.
struct SimApp {
    std::optional<std::string> name;
    std::int32_t pid = 0;
    bool hidden = false;
    std::int64_t policy = 0;
    bool activate = true;  // answer to an activation request
    Node* element = nullptr;
    // Every element under `element` is hung for this long (see Node); 0: the
    // application answers. The workspace still lists and activates it.
    std::int64_t hungMicros = 0;
};

// One pasteboard item: type → data, in order; no data means the item cannot
// provide it.
struct SimPasteboardItem {
    std::vector<std::pair<std::string, std::optional<platform::Bytes>>> entries;
    bool operator==(const SimPasteboardItem&) const = default;
};

// A change the timeline applies when the virtual clock reaches `at` seconds.
struct TimelineChange {
    std::int64_t atMicros = 0;
    nlohmann::ordered_json change;  // one of the timeline objects of the file format
    // The window of "addWindow" and the application of "addApp", built when the
    // change is added. When either is set by the caller, `change` needs only
    // the kind of change: {"addWindow": {"pid": P}} or {"addApp": null}.
    Node* element = nullptr;
    std::optional<SimApp> app;
};

// A desktop file that cannot be read; `what()` names the place and the problem.
class DesktopFormatError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class SimDesktop final : public platform::Platform {
public:
    SimDesktop();
    ~SimDesktop() override;
    SimDesktop(const SimDesktop&) = delete;
    SimDesktop& operator=(const SimDesktop&) = delete;

    // Builds a desktop from its JSON form; throws DesktopFormatError.
    static std::shared_ptr<SimDesktop> fromJson(std::string_view text);
    static std::shared_ptr<SimDesktop> fromFile(const std::string& path);

    // --- Building and inspecting (tests, benchmarks, the tool) -------------
    // Not for use while another thread calls the platform operations.
    Node* newNode(std::string id = {});
    Node* node(std::string_view id);  // by id; null when there is none
    SimApp& addApp(SimApp app);
    std::vector<SimApp>& apps();  // running applications, in the workspace's order
    void setFrontmost(std::optional<std::int32_t> pid);
    void setSystemWide(Node* element);
    void addLaunchable(std::string name, SimApp app);
    void setTrusted(bool trusted);
    void setPasteboardReadable(bool readable);
    void setPasteboard(std::vector<SimPasteboardItem> items);
    void setEventSourceFails(bool fails);
    // Keyboard-event creations that fail, numbered from 1 since the desktop
    // was built or `resetEventCount` was last called.
    void setFailingKeyboardEvents(std::set<int> numbers);
    void resetEventCount();
    // Adds a change (applied at once when its time has come); throws
    // DesktopFormatError when `change` is not a timeline object.
    void addTimelineChange(TimelineChange change);
    // When false, nothing is added to the trace (log lines go nowhere). The
    // simulated library's desktop and `zeblo mcp` run this way so that a
    // long-lived host does not accumulate records.
    void setRecording(bool on);
    // Where log lines go besides the trace (the simulated library sends them
    // to the system log). Called without the desktop's lock held.
    void setLogSink(std::function<void(std::string_view)> sink);
    // Receives every trace entry as it is made, recording on or off. Called
    // with the desktop's lock held: it must not call the desktop.
    void setTraceSink(std::function<void(const nlohmann::ordered_json&)> sink);

    // A counted handle to `n` (null for null), as if a read had handed it out.
    platform::Element elementOf(Node* n);

    // Thread-safe views of the state.
    int liveHandles() const;
    double clock() const;
    std::vector<nlohmann::ordered_json> trace() const;  // every side effect, in order
    std::vector<std::string> logLines() const;          // the "log" entries of the trace
    void clearTrace();
    std::vector<SimPasteboardItem> pasteboard() const;
    // The closing line of a trace: {"end": {"clock", "liveHandles", "pasteboard"}}.
    nlohmann::ordered_json endRecord() const;
    // A pasteboard as trace JSON: [{type: text or {"base64": ...}}].
    static nlohmann::ordered_json pasteboardJson(const std::vector<SimPasteboardItem>& items);

    // --- The platform interface ---------------------------------------------
    platform::Element createApplicationElement(std::int32_t pid) override;
    platform::Element createSystemWideElement() override;
    platform::AttributeRead copyAttributeValue(const platform::Element& element,
                                               std::string_view attribute) override;
    platform::NamesRead copyAttributeNames(const platform::Element& element) override;
    platform::AXError setAttributeValue(const platform::Element& element, std::string_view attribute,
                                        const platform::SetValue& value) override;
    platform::SettableRead isAttributeSettable(const platform::Element& element,
                                               std::string_view attribute) override;
    bool sameElement(const platform::Element& a, const platform::Element& b) override;
    std::optional<platform::Frame> frameOf(const platform::Element& element) override;
    platform::AXError performAction(const platform::Element& element, std::string_view action) override;
    platform::NamesRead copyActionNames(const platform::Element& element) override;
    bool isProcessTrusted(bool prompt) override;
    platform::EventSource createEventSource(std::int32_t stateId) override;
    platform::Event createKeyboardEvent(const platform::EventSource* source, std::uint16_t keyCode,
                                        bool keyDown) override;
    void setEventFlags(const platform::Event& event, std::uint64_t flags) override;
    void setEventIntegerField(const platform::Event& event, std::uint32_t field,
                              std::int64_t value) override;
    void postEvent(std::uint32_t tap, const platform::Event& event) override;
    std::optional<platform::RunningApp> frontmostApplication() override;
    std::vector<platform::RunningApp> runningApplications() override;
    bool launchApplication(std::string_view name) override;
    bool activateApplication(const platform::RunningApp& app, std::uint64_t options) override;
    bool canReadPasteboard() override;
    std::optional<std::vector<platform::PasteboardItem>> pasteboardItems() override;
    void clearPasteboard() override;
    bool setPasteboardString(std::string_view text, std::string_view type) override;
    bool writePasteboardItems(const std::vector<platform::PasteboardItem>& items) override;
    void sleep(double seconds) override;
    double now() override;
    void writeLog(std::string_view line) override;
    void retainHandle(platform::HandleKind kind, void* raw) noexcept override;
    void releaseHandle(platform::HandleKind kind, void* raw) noexcept override;

    struct Impl;  // the state; defined in sim_state.h

private:
    std::unique_ptr<Impl> impl_;
};

}  // namespace zeblo::sim
