// The default backend of the simulated library (simulated/libZEBLOui): a
// build of the library with the same 25 exports whose desktop is always a
// simulated one, so that a host can test its own automation offline, on a
// machine with no desktop at all. It never reaches a real application.
//
// ZEBLO_SIMULATE names the desktop file (docs/desktop-format.md), read once,
// on the first call. A missing variable or a file that cannot be read gives
// one log line, and the desktop is then the empty one.
// ZEBLO_TRACE names a trace file ("-" for standard error): every side effect
// is written to it as one JSON line when it happens, and the closing record
// {"end": ...} when the process exits, as `zeblo --trace` writes them. The
// desktop keeps no trace in memory, so a long test run accumulates nothing.
// Log lines go to the system log (and to standard error as well when
// ZEBLO_LOG_STDERR is 1), and into the trace.
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <string>

#include "platform/default_platform.h"
#include "platform/sim/sim_desktop.h"
#include "platform/system_log.h"

namespace zeblo::platform {
namespace {

// Closes a C stream (never standard error).
struct FileClose {
    void operator()(std::FILE* f) const {
        if (f != stderr) std::fclose(f);
    }
};

// The trace file, written line by line. It is never destroyed (a call on
// another thread may still be tracing while the process exits); the closing
// record is written by an exit handler, after which nothing more is written.
class TraceFile {
public:
    bool open(const char* path, std::shared_ptr<sim::SimDesktop> desktop) {
        std::lock_guard lock(mu_);
        file_.reset(std::string_view(path) == "-" ? stderr : std::fopen(path, "w"));
        desktop_ = std::move(desktop);
        return file_ != nullptr;
    }

    void write(const nlohmann::ordered_json& entry) {
        std::lock_guard lock(mu_);
        writeLocked(entry);
    }

    void close() {
        std::shared_ptr<sim::SimDesktop> desktop;
        {
            std::lock_guard lock(mu_);
            desktop = std::move(desktop_);
        }
        if (!desktop) return;
        const nlohmann::ordered_json end = desktop->endRecord();  // takes the desktop's lock
        std::lock_guard lock(mu_);
        writeLocked(end);
        file_.reset();
    }

private:
    void writeLocked(const nlohmann::ordered_json& entry) {
        if (!file_) return;
        const std::string line = entry.dump() + '\n';
        std::fputs(line.c_str(), file_.get());
        std::fflush(file_.get());
    }

    std::mutex mu_;
    std::unique_ptr<std::FILE, FileClose> file_;
    std::shared_ptr<sim::SimDesktop> desktop_;
};

TraceFile& traceFile() {
    static auto* file = new TraceFile;
    return *file;
}

std::shared_ptr<Platform> simulatedFromEnvironment() {
    std::shared_ptr<sim::SimDesktop> desktop;
    std::string problem;
    const char* path = std::getenv("ZEBLO_SIMULATE");
    if (path == nullptr || *path == '\0') {
        problem = "ZEBLO_SIMULATE is not set: the simulated desktop is empty";
    } else {
        try {
            desktop = sim::SimDesktop::fromFile(path);
        } catch (const std::exception& e) {
            problem = std::string("ZEBLO_SIMULATE: cannot read desktop '") + path + "': " + e.what() +
                      "; the simulated desktop is empty";
        }
    }
    if (!desktop) desktop = std::make_shared<sim::SimDesktop>();
    desktop->setRecording(false);
    desktop->setLogSink(writeSystemLog);

    if (const char* trace = std::getenv("ZEBLO_TRACE"); trace != nullptr && *trace != '\0') {
        TraceFile& file = traceFile();
        if (file.open(trace, desktop)) {
            desktop->setTraceSink([&file](const nlohmann::ordered_json& entry) { file.write(entry); });
            std::atexit([] { traceFile().close(); });
        } else {
            writeSystemLog(std::string("ZEBLO_TRACE: cannot write trace '") + trace + "'");
        }
    }
    if (!problem.empty()) desktop->log(problem);
    return desktop;
}

// Only stores a pointer, so it is safe whatever order the library's static
// objects are built in; the desktop itself is made on the first call.
[[maybe_unused]] const bool g_registered = (setDefaultPlatformFactory(&simulatedFromEnvironment), true);

}  // namespace
}  // namespace zeblo::platform
