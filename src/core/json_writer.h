// The JSON writer behind every text the library returns. Strings are escaped
// as JSON requires, the forward slash is written as "\/", characters beyond
// ASCII are written as UTF-8, and control characters are escaped.
//
// Two layouts: compact (no blanks, no line breaks) and pretty (two blanks of
// indentation per level, one member or element per line, " : " between a key
// and its value; an empty array or object is written as [] or {}).
// The writer is a flat state machine, so arbitrarily deep documents never
// recurse on the machine stack.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zeblo::json {

enum class Layout : std::uint8_t { compact, pretty };

class Writer {
public:
    explicit Writer(Layout layout = Layout::compact) : layout_(layout) {}

    void beginObject();
    void endObject();
    void beginArray();
    void endArray();
    void key(std::string_view k);
    void string(std::string_view s);
    void boolean(bool b);
    void integer(std::int64_t n);

    // The text written so far; the writer is empty afterwards.
    std::string take();
    void reserve(std::size_t n) { out_.reserve(n); }

private:
    void beforeValue();
    void newline();

    Layout layout_;
    std::string out_;
    // One entry per open container: how many members it has so far.
    std::vector<std::size_t> counts_;
    bool afterKey_ = false;
};

// Appends the contents of a JSON string for `s` (no quotation marks).
void appendEscaped(std::string& out, std::string_view s);

// ["a","b"] in the compact layout.
std::string stringArray(const std::vector<std::string>& items);

// {"k":"v",...} in the compact layout, members in the order given.
std::string stringObject(const std::vector<std::pair<std::string, std::string>>& members);

// The error object: {"error": "DESCRIPTION"} with one blank after the colon.
std::string errorObject(std::string_view description);

}  // namespace zeblo::json
