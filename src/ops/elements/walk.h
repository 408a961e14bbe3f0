// Reaching elements: the application and window a query names, a reference
// resolved and verified, and the bounded walk behind the tree and find.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "ops/elements/facts.h"
#include "ops/elements/reference.h"
#include "platform/platform.h"

namespace zeblo::elements {

using Json = nlohmann::ordered_json;

// The JSON text of a result, compact; text that is not UTF-8 is replaced,
// never refused.
inline std::string dumped(const Json& json) { return json.dump(-1, ' ', false, Json::error_handler_t::replace); }

// What a query starts from: an application (by name, "" the frontmost one),
// optionally one of its windows (loose title match, "" all of them), or the
// element of a reference.
struct Scope {
    std::string app;
    std::optional<std::string> window;
    std::string ref;
    bool popups = false;  // the application's open pop-up menus instead of its windows
    bool menuBar = false;  // the application's menu bar instead of its windows
};

// A resolved reference: the element, what it is, and the list it was read
// from (for its label).
struct Resolved {
    Reference ref;
    platform::Element element;
    Facts facts;
    std::string appName;
};

// Resolves `text` and verifies its check; throws the "stale" kind when the
// element is gone or is another one now. The verification reads what the
// check needs and the states; the action names only with `withActions` (on
// Linux they come in one batch for the whole window).
Resolved resolve(std::string_view text, bool withActions = false);
// The reference of the element `levels` above the one `ref` leads to (at
// most its window or menu bar), with the check of what is there now.
Reference ancestorOf(const Reference& ref, std::size_t levels);

// The limits of a walk.
struct Limits {
    std::size_t maxNodes = 500;     // nodes listed
    std::size_t maxDepth = 30;      // levels listed below the root
    std::size_t maxChildren = 100;  // children listed under one node
    std::size_t maxText = 200;      // characters of a name, value or description
    std::size_t maxVisits = 10'000; // elements read, listed or not
    double maxSeconds = 10;         // the walk stops after this long
    bool hidden = false;            // also list what a user cannot see
};

// One element the walk read.
struct Visited {
    platform::Element element;
    Facts facts;
    std::string ref;      // empty for an element a user cannot see
    std::optional<Reference> at;  // the reference, before it is written out
    std::size_t depth = 0;   // levels below the walk's root
    std::size_t shown = 0;   // listed ancestors
    int parent = -1;
    std::vector<int> kids;   // visited children, in order
    std::size_t more = 0;    // children not visited
    bool listed = false;     // part of the result (not a plain container)
    bool expanded = false;   // its children were read
};

// Walks breadth first from the roots of `scope` within `limits`. `keep`
// decides for each element whether it is listed (counted against maxNodes);
// the default lists every element but plain containers.
struct Walk {
    std::vector<Visited> nodes;
    std::vector<int> roots;
    std::string appName;
    std::int32_t pid = 0;
    std::optional<std::string> windowTitle;  // when one window was asked for
    std::size_t omitted = 0;  // children not visited, under all nodes
    bool cut = false;         // a limit stopped the walk
};
Walk walk(const Scope& scope, const Limits& limits, const std::function<bool(const Visited&)>& keep = {});

// Whether an element is a container that only arranges others: no name, no
// value, no action, nothing a user can tell apart.
bool plainContainer(const Facts& facts);

// The node of `v` as the results show it (no children).
Json nodeJson(const Visited& v, const Limits& limits);
Json factsJson(const std::string& ref, const Facts& facts, const Limits& limits);
// `text` cut to `limit` user-perceived characters, an ellipsis marking a cut.
std::string capped(const std::string& text, std::size_t limit);

// Reads the scope members of a query object.
Scope scopeOf(const Json& query);
// The query as a JSON object; "usage" error when it is not one.
Json parseQuery(std::string_view text);

}  // namespace zeblo::elements
