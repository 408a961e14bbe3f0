#include "support/sim_fixture.h"

#include <array>
#include <cstdio>
#include <sys/wait.h>

#include "platform/platform.h"

namespace zeblo::testing {

void SimTest::load(std::string_view desktopJson) {
    desk_ = sim::SimDesktop::fromJson(desktopJson);
    platform::install(desk_);
}

void SimTest::loadFile(const std::string& pathInSourceTree) {
    desk_ = sim::SimDesktop::fromFile(sourcePath(pathInSourceTree));
    platform::install(desk_);
}

void SimTest::TearDown() {
    if (desk_) {
        EXPECT_EQ(desk_->liveHandles(), 0);
    }
    platform::install(nullptr);
}

std::string SimTest::take(const char* result) {
    EXPECT_NE(result, nullptr);
    std::string out = result != nullptr ? result : "";
    zeblo_free_string(result);
    EXPECT_EQ(desk_->liveHandles(), 0) << "after a call that returned " << out;
    return out;
}

nlohmann::json SimTest::takeJson(const char* result) {
    const std::string text = take(result);
    nlohmann::json parsed = nlohmann::json::parse(text, nullptr, false);
    EXPECT_FALSE(parsed.is_discarded()) << "not JSON: " << text;
    return parsed;
}

bool SimTest::done(bool result) {
    EXPECT_EQ(desk_->liveHandles(), 0);
    return result;
}

std::vector<nlohmann::ordered_json> SimTest::traceOf(std::string_view key) const {
    std::vector<nlohmann::ordered_json> out;
    for (auto& entry : desk_->trace()) {
        if (entry.contains(std::string(key))) out.push_back(entry);
    }
    return out;
}

std::string sourcePath(const std::string& relative) { return std::string(ZEBLO_SOURCE_DIR) + "/" + relative; }

ToolRun runTool(const std::string& args) {
    ToolRun run;
    const std::string command = std::string(ZEBLO_TOOL_PATH) + " " + args;
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return run;
    std::array<char, 4096> buffer{};
    std::size_t n = 0;
    while ((n = fread(buffer.data(), 1, buffer.size(), pipe)) > 0) run.out.append(buffer.data(), n);
    const int status = pclose(pipe);
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

}  // namespace zeblo::testing
