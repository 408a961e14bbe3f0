#include "core/error.h"

#include "core/json_writer.h"

namespace zeblo {

std::string genericDescription(std::string_view typeName, int caseNumber) {
    std::string out = "The operation couldn\u2019t be completed. (ZEBLOui.";
    out += typeName;
    out += " error ";
    out += std::to_string(caseNumber);
    out += ".)";
    return out;
}

std::string caseWithPayload(std::string_view caseName, std::string_view payload) {
    std::string out(caseName);
    out += "(\"";
    json::appendEscaped(out, payload);
    out += "\")";
    return out;
}

std::string TypedError::description() const { return genericDescription(typeName_, caseNumber_); }

std::string TypedError::debugText() const {
    return hasPayload_ ? caseWithPayload(caseName_, payload_) : std::string(caseName_);
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
