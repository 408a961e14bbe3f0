// Reading a desktop from its JSON form (docs/desktop-format.md).
//
// Elements are built in two passes over an explicit work list, so that a tree
// of any depth loads without recursion: the first pass makes a node for every
// inline element object (and registers its id), the second fills in the
// attributes, where a {"ref": ID} can then name any node of the file.
#include <cmath>
#include <fstream>
#include <limits>
#include <sstream>
#include <unordered_map>

#include "platform/sim/sim_state.h"

namespace zeblo::sim {
namespace {

using Json = nlohmann::ordered_json;

[[noreturn]] void fail(const std::string& where, const std::string& problem) {
    throw DesktopFormatError(where + ": " + problem);
}

std::string got(const Json& j) { return std::string(", got ") + j.type_name(); }

std::int64_t integerOf(const Json& j, const std::string& where, std::int64_t lo, std::int64_t hi,
                       const char* what) {
    bool inRange = false;
    std::int64_t v = 0;
    if (j.is_number_unsigned()) {
        auto u = j.get<std::uint64_t>();
        v = static_cast<std::int64_t>(u);
        inRange = u <= static_cast<std::uint64_t>(hi) && v >= lo;
    } else if (j.is_number_integer()) {
        v = j.get<std::int64_t>();
        inRange = v >= lo && v <= hi;
    } else {
        fail(where, std::string("expected ") + what + got(j));
    }
    if (!inRange) fail(where, std::string("expected ") + what + ", got an integer out of range");
    return v;
}

std::int32_t pidOf(const Json& j, const std::string& where) {
    return static_cast<std::int32_t>(integerOf(j, where, std::numeric_limits<std::int32_t>::min(),
                                               std::numeric_limits<std::int32_t>::max(),
                                               "a process identifier (32-bit integer)"));
}

platform::AXError codeOf(const Json& j, const std::string& where) {
    return static_cast<platform::AXError>(
        integerOf(j, where, std::numeric_limits<std::int32_t>::min(),
                  std::numeric_limits<std::int32_t>::max(), "a result code (32-bit integer)"));
}

bool boolOf(const Json& j, const std::string& where) {
    if (!j.is_boolean()) fail(where, "expected true or false" + got(j));
    return j.get<bool>();
}

const std::string& stringOf(const Json& j, const std::string& where) {
    if (!j.is_string()) fail(where, "expected a string" + got(j));
    return j.get_ref<const std::string&>();
}

// A hung time: a number of seconds above 0 and at most an hour, in whole
// microseconds (at least one); null is 0, no hang.
std::int64_t hungMicrosOf(const Json& j, const std::string& where) {
    if (j.is_null()) return 0;
    const double secs = j.is_number() ? j.get<double>() : 0;
    const std::int64_t micros = std::isfinite(secs) && secs <= 3600 ? std::llround(secs * 1e6) : 0;
    if (micros <= 0) {
        fail(where, "expected a number of seconds above 0 and at most 3600" +
                        (j.is_number() ? std::string(", got ") + j.dump() : got(j)));
    }
    return micros;
}

void requireObject(const Json& j, const std::string& where, const char* what) {
    if (!j.is_object()) fail(where, std::string("expected ") + what + got(j));
}

bool isRef(const Json& j) { return j.is_object() && j.contains("ref"); }

// Builds the elements of one document (or one timeline change).
class Builder {
public:
    explicit Builder(SimDesktop::Impl& state) : state_(state) {}

