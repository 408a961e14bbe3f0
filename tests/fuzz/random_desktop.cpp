#include "fuzz/random_desktop.h"

#include <array>
#include <functional>
#include <limits>
#include <random>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/unicode.h"

namespace zeblo::fuzz {
namespace {

using namespace std::string_literals;

constexpr int kMaxNodes = 160;  // per desktop
constexpr int kMaxDepth = 64;   // the menu snapshot's text grows with depth cubed
constexpr int kMaxChildren = 24;

const std::array kPool = {
    ""s, "Quick Notes"s, "Mail"s, "quick  NOTES"s, "Notes"s, "Inbox"s, "Save"s, "OK"s, "File"s, "Edit"s,
    "Font"s, "Bold"s, "(no title)"s, "Untitled"s, "\xc3\xa9t\xc3\xa9"s, "e\xcc\x81t\xc3\xa9"s,
};

const std::array kHostile = {
    "a\"b"s, "back\\slash"s, "%s%n%x%%"s, "%@ %d"s, "\x01\x1f\x7f"s, "line\nbreak\r"s, "tab\there"s,
    "\xff\xfe"s, "\xc3"s, "\xed\xa0\x80"s, "\xc0\xaf"s, "\xf4\x90\x80\x80"s, "\xf0\x9f\x98\x80"s,
    "/sl/ash/"s, "\xe2\x80\xa8\xe2\x80\xa9"s, "nul\0in"s, "\xef\xbb\xbf"s, "  "s, "\xc2\xa0"s, "{\"error\": 1}"s,
};

const std::array kRoles = {
    "AXWindow"s,     "AXButton"s,      "AXCheckBox"s,     "AXPopUpButton"s,   "AXMenuBar"s,
    "AXMenuBarItem"s, "AXMenu"s,       "AXMenuItem"s,     "AXStaticText"s,    "AXTextField"s,
    "AXTextArea"s,   "AXImage"s,       "AXGroup"s,        "AXSecureTextField"s, "AXComboBox"s,
    "AXSearchField"s, "AXRadioButton"s, "AXScrollArea"s,  "AXLink"s,          "AXUnknown"s,
};

const std::array kAttrs = {
    "AXTitle"s,   "AXValue"s,      "AXDescription"s,      "AXRole"s,           "AXEnabled"s,
    "AXMenuItemMarkChar"s, "AXMenuItemCmdChar"s, "AXMenuItemCmdModifiers"s, "AXFocusedWindow"s,
    "AXCloseButton"s, "AXMenu"s,   "AXMenuBar"s,          "AXWindows"s,        "AXFocusedUIElement"s,
};

const std::array<platform::AXError, 8> kCodes = {
    platform::kAXErrorSuccess,         platform::kAXErrorFailure,        platform::kAXErrorIllegalArgument,
    platform::kAXErrorInvalidUIElement, platform::kAXErrorCannotComplete, platform::kAXErrorAttributeUnsupported,
    platform::kAXErrorActionUnsupported, platform::kAXErrorNoValue,
};

bool g_illFormed = false;  // set by randomName while a desktop is built

template <class T, std::size_t N>
const T& pick(FuzzedDataProvider& in, const std::array<T, N>& from) {
    return from[in.ConsumeIntegralInRange<std::size_t>(0, N - 1)];
}

platform::AXError code(FuzzedDataProvider& in) {
    return in.ConsumeBool() ? pick(in, kCodes) : in.ConsumeIntegral<std::int32_t>();
}

class Builder {
public:
    Builder(FuzzedDataProvider& in, sim::SimDesktop& desk) : in_(in), desk_(desk) {}

    sim::Node* anyNode() {
        if (nodes_.empty() || in_.ConsumeIntegralInRange(0, 7) == 0) return nullptr;
        return nodes_[in_.ConsumeIntegralInRange<std::size_t>(0, nodes_.size() - 1)];
    }

