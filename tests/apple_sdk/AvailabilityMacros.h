// Darwin's <AvailabilityMacros.h>, which GoogleTest includes on Apple
// targets; it reads none of its macros. For the syntax check only.
#pragma once
