// Reading the desktop format (docs/desktop-format.md): its values, each
// checked with an error that names its place, and its elements, built in two
// passes over an explicit work list so that a tree of any depth loads
// without recursion: the first pass makes a node for every inline element
// object (and registers its id), the second fills in the attributes, where a
// {"ref": ID} can then name any node of the file. The document around them
// (applications, timeline, pasteboard) is read in sim_loader.cpp.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/sim/sim_state.h"

namespace zeblo::sim::format {

using Json = nlohmann::ordered_json;

// Throws DesktopFormatError: "<where>: <problem>".
[[noreturn]] void fail(const std::string& where, const std::string& problem);
// ", got <type>", for a problem's text.
std::string got(const Json& j);

// An integer in [lo, hi]; `what` names the kind expected.
std::int64_t integerOf(const Json& j, const std::string& where, std::int64_t lo, std::int64_t hi, const char* what);
std::int32_t pidOf(const Json& j, const std::string& where);
platform::AXError codeOf(const Json& j, const std::string& where);
bool boolOf(const Json& j, const std::string& where);
const std::string& stringOf(const Json& j, const std::string& where);
// A hung time: a number of seconds above 0 and at most an hour, in whole
// microseconds (at least one); null is 0, no hang.
std::int64_t hungMicrosOf(const Json& j, const std::string& where);
void requireObject(const Json& j, const std::string& where, const char* what);

// Builds the elements of one document (or one timeline change).
class Builder {
public:
    explicit Builder(SimDesktop::Impl& state) : state_(state) {}

    // First pass: makes a node for every inline element under `root` (an
    // ELEMENT value of the format) and registers its id.
    void collect(Json& root, const std::string& where);
    // Second pass: fills every node collected so far. Errors name the place
    // inside the element; the element's own place is added only then, so
    // deep trees cost no long strings.
    void fill();
    // The node of an ELEMENT value after `fill`; null for JSON null.
    Node* resolve(const Json& j, const std::string& where) const;

private:
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);
    struct Seg {
        std::size_t parent;
        std::string name;
    };
    struct Pending {
        Json* json;
        Node* node;
        std::size_t seg;
    };

    std::size_t addSeg(std::size_t parent, std::string name);
    // The place of a segment, built only when an error needs it.
    std::string path(std::size_t seg) const;
    Attr attrValue(const Json& v, const std::string& where) const;
    void fillNode(const Json& j, Node& n, const std::string& where) const;

    SimDesktop::Impl& state_;
    std::vector<Seg> segs_;
    std::vector<Pending> pending_;
    std::unordered_map<const Json*, Node*> made_;
};

}  // namespace zeblo::sim::format