    // First pass: makes a node for every inline element under `root` (an
    // ELEMENT value of the format) and registers its id.
    void collect(Json& root, const std::string& where) {
        std::vector<std::pair<Json*, std::size_t>> work;
        work.emplace_back(&root, addSeg(npos, where));
        while (!work.empty()) {
            auto [j, seg] = work.back();
            work.pop_back();
            if (!j->is_object()) fail(path(seg), "expected an element object or {\"ref\": ID}" + got(*j));
            if (isRef(*j)) {
                if (j->size() != 1 || !(*j)["ref"].is_string())
                    fail(path(seg), "a reference is exactly {\"ref\": ID} with a string ID");
                continue;
            }
            std::string id;
            if (auto it = j->find("id"); it != j->end()) {
                if (!it->is_string()) fail(path(seg) + ".id", "expected a string" + got(*it));
                id = it->get<std::string>();
                if (id.empty()) fail(path(seg) + ".id", "an element id must not be empty");
                if (state_.byId.count(id) != 0) fail(path(seg) + ".id", "duplicate element id \"" + id + "\"");
            }
            Node* n = state_.makeNode(std::move(id));
            made_.emplace(j, n);
            pending_.push_back({j, n, seg});
            auto attrs = j->find("attrs");
            if (attrs == j->end()) continue;
            if (!attrs->is_object()) fail(path(seg) + ".attrs", "expected an object of attributes" + got(*attrs));
            for (auto& [name, value] : attrs->items()) {
                if (value.is_object()) {
                    work.emplace_back(&value, addSeg(seg, ".attrs." + name));
                } else if (value.is_array()) {
                    for (std::size_t i = 0; i < value.size(); ++i)
                        if (value[i].is_object())
                            work.emplace_back(&value[i],
                                              addSeg(seg, ".attrs." + name + "[" + std::to_string(i) + "]"));
                }
            }
        }
    }

    // Second pass: fills every node collected so far. Errors name the place
    // inside the element; the element's own place is added only then, so
    // deep trees cost no long strings.
    void fill() {
        for (auto& p : pending_) {
            try {
                fillNode(*p.json, *p.node, "");
            } catch (const DesktopFormatError& e) {
                throw DesktopFormatError(path(p.seg) + e.what());
            }
        }
        pending_.clear();
    }

    // The node of an ELEMENT value after `fill`; null for JSON null.
    Node* resolve(const Json& j, const std::string& where) const {
        if (j.is_null()) return nullptr;
        if (isRef(j)) {
            const auto& id = j["ref"].get_ref<const std::string&>();
            Node* n = state_.findNode(id);
            if (n == nullptr) fail(where, "unknown element id \"" + id + "\" in {\"ref\": ...}");
            return n;
        }
        return made_.at(&j);
    }

private:
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);
    struct Seg {
        std::size_t parent;
        std::string name;
    };
    struct Pending {
        Json* json;
        Node* node;
        std::size_t seg;
    };

    std::size_t addSeg(std::size_t parent, std::string name) {
        segs_.push_back({parent, std::move(name)});
        return segs_.size() - 1;
    }
    // The place of a segment, built only when an error needs it.
    std::string path(std::size_t seg) const {
        std::vector<const std::string*> parts;
        for (std::size_t s = seg; s != npos; s = segs_[s].parent) parts.push_back(&segs_[s].name);
        std::string out;
        for (auto it = parts.rbegin(); it != parts.rend(); ++it) out += **it;
        return out;
    }

    Attr attrValue(const Json& v, const std::string& where) const {
        switch (v.type()) {
            case Json::value_t::null: return Null{};
            case Json::value_t::string: return v.get<std::string>();
            case Json::value_t::boolean: return v.get<bool>();
            case Json::value_t::number_integer:
            case Json::value_t::number_unsigned:
                return integerOf(v, where, std::numeric_limits<std::int64_t>::min(),
                                 std::numeric_limits<std::int64_t>::max(), "a 64-bit integer");
            case Json::value_t::number_float: return v.get<double>();
            case Json::value_t::object: return resolve(v, where);
            case Json::value_t::array: {
                bool allStrings = !v.empty();
                for (const auto& e : v) allStrings = allStrings && e.is_string();
                if (allStrings) return v.get<std::vector<std::string>>();
                std::vector<Node*> nodes;
                nodes.reserve(v.size());
                for (std::size_t i = 0; i < v.size(); ++i) {
                    if (!v[i].is_null() && !v[i].is_object())
                        fail(where + "[" + std::to_string(i) + "]",
                             "an array value holds only elements and nulls, or only strings" + got(v[i]));
                    nodes.push_back(resolve(v[i], where + "[" + std::to_string(i) + "]"));
                }
                return nodes;
            }
            default: fail(where, "unsupported value" + got(v));
        }
    }

