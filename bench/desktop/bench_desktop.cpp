// Real-desktop benchmarks, run inside a desktop session
// (scripts/bench-desktop.sh): a menu snapshot and a window's text through the
// C exports, on GTK (l3afpad, gtk3-widget-factory) and on Qt (Qt's menus,
// standard dialogs and widget gallery examples), then the same walks done with pyatspi in the
// same session, and the ratio of the medians; the text of a web page of 200
// elements in Chromium; last, the cost of finding an application among many,
// and beside one that has stopped answering.
#include <benchmark/benchmark.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <utility>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "zeblo/zeblo_plus.h"

namespace {

constexpr const char* kMenuApp = "l3afpad";
constexpr const char* kTextApp = "gtk3-widget-factory";
constexpr int kPythonRepetitions = 15;

// The walks' applications by toolkit (range(0) of the walk benchmarks): what
// to launch and the name it registers with; a row without a menu application
// times the window text only.
struct Toolkit {
    const char* label;
    const char* menuLaunch;
    const char* menuApp;
    const char* textLaunch;
    const char* textApp;
};
#define ZEBLO_QT_EXAMPLES "/usr/lib/x86_64-linux-gnu/qt5/examples/widgets/"
constexpr Toolkit kToolkits[] = {
    {"GTK", kMenuApp, kMenuApp, kTextApp, kTextApp},
    {"Qt", ZEBLO_QT_EXAMPLES "mainwindows/menus/menus", "menus", ZEBLO_QT_EXAMPLES "dialogs/standarddialogs/standarddialogs",
     "standarddialogs"},
    {"Qt", nullptr, nullptr, ZEBLO_QT_EXAMPLES "gallery/gallery", "gallery"},
};
constexpr int kChromiumPage = static_cast<int>(std::size(kToolkits));

void BM_MenuSnapshot(benchmark::State& state) {
    const char* app = kToolkits[state.range(0)].menuApp;
    std::size_t bytes = 0;
    for (auto _ : state) {
        const char* json = zeblo_get_app_menus(app);
        bytes = std::string(json).size();
        zeblo_free_string(json);
    }
    state.counters["bytes"] = static_cast<double>(bytes);
}
BENCHMARK(BM_MenuSnapshot)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_WindowText(benchmark::State& state) {
    const bool page = state.range(0) == kChromiumPage;
    const char* app = page ? "Chromium" : kToolkits[state.range(0)].textApp;
    const char* window = page ? "Zeblo Bench Page - Chromium" : nullptr;
    std::size_t lines = 0;
    for (auto _ : state) {
        const char* json = zeblo_get_window_text(app, window);
        lines = nlohmann::json::parse(json, nullptr, false).size();
        zeblo_free_string(json);
    }
    state.counters["lines"] = static_cast<double>(lines);
}
// 0: GTK, 1: Qt's standard dialogs, 2: Qt's widget gallery, 3: a page of 200
// elements in Chromium.
BENCHMARK(BM_WindowText)->DenseRange(0, kChromiumPage)->Unit(benchmark::kMillisecond)->UseRealTime();

// Other applications on the desktop, started on demand and ended at exit.
std::vector<pid_t> g_crowd;

bool growCrowd(std::size_t size) {
    constexpr const char* kCrowdApp = "gtk3-demo";
    while (g_crowd.size() < size) {
        const pid_t pid = fork();
        if (pid < 0) return false;
        if (pid == 0) {
            execlp(kCrowdApp, kCrowdApp, static_cast<char*>(nullptr));
            _exit(127);
        }
        g_crowd.push_back(pid);
    }
    // Every one of them registered: they all answer to the same name.
    for (int attempt = 0; attempt < 400; ++attempt) {
        const char* json = zeblo_get_running_apps();
        const auto names = nlohmann::json::parse(json, nullptr, false);
        zeblo_free_string(json);
        std::size_t seen = 0;
        for (const auto& name : names) seen += name == kCrowdApp ? 1 : 0;
        if (seen >= size) return true;
        usleep(50 * 1000);
    }
    return false;
}

void endCrowd() {
    for (const pid_t pid : g_crowd) kill(pid, SIGTERM);
    for (const pid_t pid : g_crowd) waitpid(pid, nullptr, 0);
    g_crowd.clear();
}

// One lookup (application, then its first window) with `range(0)` other
// applications running: the part of every operation that grows with the
// number of applications on the desktop.
void BM_LookupAmongApps(benchmark::State& state) {
    if (!growCrowd(static_cast<std::size_t>(state.range(0)))) {
        state.SkipWithError("the other applications did not start");
        return;
    }
    for (auto _ : state) {
        if (!zeblo_window_exists(kMenuApp, nullptr)) state.SkipWithError("no window");
    }
}
BENCHMARK(BM_LookupAmongApps)->Arg(0)->Arg(8)->Unit(benchmark::kMillisecond)->UseRealTime();

// The process of kTextApp (its short name in /proc is cut to 15 bytes).
pid_t textAppPid() {
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        std::ifstream comm(entry.path() / "comm");
        std::string name;
        if (std::getline(comm, name) && name == std::string(kTextApp).substr(0, 15)) {
            return static_cast<pid_t>(std::stoi(entry.path().filename().string()));
        }
    }
    return 0;
}

