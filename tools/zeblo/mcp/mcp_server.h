// The MCP server of `zeblo mcp`: the Model Context Protocol over standard
// input and output (newline-delimited JSON-RPC 2.0 messages), one tool per
// operation of the library.
//
// Methods: initialize (protocol version negotiation), ping, tools/list,
// tools/call; notifications are taken and never answered. A malformed
// message, an unknown method or an unknown tool gets a JSON-RPC error; a
// tool whose operation fails answers with isError and the library's own
// failure text. Nothing a client sends ends the server: it ends when its
// input does.
#pragma once

#include <cstdint>
#include <functional>
#include <istream>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

namespace zeblo::mcp {

using Json = nlohmann::ordered_json;

// The protocol revisions the server speaks, newest first.
inline const std::vector<std::string>& supportedVersions() {
    static const std::vector<std::string> versions = {"2025-11-25", "2025-06-18", "2025-03-26", "2024-11-05"};
    return versions;
}

enum class Kind : std::uint8_t { string, stringArray, integer, integerArray, boolean };

struct Param {
    std::string name;
    Kind kind;
    std::string description;
    bool required = false;
    std::int64_t min = 0, max = 0;  // integers and integer arrays only
    Json fallback = nullptr;        // the value when absent (null: absent)
};

// A tool's validated arguments: every parameter present, defaults filled in,
// null for an absent optional string.
class Arguments {
public:
    explicit Arguments(Json values) : values_(std::move(values)) {}
    // The string, or nullptr for null (an optional name not given).
    const char* text(const std::string& name) const;
    std::vector<std::string> strings(const std::string& name) const;
    std::int64_t integer(const std::string& name) const;
    std::vector<std::int64_t> integers(const std::string& name) const;
    bool flag(const std::string& name) const;
    // The value as given (null for an optional one not given).
    const Json& value(const std::string& name) const { return values_.at(name); }

private:
    Json values_;
};

struct Outcome {
    Outcome(std::string text_, bool isError_ = false, std::string failure_ = {})
        : text(std::move(text_)), isError(isError_), failure(std::move(failure_)) {}
    std::string text;  // the operation's JSON, or its failure text
    bool isError = false;
    // For a failure, {"kind", "case", ...} as zeblo_last_failure tells it
    // (empty when it cannot tell).
    std::string failure;
};

struct Tool {
    std::string name;
    std::string title;
    std::string description;
    std::vector<Param> params;
    bool readOnly = false;
    bool idempotent = false;
    std::function<Outcome(const Arguments&)> run;
    std::string_view exportName = {};  // the export the tool calls
};

// The 24 tools, one per operation (zeblo_free_string has none), and the
// element tools (mcp_element_tools.cpp), one for each element function and
// zeblo_press_keys.
const std::vector<Tool>& allTools();
void addElementTools(std::vector<Tool>& tools);
// The calling thread's last failure, {"kind", "case", ...}, or "" (none).
std::string lastFailure();

class Server {
public:
    Server();
    // Answers one message (one line of input); nothing for a notification,
    // a response or a blank line.
    std::optional<std::string> handle(std::string_view line);
    // Reads messages from `in` until it ends, writing each answer to `out`.
    void serve(std::istream& in, std::ostream& out);

private:
    Json dispatch(const std::string& method, const Json& params);
    Json callTool(const Json& params);

    std::vector<Json> toolList_;  // built once
};

}  // namespace zeblo::mcp
