// Commands of the element interface. Each prints the function's JSON; an
// error object exits with 1.
#include <nlohmann/json.hpp>

#include "cli.h"
#include "zeblo/zeblo_plus.h"

namespace zeblo::cli {
namespace {

using Json = nlohmann::ordered_json;

int printElement(const char* result) {
    const bool failed = result != nullptr && std::string_view(result).rfind("{\"error\":", 0) == 0;
    const int code = printString(result);
    return failed ? 1 : code;
}

// APP and, when given, WINDOW as the scope of a query.
Json scope(const std::vector<std::string>& v, std::size_t windowAt) {
    Json q = {{"app", v[0]}};
    if (v.size() > windowAt && !v[windowAt].empty()) q["window"] = v[windowAt];
    return q;
}

}  // namespace

void addElementCommands(Commands& commands) {
    commands.push_back({"tree", "APP [WINDOW]", 1, 2, {"--hidden"}, [](const Args& a) {
                            Json q = scope(a.values, 1);
                            if (a.hidden) q["hidden"] = true;
                            return printElement(zeblo_element_tree(q.dump().c_str()));
                        }});
    commands.push_back({"find", "APP TEXT [ROLE] [WINDOW]", 2, 4, {}, [](const Args& a) {
                            const auto& v = a.values;
                            Json q = scope(v, 3);
                            if (!v[1].empty()) q["text"] = v[1];
                            if (v.size() > 2 && !v[2].empty()) q["role"] = v[2];
                            return printElement(zeblo_element_find(q.dump().c_str()));
                        }});
    commands.push_back({"get", "REF", 1, 1, {}, [](const Args& a) {
                            return printElement(zeblo_element_get(a.values[0].c_str()));
                        }});
    commands.push_back({"act", "REF ACTION [VALUE]", 2, 3, {}, [](const Args& a) {
                            const auto& v = a.values;
                            return printElement(
                                zeblo_element_act(v[0].c_str(), v[1].c_str(), v.size() > 2 ? v[2].c_str() : nullptr));
                        }});
    commands.push_back({"wait-element", "APP TEXT [UNTIL] [TIMEOUT] [WINDOW]", 2, 5, {}, [](const Args& a) {
                            const auto& v = a.values;
                            Json q = scope(v, 4);
                            q["text"] = v[1];
                            if (v.size() > 2 && !v[2].empty()) q["until"] = v[2];
                            if (v.size() > 3) q["timeout"] = parseInteger(v[3], 0, 600000);
                            return printElement(zeblo_element_wait(q.dump().c_str()));
                        }});
    commands.push_back({"keys", "APP COMBO", 2, 2, {}, [](const Args& a) {
                            return printElement(zeblo_press_keys(a.values[0].c_str(), a.values[1].c_str()));
                        }});
}

}  // namespace zeblo::cli
