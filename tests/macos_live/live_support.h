// What the live Mac tests share: the switch that runs them, the library's
// returned strings, and polling the real desktop.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <string_view>
#include <thread>

#include <nlohmann/json.hpp>

#include <zeblo/zeblo.h>

namespace zeblo::live {

using nlohmann::json;
using namespace std::chrono_literals;

inline bool liveRunRequested() {
    const char* flag = std::getenv("ZEBLO_LIVE_MAC");
    return flag != nullptr && std::string_view(flag) == "1";
}

// Skips the calling test unless a live run was asked for.
#define ZEBLO_LIVE_ONLY()                                                                   \
    if (!::zeblo::live::liveRunRequested())                                                 \
    GTEST_SKIP() << "live Mac test: set ZEBLO_LIVE_MAC=1 on a Mac whose terminal has the " \
                    "accessibility permission"

// A string the library returned, freed when it goes out of scope.
class Returned {
public:
    explicit Returned(const char* text) : text_(text) {}
    Returned(const Returned&) = delete;
    Returned& operator=(const Returned&) = delete;
    ~Returned() { zeblo_free_string(text_); }

    std::string text() const { return text_ != nullptr ? text_ : ""; }
    json parsed() const { return json::parse(text(), nullptr, /*allow_exceptions=*/false); }

private:
    const char* text_;
};

// Polls `condition` on the real desktop until it holds or `limit` passes.
template <class Condition>
bool eventually(Condition condition, std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (true) {
        if (condition()) return true;
        if (std::chrono::steady_clock::now() >= end) return false;
        std::this_thread::sleep_for(100ms);
    }
}

}  // namespace zeblo::live
