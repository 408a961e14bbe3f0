// Helpers for the end-to-end tests against real GTK applications on a real
// (headless) X11 desktop. Every test drives the library through its C
// exports only, as a host would, and waits for the applications by polling
// with a deadline, never for a fixed time.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <string_view>
#include <thread>

#include <nlohmann/json.hpp>

#include <zeblo/zeblo.h>

#include "platform/linux/live_count.h"

namespace e2e {

using nlohmann::json;

// The helper executable is not beside this program (it is in the build
// tree's top): name it before the first call.
inline const int kHelperNamed = setenv("ZEBLO_HELPER", ZEBLO_HELPER_PATH, 0);

// A returned string, freed at once.
inline std::string take(const char* text) {
    std::string out = text != nullptr ? text : "";
    zeblo_free_string(text);
    return out;
}

inline json takeJson(const char* text) { return json::parse(take(text), nullptr, false); }

// Polls `condition` until it holds or `seconds` pass.
template <class Condition>
bool eventually(Condition condition, double seconds = 10.0) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    while (true) {
        if (condition()) return true;
        if (std::chrono::steady_clock::now() >= end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

// The window's text lines joined by new lines ("" when it cannot be read).
inline std::string windowText(const char* app, const char* window) {
    const json lines = takeJson(zeblo_get_window_text(app, window));
    std::string out;
    if (!lines.is_array()) return out;
    for (const json& line : lines) {
        if (line.is_string()) out += line.get<std::string>() + "\n";
    }
    return out;
}

inline bool windowTextHas(const char* app, const char* window, std::string_view needle) {
    return windowText(app, window).find(needle) != std::string::npos;
}

inline bool isRunning(std::string_view app) {
    const json apps = takeJson(zeblo_get_running_apps());
    if (!apps.is_array()) return false;
    for (const json& name : apps) {
        if (name.is_string() && name.get<std::string>() == app) return true;
    }
    return false;
}

// The backend's element nodes, key events and surveys alive: none between calls.
inline int liveObjects() { return zeblo::platform::linux_desktop::liveObjects(); }

inline bool isSet(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr && *value != '\0';
}

// Whether the tests can reach a desktop at all: an X display or a Wayland
// compositor.
inline bool desktopAvailable() { return isSet("DISPLAY") || isSet("WAYLAND_DISPLAY"); }

// Whether the desktop is a Wayland session (no X server: the X11 tools the
// tests use, setxkbmap and X selections, do not apply).
inline bool onWayland() { return !isSet("DISPLAY"); }

// Every end-to-end test checks at its end that the backend kept nothing alive.
class DesktopTest : public ::testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(liveObjects(), 0) << "backend objects left alive"; }
};

// The menu record titled `title` among `items`, or null.
inline const json* findItem(const json& items, std::string_view title) {
    for (const json& item : items) {
        if (item.value("title", "") == title) return &item;
    }
    return nullptr;
}

// Whether `app` (and its window) is in front.
inline bool inFront(const char* app, const char* window) {
    return zeblo_wait_for_window(app, window, 2, 1);
}

}  // namespace e2e
