// sway's own interface (its IPC socket, SWAYSOCK): the focused window with
// its process and title, focusing a window and closing one. Each request
// opens the socket anew and waits at most the reply limit.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace zeblo::platform::linux_desktop {

struct SwayView {
    std::int64_t id = 0;  // sway's container id
    std::int32_t pid = 0;
    std::string name;     // the window's title
    bool focused = false;
};

class SwayIpc {
public:
    // Null when SWAYSOCK is not set.
    static std::optional<SwayIpc> find();

    // The focused window, or none.
    std::optional<SwayView> focused() const;
    // The windows of process `pid` with title `title` ("" for any), in
    // sway's tree order.
    std::optional<SwayView> viewOf(std::int32_t pid, const std::string& title) const;
    // Runs `command` on the container `id` ("focus", "kill"); true when sway
    // says it succeeded.
    bool run(std::int64_t id, const std::string& command) const;

private:
    explicit SwayIpc(std::string path) : path_(std::move(path)) {}
    std::optional<std::string> request(std::uint32_t type, const std::string& payload) const;
    std::string path_;
};

}  // namespace zeblo::platform::linux_desktop
