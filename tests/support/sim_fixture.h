// A test fixture that installs a simulated desktop for the duration of one
// test and checks that every call through the exports leaves no handle alive.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "platform/sim/sim_desktop.h"
#include "zeblo/zeblo.h"

namespace zeblo::testing {

class SimTest : public ::testing::Test {
protected:
    // Builds a desktop from its JSON text and installs it.
    void load(std::string_view desktopJson);
    void loadFile(const std::string& pathInSourceTree);
    void TearDown() override;

    sim::SimDesktop& desk() { return *desk_; }
    const std::shared_ptr<sim::SimDesktop>& sharedDesk() const { return desk_; }

    // Takes a string result: copies it, frees it with zeblo_free_string, and
    // checks that the call left no live handle.
    std::string take(const char* result);
    // Same, and parses it as JSON (the test fails if it does not parse).
    nlohmann::json takeJson(const char* result);
    // Checks a boolean result's call left no live handle, passes it on.
    bool done(bool result);

    std::vector<std::string> logs() const { return desk_->logLines(); }
    // Trace entries that have `key` (e.g. "key", "action", "sleep").
    std::vector<nlohmann::ordered_json> traceOf(std::string_view key) const;
    void clearTrace() { desk_->clearTrace(); }

private:
    std::shared_ptr<sim::SimDesktop> desk_;
};

// Path of a file in the source tree.
std::string sourcePath(const std::string& relative);

// Runs the zeblo tool with `args` (shell-quoted by the caller); captures
// standard output and the exit code.
struct ToolRun {
    int exitCode = -1;
    std::string out;
};
ToolRun runTool(const std::string& args);

}  // namespace zeblo::testing
