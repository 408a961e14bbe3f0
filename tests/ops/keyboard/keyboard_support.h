// Helpers shared by the keyboard tests: expected trace records and the
// desktops they run on.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "support/sim_fixture.h"

namespace zeblo::testing::kb {

using Json = nlohmann::ordered_json;

inline constexpr std::int64_t kMarker = 0x5A45424C4F;
inline constexpr std::uint64_t kShift = 0x20000, kControl = 0x40000, kOption = 0x80000, kCommand = 0x100000;

// One posted key event as the trace records it; null flags or marker means
// never set.
inline Json key(int code, bool down, std::optional<std::uint64_t> flags = std::nullopt,
                std::optional<std::int64_t> marker = std::nullopt) {
    Json j;
    j["key"] = code;
    j["down"] = down;
    j["flags"] = flags ? Json(*flags) : Json(nullptr);
    j["marker"] = marker ? Json(*marker) : Json(nullptr);
    return j;
}
inline Json sleep(double s) { return Json{{"sleep", s}}; }
inline Json log(const std::string& line) { return Json{{"log", line}}; }

// A press of a key (down, then up) with the same flags and marker.
inline std::vector<Json> press(int code, std::optional<std::uint64_t> flags = std::nullopt,
                               std::optional<std::int64_t> marker = std::nullopt) {
    return {key(code, true, flags, marker), key(code, false, flags, marker)};
}

inline void append(std::vector<Json>& to, const std::vector<Json>& more) { to.insert(to.end(), more.begin(), more.end()); }

// The trace as one JSON array, for readable failure messages.
inline Json asArray(const std::vector<Json>& entries) {
    Json out = Json::array();
    for (const auto& e : entries) out.push_back(e);
    return out;
}

}  // namespace zeblo::testing::kb
