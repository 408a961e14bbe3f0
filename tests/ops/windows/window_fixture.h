// Desktop builders for the window tests: small JSON pieces composed into one
// desktop, installed through the shared SimTest fixture.
#pragma once

#include <algorithm>
#include <initializer_list>
#include <string>
#include <vector>

#include "support/sim_fixture.h"

namespace zeblo::testing {

using Json = nlohmann::ordered_json;
// Lists of elements. Each builder below that takes a Json list also takes a
// braced list, so that `{x}` is a list of one everywhere: as a Json, clang
// reads `{x}` as a copy of x where GCC reads a one-element array.
using Items = std::initializer_list<Json>;

inline Json el(const std::string& role, const std::string& title = "", Json children = nullptr) {
    Json e = {{"attrs", {{"AXRole", role}}}};
    if (!title.empty()) e["attrs"]["AXTitle"] = title;
    if (!children.is_null()) e["attrs"]["AXChildren"] = std::move(children);
    return e;
}
inline Json el(const std::string& role, const std::string& title, Items children) {
    return el(role, title, Json::array_t(children));
}
inline Json button(const std::string& title, Json press = 0) {
    Json b = el("AXButton", title);
    b["actions"] = {{"AXPress", std::move(press)}};
    return b;
}
inline Json window(const std::string& title, Json children = Json::array()) {
    return el("AXWindow", title, std::move(children));
}
inline Json window(const std::string& title, Items children) { return window(title, Json::array_t(children)); }
inline Json app(const Json& name, int pid, Json windows) {
    return {{"name", name}, {"pid", pid}, {"element", {{"attrs", {{"AXRole", "AXApplication"}, {"AXWindows", std::move(windows)}}}}}};
}
inline Json app(const Json& name, int pid, Items windows) { return app(name, pid, Json::array_t(windows)); }

class WindowTest : public SimTest {
protected:
    // One application "Notes" (pid 7, frontmost) with the given windows.
    void loadWindows(Json windows, Json extra = Json::object()) {
        Json desk = {{"apps", {app("Notes", 7, std::move(windows))}}, {"frontmost", 7}};
        desk.update(extra);
        load(desk.dump());
    }
    void loadWindows(Items windows, Json extra = Json::object()) {
        loadWindows(Json::array_t(windows), std::move(extra));
    }
    void loadDesk(const Json& desk) { load(desk.dump()); }

    std::size_t logCount(const std::string& line) const {
        const auto all = logs();
        return static_cast<std::size_t>(std::count(all.begin(), all.end(), line));
    }
    bool logged(const std::string& line) const { return logCount(line) > 0; }
    std::vector<std::string> lastLogs(std::size_t n) const {
        auto all = logs();
        if (all.size() > n) all.erase(all.begin(), all.end() - static_cast<std::ptrdiff_t>(n));
        return all;
    }
    // The trace reduced to P (a lookup of the application's windows) and S
    // (a sleep), in order: shows which probes happened between which sleeps.
    std::string probesAndSleeps() {
        std::string out;
        for (const auto& entry : desk().trace()) {
            if (entry.contains("sleep")) out += 'S';
            if (entry.contains("log") &&
                entry["log"].get<std::string>().rfind("getWindow: Getting windows for app", 0) == 0)
                out += 'P';
        }
        return out;
    }
};

}  // namespace zeblo::testing
