#include <gtest/gtest.h>

#include <cstring>

#include "capi/marshal.h"
#include "core/unicode.h"
#include "ops/apps/app_error.h"

namespace zeblo::capi {
namespace {

TEST(Marshal, StringsAreDecodedWithReplacement) {
    EXPECT_EQ(decodeString(nullptr), "");
    EXPECT_EQ(decodeString(""), "");
    EXPECT_EQ(decodeString("caf\xc3\xa9"), "caf\xc3\xa9");
    EXPECT_EQ(decodeString("a\xff" "b"), "a\xef\xbf\xbd" "b");
    EXPECT_EQ(decodeString("\xc3"), "\xef\xbf\xbd");                 // truncated sequence
    EXPECT_EQ(decodeString("\xed\xa0\x80"), "\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd");  // encoded surrogate
    EXPECT_EQ(decodeString("\xc0\xaf"), "\xef\xbf\xbd\xef\xbf\xbd");  // overlong slash
}

TEST(Marshal, TitleArrays) {
    const char* path[] = {"File", nullptr, "Save"};
    EXPECT_EQ(decodeTitles(path, 3), (std::vector<std::string>{"File", "Save"}));
    EXPECT_EQ(decodeTitles(path, 1), (std::vector<std::string>{"File"}));
    EXPECT_TRUE(decodeTitles(path, 0).empty());
    EXPECT_TRUE(decodeTitles(path, -5).empty());
    EXPECT_TRUE(decodeTitles(nullptr, 3).empty());
    const char* empties[] = {"", nullptr};
    EXPECT_EQ(decodeTitles(empties, 2), (std::vector<std::string>{""}));
}

TEST(Marshal, KeyCodesMasksAndTimeouts) {
    const std::uint16_t codes[] = {55, 9, 65535};
    EXPECT_EQ(copyKeyCodes(codes, 3), (std::vector<std::uint16_t>{55, 9, 65535}));
    EXPECT_TRUE(copyKeyCodes(codes, 0).empty());
    EXPECT_TRUE(copyKeyCodes(codes, -1).empty());
    EXPECT_TRUE(copyKeyCodes(nullptr, 4).empty());

    EXPECT_EQ(reduceModifierMask(0x100000 + 0x80000 + 0x20000), 0x1A0000u);
    EXPECT_EQ(reduceModifierMask(~0ULL), 0x1E0000u);
    EXPECT_EQ(reduceModifierMask(0x800000), 0u);
    EXPECT_EQ(reduceModifierMask(0x10000), 0u);
    EXPECT_EQ(reduceModifierMask(0x100100), 0x100000u);

    EXPECT_FALSE(retryTimeout(-1).has_value());
    EXPECT_EQ(retryTimeout(0), 0);
    EXPECT_EQ(retryTimeout(2000), 2000);
}

TEST(Marshal, ErrorResultsAndHeapCopies) {
    const char* copy = heapCopy(std::string_view("a\0b", 3));
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(std::memcmp(copy, "a\0b", 4), 0);
    std::free(const_cast<char*>(copy));

    const char* err = errorResult(AppError::noFrontmostApp());
    EXPECT_STREQ(err,
                 "{\"error\": \"The operation couldn\xe2\x80\x99t be completed. (ZEBLOui.AppError error 1.)\"}");
    std::free(const_cast<char*>(err));

    // Text that is not UTF-8 is replaced by the export's fallback.
    const char* fallback = jsonResult(std::string("[\"\xff\"]"), "[]");
    EXPECT_STREQ(fallback, "[]");
    std::free(const_cast<char*>(fallback));
}

TEST(Errors, GenericDescriptionsNameTypeAndCase) {
    EXPECT_EQ(AppError::appNotFound("Mail").description(),
              "The operation couldn\xe2\x80\x99t be completed. (ZEBLOui.AppError error 0.)");
    EXPECT_EQ(AppError::launchFailed().description(),
              "The operation couldn\xe2\x80\x99t be completed. (ZEBLOui.AppError error 3.)");
    EXPECT_EQ(AppError::appNotFound("Ma\"il").debugText(), "appNotFound(\"Ma\\\"il\")");
    const MessageError m("Keystroke", -1, "Invalid key character: !");
    EXPECT_EQ(m.description(), "Invalid key character: !");
    EXPECT_EQ(m.code(), -1);
    EXPECT_EQ(m.domain(), "Keystroke");
}

TEST(Marshal, BooleanRunnerLogsLiterally) {
    // Without a desktop installed, the default backend's log takes the line;
    // what matters here is the result and that nothing escapes.
    EXPECT_FALSE(runLogged("zeblo_x", [] { throw AppError::launchFailed(); }));
    EXPECT_FALSE(runLogged("zeblo_x", [] { throw 42; }));
    EXPECT_TRUE(runLogged("zeblo_x", [] {}));
    EXPECT_FALSE(runQuiet([]() -> bool { throw std::runtime_error("x"); }));
}

}  // namespace
}  // namespace zeblo::capi
