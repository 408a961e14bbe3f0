// Releasing the strings the library hands out.
#include <cstdlib>

#include "boundary/bodies.h"
#include "zeblo/zeblo.h"

namespace zeblo::boundary {

void freeString(const char* ptr) noexcept {
    std::free(const_cast<char*>(ptr));  // free(NULL) does nothing
}

}  // namespace zeblo::boundary

extern "C" void zeblo_free_string(const char* ptr) { zeblo::boundary::freeString(ptr); }
