// The bounded breadth-first walk, reference resolution and the nodes' JSON.
#include "ops/elements/walk.h"

#include "core/unicode.h"
#include "ops/elements/element_error.h"
#include "ops/lookup.h"
#include "platform/ax_names.h"

namespace zeblo::elements {

using platform::Element;

namespace {

platform::Platform& desk() { return platform::current(); }

ElementError unanswered(const std::string& app) {
    return {"unanswered", "appUnanswered",
            "Application '" + app + "' did not answer within the reply limit; it may be busy"};
}

platform::RunningApp findApp(const std::string& name) {
    std::optional<platform::RunningApp> app = lookup::findApp(name, lookup::AppMatch::exactThenLoose);
    if (app) return std::move(*app);
    if (name.empty()) throw ElementError("app", "noFrontmostApp", "No frontmost application");
    throw ElementError("app", "appNotFound", "Application '" + name + "' not found. Check if the app is running.");
}

// The application's windows; throws when it does not answer.
std::vector<Element> windowsOf(const Element& app, const std::string& appName) {
    auto windows = platform::asElementArray(desk().copyAttributeValue(app, ax::kWindowsAttribute));
    if (windows.code == platform::kAXErrorCannotComplete) throw unanswered(appName);
    return windows.ok() ? std::move(windows.value) : std::vector<Element>{};
}

// The children of `e`: those a user sees, or with `all` every one (and
// whether each is seen).
std::vector<Element> childrenOf(const Element& e, bool all) {
    auto read = platform::asElementArray(desk().copyAttributeValue(e, all ? kAllChildren : ax::kChildrenAttribute));
    if (!read.ok() && all) read = platform::asElementArray(desk().copyAttributeValue(e, ax::kChildrenAttribute));
    if (!read.ok() || read.value.size() > 9'999) return {};
    return std::move(read.value);
}

}  // namespace

Json parseQuery(std::string_view text) {
    if (text.empty()) return Json::object();
    Json query = Json::parse(text, nullptr, false);
    if (query.is_discarded() || !query.is_object()) {
        throw ElementError::usage("badQuery", "The query is not a JSON object: " + std::string(text.substr(0, 80)));
    }
    return query;
}

Scope scopeOf(const Json& query) {
    Scope scope;
    const auto text = [&](const char* key) -> std::optional<std::string> {
        const auto it = query.find(key);
        if (it == query.end() || it->is_null()) return std::nullopt;
        if (!it->is_string()) throw ElementError::usage("badQuery", std::string("\"") + key + "\" must be a string");
        return text::decodeUtf8Lossy(it->get<std::string>());
    };
    scope.app = text("app").value_or("");
    scope.window = text("window");
    scope.ref = text("ref").value_or("");
    if (const auto it = query.find("menuBar"); it != query.end() && !it->is_null()) {
        if (!it->is_boolean()) throw ElementError::usage("badQuery", "\"menuBar\" must be true or false");
        scope.menuBar = it->get<bool>();
    }
    return scope;
}

namespace {

// The element at the end of `ref`'s path (its check not verified), the list
// it was read from and its index there.
struct Reached {
    Element element;
    Siblings siblings;
    std::size_t index = 0;
    std::string appName;
};

Reached reach(const Reference& ref, const std::string& shown);

}  // namespace

Resolved resolve(std::string_view text, bool withActions) {
    const std::optional<Reference> parsed = parseReference(text);
    const std::string shown(text.substr(0, 80));
    if (!parsed) {
        throw ElementError::usage("badReference",
                                  "'" + shown + "' is not an element reference (such as 1234:0.3.1~9f2c)");
    }
    Reached at = reach(*parsed, shown);
    Resolved out;
    out.ref = *parsed;
    out.appName = std::move(at.appName);
    out.facts = readFacts(at.element, parsed->path.empty() ? nullptr : &at.siblings, at.index, withActions);
    if (checkOf(out.facts.role, out.facts.name) != parsed->check) {
        throw ElementError::stale(shown, "the element there is now " + shortRole(out.facts.role) +
                                             (out.facts.name.empty() ? std::string()
                                                                     : " '" + capped(out.facts.name, 60) + "'"));
    }
    out.element = std::move(at.element);
    return out;
}

Reference ancestorOf(const Reference& ref, std::size_t levels) {
    Reference up = ref;
    up.path.resize(up.path.size() - std::min(levels, up.path.size()));
    Reached at = reach(up, format(up));
    const Facts facts = readFacts(at.element, up.path.empty() ? nullptr : &at.siblings, at.index, false);
    up.check = checkOf(facts.role, facts.name);
    return up;
}

namespace {

Reached reach(const Reference& ref, const std::string& shown) {
    const Reference* parsed = &ref;
    platform::Platform& p = desk();
    Reached out;
    bool running = false;
    for (const platform::RunningApp& app : p.runningApplications()) {
        if (app.pid != parsed->pid) continue;
        running = true;
        out.appName = app.localizedName.value_or("");
        break;
    }
    if (!running) throw ElementError::stale(shown, "its application is no longer running");

    const Element app = p.createApplicationElement(parsed->pid);
    Element at;
    if (parsed->menuBar) {
        auto bar = platform::asElement(p.copyAttributeValue(app, ax::kMenuBarAttribute));
        if (bar.code == platform::kAXErrorCannotComplete) throw unanswered(out.appName);
        if (!bar.ok() || !bar.value) throw ElementError::stale(shown, "the application has no menu bar now");
        at = std::move(bar.value);
    } else if (parsed->popup) {
        auto popups = platform::asElementArray(p.copyAttributeValue(app, kPopups));
        if (!popups.ok() || parsed->window >= popups.value.size() || !popups.value[parsed->window]) {
            throw ElementError::stale(shown, "its menu is closed");
        }
        at = std::move(popups.value[parsed->window]);
    } else {
        std::vector<Element> windows = windowsOf(app, out.appName);
        if (parsed->window >= windows.size() || !windows[parsed->window]) {
            throw ElementError::stale(shown, "its window is gone");
        }
        at = std::move(windows[parsed->window]);
    }
    for (const std::size_t step : parsed->path) {
        std::vector<Element> children = childrenOf(at, false);
        if (step >= children.size() || !children[step]) {
            throw ElementError::stale(shown, "the element is gone (or no longer shown)");
        }
        at = children[step];
        out.siblings = Siblings(std::move(children));
        out.index = step;
    }
    out.element = std::move(at);
    return out;
}

}  // namespace

bool plainContainer(const Facts& f) {
    static constexpr std::string_view kContainers[] = {
        ax::kGroupRole,     ax::kUnknownRole, ax::kScrollAreaRole, ax::kSplitGroupRole, ax::kLayoutAreaRole, ax::kLayoutItemRole,
        ax::kSplitterRole,  ax::kFillerRole,  ax::kPanelRole,      ax::kMatteRole,      ax::kGrowAreaRole,   ax::kRulerRole};
    bool container = false;
    for (const std::string_view role : kContainers) container = container || f.role == role;
    if (!container) {
        // Unnamed text and images show nothing a user can tell apart either.
        container = (f.role == ax::kStaticTextRole || f.role == ax::kImageRole) && f.name.empty() && f.value.empty();
        if (!container) return false;
    }
    // A menu of its own does not set a container apart: a web page gives
    // every element its context menu.
    bool acts = false;
    for (const std::string& a : f.actions) acts = acts || a == ax::kPressAction;
    return f.name.empty() && f.value.empty() && f.description.empty() && !acts && !f.focused && !f.selected &&
           !f.expanded.has_value() && !f.editable;
}

namespace {

// Whether `v` is a label that only repeats the name of the element it is
// in (a button's own label): nothing a user can tell apart.
bool echoes(const Visited& v, const Walk& w) {
    if (v.facts.role != ax::kStaticTextRole || v.facts.name.empty()) return false;
    for (int up = v.parent, steps = 0; up >= 0 && steps < 3; up = w.nodes[up].parent, ++steps) {
        if (w.nodes[up].facts.name == v.facts.name) return true;
        if (w.nodes[up].listed) break;
    }
    return false;
}

}  // namespace

Walk walk(const Scope& scope, const Limits& limits, const std::function<bool(const Visited&)>& keep) {
    platform::Platform& p = desk();
    const double start = p.now();
    Walk w;
    const auto listable = [&](const Visited& v) { return keep ? keep(v) : !plainContainer(v.facts); };

    // The roots.
    const auto addRoot = [&](Element element, Reference ref, std::string_view title) {
        Visited v;
        v.facts = readFacts(element);
        if (v.facts.name.empty()) v.facts.name = std::string(title);
        ref.check = checkOf(v.facts.role, v.facts.name);
        v.at = ref;
        v.ref = format(ref);
        v.element = std::move(element);
        v.listed = listable(v);
        w.roots.push_back(static_cast<int>(w.nodes.size()));
        w.nodes.push_back(std::move(v));
    };
    if (!scope.ref.empty()) {
        Resolved r = resolve(scope.ref, true);
        w.appName = r.appName;
        w.pid = r.ref.pid;
        Visited v;
        v.facts = std::move(r.facts);
        v.at = r.ref;
        v.ref = format(r.ref);
        v.element = std::move(r.element);
        v.listed = true;
        w.roots.push_back(0);
        w.nodes.push_back(std::move(v));
    } else {
        const platform::RunningApp app = findApp(scope.app);
        w.appName = app.localizedName.value_or("");
        w.pid = app.pid;
        const Element appElement = p.createApplicationElement(app.pid);
        std::vector<Element> windows =
            scope.popups || scope.menuBar ? std::vector<Element>{} : windowsOf(appElement, w.appName);
        if (scope.window && scope.window->empty() && !windows.empty() && windows.front()) windows.resize(1);
        bool any = false;
        for (std::size_t i = 0; i < windows.size(); ++i) {
            if (!windows[i]) continue;
            if (scope.window && !scope.window->empty()) {
                auto title = platform::asString(p.copyAttributeValue(windows[i], ax::kTitleAttribute));
                if (!title.ok() || !lookup::softMatch(title.value, *scope.window)) continue;
                w.windowTitle = title.value;
            }
            Reference ref;
            ref.pid = app.pid;
            ref.window = i;
            addRoot(std::move(windows[i]), ref, "");
            any = true;
            if (scope.window) break;
        }
        if (scope.menuBar) {
            // The menu bar (macOS keeps it on the application, not in a window).
            auto bar = platform::asElement(p.copyAttributeValue(appElement, ax::kMenuBarAttribute));
            if (bar.code == platform::kAXErrorCannotComplete) throw unanswered(w.appName);
            if (!bar.ok() || !bar.value) {
                throw ElementError("notFound", "noMenuBar", "Application '" + w.appName + "' has no menu bar");
            }
            Reference ref;
            ref.pid = app.pid;
            ref.menuBar = true;
            addRoot(std::move(bar.value), ref, "");
            any = true;
        }
        if (scope.popups) {
            auto popups = platform::asElementArray(p.copyAttributeValue(appElement, kPopups));
            for (std::size_t i = 0; popups.ok() && i < popups.value.size(); ++i) {
                if (!popups.value[i]) continue;
                Reference ref;
                ref.pid = app.pid;
                ref.popup = true;
                ref.window = i;
                addRoot(std::move(popups.value[i]), ref, "");
            }
            any = true;
        }
        if (scope.window && !any) {
            const std::string name = scope.window->empty() ? "<focused>" : *scope.window;
            throw ElementError("window", "windowNotFound",
                               "Window '" + name + "' not found. Check if the window exists and is visible.");
        }
    }

    std::size_t listed = 0;
    for (const int root : w.roots) listed += w.nodes[root].listed ? 1 : 0;
    std::size_t next = 0;
    for (; next < w.nodes.size(); ++next) {
        if (listed >= limits.maxNodes || w.nodes.size() >= limits.maxVisits || p.now() - start > limits.maxSeconds) {
            w.cut = true;
            break;
        }
        const std::size_t shownBelow = w.nodes[next].shown + (w.nodes[next].listed ? 1 : 0);
        if (w.nodes[next].depth >= 49) continue;
        const Siblings siblings(childrenOf(w.nodes[next].element, limits.hidden));
        const std::vector<Element>& children = siblings.elements();
        w.nodes[next].expanded = true;
        if (shownBelow > limits.maxDepth) {
            w.nodes[next].more = children.size();
            w.omitted += children.size();
            continue;
        }
        std::size_t seen = 0;  // the index among the children a user sees
        std::size_t listedHere = 0;
        for (std::size_t j = 0; j < children.size(); ++j) {
            const Element& child = children[j];
            if (!child) {
                ++seen;
                continue;
            }
            bool visible = true;
            if (limits.hidden) {
                auto read = platform::asBool(p.copyAttributeValue(child, kVisible));
                visible = !read.ok() || read.value;
            }
            const std::size_t index = seen;
            if (visible) ++seen;
            // A child that is one of the elements the walk is inside.
            bool loops = false;
            for (int up = static_cast<int>(next); up >= 0 && !loops; up = w.nodes[up].parent) {
                loops = p.sameElement(child, w.nodes[up].element);
            }
            if (loops) continue;
            if (listed >= limits.maxNodes || listedHere >= limits.maxChildren ||
                w.nodes.size() >= limits.maxVisits) {
                const std::size_t rest = children.size() - j;
                w.nodes[next].more += rest;
                w.omitted += rest;
                w.cut = true;
                break;
            }
            Visited v;
            v.facts = readFacts(child, &siblings, j);
            // Under an element a user cannot see, nothing is seen.
            v.facts.visible = visible && w.nodes[next].facts.visible;
            if (v.facts.visible && w.nodes[next].at) {
                Reference ref = *w.nodes[next].at;
                ref.path.push_back(index);
                ref.check = checkOf(v.facts.role, v.facts.name);
                v.at = ref;
                v.ref = format(ref);
            }
            v.depth = w.nodes[next].depth + 1;
            v.shown = shownBelow;
            v.parent = static_cast<int>(next);
            v.listed = listable(v) && !echoes(v, w);
            v.element = child;  // the list still serves its later siblings' labels
            if (v.listed) {
                ++listed;
                ++listedHere;
            }
            w.nodes[next].kids.push_back(static_cast<int>(w.nodes.size()));
            w.nodes.push_back(std::move(v));
        }
    }
    // What the walk did not reach: the children of the elements it stopped
    // before.
    for (; next < w.nodes.size(); ++next) {
        if (w.nodes[next].expanded) continue;
        const std::size_t count = childrenOf(w.nodes[next].element, limits.hidden).size();
        w.nodes[next].more += count;
        w.omitted += count;
    }
    return w;
}

}  // namespace zeblo::elements
