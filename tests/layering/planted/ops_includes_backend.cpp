// Compiled as a file of ops: a backend's header must not resolve.
#include "platform/linux/linux_platform.h"
