#include "platform/linux/detach.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>

#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdlib>
#include <thread>

extern char** environ;

// Where the installed helper lies from the installed library and tool
// (CMake sets both from the install directories).
#ifndef ZEBLO_HELPER_FROM_LIBDIR
#define ZEBLO_HELPER_FROM_LIBDIR "../libexec/zeblo/zeblo-helper"
#endif
#ifndef ZEBLO_HELPER_FROM_BINDIR
#define ZEBLO_HELPER_FROM_BINDIR "../libexec/zeblo/zeblo-helper"
#endif

namespace zeblo::platform::linux_desktop {

namespace {

const int anchor = 0;  // an object of this library, for dladdr

std::string directoryOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash);
}

// The directory of the file this code was loaded from: the shared library,
// or the program it is linked into (which the loader names "").
std::string ownDirectory() {
    Dl_info info{};
    link_map* map = nullptr;
    if (dladdr1(&anchor, &info, reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP) != 0 && map != nullptr &&
        map->l_name != nullptr && map->l_name[0] != '\0') {
        return directoryOf(map->l_name);
    }
    char exe[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", exe, sizeof exe);
    return length > 0 ? directoryOf(std::string(exe, static_cast<std::size_t>(length))) : ".";
}

// posix_spawn's attributes and file actions, destroyed with their owner.
struct SpawnSetup {
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    SpawnSetup() {
        posix_spawn_file_actions_init(&actions);
        posix_spawnattr_init(&attributes);
    }
    ~SpawnSetup() {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }
    SpawnSetup(const SpawnSetup&) = delete;
    SpawnSetup& operator=(const SpawnSetup&) = delete;
};

// Waits for the helper's first process, which ends as soon as it has
// detached the rest; one that takes over 1 s is killed.
void reap(pid_t pid) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(1);
    int status = 0;
    while (true) {
        const pid_t got = waitpid(pid, &status, WNOHANG);
        if (got == pid || (got < 0 && errno != EINTR)) return;  // ended, or reaped by the host itself
        if (std::chrono::steady_clock::now() >= end) break;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    kill(pid, SIGKILL);
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
}

}  // namespace

const std::string& helperPath() {
    static const std::string path = [] {
        if (const char* set = std::getenv("ZEBLO_HELPER"); set != nullptr && *set != '\0') return std::string(set);
        const std::string dir = ownDirectory();
        for (const std::string relative : {"zeblo-helper", ZEBLO_HELPER_FROM_LIBDIR, ZEBLO_HELPER_FROM_BINDIR}) {
            const std::string candidate = relative[0] == '/' ? relative : dir + "/" + relative;
            if (access(candidate.c_str(), X_OK) == 0) return candidate;
        }
        return std::string();
    }();
    return path;
}

Fd startHelper(const std::vector<std::string>& args) {
    const std::string& path = helperPath();
    if (path.empty()) return {};
    int pair[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair) != 0) return {};
    Fd mine(pair[0]), theirs(pair[1]);
    // A duplication onto its own number would leave close-on-exec set.
    if (theirs.get() == kHelperChannel) theirs = Fd(fcntl(theirs.get(), F_DUPFD_CLOEXEC, kHelperChannel + 1));
    if (!theirs) return {};

    std::vector<char*> argv{const_cast<char*>(path.c_str())};
    for (const std::string& arg : args) argv.push_back(const_cast<char*>(arg.c_str()));
    argv.push_back(nullptr);
    SpawnSetup setup;
    posix_spawn_file_actions_adddup2(&setup.actions, theirs.get(), kHelperChannel);
    posix_spawn_file_actions_addopen(&setup.actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&setup.actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&setup.actions, 1, 2);
#if defined(__GLIBC__) && (__GLIBC__ > 2 || __GLIBC_MINOR__ >= 34)
    posix_spawn_file_actions_addclosefrom_np(&setup.actions, kHelperChannel + 1);
#endif  // otherwise the helper closes them itself
    sigset_t none, all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_setflags(&setup.attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    posix_spawnattr_setsigmask(&setup.attributes, &none);
    posix_spawnattr_setsigdefault(&setup.attributes, &all);
    pid_t pid = 0;
    if (posix_spawn(&pid, path.c_str(), &setup.actions, &setup.attributes, argv.data(), environ) != 0) return {};
    reap(pid);
    return mine;
}

bool launchDetached(const std::vector<std::string>& command) {
    if (command.empty()) return false;
    std::vector<std::string> args{"launch"};
    args.insert(args.end(), command.begin(), command.end());
    const Fd report = startHelper(args);
    if (!report) return false;
    // The end of the stream: the program runs; an errno value: it could not.
    pollfd fd{report.get(), POLLIN, 0};
    int ready = 0;
    while ((ready = poll(&fd, 1, 2000)) < 0 && errno == EINTR) {
    }
    int error = 0;
    return ready > 0 && recv(report.get(), &error, sizeof error, 0) == 0;
}

bool sendToHolder(int channel, const std::string& payload, double seconds, const std::function<void()>& serve) {
    std::size_t sent = 0;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    for (; std::chrono::steady_clock::now() < deadline; serve()) {
        const bool sending = sent < payload.size();
        pollfd fd{channel, static_cast<short>(sending ? POLLOUT : POLLIN), 0};
        if (poll(&fd, 1, 10) <= 0) continue;
        if (!sending) {
            char byte = 0;
            const ssize_t got = recv(channel, &byte, 1, MSG_DONTWAIT);
            if (got == 1) return true;
            if (got == 0 || (errno != EAGAIN && errno != EINTR)) return false;  // the holder has gone
            continue;
        }
        const ssize_t n = send(channel, payload.data() + sent, payload.size() - sent, MSG_DONTWAIT | MSG_NOSIGNAL);
        if (n < 0 && errno != EAGAIN && errno != EINTR) return false;  // the holder has gone
        if (n > 0) sent += static_cast<std::size_t>(n);
        if (sent == payload.size()) shutdown(channel, SHUT_WR);
    }
    return false;
}

}  // namespace zeblo::platform::linux_desktop
