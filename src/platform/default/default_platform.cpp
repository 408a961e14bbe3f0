// The default backend of systems other than macOS: the Linux desktop where
// the backend is built in and a desktop can be reached, otherwise a desktop
// that is not there (no_desktop.h), which says why whenever asked to act.
#include "platform/default/no_desktop.h"
#include "platform/default_platform.h"
#ifdef ZEBLO_HAVE_LINUX_DESKTOP
#include "platform/linux/linux_platform.h"
#endif

namespace zeblo::platform {

std::shared_ptr<Platform> makeDefaultPlatform() {
#ifdef ZEBLO_HAVE_LINUX_DESKTOP
    std::string why;
    if (auto desktop = linux_desktop::LinuxPlatform::connect(&why)) return desktop;
    return std::make_shared<NoDesktop>(why);
#else
    return std::make_shared<NoDesktop>("this build of the library has no desktop backend");
#endif
}

}  // namespace zeblo::platform
