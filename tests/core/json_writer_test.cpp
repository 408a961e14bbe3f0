#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "core/json_writer.h"

namespace zeblo::json {
namespace {

TEST(JsonWriter, EscapesAsTheLibraryPromises) {
    struct Case {
        std::string in, out;
    };
    const Case cases[] = {
        {"plain", "plain"},
        {"a\"b", "a\\\"b"},
        {"back\\slash", "back\\\\slash"},
        {"a/b", "a\\/b"},
        {"\b\f\n\r\t", "\\b\\f\\n\\r\\t"},
        {std::string("\x01\x1f", 2), "\\u0001\\u001f"},
        {std::string("nul\0in", 6), "nul\\u0000in"},
        {"\x7f", "\x7f"},                                  // DEL is not a control to escape
        {"caf\xc3\xa9 \xe2\x80\x94 \xf0\x9f\x98\x80", "caf\xc3\xa9 \xe2\x80\x94 \xf0\x9f\x98\x80"},  // UTF-8 as is
        {"\xe2\x80\xa8", "\xe2\x80\xa8"},                  // U+2028 stays raw
    };
    for (const auto& c : cases) {
        std::string out;
        appendEscaped(out, c.in);
        EXPECT_EQ(out, c.out) << c.in;
        // And what we write reads back as what we were given.
        EXPECT_EQ(nlohmann::json::parse("\"" + out + "\"").get<std::string>(), c.in);
    }
}

TEST(JsonWriter, CompactForms) {
    EXPECT_EQ(stringArray({}), "[]");
    EXPECT_EQ(stringArray({"Finder", "Mail"}), R"(["Finder","Mail"])");
    EXPECT_EQ(stringObject({{"app", "Mail"}, {"window", "In/box"}}), R"({"app":"Mail","window":"In\/box"})");
    EXPECT_EQ(errorObject("Say \"hi\"\\\n"), R"({"error": "Say \"hi\"\\\n"})");
}

TEST(JsonWriter, PrettyLayout) {
    Writer w(Layout::pretty);
    w.beginObject();
    w.key("app");
    w.string("Mail");
    w.key("menus");
    w.beginArray();
    w.beginObject();
    w.key("path");
    w.beginArray();
    w.endArray();
    w.key("enabled");
    w.boolean(true);
    w.key("cmdModifiers");
    w.integer(-3);
    w.endObject();
    w.endArray();
    w.endObject();
    EXPECT_EQ(w.take(),
              "{\n"
              "  \"app\" : \"Mail\",\n"
              "  \"menus\" : [\n"
              "    {\n"
              "      \"path\" : [],\n"
              "      \"enabled\" : true,\n"
              "      \"cmdModifiers\" : -3\n"
              "    }\n"
              "  ]\n"
              "}");
}

TEST(JsonWriter, DeepNestingNeedsNoRecursion) {
    // Pretty output grows with the square of the depth (indentation), so the
    // depth test uses the compact layout; both share the same state machine.
    Writer w(Layout::compact);
    constexpr int depth = 1000000;
    for (int i = 0; i < depth; ++i) w.beginArray();
    for (int i = 0; i < depth; ++i) w.endArray();
    const std::string text = w.take();
    EXPECT_EQ(text.front(), '[');
    EXPECT_EQ(text.back(), ']');
}

}  // namespace
}  // namespace zeblo::json
