#include "capi/marshal.h"

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "core/unicode.h"
#include "ops/apps/app_error.h"
#include "ops/keyboard/keystroke_error.h"
#include "ops/menus/menu_error.h"
#include "ops/windows/window_error.h"
#include "platform/platform.h"
#include "support/forwarding_platform.h"
#include "zeblo/zeblo.h"

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

// Every case of every error kind: its number, its description, its
// rendering for diagnostics, and for WindowError its short text.
TEST(Errors, EveryKindAndCase) {
    const std::string generic = "The operation couldn\xe2\x80\x99t be completed. (ZEBLOui.";
    struct Row {
        const TypedError& error;
        std::string_view type;
        int number;
        std::string description;  // the text after the generic start, for the generic ones
        std::string debugText;
        std::string shortText = {};
    };
    const Row rows[] = {
        {AppError::appNotFound("Ma\"il"), "AppError", 0, "AppError error 0.)", "appNotFound(\"Ma\\\"il\")"},
        {AppError::noFrontmostApp(), "AppError", 1, "AppError error 1.)", "noFrontmostApp"},
        {AppError::activationFailed(), "AppError", 2, "AppError error 2.)", "activationFailed"},
        {AppError::launchFailed(), "AppError", 3, "AppError error 3.)", "launchFailed"},
        {MenuError::appNotFound("Mail"), "MenuError", 0, "MenuError error 0.)", "appNotFound(\"Mail\")"},
        {MenuError::menuItemNotFound("Save"), "MenuError", 1, "MenuError error 1.)", "menuItemNotFound(\"Save\")"},
        {MenuError::noFrontmostApp(), "MenuError", 2, "MenuError error 2.)", "noFrontmostApp"},
        {MenuError::menuBarNotFound(), "MenuError", 3, "MenuError error 3.)", "menuBarNotFound"},
        {MenuError::emptyMenuPath(), "MenuError", 4, "MenuError error 4.)", "emptyMenuPath"},
        {MenuError::menuClickFailed(), "MenuError", 5, "MenuError error 5.)", "menuClickFailed"},
        {KeystrokeError::appNotFound("X"), "KeystrokeError", 0, "KeystrokeError error 0.)", "appNotFound(\"X\")"},
        {KeystrokeError::noFrontmostApp(), "KeystrokeError", 1, "KeystrokeError error 1.)", "noFrontmostApp"},
        {WindowError::appNotFound("Nope"), "WindowError", 0, "Application 'Nope' not found. Check if the app is running.",
         "appNotFound(\"Nope\")", "Application 'Nope' not found"},
        {WindowError::windowNotFound("Prefs"), "WindowError", 1,
         "Window 'Prefs' not found. Check if the window exists and is visible.", "windowNotFound(\"Prefs\")",
         "Window 'Prefs' not found"},
        {WindowError::windowUnanswered(""), "WindowError", 1,
         "Window '' not found. Check if the window exists and is visible.", "windowNotFound(\"\")", "Window '' not found"},
        {WindowError::buttonNotFound("OK"), "WindowError", 2, "Button 'OK' not found in window", "buttonNotFound(\"OK\")",
         "Button 'OK' not found"},
        {WindowError::checkboxNotFound("Wrap"), "WindowError", 3, "Checkbox 'Wrap' not found in window",
         "checkboxNotFound(\"Wrap\")", "Checkbox 'Wrap' not found"},
        {WindowError::noFrontmostApp(), "WindowError", 4, "No frontmost application", "noFrontmostApp",
         "No frontmost application"},
        {WindowError::clickFailed(), "WindowError", 5, "Failed to perform click action", "clickFailed",
         "Click action failed"},
        {WindowError::closeFailed(), "WindowError", 6, "Failed to close window", "closeFailed", "Close action failed"},
        {WindowError::timeout(), "WindowError", 7, "Operation timed out", "timeout", "Operation timed out"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.debugText);
        EXPECT_EQ(row.error.errorKind().typeName, row.type);
        EXPECT_EQ(row.error.caseNumber(), row.number);
        EXPECT_EQ(row.error.debugText(), row.debugText);
        const auto* window = dynamic_cast<const WindowError*>(&row.error);
        if (window != nullptr) {
            EXPECT_EQ(row.error.description(), row.description);
            EXPECT_EQ(window->shortText(), row.shortText);
            EXPECT_FALSE(parseGenericDescription(row.error.description()));
        } else {
            EXPECT_EQ(row.error.description(), generic + row.description);
            const auto parsed = parseGenericDescription(row.error.description());
            ASSERT_TRUE(parsed);
            EXPECT_EQ(parsed->typeName, row.type);
            EXPECT_EQ(parsed->caseNumber, row.number);
        }
    }
    EXPECT_TRUE(WindowError::windowUnanswered("x").unanswered());
    EXPECT_FALSE(WindowError::windowNotFound("x").unanswered());

    for (const int number : {12, 1234}) {
        const auto parsed = parseGenericDescription(genericDescription("Some.Type", number));
        ASSERT_TRUE(parsed);
        EXPECT_EQ(parsed->typeName, "Some.Type");
        EXPECT_EQ(parsed->caseNumber, number);
    }
    // Only the generic form is read back: not its start alone, not a log line.
    for (const std::string& text :
         {generic + "AppError error .)", generic + "AppError error 1x.)", generic + " error 1.)",
          generic + "AppError error 12345.)", "zeblo_x error: " + generic + "AppError error 1.)",
          std::string("Operation timed out")}) {
        EXPECT_FALSE(parseGenericDescription(text)) << text;
    }
    const MessageError m("Keystroke", -1, "Invalid key character: !");
    EXPECT_EQ(m.description(), "Invalid key character: !");
    EXPECT_EQ(m.debugText(), "Error Domain=Keystroke Code=-1 \"Invalid key character: !\"");
}

