// Round trips through the library's JSON writer: every Unicode scalar value
// is written, parsed back and compared, directly and through the exports.
#include <gtest/gtest.h>

#include <unicode/utf8.h>

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "core/json_writer.h"
#include "core/unicode.h"
#include "support/sim_fixture.h"

namespace zeblo::testing {
namespace {

using Json = nlohmann::json;

std::string utf8(UChar32 c) {
    char buf[U8_MAX_LENGTH];
    int32_t n = 0;
    U8_APPEND_UNSAFE(buf, n, c);
    return std::string(buf, static_cast<std::size_t>(n));
}

// All scalars U+0000..U+10FFFF except the surrogates, in chunks of 4,096.
std::vector<std::string> allScalarsInChunks() {
    std::vector<std::string> chunks(1);
    int inChunk = 0;
    for (UChar32 c = 0; c <= 0x10FFFF; ++c) {
        if (U_IS_SURROGATE(c)) continue;
        chunks.back() += utf8(c);
        if (++inChunk == 4096) {
            chunks.emplace_back();
            inChunk = 0;
        }
    }
    return chunks;
}

// What the writer must hold to: no raw control character, every \u escape
// one of a control character, nothing else escaped that way.
void expectOnlyControlsEscaped(const std::string& written) {
    for (std::size_t i = 0; i < written.size(); ++i) {
        ASSERT_GE(static_cast<unsigned char>(written[i]), 0x20) << "raw control byte at " << i;
        if (written[i] == '\\') {
            ++i;
            if (written[i] == 'u') {
                ASSERT_EQ(written.compare(i + 1, 2, "00"), 0) << written.substr(i - 1, 6);
            }
        }
    }
}

TEST(JsonRoundTrip, EveryUnicodeScalarThroughTheWriter) {
    const auto chunks = allScalarsInChunks();
    std::size_t scalars = 0;
    for (const auto& chunk : chunks) {
        std::string escaped;
        json::appendEscaped(escaped, chunk);
        expectOnlyControlsEscaped(escaped);
        ASSERT_EQ(Json::parse("\"" + escaped + "\"").get<std::string>(), chunk);

        const std::string error = json::errorObject(chunk);
        ASSERT_EQ(error.rfind("{\"error\": \"", 0), 0u);
        ASSERT_EQ(Json::parse(error), (Json{{"error", chunk}}));
        for (char b : chunk) scalars += (static_cast<unsigned char>(b) & 0xC0) != 0x80;  // lead bytes
    }
    EXPECT_EQ(scalars, 0x110000u - 0x800u);
    const std::string array = json::stringArray(chunks);
    EXPECT_EQ(Json::parse(array), Json(chunks));
    EXPECT_EQ(Json::parse(json::stringObject({{chunks[0], chunks[1]}, {"k", chunks.back()}})),
              (Json{{chunks[0], chunks[1]}, {"k", chunks.back()}}));
}

class ExportRoundTrip : public SimTest {};

TEST_F(ExportRoundTrip, RunningAppsAndFrontmostKeepHostileNames) {
    load("{}");
    auto names = allScalarsInChunks();
    // Names a host could meet: quotes, escapes, format directives, controls.
    for (std::string n : std::vector<std::string>{"a\"b\\c/d", "%s%n%@%%", std::string("nul\0x\x01\x1f\n\r\t", 10),
                                                 "\xe2\x80\xa8 \xef\xbb\xbf"})
        names.push_back(n);
    std::int32_t pid = 1000;
    for (const auto& name : names) {
        sim::SimApp app;
        app.name = name;
        app.pid = pid++;
        app.element = desk().newNode();
        desk().addApp(std::move(app));
    }
    // The first chunk starts with U+0000: the library must keep it, escaped.
    EXPECT_EQ(takeJson(zeblo_get_running_apps()), Json(names));

    sim::Node* window = desk().newNode();
    window->setAttr("AXTitle", names.back() + names[1]);
    desk().apps()[2].element->setAttr("AXFocusedWindow", window);
    desk().setFrontmost(desk().apps()[2].pid);
    EXPECT_EQ(takeJson(zeblo_get_frontmost_info()), (Json{{"app", names[2]}, {"window", names.back() + names[1]}}));
}

TEST_F(ExportRoundTrip, ErrorObjectsCarryHostileArgumentsDecoded) {
    load(R"({"apps": [{"name": "Notes", "pid": 7, "element": {"attrs": {"AXWindows": [
        {"attrs": {"AXRole": "AXWindow", "AXTitle": "W", "AXChildren": []}}]}}}], "frontmost": 7})");
    for (const auto& bytes : randomByteStrings(300)) {
        const std::string arg = bytes.substr(0, bytes.find('\0'));  // what a C string can carry
        const Json result = takeJson(zeblo_get_popup_menu_items("Notes", "W", arg.c_str()));
        ASSERT_EQ(result, (Json{{"error", "Button '" + text::decodeUtf8Lossy(arg) + "' not found in window"}}))
            << ::testing::PrintToString(arg);
    }
}

}  // namespace
}  // namespace zeblo::testing
