// The MCP server: one tools/call message in, its answer out, on the example
// desktop (the protocol layer, the argument check, the export and the
// answer's JSON; no pipe).
#include <benchmark/benchmark.h>

#include <string>

#include "mcp_server.h"
#include "platform/platform.h"
#include "platform/sim/sim_desktop.h"

namespace {

void runCall(benchmark::State& state, const std::string& message) {
    auto sim = zeblo::sim::SimDesktop::fromFile(ZEBLO_EXAMPLE_DESKTOP);
    sim->setRecording(false);
    zeblo::platform::install(sim);
    zeblo::mcp::Server server;
    for (auto _ : state) benchmark::DoNotOptimize(server.handle(message));
    zeblo::platform::install(nullptr);
}

void BM_McpCallRunningApps(benchmark::State& state) {
    runCall(state, R"({"jsonrpc":"2.0","id":7,"method":"tools/call","params":{"name":"get_running_apps","arguments":{}}})");
}
void BM_McpCallWindowText(benchmark::State& state) {
    runCall(state, R"({"jsonrpc":"2.0","id":7,"method":"tools/call","params":{"name":"get_window_text",)"
                   R"("arguments":{"app_name":"Quick Notes","window_name":"groceries"}}})");
}
void BM_McpCallMenus(benchmark::State& state) {
    runCall(state, R"({"jsonrpc":"2.0","id":7,"method":"tools/call","params":{"name":"get_app_menus",)"
                   R"("arguments":{"app_name":"Quick Notes"}}})");
}
void BM_McpToolsList(benchmark::State& state) {
    runCall(state, R"({"jsonrpc":"2.0","id":7,"method":"tools/list"})");
}

BENCHMARK(BM_McpCallRunningApps)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_McpCallWindowText)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_McpCallMenus)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_McpToolsList)->Unit(benchmark::kMicrosecond);

}  // namespace
