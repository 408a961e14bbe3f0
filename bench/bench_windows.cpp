// Window-area benchmarks: the text of a window of 1,000 text-bearing
// elements through the export, and the button walk over 1,500 buttons.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>

#include <nlohmann/json.hpp>

#include "ops/windows/window_ops.h"
#include "platform/platform.h"
#include "platform/sim/sim_desktop.h"
#include "zeblo/zeblo.h"

namespace {

using Json = nlohmann::ordered_json;

// One application "Bench" whose only window has `n` children made by `child`.
template <class Make>
std::shared_ptr<zeblo::sim::SimDesktop> desktop(int n, Make child) {
    Json kids = Json::array();
    for (int i = 0; i < n; ++i) kids.push_back(child(i));
    Json window = {{"id", "w"}, {"attrs", {{"AXRole", "AXWindow"}, {"AXTitle", "Bench"}, {"AXChildren", kids}}}};
    Json desk = {{"apps", {{{"name", "Bench"}, {"pid", 1},
                            {"element", {{"attrs", {{"AXRole", "AXApplication"}, {"AXWindows", {window}}}}}}}}},
                 {"frontmost", 1}};
    auto sim = zeblo::sim::SimDesktop::fromJson(desk.dump());
    sim->setRecording(false);  // measure the walk, not the trace
    zeblo::platform::install(sim);
    return sim;
}

// Each element has a distinct value and a title and description that are not
// yet shown, so every line passes through the duplicate check.
void BM_WindowText(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    auto sim = desktop(n, [](int i) {
        const std::string s = std::to_string(i);
        return Json{{"attrs", {{"AXRole", "AXStaticText"}, {"AXValue", "Line " + s + " of the document"},
                               {"AXTitle", "Label " + s}, {"AXDescription", "Hint for item " + s}}}};
    });
    for (auto _ : state) {
        const char* text = zeblo_get_window_text("Bench", "");
        benchmark::DoNotOptimize(text);
        zeblo_free_string(text);
    }
    zeblo::platform::install(nullptr);
}
// 334 elements of three lines each give 1,000 lines (the cap is reached at 1,002).
BENCHMARK(BM_WindowText)->Arg(84)->Arg(167)->Arg(334)->Unit(benchmark::kMillisecond);

void BM_GetAllButtons(benchmark::State& state) {
    auto sim = desktop(1'500, [](int i) {
        return Json{{"attrs", {{"AXRole", "AXButton"}, {"AXTitle", "Button " + std::to_string(i)}}}};
    });
    {
        auto& p = zeblo::platform::current();
        const auto app = p.createApplicationElement(1);
        const auto window = zeblo::platform::asElementArray(p.copyAttributeValue(app, "AXWindows")).value.at(0);
        for (auto _ : state) benchmark::DoNotOptimize(zeblo::WindowOps::getAllButtons(window));
    }
    zeblo::platform::install(nullptr);
}
BENCHMARK(BM_GetAllButtons)->Unit(benchmark::kMillisecond);

}  // namespace
