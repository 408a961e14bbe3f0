// One node of a menu snapshot: what a menu bar item or menu item of another
// application showed when it was read, with everything below it. The record
// holds plain values only (no accessibility element), so it can be copied,
// stored and written freely.
//
// Menu trees have no depth limit and the host may call us on a thread with a
// small stack, so nothing here recurses on the machine stack in proportion to
// the depth: building from elements, copying, writing, decoding and
// destroying all walk the tree with explicit stacks.
#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/platform.h"

namespace zeblo {

namespace json {
class Writer;
}

class MenuItem {
public:
    // The title of an element that gives no text title.
    static constexpr const char* kNoTitle = "(no title)";

    // The fields, in the order of the JSON form's keys.
    std::string title;
    // The titles of the ancestors, from the menu bar item down to the parent;
    // empty for a menu bar item.
    std::vector<std::string> path;
    bool enabled = true;
    bool checked = false;
    std::optional<std::string> cmdChar;
    std::optional<std::int64_t> cmdModifiers;
    // The submenu's items; absent when there are none (never empty when built
    // from an element).
    std::optional<std::vector<MenuItem>> children;
    // The owning process; not part of the JSON form, 0 when decoded.
    std::int32_t pid = 0;

    MenuItem() = default;

    // Reads the item behind `element` and, below it, its whole submenu tree.
    // Never fails: an attribute that cannot be read takes its default. Logs one
    // line for each attribute whose name mentions "command" or "action". An
    // entry of a submenu that is the same element as `listedUnder` (the menu
    // bar), the item or one of its ancestors leads back up and is left out.
    MenuItem(const platform::Element& element, std::int32_t pid, std::vector<std::string> path,
             const platform::Element& listedUnder = platform::Element());

    MenuItem(const MenuItem& other);
    MenuItem(MenuItem&& other) noexcept = default;
    MenuItem& operator=(const MenuItem& other);
    MenuItem& operator=(MenuItem&& other) noexcept = default;
    ~MenuItem();

    // Writes the record as one JSON object: "title", "path", "enabled",
    // "checked", then "cmdChar", "cmdModifiers" and "children" when present.
    void encode(json::Writer& writer) const;

    // Reads a record back from its JSON object. "title", "path", "enabled" and
    // "checked" are required with their types; the optional keys may be
    // missing or null; other keys are ignored. Throws the JSON reader's
    // exceptions (nlohmann::json::exception) on a mismatch.
    static MenuItem decode(const nlohmann::json& object);

private:
    // A copy of everything but the children.
    static MenuItem shallowCopy(const MenuItem& other);
};

// The snapshot of a menu bar: {"app": APP, "menus": [record...]},
// pretty-printed.
std::string encodeMenuBar(std::string_view appName, const std::vector<MenuItem>& menus);

// Lets `json.get<MenuItem>()` decode.
void from_json(const nlohmann::json& object, MenuItem& item);

}  // namespace zeblo
