// The errors of the elements area. Each names a kind (what went wrong, in
// one word an agent or script can branch on), a case (which check failed)
// and a message a person can read.
//
// Kinds: "usage" (a query, reference or action that cannot be read),
// "app" (no such application, or none in front), "window" (no such window),
// "stale" (a reference that no longer leads to the element it was made for),
// "notFound" (nothing matches a query), "action" (the element cannot take the
// action, or refused it, or it had no effect), "timeout" (a wait ran out) and
// "unanswered" (the application did not answer within the reply limit).
#pragma once

#include <string>

#include "core/error.h"

namespace zeblo::elements {

class ElementError : public Error {
public:
    ElementError(std::string kind, std::string errorCase, std::string message)
        : kind_(std::move(kind)), case_(std::move(errorCase)), message_(std::move(message)) {}

    static ElementError usage(std::string errorCase, std::string message) {
        return {"usage", std::move(errorCase), std::move(message)};
    }
    static ElementError stale(std::string ref, std::string why) {
        return {"stale", "staleReference", "Reference '" + ref + "' is stale: " + why};
    }
    static ElementError action(std::string errorCase, std::string message) {
        return {"action", std::move(errorCase), std::move(message)};
    }

    const std::string& kind() const noexcept { return kind_; }
    const std::string& errorCase() const noexcept { return case_; }
    std::string description() const override { return message_; }
    std::string debugText() const override { return kind_ + "." + case_; }

private:
    std::string kind_;
    std::string case_;
    std::string message_;
};

}  // namespace zeblo::elements