// A boolean export's runner: true and no line when the operation finishes;
// false and exactly one line, the export's prefix and the description written
// as it is (never as a format pattern), when it throws anything.
TEST(Marshal, BooleanRunnerLogsLiterally) {
    const auto linesOf = [](auto&& run) {
        platform::LogCapture log;
        const bool result = run();
        return std::make_pair(result, log.lines());
    };
    using Lines = std::vector<std::string>;
    EXPECT_EQ(linesOf([] { return runLogged("zeblo_x", [] {}); }), std::make_pair(true, Lines{}));
    EXPECT_EQ(linesOf([] { return runLogged("zeblo_x", [] { throw AppError::launchFailed(); }); }),
              std::make_pair(false, Lines{"zeblo_x error: " + AppError::launchFailed().description()}));
    EXPECT_EQ(linesOf([] { return runLogged("zeblo_y", [] { throw MessageError("d", 1, "100% %s %n"); }); }),
              std::make_pair(false, Lines{"zeblo_y error: 100% %s %n"}));
    EXPECT_EQ(linesOf([] { return runLogged("zeblo_x", [] { throw 42; }); }),
              std::make_pair(false, Lines{"zeblo_x error: unknown error"}));
    // The quiet runner gives the operation's answer and says nothing.
    EXPECT_EQ(linesOf([] { return runQuiet([] { return true; }); }), std::make_pair(true, Lines{}));
    EXPECT_EQ(linesOf([] { return runQuiet([]() -> bool { throw std::runtime_error("x"); }); }),
              std::make_pair(false, Lines{}));
}

// A desktop whose workspace runs out of memory: the exports that never
// answer with an error object still answer "[]"; the others answer with the
// error, or false and their line.
TEST(Marshal, ExportsKeepTheirAnswersWhenMemoryRunsOut) {
    struct OutOfMemory final : testing::ForwardingPlatform {
        using ForwardingPlatform::ForwardingPlatform;
        std::vector<platform::RunningApp> runningApplications() override { throw std::bad_alloc(); }
        std::optional<platform::RunningApp> frontmostApplication() override { throw std::bad_alloc(); }
    };
    const auto desk = std::make_shared<sim::SimDesktop>();
    platform::install(std::make_shared<OutOfMemory>(desk));
    const auto text = [](const char* result) {
        const std::string out = result != nullptr ? result : "<null>";
        zeblo_free_string(result);
        return out;
    };
    EXPECT_EQ(text(zeblo_get_running_apps()), "[]");
    EXPECT_EQ(text(zeblo_get_window_titles("Mail")), "[]");
    EXPECT_EQ(text(zeblo_get_window_buttons("Mail", "")), "[]");
    EXPECT_TRUE(text(zeblo_get_window_text("Mail", "")).starts_with("{\"error\": \""));
    EXPECT_TRUE(text(zeblo_get_frontmost_info()).starts_with("{\"error\": \""));
    EXPECT_FALSE(zeblo_window_exists("Mail", ""));
    EXPECT_FALSE(zeblo_click_button("Mail", "", "OK"));
    EXPECT_TRUE(desk->logLines().back().starts_with("zeblo_click_button error: ")) << desk->logLines().back();
    EXPECT_EQ(desk->liveHandles(), 0);
    platform::install(nullptr);
}

}  // namespace
}  // namespace zeblo::capi