    // A value of any kind, mostly of the kind the attribute usually has.
    sim::Attr value(const std::string& attr) {
        switch (in_.ConsumeIntegralInRange(0, 11)) {
            case 0: return sim::Null{};
            case 1: return in_.ConsumeBool();
            case 2: return in_.ConsumeIntegral<std::int64_t>();
            case 3: return in_.ConsumeFloatingPoint<double>();
            case 4: return anyNode();
            case 5: {
                std::vector<sim::Node*> list;
                for (int n = in_.ConsumeIntegralInRange(0, 4); n > 0; --n) list.push_back(anyNode());
                return list;
            }
            case 6: {
                std::vector<std::string> list;
                for (int n = in_.ConsumeIntegralInRange(0, 3); n > 0; --n) list.push_back(randomName(in_));
                return list;
            }
            default: break;
        }
        if (attr == "AXRole") return pick(in_, kRoles);
        if (attr == "AXEnabled") return in_.ConsumeBool();
        if (attr == "AXMenuItemCmdModifiers") return std::int64_t{in_.ConsumeIntegralInRange(-1, 24)};
        if (attr == "AXValue" && in_.ConsumeBool()) return std::int64_t{in_.ConsumeIntegralInRange(-1, 2)};
        if (attr == "AXFocusedWindow" || attr == "AXCloseButton" || attr == "AXMenu" || attr == "AXMenuBar" ||
            attr == "AXFocusedUIElement")
            return anyNode();
        return randomName(in_);
    }

    // A child list of the wrong kind, or with null entries only. Lists that
    // lead back up come later, from addFaults.
    sim::Attr malformedChildren() {
        switch (in_.ConsumeIntegralInRange(0, 5)) {
            case 0: return sim::Null{};
            case 1: return in_.ConsumeBool();
            case 2: return in_.ConsumeIntegral<std::int64_t>();
            case 3: return 0.5;
            case 4: return std::vector<sim::Node*>(in_.ConsumeIntegralInRange(0, 3), nullptr);
            default: return std::vector<std::string>{randomName(in_)};
        }
    }

    void decorate(sim::Node* n) {
        if (in_.ConsumeIntegralInRange(0, 5) != 0) n->setAttr("AXRole", pick(in_, kRoles));
        if (in_.ConsumeIntegralInRange(0, 3) != 0) n->setAttr("AXTitle", randomName(in_));
        for (int k = in_.ConsumeIntegralInRange(0, 3); k > 0; --k) {
            const std::string& attr = pick(in_, kAttrs);
            n->setAttr(attr, value(attr));
        }
        if (in_.ConsumeIntegralInRange(0, 5) == 0) n->errors[pick(in_, kAttrs)] = code(in_);
        if (in_.ConsumeIntegralInRange(0, 9) == 0) n->errors["AXChildren"] = code(in_);
        if (in_.ConsumeBool()) {
            std::vector<platform::AXError> codes;
            for (int k = in_.ConsumeIntegralInRange(1, 3); k > 0; --k) codes.push_back(code(in_));
            n->actions.emplace_back(in_.ConsumeBool() ? "AXPress" : "AXPick", std::move(codes));
        }
        if (in_.ConsumeIntegralInRange(0, 9) == 0) n->actionNamesError = code(in_);
        if (in_.ConsumeBool()) n->settable.insert(in_.ConsumeBool() ? "AXValue" : "AXTitle");
        if (in_.ConsumeIntegralInRange(0, 5) == 0) n->setResult = code(in_);
        n->onPress = static_cast<sim::OnPress>(in_.ConsumeIntegralInRange(0, 2));
        n->dead = in_.ConsumeIntegralInRange(0, 30) == 0;
    }

    // One tree of up to `budget` nodes, built without recursion. Each new node
    // hangs below the previous one (deep) or below a random earlier one (wide).
    sim::Node* tree(int budget) {
        struct Entry {
            sim::Node* node;
            int depth;
            std::vector<sim::Node*> children;
        };
        std::vector<Entry> made;
        const int count = in_.ConsumeIntegralInRange(1, std::max(1, budget));
        const bool deep = in_.ConsumeBool();
        for (int i = 0; i < count && static_cast<int>(nodes_.size()) < kMaxNodes; ++i) {
            sim::Node* n = desk_.newNode(in_.ConsumeIntegralInRange(0, 7) == 0 ? "n" + std::to_string(nodes_.size())
                                                                           : std::string());
            nodes_.push_back(n);
            decorate(n);
            if (!made.empty()) {
                std::size_t parent = deep && in_.ConsumeIntegralInRange(0, 7) != 0
                                         ? made.size() - 1
                                         : in_.ConsumeIntegralInRange<std::size_t>(0, made.size() - 1);
                while (made[parent].depth >= kMaxDepth || made[parent].children.size() >= kMaxChildren) {
                    if (parent == 0) break;
                    --parent;
                }
                if (made[parent].depth < kMaxDepth && made[parent].children.size() < kMaxChildren) {
                    if (in_.ConsumeIntegralInRange(0, 15) == 0) made[parent].children.push_back(nullptr);
                    made[parent].children.push_back(n);
                    made.push_back({n, made[parent].depth + 1, {}});
                    parentOf_[n] = made[parent].node;
                    continue;
                }
            }
            made.push_back({n, 0, {}});
        }
        for (auto& e : made) {
            if (e.children.empty() && in_.ConsumeIntegralInRange(0, 3) != 0) continue;
            if (in_.ConsumeIntegralInRange(0, 15) == 0) {
                e.node->setAttr("AXChildren", malformedChildren());
            } else {
                e.node->setAttr("AXChildren", std::move(e.children));
            }
        }
        return made.empty() ? nullptr : made.front().node;
    }

