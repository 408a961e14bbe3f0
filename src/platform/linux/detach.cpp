#include "platform/linux/detach.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zeblo::platform::linux_desktop {

int startDetached(const std::function<void(int reportFd)>& body) {
    int report[2];
    if (pipe2(report, O_CLOEXEC) != 0) return -1;
    const pid_t child = fork();
    if (child < 0) {
        close(report[0]);
        close(report[1]);
        return -1;
    }
    if (child == 0) {
        // The intermediate process: a new session, and a grandchild that the
        // init process adopts.
        setsid();
        if (fork() == 0) {
            const int devNull = open("/dev/null", O_RDWR);
            if (devNull >= 0) {
                dup2(devNull, 0);
                dup2(devNull, 1);
                dup2(devNull, 2);
            }
            dup2(report[1], 3);
            fcntl(3, F_SETFD, FD_CLOEXEC);
            close_range(4, ~0U, 0);
            body(3);
        }
        _exit(0);
    }
    close(report[1]);
    int status = 0;
    waitpid(child, &status, 0);
    return report[0];
}

}  // namespace zeblo::platform::linux_desktop
