#include "fuzz/result_shapes.h"

#include <cstdint>
#include <vector>

#include <nlohmann/json.hpp>

namespace zeblo::fuzz {
namespace {

using Json = nlohmann::json;

// Strict parse: invalid UTF-8 or trailing text is an error.
bool parse(std::string_view text, Json& out) {
    out = Json::parse(text.begin(), text.end(), nullptr, false);
    return !out.is_discarded();
}

bool isErrorObject(const Json& j) { return j.is_object() && j.size() == 1 && j.contains("error"); }

}  // namespace

std::string checkErrorObject(std::string_view text) {
    Json j;
    if (!parse(text, j)) return "not JSON";
    if (!isErrorObject(j) || !j["error"].is_string()) return "not an error object";
    if (text.substr(0, 11) != "{\"error\": \"") return "error object not written as {\"error\": \"...\"}";
    return {};
}

std::string checkStringArray(std::string_view text, bool errorAllowed, std::size_t maxItems) {
    Json j;
    if (!parse(text, j)) return "not JSON";
    if (errorAllowed && isErrorObject(j)) return checkErrorObject(text);
    if (!j.is_array()) return "not an array";
    if (j.size() > maxItems) return "more than " + std::to_string(maxItems) + " entries";
    for (const auto& e : j)
        if (!e.is_string()) return "an entry that is not a string";
    return {};
}

std::string checkFrontmost(std::string_view text) {
    Json j;
    if (!parse(text, j)) return "not JSON";
    if (isErrorObject(j)) return checkErrorObject(text);
    if (!j.is_object() || j.size() != 2 || !j.contains("app") || !j.contains("window") || !j["app"].is_string() ||
        !j["window"].is_string())
        return "not {\"app\", \"window\"}";
    return {};
}

std::string checkMenus(std::string_view text) {
    Json j;
    if (!parse(text, j)) return "not JSON";
    if (isErrorObject(j)) return checkErrorObject(text);
    if (!j.is_object() || j.size() != 2 || !j.contains("app") || !j["app"].is_string() || !j.contains("menus") ||
        !j["menus"].is_array())
        return "not {\"app\", \"menus\"}";
    // Walk the items with an explicit stack; each knows its ancestors' titles.
    struct Pending {
        const Json* item;
        std::vector<std::string> path;
    };
    std::vector<Pending> stack;
    for (const auto& item : j["menus"]) stack.push_back({&item, {}});
    while (!stack.empty()) {
        Pending p = std::move(stack.back());
        stack.pop_back();
        const Json& item = *p.item;
        if (!item.is_object()) return "an item that is not an object";
        for (auto& [key, value] : item.items()) {
            const bool ok = (key == "title" && value.is_string()) || (key == "path" && value.is_array()) ||
                            ((key == "enabled" || key == "checked") && value.is_boolean()) ||
                            (key == "cmdChar" && value.is_string()) ||
                            (key == "cmdModifiers" && value.is_number_integer()) ||
                            (key == "children" && value.is_array());
            if (!ok) return "item member '" + key + "' unexpected or of the wrong kind";
        }
        for (const char* key : {"title", "path", "enabled", "checked"})
            if (!item.contains(key)) return std::string("item without '") + key + "'";
        if (item["path"] != Json(p.path)) return "item path is not its ancestors' titles";
        if (item.contains("children")) {
            std::vector<std::string> path = p.path;
            path.push_back(item["title"].get<std::string>());
            for (const auto& child : item["children"]) stack.push_back({&child, path});
        }
    }
    return {};
}

}  // namespace zeblo::fuzz
