// Starting processes that outlive no caller's wait: the launched
// applications and the clipboard holder. The library never forks the host:
// it starts the helper executable zeblo-helper with posix_spawn, and the
// helper (a small single-threaded program of its own) detaches itself in a
// session of its own, adopted by init, and then runs the application or
// holds the clipboard.
//
//   zeblo-helper launch PROGRAM [ARG...]   runs PROGRAM (looked up in PATH);
//       when it cannot be run, the errno value (an int) goes to descriptor 3,
//       otherwise descriptor 3 closes with the exec.
//   zeblo-helper hold                      reads the offers (x11_selection.h,
//       serializeOffers) from descriptor 3 up to its end, owns CLIPBOARD with
//       them, writes one byte to descriptor 3 and closes it, and serves
//       CLIPBOARD until another client takes it.
#pragma once

#include <unistd.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace zeblo::platform::linux_desktop {

// The descriptor the helper talks to the library on.
inline constexpr int kHelperChannel = 3;

// A file descriptor, closed with its owner.
class Fd {
public:
    Fd() = default;
    explicit Fd(int fd) noexcept : fd_(fd) {}
    Fd(Fd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    Fd& operator=(Fd other) noexcept {
        std::swap(fd_, other.fd_);
        return *this;
    }
    ~Fd() {
        if (fd_ >= 0) close(fd_);
    }
    int get() const noexcept { return fd_; }
    explicit operator bool() const noexcept { return fd_ >= 0; }

private:
    int fd_ = -1;
};

// The helper executable: $ZEBLO_HELPER when set; otherwise, beside the
// library (or the program it is linked into), zeblo-helper itself (the build
// tree) or the installed one (LIBEXECDIR/zeblo/zeblo-helper, found from
// LIBDIR or BINDIR). Empty when there is none.
const std::string& helperPath();

// Starts the helper with `args` (after its path): signals at their defaults
// and unblocked, standard input, output and error on /dev/null, descriptor 3
// one end of a new socket pair and no other descriptor open. The helper's
// first process only detaches the rest and ends: it is waited for here, at
// most 1 s (then it is killed). Gives the other end of the socket pair
// (close-on-exec), or none when the helper could not be started.
Fd startHelper(const std::vector<std::string>& args);

// Sends `payload` to a clipboard holder the helper started (`channel`), then
// waits for the byte that says it owns the clipboard, at most `seconds`,
// calling `serve` between polls so that requests still addressed to the
// library are answered meanwhile. True once the holder has it.
bool sendToHolder(int channel, const std::string& payload, double seconds, const std::function<void()>& serve);

// Runs `command` detached through the helper; true when it could be
// executed (waiting at most 2 s to know).
bool launchDetached(const std::vector<std::string>& command);

}  // namespace zeblo::platform::linux_desktop
