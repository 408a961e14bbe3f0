// The protocol side of the MCP server: JSON-RPC messages, version
// negotiation, the tool list and argument checking.
#include "mcp_server.h"

#include <exception>
#include <stdexcept>

#include "zeblo/zeblo.h"

namespace zeblo::mcp {
namespace {

constexpr int kParseError = -32700;
constexpr int kInvalidRequest = -32600;
constexpr int kMethodNotFound = -32601;
constexpr int kInvalidParams = -32602;
constexpr int kInternalError = -32603;

// A JSON-RPC error answer, thrown from the handlers.
struct RpcError {
    int code;
    std::string message;
};

// An argument that does not fit the tool's schema: the tool answers with
// isError and this text, so that the caller can correct the call.
struct BadArgument {
    std::string message;
};

const char* kInstructions =
    "Drives the desktop applications of this machine as a user would: reads menus, window text "
    "and controls, chooses menu items, presses buttons and check boxes, types, pastes and sends "
    "keystrokes, waits for windows. Use get_running_apps to learn the application names. Menu "
    "and keystroke tools match app_name exactly; window and control tools match names loosely "
    "(case and spaces ignored, a part is enough). An omitted app_name means the frontmost "
    "application, an omitted window_name its first window. Times are in milliseconds.";

std::string kindName(Kind kind) {
    switch (kind) {
        case Kind::string: return "string";
        case Kind::stringArray: return "array of strings";
        case Kind::integer: return "integer";
        case Kind::integerArray: return "array of integers";
        case Kind::boolean: return "boolean";
    }
    return "value";
}

Json schemaOf(const Param& p) {
    Json s;
    switch (p.kind) {
        case Kind::string: s["type"] = "string"; break;
        case Kind::boolean: s["type"] = "boolean"; break;
        case Kind::integer:
            s["type"] = "integer";
            s["minimum"] = p.min;
            s["maximum"] = p.max;
            break;
        case Kind::stringArray:
            s["type"] = "array";
            s["items"] = {{"type", "string"}};
            break;
        case Kind::integerArray:
            s["type"] = "array";
            s["items"] = {{"type", "integer"}, {"minimum", p.min}, {"maximum", p.max}};
            break;
    }
    s["description"] = p.description;
    if (!p.fallback.is_null()) s["default"] = p.fallback;
    return s;
}

Json describe(const Tool& tool) {
    Json properties = Json::object();
    Json required = Json::array();
    for (const Param& p : tool.params) {
        properties[p.name] = schemaOf(p);
        if (p.required) required.push_back(p.name);
    }
    Json schema = {{"type", "object"}, {"properties", std::move(properties)}};
    if (!required.empty()) schema["required"] = std::move(required);
    schema["additionalProperties"] = false;
    Json annotations = {{"title", tool.title}, {"readOnlyHint", tool.readOnly}};
    if (!tool.readOnly) annotations["destructiveHint"] = true;
    annotations["idempotentHint"] = tool.idempotent;
    annotations["openWorldHint"] = false;
    return {{"name", tool.name}, {"title", tool.title}, {"description", tool.description},
            {"inputSchema", std::move(schema)}, {"annotations", std::move(annotations)}};
}

bool isInteger(const Json& v) { return v.is_number_integer() || v.is_number_unsigned(); }

bool inRange(const Json& v, const Param& p) {
    if (v.is_number_unsigned()) {
        return p.max >= 0 && v.get<std::uint64_t>() <= static_cast<std::uint64_t>(p.max);
    }
    const std::int64_t n = v.get<std::int64_t>();
    return n >= p.min && n <= p.max;
}

void checkInteger(const Json& v, const Param& p, const std::string& where) {
    if (!isInteger(v)) throw BadArgument{where + " must be an integer"};
    if (!inRange(v, p)) {
        throw BadArgument{where + " must be from " + std::to_string(p.min) + " to " + std::to_string(p.max)};
    }
}

// The arguments checked against the tool's parameters, defaults filled in.
Json checkedArguments(const Tool& tool, const Json& given) {
    if (!given.is_null() && !given.is_object()) throw BadArgument{"arguments must be an object"};
    if (given.is_object()) {
        for (const auto& item : given.items()) {
            bool known = false;
            for (const Param& p : tool.params) known = known || p.name == item.key();
            if (!known) throw BadArgument{"unknown argument '" + item.key() + "' for " + tool.name};
        }
    }
    Json out = Json::object();
    for (const Param& p : tool.params) {
        const Json* v = given.is_object() && given.contains(p.name) ? &given.at(p.name) : nullptr;
        if (v == nullptr || v->is_null()) {
            if (p.required) throw BadArgument{"missing argument '" + p.name + "' (" + kindName(p.kind) + ")"};
            out[p.name] = p.fallback;
            continue;
        }
        const std::string where = "'" + p.name + "'";
        switch (p.kind) {
            case Kind::string:
                if (!v->is_string()) throw BadArgument{where + " must be a string"};
                break;
            case Kind::boolean:
                if (!v->is_boolean()) throw BadArgument{where + " must be true or false"};
                break;
            case Kind::integer: checkInteger(*v, p, where); break;
            case Kind::stringArray:
                if (!v->is_array()) throw BadArgument{where + " must be an array of strings"};
                for (const Json& item : *v) {
                    if (!item.is_string()) throw BadArgument{where + " must be an array of strings"};
                }
                break;
            case Kind::integerArray:
                if (!v->is_array()) throw BadArgument{where + " must be an array of integers"};
                for (const Json& item : *v) checkInteger(item, p, "each of " + where);
                break;
        }
        out[p.name] = *v;
    }
    return out;
}

Json toolResult(const Outcome& outcome) {
    Json content = Json::array({{{"type", "text"}, {"text", outcome.text}}});
    // A failure's kind and case, for an agent to branch on.
    if (outcome.isError && !outcome.failure.empty()) content.push_back({{"type", "text"}, {"text", outcome.failure}});
    return {{"content", std::move(content)}, {"isError", outcome.isError}};
}

Json errorAnswer(const Json& id, int code, const std::string& message) {
    return {{"jsonrpc", "2.0"}, {"id", id}, {"error", {{"code", code}, {"message", message}}}};
}

}  // namespace

// --- Arguments ----------------------------------------------------------------

const char* Arguments::text(const std::string& name) const {
    const Json& v = values_.at(name);
    return v.is_string() ? v.get_ref<const std::string&>().c_str() : nullptr;
}

std::vector<std::string> Arguments::strings(const std::string& name) const {
    return values_.at(name).get<std::vector<std::string>>();
}

std::int64_t Arguments::integer(const std::string& name) const {
    const Json& v = values_.at(name);
    return v.is_number_unsigned() ? static_cast<std::int64_t>(v.get<std::uint64_t>()) : v.get<std::int64_t>();
}

std::vector<std::int64_t> Arguments::integers(const std::string& name) const {
    std::vector<std::int64_t> out;
    for (const Json& v : values_.at(name)) out.push_back(v.get<std::int64_t>());
    return out;
}

bool Arguments::flag(const std::string& name) const { return values_.at(name).get<bool>(); }

// --- Server ----------------------------------------------------------------------

Server::Server() {
    for (const Tool& tool : allTools()) toolList_.push_back(describe(tool));
}

Json Server::callTool(const Json& params) {
    if (!params.is_object() || !params.contains("name") || !params["name"].is_string()) {
        throw RpcError{kInvalidParams, "tools/call needs the tool's name"};
    }
    const std::string name = params["name"].get<std::string>();
    for (const Tool& tool : allTools()) {
        if (tool.name != name) continue;
        try {
            const Arguments args(checkedArguments(tool, params.value("arguments", Json())));
            return toolResult(tool.run(args));
        } catch (const BadArgument& bad) {
            return toolResult({"Invalid arguments: " + bad.message, true});
        }
    }
    throw RpcError{kInvalidParams, "Unknown tool: " + name};
}

Json Server::dispatch(const std::string& method, const Json& params) {
    if (!params.is_null() && !params.is_object()) throw RpcError{kInvalidParams, "params must be an object"};
    if (method == "initialize") {
        if (!params.is_object() || !params.contains("protocolVersion") || !params["protocolVersion"].is_string()) {
            throw RpcError{kInvalidParams, "initialize needs protocolVersion"};
        }
        // The client's revision when the server speaks it, else the newest.
        std::string version = supportedVersions().front();
        for (const std::string& v : supportedVersions()) {
            if (v == params["protocolVersion"].get<std::string>()) version = v;
        }
        return {{"protocolVersion", version},
                {"capabilities", {{"tools", {{"listChanged", false}}}}},
                {"serverInfo",
                 {{"name", "zeblo"}, {"title", "ZEBLOui desktop automation"}, {"version", ZEBLO_VERSION_STRING}}},
                {"instructions", kInstructions}};
    }
    if (method == "ping") return Json::object();
    if (method == "tools/list") return {{"tools", toolList_}};
    if (method == "tools/call") return callTool(params);
    throw RpcError{kMethodNotFound, "Method not found: " + method};
}

std::optional<std::string> Server::handle(std::string_view line) {
    while (!line.empty() && (line.back() == '\r' || line.back() == ' ' || line.back() == '\t')) line.remove_suffix(1);
    if (line.find_first_not_of(" \t") == std::string_view::npos) return std::nullopt;
    Json message;
    try {
        message = Json::parse(line);
    } catch (const std::exception&) {
        return errorAnswer(nullptr, kParseError, "Parse error").dump();
    }
    if (!message.is_object()) return errorAnswer(nullptr, kInvalidRequest, "Invalid Request").dump();
    const bool hasId = message.contains("id");
    Json id = hasId ? message["id"] : Json();
    const bool idUsable = id.is_string() || isInteger(id);
    if (!message.contains("method")) return std::nullopt;  // a response to us: there are none to wait for
    // Notifications (initialized, cancelled, ...) are never answered, even malformed ones.
    const bool notification = !hasId && message["method"].is_string();
    if (message.value("jsonrpc", Json()) != "2.0" || !message["method"].is_string() || (hasId && !idUsable)) {
        if (notification) return std::nullopt;
        return errorAnswer(idUsable ? id : Json(), kInvalidRequest, "Invalid Request").dump();
    }
    if (notification) return std::nullopt;
    const std::string method = message["method"].get<std::string>();
    try {
        const Json result = dispatch(method, message.value("params", Json()));
        return Json({{"jsonrpc", "2.0"}, {"id", id}, {"result", result}}).dump(-1, ' ', false,
                                                                                 Json::error_handler_t::replace);
    } catch (const RpcError& e) {
        return errorAnswer(id, e.code, e.message).dump();
    } catch (const std::exception& e) {
        return errorAnswer(id, kInternalError, std::string("Internal error: ") + e.what())
            .dump(-1, ' ', false, Json::error_handler_t::replace);
    }
}

void Server::serve(std::istream& in, std::ostream& out) {
    std::string line;
    while (std::getline(in, line)) {
        if (const auto answer = handle(line)) {
            out << *answer << '\n';
            out.flush();
        }
    }
}

}  // namespace zeblo::mcp
