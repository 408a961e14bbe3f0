// The errors of the applications area. They carry no texts of their own:
// their description is the generic one naming the type and the case number.
#pragma once

#include <string>

#include "core/error.h"

namespace zeblo {

class AppError : public TypedError {
public:
    enum class Case { appNotFound = 0, noFrontmostApp = 1, activationFailed = 2, launchFailed = 3 };

    static AppError appNotFound(std::string name) {
        return AppError(Case::appNotFound, "appNotFound", std::move(name));
    }
    static AppError noFrontmostApp() { return AppError(Case::noFrontmostApp, "noFrontmostApp"); }
    static AppError activationFailed() { return AppError(Case::activationFailed, "activationFailed"); }
    static AppError launchFailed() { return AppError(Case::launchFailed, "launchFailed"); }

    Case kind() const noexcept { return case_; }
    const std::string& name() const noexcept { return payload(); }  // appNotFound only

private:
    AppError(Case c, const char* caseName) : TypedError("AppError", static_cast<int>(c), caseName), case_(c) {}
    AppError(Case c, const char* caseName, std::string name)
        : TypedError("AppError", static_cast<int>(c), caseName, std::move(name)), case_(c) {}
    Case case_;
};

}  // namespace zeblo
