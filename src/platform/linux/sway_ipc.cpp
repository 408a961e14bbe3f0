// sway's IPC: "i3-ipc", the payload's length and type (32-bit, the machine's
// byte order), the payload; the reply has the same form.
#include "platform/linux/sway_ipc.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <functional>

#include <nlohmann/json.hpp>

#include "platform/linux/detach.h"
#include "platform/linux/offers.h"
#include "platform/reply_limit.h"

namespace zeblo::platform::linux_desktop {

namespace {

constexpr char kMagic[] = {'i', '3', '-', 'i', 'p', 'c'};
constexpr std::uint32_t kRunCommand = 0;
constexpr std::uint32_t kGetTree = 4;

bool sendAll(int fd, const std::string& bytes) {
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        const ssize_t n = send(fd, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (n < 0 && errno != EINTR) return false;
        if (n > 0) sent += static_cast<std::size_t>(n);
    }
    return true;
}

bool receive(int fd, char* into, std::size_t size, double deadline) {
    std::size_t got = 0;
    while (got < size) {
        const double left = deadline - monotonicSeconds();
        pollfd p{fd, POLLIN, 0};
        if (left <= 0 || poll(&p, 1, static_cast<int>(left * 1000) + 1) <= 0) return false;
        const ssize_t n = recv(fd, into + got, size - got, 0);
        if (n == 0 || (n < 0 && errno != EINTR)) return false;
        if (n > 0) got += static_cast<std::size_t>(n);
    }
    return true;
}

// Calls `visit` on every window (a container with a process) of the tree.
void eachView(const nlohmann::json& node, const std::function<void(const SwayView&)>& visit) {
    if (node.contains("pid") && node["pid"].is_number_integer() && node.value("type", "") != "output") {
        SwayView view;
        view.id = node.value("id", std::int64_t{0});
        view.pid = node["pid"].get<std::int32_t>();
        view.name = node.contains("name") && node["name"].is_string() ? node["name"].get<std::string>() : "";
        view.focused = node.value("focused", false);
        visit(view);
    }
    for (const char* children : {"nodes", "floating_nodes"}) {
        if (node.contains(children) && node[children].is_array()) {
            for (const nlohmann::json& child : node[children]) eachView(child, visit);
        }
    }
}

}  // namespace

std::optional<SwayIpc> SwayIpc::find() {
    const char* path = std::getenv("SWAYSOCK");
    if (path == nullptr || *path == '\0') return std::nullopt;
    return SwayIpc(path);
}

std::optional<std::string> SwayIpc::request(std::uint32_t type, const std::string& payload) const {
    const Fd fd(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (!fd || path_.size() >= sizeof address.sun_path) return std::nullopt;
    std::memcpy(address.sun_path, path_.c_str(), path_.size() + 1);
    if (connect(fd.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) return std::nullopt;
    std::string message(kMagic, sizeof kMagic);
    const auto length = static_cast<std::uint32_t>(payload.size());
    message.append(reinterpret_cast<const char*>(&length), 4).append(reinterpret_cast<const char*>(&type), 4);
    message += payload;
    if (!sendAll(fd.get(), message)) return std::nullopt;
    const double deadline = monotonicSeconds() + replyLimitMs() / 1000.0;
    char header[sizeof kMagic + 8];
    if (!receive(fd.get(), header, sizeof header, deadline)) return std::nullopt;
    std::uint32_t size = 0;
    std::memcpy(&size, header + sizeof kMagic, 4);
    std::string reply(size, '\0');
    if (!receive(fd.get(), reply.data(), size, deadline)) return std::nullopt;
    return reply;
}

std::optional<SwayView> SwayIpc::focused() const {
    const std::optional<std::string> reply = request(kGetTree, "");
    if (!reply) return std::nullopt;
    std::optional<SwayView> found;
    eachView(nlohmann::json::parse(*reply, nullptr, false), [&](const SwayView& view) {
        if (view.focused && !found) found = view;
    });
    return found;
}

std::optional<SwayView> SwayIpc::viewOf(std::int32_t pid, const std::string& title) const {
    const std::optional<std::string> reply = request(kGetTree, "");
    if (!reply) return std::nullopt;
    std::optional<SwayView> found, only;
    int count = 0;
    eachView(nlohmann::json::parse(*reply, nullptr, false), [&](const SwayView& view) {
        if (view.pid != pid) return;
        ++count;
        if (!only) only = view;
        if (!found && (title.empty() || view.name == title)) found = view;
    });
    if (!found && count == 1) found = only;  // the process's only window, whatever its title
    return found;
}

bool SwayIpc::run(std::int64_t id, const std::string& command) const {
    const std::optional<std::string> reply = request(kRunCommand, "[con_id=" + std::to_string(id) + "] " + command);
    if (!reply) return false;
    const nlohmann::json answer = nlohmann::json::parse(*reply, nullptr, false);
    return answer.is_array() && !answer.empty() && answer[0].value("success", false);
}

}  // namespace zeblo::platform::linux_desktop
