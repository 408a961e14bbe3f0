// Starting processes that outlive no caller's wait: the launched
// applications and the clipboard holder.
#pragma once

#include <functional>

namespace zeblo::platform::linux_desktop {

// Runs `body` in a new process that the init process adopts, in a session of
// its own, so that nobody has to wait for it. In that process standard input,
// output and error are /dev/null (a caller reading this process's output must
// not wait for it), descriptor 3 is the write end of a pipe (closed on exec),
// and no other inherited descriptor is open. `body` is given 3 and does not
// return (the process ends if it does).
//
// Gives the read end of the pipe, or -1 when the process could not be made.
int startDetached(const std::function<void(int reportFd)>& body);

}  // namespace zeblo::platform::linux_desktop