    sim::SimApp app() {
        sim::SimApp a;
        if (in_.ConsumeIntegralInRange(0, 7) != 0) a.name = randomName(in_);
        a.pid = in_.ConsumeBool() ? in_.ConsumeIntegralInRange(100, 104) : in_.ConsumeIntegral<std::int32_t>();
        a.hidden = in_.ConsumeIntegralInRange(0, 5) == 0;
        a.policy = in_.ConsumeIntegralInRange(0, 7) == 0 ? in_.ConsumeIntegralInRange(-1, 3) : 0;
        a.activate = in_.ConsumeIntegralInRange(0, 5) != 0;
        a.element = desk_.newNode();
        nodes_.push_back(a.element);
        if (in_.ConsumeIntegralInRange(0, 9) == 0) decorate(a.element);
        std::vector<sim::Node*> windows;
        for (int w = in_.ConsumeIntegralInRange(0, 3); w > 0; --w) {
            sim::Node* window = tree(in_.ConsumeIntegralInRange(1, 40));
            if (window != nullptr && in_.ConsumeIntegralInRange(0, 3) != 0) window->setAttr("AXRole", "AXWindow"s);
            windows.push_back(window);
        }
        if (in_.ConsumeIntegralInRange(0, 9) != 0) a.element->setAttr("AXWindows", windows);
        if (!windows.empty() && in_.ConsumeBool()) a.element->setAttr("AXFocusedWindow", windows.front());
        if (in_.ConsumeIntegralInRange(0, 3) != 0) a.element->setAttr("AXMenuBar", tree(in_.ConsumeIntegralInRange(1, 60)));
        return a;
    }

