// The base of every error the library throws inside. Errors are thrown by the
// operations and caught only in the exported functions, which turn them into
// `false` plus one log line, or into an error object.
#pragma once

#include <cstdint>
#include <exception>
#include <optional>
#include <span>
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

// One case of a typed error kind: its name, as diagnostics write it
// (`appNotFound`), and what it means, for a reader who has only the case's
// number.
struct ErrorCase {
    std::string_view name;
    std::string_view meaning;
};

// A typed error kind: the type's name and its cases in declaration order (a
// case's number is its index). Each kind's table lies beside its class.
struct ErrorKind {
    std::string_view typeName;
    std::span<const ErrorCase> cases;
};

// The description the platform gives a typed error that has no texts of its
// own, e.g. "The operation couldn’t be completed. (ZEBLOui.AppError error 1.)".
std::string genericDescription(std::string_view typeName, int caseNumber);

// The type and case a generic description names; nothing for any other text
// (a description of an error with texts of its own, a log line's prefix).
struct GenericCase {
    std::string typeName;
    int caseNumber = 0;
};
std::optional<GenericCase> parseGenericDescription(std::string_view description);

// An error of a typed kind: a case of its kind, with a string payload or
// none. Its description is the generic one naming the type and the case
// number unless the kind has texts of its own; its default rendering is the
// case name with its payload, if the case carries one.
class TypedError : public Error {
public:
    std::string description() const override;
    std::string debugText() const override;

    const ErrorKind& errorKind() const noexcept { return *kind_; }
    int caseNumber() const noexcept { return caseNumber_; }

protected:
    TypedError(const ErrorKind& kind, int caseNumber) : kind_(&kind), caseNumber_(caseNumber) {}
    TypedError(const ErrorKind& kind, int caseNumber, std::string payload)
        : kind_(&kind), caseNumber_(caseNumber), payload_(std::move(payload)), hasPayload_(true) {}

    // The case's string payload; empty for a case that carries none.
    const std::string& payload() const noexcept { return payload_; }
    bool hasPayload() const noexcept { return hasPayload_; }

private:
    const ErrorKind* kind_;
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