    void fillNode(const Json& j, Node& n, const std::string& where) const {
        for (const auto& [key, v] : j.items()) {
            const std::string at = where + "." + key;
            if (key == "id") continue;
            if (key == "attrs") {
                n.attrs.reserve(v.size());
                for (const auto& [name, value] : v.items())
                    n.attrs.emplace_back(name, attrValue(value, at + "." + name));
            } else if (key == "errors") {
                requireObject(v, at, "an object of attribute → result code");
                for (const auto& [name, code] : v.items()) n.errors[name] = codeOf(code, at + "." + name);
            } else if (key == "actions") {
                requireObject(v, at, "an object of action → result code(s)");
                for (const auto& [name, codes] : v.items()) {
                    std::vector<platform::AXError> list;
                    if (codes.is_array()) {
                        if (codes.empty()) fail(at + "." + name, "expected at least one result code");
                        for (std::size_t i = 0; i < codes.size(); ++i)
                            list.push_back(codeOf(codes[i], at + "." + name + "[" + std::to_string(i) + "]"));
                    } else {
                        list.push_back(codeOf(codes, at + "." + name));
                    }
                    n.actions.emplace_back(name, std::move(list));
                }
            } else if (key == "actionNamesError") {
                if (!v.is_null()) n.actionNamesError = codeOf(v, at);
            } else if (key == "settable") {
                if (!v.is_array()) fail(at, "expected an array of attribute names" + got(v));
                for (std::size_t i = 0; i < v.size(); ++i)
                    n.settable.insert(stringOf(v[i], at + "[" + std::to_string(i) + "]"));
            } else if (key == "setResult") {
                if (!v.is_null()) n.setResult = codeOf(v, at);
            } else if (key == "hung") {
                n.hungMicros = hungMicrosOf(v, at);
            } else if (key == "holdsReply") {
                n.holdsReplyMicros = hungMicrosOf(v, at);
            } else if (key == "hidden") {
                if (!v.is_boolean()) fail(at, "expected true or false" + got(v));
                n.hidden = v.get<bool>();
            } else if (key == "frame") {
                if (!v.is_array() || v.size() != 4) fail(at, "expected [x, y, width, height]" + got(v));
                for (std::size_t i = 0; i < 4; ++i) {
                    if (!v[i].is_number()) fail(at, "expected [x, y, width, height]" + got(v));
                }
                n.frame = platform::Frame{v[0].get<double>(), v[1].get<double>(), v[2].get<double>(), v[3].get<double>()};
            } else if (key == "reveals") {
                n.reveals = stringOf(v, at);
            } else if (key == "onPress") {
                if (v.is_null()) continue;
                const auto& s = stringOf(v, at);
                if (s == "close") n.onPress = OnPress::close;
                else if (s == "toggle") n.onPress = OnPress::toggle;
                else fail(at, "expected \"close\" or \"toggle\", got \"" + s + "\"");
            } else {
                fail(at, "unknown element key (expected id, attrs, errors, actions, actionNamesError, "
                         "settable, setResult, onPress, hidden, reveals, frame)");
            }
        }
    }

