// Compiled as a file of core: an include of a layer above must not resolve.
#include <ops/lookup.h>