// The lookup beside kTextApp answering (range(0) 0) or stopped (1: SIGSTOP,
// so that it answers nothing): the stopped one must cost next to nothing.
void BM_LookupBesideStoppedApp(benchmark::State& state) {
    const pid_t other = textAppPid();
    if (other == 0) {
        state.SkipWithError("no process for the other application");
        return;
    }
    const bool stopped = state.range(0) == 1;
    if (stopped) kill(other, SIGSTOP);
    for (auto _ : state) {
        if (!zeblo_window_exists(kMenuApp, nullptr)) state.SkipWithError("no window");
    }
    if (stopped) kill(other, SIGCONT);
}
BENCHMARK(BM_LookupBesideStoppedApp)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();

// Prints as the console does and keeps the medians (or single runs) by name
// ("BM_Name/arg" for a run with an argument).
class MedianReporter : public benchmark::ConsoleReporter {
public:
    // Colours only on a terminal.
    MedianReporter() : ConsoleReporter(isatty(STDOUT_FILENO) ? OO_Defaults : OO_Tabular) {}

    std::map<std::string, double> medianMs;

    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            const bool median = run.run_type == Run::RT_Aggregate && run.aggregate_name == "median";
            const std::string& args = run.run_name.args;
            const std::string name = run.run_name.function_name + (args.empty() ? "" : "/" + args);
            if (median || (run.run_type == Run::RT_Iteration && !medianMs.count(name))) {
                medianMs[name] = run.GetAdjustedRealTime();
            }
        }
    }
};

// The element tree of a window of about 1,000 controls (range(0)): GTK, Qt,
// a Chromium page; the whole window, every element listed.
struct ManyWindow {
    const char* label;
    const char* app;
    const char* window;
};
constexpr ManyWindow kMany[] = {
    {"GTK", "zeblo-many-gtk", "Zeblo Many GTK"},
    {"Qt", "zeblo-many-qt", "Zeblo Many Qt"},
    {"Chromium", "Chromium", "Zeblo Many Page - Chromium"},
};

std::string treeQuery(const ManyWindow& many) {
    return nlohmann::json{{"app", many.app}, {"window", many.window}, {"maxNodes", 5000}, {"maxChildren", 5000}}
        .dump();
}

void BM_Tree(benchmark::State& state) {
    const std::string query = treeQuery(kMany[state.range(0)]);
    double nodes = 0, bytes = 0;
    for (auto _ : state) {
        const char* json = zeblo_element_tree(query.c_str());
        const std::string text(json);
        zeblo_free_string(json);
        bytes = static_cast<double>(text.size());
        nodes = nlohmann::json::parse(text).value("nodes", 0.0);
    }
    state.counters["nodes"] = nodes;
    state.counters["bytes"] = bytes;
}
BENCHMARK(BM_Tree)->DenseRange(0, 2)->Unit(benchmark::kMillisecond)->UseRealTime();