    SimDesktop::Impl& state_;
    std::vector<Seg> segs_;
    std::vector<Pending> pending_;
    std::unordered_map<const Json*, Node*> made_;
};

// An application whose element is built later.
struct AppDraft {
    SimApp app;
    const Json* element = nullptr;
    std::string where;
};

AppDraft readApp(Json& j, const std::string& where, Builder& b, const std::string* launchName = nullptr) {
    requireObject(j, where, "an application object");
    AppDraft d;
    d.where = where + ".element";
    bool hasPid = false;
    if (launchName != nullptr && !j.contains("name")) d.app.name = *launchName;
    for (auto& [key, v] : j.items()) {
        const std::string at = where + "." + key;
        if (key == "name") {
            if (!v.is_null()) d.app.name = stringOf(v, at);
        } else if (key == "pid") {
            d.app.pid = pidOf(v, at);
            hasPid = true;
        } else if (key == "hidden") {
            d.app.hidden = boolOf(v, at);
        } else if (key == "policy") {
            d.app.policy = integerOf(v, at, std::numeric_limits<std::int64_t>::min(),
                                     std::numeric_limits<std::int64_t>::max(), "an activation policy integer");
        } else if (key == "activate") {
            d.app.activate = boolOf(v, at);
        } else if (key == "hung") {
            d.app.hungMicros = hungMicrosOf(v, at);
        } else if (key == "element") {
            if (!v.is_null()) {
                b.collect(v, d.where);
                d.element = &v;
            }
        } else {
            fail(at, "unknown application key (expected name, pid, hidden, policy, activate, element)");
        }
    }
    if (!hasPid) fail(where, "an application needs a \"pid\"");
    return d;
}

SimApp finish(AppDraft& d, const Builder& b) {
    if (d.element != nullptr) d.app.element = b.resolve(*d.element, d.where);
    return std::move(d.app);
}

// A timeline change, checked; its element (if any) is collected into `b`.
struct ChangeDraft {
    TimelineChange change;
    std::optional<AppDraft> app;
    const Json* window = nullptr;
    std::string where;
};

ChangeDraft readChange(Json j, const std::string& where, Builder& b) {
    requireObject(j, where, "a timeline object");
    ChangeDraft d;
    d.where = where;
    auto at = j.find("at");
    if (at == j.end() || !at->is_number()) fail(where, "a timeline change needs a number \"at\" (seconds)");
    double secs = at->get<double>();
    if (!std::isfinite(secs) || std::fabs(secs) > 1e12) fail(where + ".at", "time out of range");
    d.change.atMicros = std::llround(secs * 1e6);
    if (j.size() != 2) fail(where, "a timeline change has \"at\" and exactly one change");
    d.change.change = std::move(j);
    Json& c = d.change.change;
    auto it = c.begin();
    if (it.key() == "at") ++it;  // "at" and the change may come in either order
    const std::string kind = it.key();
    Json& v = it.value();
    const std::string vat = where + "." + kind;
    if (kind == "frontmost") {
        if (!v.is_null()) pidOf(v, vat);
    } else if (kind == "addWindow") {
        requireObject(v, vat, "{\"pid\": PID, \"window\": ELEMENT}");
        if (v.size() != 2 || !v.contains("pid") || !v.contains("window"))
            fail(vat, "expected exactly {\"pid\": PID, \"window\": ELEMENT}");
        pidOf(v["pid"], vat + ".pid");
        b.collect(v["window"], vat + ".window");
        d.window = &v["window"];
    } else if (kind == "removeWindow") {
        stringOf(v, vat);
    } else if (kind == "removeApp") {
        pidOf(v, vat);
    } else if (kind == "addApp") {
        d.app = readApp(v, vat, b);
    } else if (kind == "hangApp") {
        requireObject(v, vat, "{\"pid\": PID, \"seconds\": SECONDS}");
        if (v.size() != 2 || !v.contains("pid") || !v.contains("seconds"))
            fail(vat, "expected exactly {\"pid\": PID, \"seconds\": SECONDS}");
        pidOf(v["pid"], vat + ".pid");
        if (v["seconds"].is_null() || hungMicrosOf(v["seconds"], vat + ".seconds") == 0)
            fail(vat + ".seconds", "expected a number of seconds above 0 and at most 3600, got null");
    } else if (kind == "resumeApp") {
        pidOf(v, vat);
    } else {
        fail(vat, "unknown timeline change (expected frontmost, addWindow, removeWindow, removeApp, addApp)");
    }
    return d;
}

TimelineChange finish(ChangeDraft& d, SimDesktop::Impl& state, const Builder& b) {
    const Json& c = d.change.change;
    if (d.window != nullptr) d.change.element = b.resolve(*d.window, d.where + ".addWindow.window");
    if (d.app) d.change.app = finish(*d.app, b);
    if (auto it = c.find("removeWindow"); it != c.end() && state.findNode(it->get<std::string>()) == nullptr)
        fail(d.where + ".removeWindow", "unknown element id \"" + it->get<std::string>() + "\"");
    return std::move(d.change);
}

SimPasteboardItem readItem(const Json& j, const std::string& where) {
    requireObject(j, where, "a pasteboard item (an object of type → data)");
    SimPasteboardItem item;
    for (const auto& [type, v] : j.items()) {
        const std::string at = where + "." + type;
        if (v.is_null()) {
            item.entries.emplace_back(type, std::nullopt);
        } else if (v.is_string()) {
            const auto& s = v.get_ref<const std::string&>();
            item.entries.emplace_back(type, platform::Bytes(s.begin(), s.end()));
        } else if (v.is_object() && v.size() == 1 && v.contains("base64")) {
            auto bytes = base64Decode(stringOf(v["base64"], at + ".base64"));
            if (!bytes) fail(at + ".base64", "not valid base64");
            item.entries.emplace_back(type, std::move(*bytes));
        } else {
            fail(at, "expected text, {\"base64\": \"...\"} or null" + got(v));
        }
    }
    return item;
}

}  // namespace

