// The errors of the applications area. They carry no texts of their own:
// their description is the generic one naming the type and the case number.
#pragma once

#include <string>

#include "boundary/error.h"

namespace zeblo {

class AppError : public Error {
public:
    enum class Case { appNotFound = 0, noFrontmostApp = 1, activationFailed = 2, launchFailed = 3 };

    static AppError appNotFound(std::string name) { return AppError(Case::appNotFound, std::move(name)); }
    static AppError noFrontmostApp() { return AppError(Case::noFrontmostApp); }
    static AppError activationFailed() { return AppError(Case::activationFailed); }
    static AppError launchFailed() { return AppError(Case::launchFailed); }

    Case kind() const noexcept { return case_; }
    const std::string& name() const noexcept { return name_; }  // appNotFound only

    std::string description() const override;
    std::string debugText() const override;

private:
    explicit AppError(Case c, std::string name = {}) : case_(c), name_(std::move(name)) {}
    Case case_;
    std::string name_;
};

}  // namespace zeblo
