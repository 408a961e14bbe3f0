// The errors of the applications area. They carry no texts of their own:
// their description is the generic one naming the type and the case number.
#pragma once

#include <string>

#include "core/error.h"

namespace zeblo {

// The cases in declaration order: a case's number is part of the descriptions
// the host sees.
inline constexpr ErrorCase kAppErrorCases[] = {
    {"appNotFound", "application not found"},
    {"noFrontmostApp", "no frontmost application"},
    {"activationFailed", "activation failed"},
    {"launchFailed", "launch failed"},
};
inline constexpr ErrorKind kAppError{"AppError", kAppErrorCases};

class AppError : public TypedError {
public:
    static AppError appNotFound(std::string name) { return {Case::appNotFound, std::move(name)}; }
    static AppError noFrontmostApp() { return AppError(Case::noFrontmostApp); }
    static AppError activationFailed() { return AppError(Case::activationFailed); }
    static AppError launchFailed() { return AppError(Case::launchFailed); }

    const std::string& name() const noexcept { return payload(); }  // appNotFound only

private:
    enum class Case { appNotFound, noFrontmostApp, activationFailed, launchFailed };
    explicit AppError(Case c) : TypedError(kAppError, static_cast<int>(c)) {}
    AppError(Case c, std::string name) : TypedError(kAppError, static_cast<int>(c), std::move(name)) {}
};

}  // namespace zeblo