TimelineChange buildChange(SimDesktop::Impl& state, Json change, const std::string& where) {
    Builder b(state);
    auto d = readChange(std::move(change), where, b);
    b.fill();
    return finish(d, state, b);
}

std::shared_ptr<SimDesktop> SimDesktop::fromJson(std::string_view text) {
    Json doc;
    try {
        doc = Json::parse(text.begin(), text.end());
    } catch (const nlohmann::json::exception& e) {
        throw DesktopFormatError(std::string("the desktop is not valid JSON: ") + e.what());
    }
    requireObject(doc, "desktop", "an object at the top level");
    auto desk = std::make_shared<SimDesktop>();
    Impl& s = *desk->impl_;
    Builder b(s);
    std::vector<AppDraft> apps;
    std::vector<std::pair<std::string, AppDraft>> launchable;
    std::vector<ChangeDraft> changes;
    const Json* systemWide = nullptr;

    for (auto& [key, v] : doc.items()) {
        if (key == "apps") {
            if (!v.is_array()) fail(key, "expected an array of applications" + got(v));
            for (std::size_t i = 0; i < v.size(); ++i)
                apps.push_back(readApp(v[i], "apps[" + std::to_string(i) + "]", b));
        } else if (key == "frontmost") {
            if (!v.is_null()) s.frontmost = pidOf(v, key);
        } else if (key == "launchable") {
            requireObject(v, key, "an object of name → application");
            for (auto& [name, app] : v.items())
                launchable.emplace_back(name, readApp(app, "launchable." + name, b, &name));
        } else if (key == "systemWide") {
            if (!v.is_null()) {
                b.collect(v, key);
                systemWide = &v;
            }
        } else if (key == "trusted") {
            s.trusted = boolOf(v, key);
        } else if (key == "pasteboardReadable") {
            s.pasteboardReadable = boolOf(v, key);
        } else if (key == "pasteboard") {
            if (!v.is_array()) fail(key, "expected an array of items" + got(v));
            for (std::size_t i = 0; i < v.size(); ++i)
                s.pasteboard.push_back(readItem(v[i], "pasteboard[" + std::to_string(i) + "]"));
        } else if (key == "failures") {
            requireObject(v, key, "an object");
            for (const auto& [fk, fv] : v.items()) {
                if (fk == "eventSource") {
                    s.eventSourceFails = boolOf(fv, "failures.eventSource");
                } else if (fk == "keyboardEvents") {
                    if (!fv.is_array()) fail("failures.keyboardEvents", "expected an array of integers" + got(fv));
                    for (std::size_t i = 0; i < fv.size(); ++i)
                        s.failingKeyboardEvents.insert(static_cast<int>(
                            integerOf(fv[i], "failures.keyboardEvents[" + std::to_string(i) + "]", 1,
                                      std::numeric_limits<int>::max(), "a positive event number")));
                } else {
                    fail("failures." + fk, "unknown failure (expected eventSource, keyboardEvents)");
                }
            }
        } else if (key == "timeline") {
            if (!v.is_array()) fail(key, "expected an array of changes" + got(v));
            for (std::size_t i = 0; i < v.size(); ++i)
                changes.push_back(readChange(std::move(v[i]), "timeline[" + std::to_string(i) + "]", b));
        } else {
            fail(key, "unknown key (expected apps, frontmost, launchable, systemWide, trusted, pasteboard, "
                      "pasteboardReadable, failures, timeline)");
        }
    }

    b.fill();
    for (auto& d : apps) s.apps.push_back(finish(d, b));
    for (auto& [name, d] : launchable) s.launchable.emplace_back(name, finish(d, b));
    if (systemWide != nullptr) s.systemWide = b.resolve(*systemWide, "systemWide");
    for (auto& d : changes) s.timeline.push_back(finish(d, s, b));
    s.applyDueChanges();
    return desk;
}

std::shared_ptr<SimDesktop> SimDesktop::fromFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) throw DesktopFormatError("cannot open the desktop file " + path);
    std::ostringstream text;
    text << in.rdbuf();
    try {
        return fromJson(text.str());
    } catch (const DesktopFormatError& e) {
        throw DesktopFormatError(path + ": " + e.what());
    }
}

}  // namespace zeblo::sim
