// The base of every error the library throws inside. Errors are thrown by the
// operations and caught only in the exported functions, which turn them into
// `false` plus one log line, or into an error object.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

namespace zeblo {

class Error : public std::exception {
public:
    // The text the host sees: written after "<export> error: " in the log and
    // into error objects.
    virtual std::string description() const = 0;
    // The error's own rendering of its case and payload, e.g.
    // `appNotFound("Mail")`; used in diagnostic log lines.
    virtual std::string debugText() const = 0;
    const char* what() const noexcept override { return "ZEBLOui error"; }
};

// The description the platform gives a typed error that has no texts of its
// own, e.g. "The operation couldn’t be completed. (ZEBLOui.AppError error 1.)".
std::string genericDescription(std::string_view typeName, int caseNumber);

// An error of a typed kind without texts of its own: its description is the
// generic one naming the type and the case number, and its default rendering
// is the case name with its payload, if the case carries one.
class TypedError : public Error {
public:
    std::string description() const override;
    std::string debugText() const override;

protected:
    TypedError(const char* typeName, int caseNumber, const char* caseName)
        : typeName_(typeName), caseName_(caseName), caseNumber_(caseNumber) {}
    TypedError(const char* typeName, int caseNumber, const char* caseName, std::string payload)
        : typeName_(typeName), caseName_(caseName), caseNumber_(caseNumber), payload_(std::move(payload)),
          hasPayload_(true) {}

    // The case's string payload; empty for a case that carries none.
    const std::string& payload() const noexcept { return payload_; }

private:
    const char* typeName_;
    const char* caseName_;
    int caseNumber_;
    std::string payload_;
    bool hasPayload_ = false;
};

// An error object with a domain, a code and a message; its description is the
// message.
class MessageError : public Error {
public:
    MessageError(std::string domain, std::int64_t code, std::string message)
        : domain_(std::move(domain)), code_(code), message_(std::move(message)) {}

    const std::string& domain() const noexcept { return domain_; }
    std::int64_t code() const noexcept { return code_; }
    const std::string& message() const noexcept { return message_; }

    std::string description() const override { return message_; }
    std::string debugText() const override;

private:
    std::string domain_;
    std::int64_t code_;
    std::string message_;
};

// What a Swift-style error's default rendering of a case with a string payload
// looks like: name("payload"), the payload escaped as a string literal.
std::string caseWithPayload(std::string_view caseName, std::string_view payload);

}  // namespace zeblo
