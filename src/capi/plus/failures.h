// The superset library's record of each thread's last failure, and the error
// objects of the element functions.
#pragma once

#include <exception>
#include <string>
#include <string_view>

namespace zeblo::capi::plus {

// The kind, case and text of a failure, as an error of the library shows
// them (an element error's own; for the 25 functions' errors, their area and
// case name: "window" and "buttonNotFound").
struct Failure {
    std::string kind;
    std::string errorCase;
    std::string message;
};
Failure failureOf(const std::exception* error);

// {"error": {"kind", "case", "message"}}
std::string errorJson(const Failure& failure);

// Installs the record behind zeblo_last_failure (idempotent; done as the
// library loads).
void installRecord() noexcept;

// The element functions' own begin and failure.
void recordBegin() noexcept;
void recordFailure(std::string_view function, const Failure& failure) noexcept;

// The calling thread's last failure as zeblo_last_failure gives it.
std::string lastFailureJson();

}  // namespace zeblo::capi::plus
