#include "core/error.h"

#include "core/json_writer.h"

namespace zeblo {

namespace {

constexpr std::string_view kGenericStart = "The operation couldn\u2019t be completed. (ZEBLOui.";
constexpr std::string_view kGenericCase = " error ";
constexpr std::string_view kGenericEnd = ".)";

}  // namespace

std::string genericDescription(std::string_view typeName, int caseNumber) {
    std::string out(kGenericStart);
    out += typeName;
    out += kGenericCase;
    out += std::to_string(caseNumber);
    out += kGenericEnd;
    return out;
}

std::optional<GenericCase> parseGenericDescription(std::string_view description) {
    if (!description.starts_with(kGenericStart) || !description.ends_with(kGenericEnd)) return std::nullopt;
    description.remove_prefix(kGenericStart.size());
    description.remove_suffix(kGenericEnd.size());
    const std::size_t split = description.rfind(kGenericCase);
    if (split == std::string_view::npos || split == 0) return std::nullopt;
    const std::string_view digits = description.substr(split + kGenericCase.size());
    GenericCase out{std::string(description.substr(0, split)), 0};
    if (digits.empty() || digits.size() > 4) return std::nullopt;
    for (const char c : digits) {
        if (c < '0' || c > '9') return std::nullopt;
        out.caseNumber = out.caseNumber * 10 + (c - '0');
    }
    return out;
}

std::string caseWithPayload(std::string_view caseName, std::string_view payload) {
    std::string out(caseName);
    out += "(\"";
    json::appendEscaped(out, payload);
    out += "\")";
    return out;
}

std::string TypedError::description() const { return genericDescription(kind_->typeName, caseNumber_); }

std::string TypedError::debugText() const {
    const std::string_view name = kind_->cases[static_cast<std::size_t>(caseNumber_)].name;
    return hasPayload_ ? caseWithPayload(name, payload_) : std::string(name);
}

std::string MessageError::debugText() const {
    std::string out = "Error Domain=";
    out += domain_;
    out += " Code=";
    out += std::to_string(code_);
    out += " \"";
    out += message_;
    out += "\"";
    return out;
}

}  // namespace zeblo
