// Builds a random simulated desktop from fuzzer input: applications with deep,
// wide and malformed element trees, values of the wrong kind, failing reads
// and actions, hostile names, a pasteboard, launchable applications, injected
// event failures and a few timeline changes. Sizes are bounded so that one
// input runs in well under a millisecond or so.
#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <memory>
#include <string>

#include "platform/sim/sim_desktop.h"

namespace zeblo::fuzz {

// Names that trip up escaping, decoding, matching and formatting.
std::string hostileName(FuzzedDataProvider& in);

// A name: mostly one of a small pool (so that lookups find things), else
// hostile or random bytes.
std::string randomName(FuzzedDataProvider& in);

std::shared_ptr<sim::SimDesktop> randomDesktop(FuzzedDataProvider& in);

// Whether the last desktop built holds text that is not well-formed UTF-8. A
// real backend never hands such text up; from the simulator it reaches the
// writer, and a string export then returns its fallback text ("{}" or "[]").
bool lastDesktopHasIllFormedText();

}  // namespace zeblo::fuzz