    // Applications and elements that do not answer or hold their replies,
    // and child lists that lead back to the node or an ancestor (as a faulty
    // application's can). Drawn from what the input chose already rather than from more of
    // it, so that every input still builds the desktop and makes the calls it
    // did before.
    void addFaults() {
        std::string chosen = std::to_string(nodes_.size());
        for (sim::Node* n : nodes_) {
            const sim::Attr* title = n->findAttr("AXTitle");
            chosen +=
                title != nullptr && std::holds_alternative<std::string>(*title) ? std::get<std::string>(*title) : "-";
        }
        for (const sim::SimApp& app : desk_.apps()) chosen += std::to_string(app.pid);
        std::minstd_rand draw(static_cast<std::uint32_t>(std::hash<std::string>{}(chosen)));
        const auto once = [&](unsigned in) { return draw() % in == 0; };
        const auto micros = [&] { return static_cast<std::int64_t>(1 + draw() % 1'000'000); };
        for (sim::SimApp& app : desk_.apps())
            if (once(10)) app.hungMicros = micros();
        for (sim::Node* n : nodes_) {
            if (once(30)) n->hungMicros = micros();
            if (once(15)) n->holdsReplyMicros = micros();
            const auto parent = parentOf_.find(n);
            if (!once(8) || parent == parentOf_.end()) continue;
            sim::Node* up = once(2) ? n : parent->second;
            for (auto k = draw() % 4; k > 0 && parentOf_.count(up) != 0; --k) up = parentOf_[up];
            sim::Attr* kids = n->findAttr("AXChildren");
            if (kids == nullptr) {
                n->setAttr("AXChildren", std::vector<sim::Node*>{up});
            } else if (auto* list = std::get_if<std::vector<sim::Node*>>(kids)) {
                list->insert(list->begin() + static_cast<std::ptrdiff_t>(draw() % (list->size() + 1)), up);
            }
        }
    }

private:
    FuzzedDataProvider& in_;
    sim::SimDesktop& desk_;
    std::vector<sim::Node*> nodes_;
    std::unordered_map<sim::Node*, sim::Node*> parentOf_;  // within one tree
};

}  // namespace

std::string hostileName(FuzzedDataProvider& in) { return pick(in, kHostile); }

std::string randomName(FuzzedDataProvider& in) {
    std::string name;
    switch (in.ConsumeIntegralInRange(0, 5)) {
        case 0: name = hostileName(in); break;
        case 1: name = in.ConsumeRandomLengthString(24); break;
        default: name = pick(in, kPool); break;
    }
    if (!g_illFormed && !text::isValidUtf8(name)) g_illFormed = true;
    return name;
}

bool lastDesktopHasIllFormedText() { return g_illFormed; }

std::shared_ptr<sim::SimDesktop> randomDesktop(FuzzedDataProvider& in) {
    auto desk = std::make_shared<sim::SimDesktop>();
    g_illFormed = false;
    Builder b(in, *desk);
    std::vector<std::int32_t> pids;
    for (int n = in.ConsumeIntegralInRange(0, 4); n > 0; --n) pids.push_back(desk->addApp(b.app()).pid);
    if (!pids.empty() && in.ConsumeIntegralInRange(0, 5) != 0) {
        desk->setFrontmost(pids[in.ConsumeIntegralInRange<std::size_t>(0, pids.size() - 1)]);
    } else if (in.ConsumeBool()) {
        desk->setFrontmost(in.ConsumeIntegral<std::int32_t>());  // no such process
    }
    for (int n = in.ConsumeIntegralInRange(0, 2); n > 0; --n) desk->addLaunchable(randomName(in), b.app());
    if (in.ConsumeIntegralInRange(0, 3) != 0) desk->setSystemWide(b.tree(in.ConsumeIntegralInRange(1, 6)));
    desk->setTrusted(in.ConsumeIntegralInRange(0, 7) != 0);

    std::vector<sim::SimPasteboardItem> pasteboard(in.ConsumeIntegralInRange(0, 3));
    for (auto& item : pasteboard) {
        for (int n = in.ConsumeIntegralInRange(0, 3); n > 0; --n) {
            std::string type = in.ConsumeBool() ? std::string(platform::kPasteboardTypeString) : randomName(in);
            std::optional<platform::Bytes> data;
            if (in.ConsumeIntegralInRange(0, 4) != 0) {
                const std::string bytes = in.ConsumeRandomLengthString(32);
                data = platform::Bytes(bytes.begin(), bytes.end());
            }
            item.entries.emplace_back(std::move(type), std::move(data));
        }
    }
    desk->setPasteboard(std::move(pasteboard));
    desk->setEventSourceFails(in.ConsumeIntegralInRange(0, 9) == 0);
    if (in.ConsumeIntegralInRange(0, 4) == 0) {
        std::set<int> failing;
        for (int n = in.ConsumeIntegralInRange(1, 3); n > 0; --n) failing.insert(in.ConsumeIntegralInRange(1, 12));
        desk->setFailingKeyboardEvents(std::move(failing));
    }
    // A few changes while the library waits: the front moves, an application quits.
    for (int n = in.ConsumeIntegralInRange(0, 2); n > 0; --n) {
        sim::TimelineChange change;
        change.atMicros = in.ConsumeIntegralInRange<std::int64_t>(1, 1'000'000);
        const std::int32_t pid = pids.empty() || in.ConsumeIntegralInRange(0, 3) == 0
                                     ? in.ConsumeIntegral<std::int32_t>()
                                     : pids[in.ConsumeIntegralInRange<std::size_t>(0, pids.size() - 1)];
        change.change =
            in.ConsumeBool() ? nlohmann::ordered_json{{"frontmost", pid}} : nlohmann::ordered_json{{"removeApp", pid}};
        try {
            desk->addTimelineChange(std::move(change));
        } catch (const sim::DesktopFormatError&) {
        }
    }
    b.addFaults();
    return desk;
}

}  // namespace zeblo::fuzz
