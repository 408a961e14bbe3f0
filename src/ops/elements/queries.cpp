// The tree, find, get and wait operations.
#include <cmath>

#include "core/unicode.h"
#include "ops/elements/element_ops.h"
#include "ops/elements/walk.h"
#include "ops/lookup.h"
#include "platform/ax_names.h"
#include "platform/deadline.h"

namespace zeblo::elements {

namespace {

std::size_t count(const Json& query, const char* key, std::size_t fallback, std::size_t most) {
    const auto it = query.find(key);
    if (it == query.end() || it->is_null()) return fallback;
    if (!it->is_number_integer() || it->get<std::int64_t>() < 0) {
        throw ElementError::usage("badQuery", std::string("\"") + key + "\" must be a whole number, 0 or more");
    }
    return std::min(static_cast<std::size_t>(it->get<std::int64_t>()), most);
}

bool flag(const Json& query, const char* key) {
    const auto it = query.find(key);
    if (it == query.end() || it->is_null()) return false;
    if (!it->is_boolean()) throw ElementError::usage("badQuery", std::string("\"") + key + "\" must be true or false");
    return it->get<bool>();
}

std::optional<std::string> textOf(const Json& query, const char* key) {
    const auto it = query.find(key);
    if (it == query.end() || it->is_null()) return std::nullopt;
    if (!it->is_string()) throw ElementError::usage("badQuery", std::string("\"") + key + "\" must be a string");
    return text::decodeUtf8Lossy(it->get<std::string>());
}

Limits limitsOf(const Json& query) {
    Limits limits;
    limits.maxNodes = count(query, "maxNodes", limits.maxNodes, 10'000);
    limits.maxDepth = count(query, "maxDepth", limits.maxDepth, 49);
    limits.maxChildren = count(query, "maxChildren", limits.maxChildren, 9'999);
    limits.maxText = count(query, "maxText", limits.maxText, 100'000);
    limits.hidden = flag(query, "hidden");
    return limits;
}

std::size_t emit(const Walk& w, int index, const Limits& limits, Json& into);

// Adds `v` to `into` with its listed descendants as children and the count
// of those left out.
void list(const Walk& w, const Visited& v, const Limits& limits, Json& into) {
    Json node = nodeJson(v, limits);
    Json children = Json::array();
    std::size_t more = v.more;
    for (const int kid : v.kids) more += emit(w, kid, limits, children);
    if (!children.empty()) node["children"] = std::move(children);
    if (more > 0) node["more"] = more;
    into.push_back(std::move(node));
}

// Adds the listed nodes under `index` (itself, or its listed descendants when
// it is a plain container) to `into`; gives the children not visited under
// the plain containers on the way, which the listed parent reports.
std::size_t emit(const Walk& w, int index, const Limits& limits, Json& into) {
    const Visited& v = w.nodes[static_cast<std::size_t>(index)];
    if (!v.listed) {
        std::size_t more = v.more;
        for (const int kid : v.kids) more += emit(w, kid, limits, into);
        return more;
    }
    list(w, v, limits, into);
    return 0;
}

Json header(const Walk& w) {
    Json out = Json::object();
    out["app"] = w.appName;
    out["pid"] = w.pid;
    if (w.windowTitle) out["window"] = *w.windowTitle;
    return out;
}

// What a find or a wait asks of an element.
struct Criteria {
    std::optional<std::string> role, name, text, value;
    std::vector<std::pair<std::string, bool>> states;

    static Criteria of(const Json& query) {
        Criteria c;
        c.role = textOf(query, "role");
        if (c.role) c.role = roleKey(*c.role);
        c.name = textOf(query, "name");
        c.text = textOf(query, "text");
        c.value = textOf(query, "value");
        const auto it = query.find("state");
        if (it != query.end() && !it->is_null()) {
            if (!it->is_object()) throw ElementError::usage("badQuery", "\"state\" must be an object of true / false");
            for (const auto& [key, wanted] : it->items()) {
                static constexpr std::string_view kKnown[] = {"enabled",  "focused", "checked", "selected",
                                                              "expanded", "editable", "visible"};
                if (std::find(std::begin(kKnown), std::end(kKnown), key) == std::end(kKnown) || !wanted.is_boolean()) {
                    throw ElementError::usage("badQuery", "Unknown state '" + key +
                                                              "' (enabled, focused, checked, selected, expanded, "
                                                              "editable or visible, each true or false)");
                }
                c.states.emplace_back(key, wanted.get<bool>());
            }
        }
        return c;
    }

    bool empty() const { return !role && !name && !text && !value && states.empty(); }

    bool matches(const Facts& f) const {
        if (role && shortRole(f.role) != *role) return false;
        if (name && !lookup::softMatch(f.name, *name)) return false;
        if (value && !lookup::softMatch(f.value, *value)) return false;
        if (text && !lookup::softMatch(f.name, *text) && !lookup::softMatch(f.value, *text) &&
            !lookup::softMatch(f.description, *text))
            return false;
        for (const auto& [state, wanted] : states) {
            bool has = false;
            if (state == "enabled") has = f.enabled;
            if (state == "focused") has = f.focused;
            if (state == "checked") has = f.checked();
            if (state == "selected") has = f.selected;
            if (state == "expanded") has = f.expanded.value_or(false);
            if (state == "editable") has = f.editable;
            if (state == "visible") has = f.visible;
            if (has != wanted) return false;
        }
        return true;
    }
};

struct Found {
    Walk walk;
    std::vector<int> matches;
};

// Every element of the scope that meets the criteria, in the walk's order.
Found search(const Json& query, const Criteria& criteria) {
    Limits limits = limitsOf(query);
    limits.maxNodes = count(query, "maxScan", 5'000, 50'000);
    limits.maxVisits = limits.maxNodes;
    limits.maxDepth = 49;
    limits.maxChildren = 9'999;
    Found found;
    found.walk = walk(scopeOf(query), limits, [](const Visited&) { return true; });
    for (std::size_t i = 0; i < found.walk.nodes.size(); ++i) {
        const Visited& v = found.walk.nodes[i];
        // The roots are what was asked to look in, not what was looked for.
        if (v.parent < 0 && !query.contains("ref")) continue;
        if (criteria.matches(v.facts)) found.matches.push_back(static_cast<int>(i));
    }
    return found;
}

// The wait's condition: "appears", "disappears", "enabled" or "value".
enum class Until { appears, disappears, enabled, value };

}  // namespace

std::string tree(std::string_view queryText) {
    const Json query = parseQuery(queryText);
    const Limits limits = limitsOf(query);
    const Walk w = walk(scopeOf(query), limits);
    Json out = header(w);
    Json roots = Json::array();
    for (const int root : w.roots) {
        // A root is always listed, plain or not: it is what was asked for.
        list(w, w.nodes[static_cast<std::size_t>(root)], limits, roots);
    }
    std::size_t listed = 0;
    for (const Visited& v : w.nodes) listed += v.listed ? 1 : 0;
    out["nodes"] = listed;
    if (w.cut || w.omitted > 0) out["truncated"] = Json{{"omitted", w.omitted}};
    out["tree"] = std::move(roots);
    return dumped(out);
}

namespace {

// The criteria of `query`, refused when there are none ("to find").
Criteria criteriaOf(const Json& query, const std::string& purpose) {
    Criteria criteria = Criteria::of(query);
    if (criteria.empty()) {
        throw ElementError::usage("emptyQuery", "Give at least one of role, name, text, value or state to " + purpose);
    }
    return criteria;
}

}  // namespace

std::string find(std::string_view queryText) {
    const Json query = parseQuery(queryText);
    const Criteria criteria = criteriaOf(query, "find");
    const std::size_t limit = count(query, "limit", 20, 10'000);
    const Limits limits = limitsOf(query);
    const Found found = search(query, criteria);
    Json out = header(found.walk);
    Json matches = Json::array();
    for (std::size_t i = 0; i < found.matches.size() && i < limit; ++i) {
        matches.push_back(nodeJson(found.walk.nodes[static_cast<std::size_t>(found.matches[i])], limits));
    }
    out["count"] = found.matches.size();
    Json truncated = Json::object();
    if (found.matches.size() > limit) truncated["matches"] = found.matches.size() - limit;
    if (found.walk.cut) truncated["unsearched"] = found.walk.omitted;
    if (!truncated.empty()) out["truncated"] = std::move(truncated);
    out["matches"] = std::move(matches);
    return dumped(out);
}

std::string get(std::string_view ref) {
    const Resolved r = resolve(ref, true);
    Json out = Json::object();
    out["app"] = r.appName;
    out["pid"] = r.ref.pid;
    out["element"] = factsJson(format(r.ref), r.facts, Limits{});
    return dumped(out);
}

std::string wait(std::string_view queryText) {
    const Json query = parseQuery(queryText);
    const Criteria criteria = criteriaOf(query, "wait for");
    Until until = Until::appears;
    const std::string word = textOf(query, "until").value_or("appears");
    if (word == "disappears") {
        until = Until::disappears;
    } else if (word == "enabled") {
        until = Until::enabled;
    } else if (word == "value") {
        until = Until::value;
    } else if (word != "appears") {
        throw ElementError::usage("badQuery", "\"until\" must be appears, disappears, enabled or value");
    }
    Criteria found = criteria;
    std::optional<std::string> wantedValue;
    if (until == Until::value) {
        wantedValue = textOf(query, "equals");
        if (!wantedValue) throw ElementError::usage("badQuery", "A wait until a value needs \"equals\"");
    }
    const std::int64_t timeout = static_cast<std::int64_t>(count(query, "timeout", 5'000, 600'000));
    const platform::Deadline deadline(timeout);
    const Limits limits = limitsOf(query);
    platform::Platform& p = platform::current();
    for (;;) {
        std::optional<Found> now;
        try {
            now = search(query, found);
        } catch (const ElementError& e) {
            // A window or application that is not there (yet, or any more).
            if (e.kind() != "app" && e.kind() != "window" && e.kind() != "stale") throw;
        }
        const std::vector<int> none;
        const std::vector<int>& matches = now ? now->matches : none;
        int hit = -1;
        for (const int m : matches) {
            const Facts& f = now->walk.nodes[static_cast<std::size_t>(m)].facts;
            const bool holds = until == Until::appears || (until == Until::enabled && f.enabled) ||
                               (until == Until::value && f.value == *wantedValue);
            if (holds) {
                hit = m;
                break;
            }
        }
        if (until == Until::disappears ? matches.empty() : hit >= 0) {
            Json out = Json::object();
            out["ok"] = true;
            if (hit >= 0) out["element"] = nodeJson(now->walk.nodes[static_cast<std::size_t>(hit)], limits);
            return dumped(out);
        }
        if (deadline.passed()) break;
        p.sleep(0.1);
        if (deadline.passed()) break;
    }
    throw ElementError("timeout", "waitTimedOut",
                       "The wait until the element " + word + " ran out after " + std::to_string(timeout) + " ms");
}

}  // namespace zeblo::elements

namespace zeblo::elements {

std::optional<std::string> hiddenControl(const std::string& appName, const std::string& windowName,
                                         std::string_view role, const std::string& name) {
    Scope scope;
    scope.app = appName;
    scope.window = windowName;
    Limits limits;
    limits.hidden = true;
    limits.maxNodes = limits.maxVisits = 5'000;
    limits.maxDepth = 49;
    limits.maxChildren = 9'999;
    try {
        const Walk w = walk(scope, limits, [](const Visited&) { return true; });
        for (const Visited& v : w.nodes) {
            if (v.facts.visible || v.facts.role != role || !lookup::softMatch(v.facts.name, name)) continue;
            const std::string kind = role == ax::kCheckBoxRole ? "Checkbox" : role == ax::kButtonRole ? "Button" : shortRole(role);
            return kind + " '" + name + "' is not visible";
        }
    } catch (const Error&) {
        // No such window: the lookup's own error says so.
    }
    return std::nullopt;
}

}  // namespace zeblo::elements