// An action by reference against the same press by name: the verification of
// the reference is what it costs more.
void BM_PressByReference(benchmark::State& state) {
    const char* find = R"({"app":"zeblo-many-gtk","role":"button","name":"Button 249"})";
    const char* found = zeblo_element_find(find);
    const nlohmann::json matches = nlohmann::json::parse(found).value("matches", nlohmann::json::array());
    zeblo_free_string(found);
    if (matches.empty()) {
        state.SkipWithError("no Button 249");
        return;
    }
    const std::string ref = matches[0].value("ref", "");
    for (auto _ : state) {
        const char* result = state.range(0) == 0 ? zeblo_element_act(ref.c_str(), "press", nullptr) : nullptr;
        if (state.range(0) == 1) benchmark::DoNotOptimize(zeblo_click_button("zeblo-many-gtk", nullptr, "Button 249"));
        zeblo_free_string(result);
    }
}
BENCHMARK(BM_PressByReference)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();

bool prepareMany() {
    const std::string gtk = std::string("/usr/bin/python3 ") + ZEBLO_MANY_GTK + " >/dev/null 2>&1 &";
    if (std::system(gtk.c_str()) != 0) return false;
#ifdef ZEBLO_MANY_QT
    if (!zeblo_launch_app(ZEBLO_MANY_QT)) return false;
#endif
    const std::string page = "/tmp/zeblo-many-page.html";
    std::ofstream html(page);
    html << "<!doctype html><title>Zeblo Many Page</title>";
    for (int i = 0; i < 250; ++i) {
        html << "<div><span>Row " << i << "</span><input aria-label='Field " << i << "' value='value " << i
             << "'><label><input type=checkbox> Check " << i << "</label><button>Button " << i << "</button></div>";
    }
    html.close();
    // A window of the browser the other page is in (one application).
    const std::string chromium = "chromium --no-sandbox --no-first-run --disable-gpu --user-data-dir=/tmp/zeblo-bench-"
                                 "profile --new-window file://" + page + " >/dev/null 2>&1 &";
    if (std::system(chromium.c_str()) != 0) return false;
    for (const ManyWindow& many : kMany) {
#ifndef ZEBLO_MANY_QT
        if (std::string(many.label) == "Qt") continue;
#endif
        if (!zeblo_wait_for_window(many.app, many.window, 0, 30000)) {
            std::fprintf(stderr, "%s did not show %s\n", many.app, many.window);
            return false;
        }
        // The content is complete once the last row is there.
        const std::string last =
            nlohmann::json{{"app", many.app}, {"window", many.window}, {"name", "Button 249"}, {"timeout", 20000}}.dump();
        zeblo_free_string(zeblo_element_wait(last.c_str()));
    }
    return true;
}

bool prepare() {
    for (const Toolkit& toolkit : kToolkits) {
        for (const auto& [launch, app] : {std::pair{toolkit.menuLaunch, toolkit.menuApp}, {toolkit.textLaunch, toolkit.textApp}}) {
            if (launch == nullptr) continue;
            if (!zeblo_launch_app(launch) || !zeblo_wait_for_window(app, nullptr, 0, 20000)) {
                std::fprintf(stderr, "%s did not start\n", app);
                return false;
            }
        }
    }
    // A page of 200 elements: 50 each of headings, buttons, check boxes and
    // text fields.
    const std::string page = "/tmp/zeblo-bench-page.html";
    std::ofstream html(page);
    html << "<!doctype html><title>Zeblo Bench Page</title>";
    for (int i = 0; i < 50; ++i) {
        html << "<h2>Section " << i << "</h2><button>Button " << i << "</button><label><input type=checkbox> Box " << i
             << "</label><input aria-label='Field " << i << "'>";
    }
    html.close();
    const std::string chromium = "chromium --no-sandbox --no-first-run --disable-gpu --user-data-dir=/tmp/zeblo-bench-"
                                 "profile file://" + page + " >/dev/null 2>&1 &";
    if (std::system(chromium.c_str()) != 0 || !zeblo_wait_for_window("Chromium", "Zeblo Bench Page - Chromium", 0, 30000)) {
        std::fprintf(stderr, "Chromium did not show the page\n");
        return false;
    }
    for (int i = 0; i < 100; ++i) {  // the page's content comes a moment after the window
        const char* json = zeblo_get_window_text("Chromium", "Zeblo Bench Page - Chromium");
        const bool there = std::string(json).find("Field 49") != std::string::npos;
        zeblo_free_string(json);
        if (there) break;
        usleep(50 * 1000);
    }
    return true;
}

