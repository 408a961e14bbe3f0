// The state behind a simulated desktop, shared by the files of the simulator
// (operations, loader, trace helpers). Everything here is guarded by `mu`
// except the live-handle counter and the reference counts of events, which
// handle copies and destructions touch without taking the lock.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "platform/sim/sim_desktop.h"

namespace zeblo::sim {

// A keyboard event or an event source. Heap objects with their own count of
// references; freed when it reaches zero.
struct SimEvent {
    std::atomic<int> refs{1};
    bool isSource = false;
    std::uint16_t keyCode = 0;
    bool down = false;
    std::optional<std::uint64_t> flags;   // null until set
    std::optional<std::int64_t> marker;  // field 127; null until set
};

inline constexpr std::uint32_t kMarkerField = 127;

struct SimDesktop::Impl {
    mutable std::mutex mu;

    // Every node ever made; nodes are freed only with the desktop, so element
    // handles stay valid after a window or application goes away.
    std::vector<std::unique_ptr<Node>> arena;
    std::unordered_map<std::string, Node*> byId;
    Node* deadNode = nullptr;  // the element of a process that does not run

    std::vector<SimApp> apps;
    std::optional<std::int32_t> frontmost;
    Node* systemWide = nullptr;
    std::vector<std::pair<std::string, SimApp>> launchable;
    bool trusted = true;
    std::vector<SimPasteboardItem> pasteboard;
    bool pasteboardReadable = true;

    bool eventSourceFails = false;
    std::set<int> failingKeyboardEvents;
    int keyboardEventCount = 0;

    std::vector<TimelineChange> timeline;  // not yet applied, in order
    std::int64_t clockMicros = 0;

    bool recording = true;
    std::vector<nlohmann::ordered_json> trace;
    std::function<void(std::string_view)> logSink;
    std::function<void(const nlohmann::ordered_json&)> traceSink;

    std::atomic<int> liveHandles{0};

    Node* makeNode(std::string id);
    Node* findNode(std::string_view id) const;
    Node* deadElement();
    SimApp* findApp(std::int32_t pid);
    void record(nlohmann::ordered_json entry) {
        if (traceSink) traceSink(entry);
        if (recording) trace.push_back(std::move(entry));
    }
    // How long a call to `n` waits for a reply that does not come: its own
    // hung time, else that of a hung application it lies under; 0 when it
    // answers.
    std::int64_t hungMicros(const Node* n);
    // Lets `micros` of virtual time pass for a call to `n` that gets no reply
    // (recorded in the trace), applying the changes that come due.
    void waitUnanswered(const Node* n, std::int64_t micros);
    // Applies every pending change whose time has come, in order.
    void applyDueChanges();
    void applyChange(const TimelineChange& change);
};

// Checks a timeline object (of the file format) and builds the element it
// carries, if any; refs are resolved against the desktop's nodes. Throws
// DesktopFormatError naming `where`.
TimelineChange buildChange(SimDesktop::Impl& state, nlohmann::ordered_json change,
                           const std::string& where);

// Base64 (standard alphabet, with padding).
std::string base64Encode(const platform::Bytes& data);
std::optional<platform::Bytes> base64Decode(std::string_view text);

// Pasteboard data as trace JSON: the text when it is well-formed UTF-8, else
// {"base64": ...}; null for data the item cannot provide.
nlohmann::ordered_json dataJson(const std::optional<platform::Bytes>& data);
// Text for a trace record, with U+FFFD in place of ill-formed UTF-8.
std::string traceText(std::string_view text);

}  // namespace zeblo::sim
