// An element as the element functions list it: its reference, short role,
// name, value and description (capped), states and the actions it takes.
#include <algorithm>

#include "core/unicode.h"
#include "ops/elements/walk.h"
#include "platform/ax_names.h"

namespace zeblo::elements {

std::string capped(const std::string& text, std::size_t limit) {
    if (text.size() <= limit) return text;  // fewer bytes than the limit: fewer characters too
    const std::vector<std::string> characters = text::graphemes(text);
    if (characters.size() <= limit) return text;
    std::string out;
    for (std::size_t i = 0; i < limit; ++i) out += characters[i];
    return out + "\xE2\x80\xA6";  // …
}

Json factsJson(const std::string& ref, const Facts& f, const Limits& limits) {
    Json node = Json::object();
    if (!ref.empty()) node["ref"] = ref;
    node["role"] = shortRole(f.role);
    if (!f.name.empty()) node["name"] = capped(f.name, limits.maxText);
    if (!f.value.empty() && f.value != f.name) node["value"] = capped(f.value, limits.maxText);
    if (!f.description.empty()) node["description"] = capped(f.description, limits.maxText);
    Json states = Json::array();
    if (!f.enabled) states.push_back("disabled");
    if (!f.visible) states.push_back("hidden");
    if (f.focused) states.push_back("focused");
    if (f.checked()) states.push_back("checked");
    if (f.mixed()) states.push_back("mixed");
    if (f.selected) states.push_back("selected");
    if (f.expanded) states.push_back(*f.expanded ? "expanded" : "collapsed");
    if (f.editable) states.push_back("editable");
    if (!states.empty()) node["states"] = std::move(states);
    // The actions act_on_element can take; a toolkit's own actions
    // ("expand or contract", "edit") are not listed.
    static constexpr std::string_view kListed[] = {ax::kPressAction,     ax::kShowMenuAction, ax::kIncrementAction,
                                                   ax::kDecrementAction, ax::kConfirmAction,  ax::kCancelAction,
                                                   ax::kPickAction,      ax::kRaiseAction};
    Json actions = Json::array();
    for (const std::string_view listed : kListed) {
        if (std::find(f.actions.begin(), f.actions.end(), listed) != f.actions.end()) {
            actions.push_back(shortAction(listed));
        }
    }
    if (!actions.empty()) node["actions"] = std::move(actions);
    return node;
}

Json nodeJson(const Visited& v, const Limits& limits) { return factsJson(v.ref, v.facts, limits); }

}  // namespace zeblo::elements