// What `command` (a shell command line) writes to its standard output, as
// JSON (discarded when it is not).
nlohmann::json jsonOutputOf(const std::string& command) {
    std::string out;
    if (FILE* pipe = popen(command.c_str(), "r")) {
        char buffer[4096];
        std::size_t got = 0;
        while ((got = fread(buffer, 1, sizeof buffer, pipe)) > 0) out.append(buffer, got);
        pclose(pipe);
    }
    return nlohmann::json::parse(out, nullptr, false);
}

nlohmann::json pyatspiMedians(const char* script, const Toolkit& toolkit) {
    const char* menuApp = toolkit.menuApp != nullptr ? toolkit.menuApp : "-";
    return jsonOutputOf(std::string("/usr/bin/python3 ") + script + " " + menuApp + " " + toolkit.textApp + " " +
                        std::to_string(kPythonRepetitions));
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (!prepare() || !prepareMany()) return 1;
    MedianReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    endCrowd();

    std::printf("\n%-40s %10s %10s %7s\n", "walk (median)", "ZEBLOui", "pyatspi", "ratio");
    for (std::size_t t = 0; t < std::size(kToolkits); ++t) {
        const Toolkit& toolkit = kToolkits[t];
        const nlohmann::json python = pyatspiMedians(ZEBLO_PYATSPI_WALKS, toolkit);
        if (!python.is_object()) {
            std::fprintf(stderr, "the pyatspi walks failed on %s\n", toolkit.label);
            return 1;
        }
        const std::pair<const char*, const char*> rows[] = {{"BM_MenuSnapshot", "menus_ms"}, {"BM_WindowText", "text_ms"}};
        for (const auto& [ours, theirs] : rows) {
            if (toolkit.menuApp == nullptr && theirs == std::string("menus_ms")) continue;
            const std::string name = std::string(ours) + "/" + std::to_string(t);
            const double a = reporter.medianMs[name];
            const double b = python.value(theirs, 0.0);
            std::printf("%-40s %8.2f ms %8.2f ms %6.1fx\n", (name + " (" + toolkit.label + ")").c_str(), a, b,
                        a > 0 ? b / a : 0.0);
        }
        std::printf("(menus of %s; text of %s's window, %d elements)\n", toolkit.menuApp ? toolkit.menuApp : "-",
                    toolkit.textApp, python.value("text_elements", 0));
    }
    std::printf("text of a Chromium page of 200 elements: %.2f ms (median)\n", reporter.medianMs["BM_WindowText/" + std::to_string(kChromiumPage)]);
    for (std::size_t m = 0; m < std::size(kMany); ++m) {
        const std::string command = std::string("/usr/bin/python3 ") + ZEBLO_PYATSPI_WALKS + " tree " + kMany[m].app +
                                    " " + std::to_string(kPythonRepetitions) + " 2>/dev/null";
        const nlohmann::json python = jsonOutputOf(command);
        const double ours = reporter.medianMs["BM_Tree/" + std::to_string(m)];
        const double theirs = python.is_object() ? python.value("tree_ms", 0.0) : 0.0;
        std::printf("element tree of %s's window of 1,000 controls: %.2f ms, pyatspi %.2f ms (%d elements), %.1fx\n",
                    kMany[m].label, ours, theirs, python.is_object() ? python.value("tree_elements", 0) : 0,
                    ours > 0 ? theirs / ours : 0.0);
    }
    std::printf("press by reference %.2f ms, by name (zeblo_click_button) %.2f ms (medians)\n",
                reporter.medianMs["BM_PressByReference/0"], reporter.medianMs["BM_PressByReference/1"]);
    std::printf("lookup beside a stopped application: %+.2f ms (median, against a healthy one)\n",
                reporter.medianMs["BM_LookupBesideStoppedApp/1"] - reporter.medianMs["BM_LookupBesideStoppedApp/0"]);
    return 0;
}
