// The desktop format's values and elements (sim_format.h).
#include "platform/sim/sim_format.h"

#include <cmath>
#include <limits>

namespace zeblo::sim::format {
namespace {

bool isRef(const Json& j) { return j.is_object() && j.contains("ref"); }

}  // namespace

void fail(const std::string& where, const std::string& problem) { throw DesktopFormatError(where + ": " + problem); }

std::string got(const Json& j) { return std::string(", got ") + j.type_name(); }

std::int64_t integerOf(const Json& j, const std::string& where, std::int64_t lo, std::int64_t hi, const char* what) {
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
    return static_cast<platform::AXError>(integerOf(j, where, std::numeric_limits<std::int32_t>::min(),
                                                    std::numeric_limits<std::int32_t>::max(),
                                                    "a result code (32-bit integer)"));
}

bool boolOf(const Json& j, const std::string& where) {
    if (!j.is_boolean()) fail(where, "expected true or false" + got(j));
    return j.get<bool>();
}

const std::string& stringOf(const Json& j, const std::string& where) {
    if (!j.is_string()) fail(where, "expected a string" + got(j));
    return j.get_ref<const std::string&>();
}

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

void Builder::collect(Json& root, const std::string& where) {
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
                        work.emplace_back(&value[i], addSeg(seg, ".attrs." + name + "[" + std::to_string(i) + "]"));
            }
        }
    }
}

void Builder::fill() {
    for (auto& p : pending_) {
        try {
            fillNode(*p.json, *p.node, "");
        } catch (const DesktopFormatError& e) {
            throw DesktopFormatError(path(p.seg) + e.what());
        }
    }
    pending_.clear();
}

Node* Builder::resolve(const Json& j, const std::string& where) const {
    if (j.is_null()) return nullptr;
    if (isRef(j)) {
        const auto& id = j["ref"].get_ref<const std::string&>();
        Node* n = state_.findNode(id);
        if (n == nullptr) fail(where, "unknown element id \"" + id + "\" in {\"ref\": ...}");
        return n;
    }
    return made_.at(&j);
}

std::size_t Builder::addSeg(std::size_t parent, std::string name) {
    segs_.push_back({parent, std::move(name)});
    return segs_.size() - 1;
}

std::string Builder::path(std::size_t seg) const {
    std::vector<const std::string*> parts;
    for (std::size_t s = seg; s != npos; s = segs_[s].parent) parts.push_back(&segs_[s].name);
    std::string out;
    for (auto it = parts.rbegin(); it != parts.rend(); ++it) out += **it;
    return out;
}

Attr Builder::attrValue(const Json& v, const std::string& where) const {
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

void Builder::fillNode(const Json& j, Node& n, const std::string& where) const {
    for (const auto& [key, v] : j.items()) {
        const std::string at = where + "." + key;
        if (key == "id") continue;
        if (key == "attrs") {
            n.attrs.reserve(v.size());
            for (const auto& [name, value] : v.items()) n.attrs.emplace_back(name, attrValue(value, at + "." + name));
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
            n.hidden = boolOf(v, at);
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
            if (s == "close")
                n.onPress = OnPress::close;
            else if (s == "toggle")
                n.onPress = OnPress::toggle;
            else
                fail(at, "expected \"close\" or \"toggle\", got \"" + s + "\"");
        } else {
            fail(at,
                 "unknown element key (expected id, attrs, errors, actions, actionNamesError, "
                 "settable, setResult, onPress, hidden, reveals, frame)");
        }
    }
}

}  // namespace zeblo::sim::format
