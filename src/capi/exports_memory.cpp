// Releasing the strings the library hands out.
#include <cstdlib>

#include "capi/bodies.h"
#include "zeblo/zeblo.h"

namespace zeblo::capi {

void freeString(const char* ptr) noexcept {
    std::free(const_cast<char*>(ptr));  // free(NULL) does nothing
}

}  // namespace zeblo::capi

extern "C" void zeblo_free_string(const char* ptr) { zeblo::capi::freeString(ptr); }
