// Compiled as a file of ops: the simulated desktop's header must not resolve.
#include "platform/sim/sim_desktop.h"
