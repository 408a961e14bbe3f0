// The table of the 25 exports: for each, its name, its parameters, the kind
// of its result, whether it only reads the desktop or acts on it, how a
// failure reaches the host, and the error kinds and cases it reports; and a
// way to call it with arguments given as values. The command-line tool's
// commands and the MCP server's tools are made from this table, and tests
// hold the public header, the Python bindings and the shared libraries'
// symbols to it.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "core/error.h"

namespace zeblo::capi {

// What a parameter is to the host. An array comes with a count, which the
// header names after it ("menuPath", "menuPathCount").
enum class ParamKind : std::uint8_t {
    name,          // const char*, may be null: an application or window name ("" when null)
    text,          // const char*, required
    titles,        // const char* const* and its int32_t count: a path of menu titles
    keyCodes,      // const uint16_t* and its int32_t count: virtual key codes
    integer,       // int32_t
    milliseconds,  // int32_t: a time
    mask,          // uint64_t: event flags
    flag,          // bool
    returned,      // const char*: a string an export returned, or null
    query,         // const char*, required: a JSON object of named fields
};

// The result: a JSON string the host frees, a boolean, or none.
enum class ResultKind : std::uint8_t { json, boolean, none };

// Whether the export only reads the desktop or may change it.
enum class Effect : std::uint8_t { reads, acts };

// How a failure reaches the host.
enum class Failure : std::uint8_t {
    logged,       // false and one log line: "<export> error: <description>"
    quiet,        // false (or the operation's own answer), nothing written
    errorObject,  // {"error": "<description>"}
    fallback,     // a fixed text ("[]"): only the writer can fail
    shortText,    // an error object with the short texts, and lines of its own
    none,         // nothing can fail
};

struct Param {
    std::string_view name;  // as the header names it
    ParamKind kind;
};

// One error kind an export reports: a typed kind and the cases of it that the
// export raises, or the errors with messages of one domain.
struct Raises {
    const ErrorKind* kind = nullptr;
    std::vector<std::string_view> cases = {};
    std::string_view messageDomain = {};
};

// One argument of a call through the table, of the alternative its
// parameter's kind takes: a name or text (a null name: nullptr), titles, key
// codes, an integer or time, a mask, a flag.
using Argument = std::variant<std::nullptr_t, std::string, std::vector<std::string>, std::vector<std::uint16_t>,
                              std::int32_t, std::uint64_t, bool>;

// The result of a call: a string export's text, owned and freed with
// zeblo_free_string (null only when the library ran out of memory), or a
// boolean export's answer.
struct FreeString {
    void operator()(const char* text) const noexcept;
};
struct CallResult {
    std::unique_ptr<const char, FreeString> text;
    bool answer = false;
};

struct Export {
    std::string_view name;
    std::vector<Param> params;
    Effect effect;
    Failure failure;
    std::vector<Raises> raises;
    // Taken from the function's declaration: the kind of its result, and the
    // C types of its result and parameters, counts included ("const char *",
    // "int32_t"...), as the header spells them.
    ResultKind result;
    std::string_view cResult;
    std::vector<std::string_view> cTypes;
    // Calls the export with one argument per parameter; an argument of
    // another alternative than its parameter's kind takes throws
    // std::bad_variant_access.
    CallResult (*call)(std::span<const Argument> arguments);
};

// The 25 exports, in the order of the header.
const std::vector<Export>& exportTable();
// The export of the table named `name`, or null.
const Export* findExport(std::string_view name);

}  // namespace zeblo::capi
