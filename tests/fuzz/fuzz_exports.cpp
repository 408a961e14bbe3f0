// The libFuzzer target: a random simulated desktop, then random calls of the
// exports with random arguments, out-of-contract ones included (null
// required strings, negative counts, null arrays with positive counts).
// After every call: a string result has its documented shape, no handle is
// left alive, a failing boolean export logged its one error line, and the
// pasteboard holds what it must (unchanged by everything but a paste, the
// saved pairs on one item after a paste, the text after a failed one).
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "core/unicode.h"
#include "fuzz/random_desktop.h"
#include "fuzz/result_shapes.h"
#include "platform/platform.h"
#include "support/forwarding_platform.h"
#include "zeblo/zeblo.h"

namespace zeblo::fuzz {
namespace {

using testing::ForwardingPlatform;

constexpr int kMaxCalls = 12;

[[noreturn]] void fail(const std::string& what, const std::string& detail) {
    std::fprintf(stderr, "FUZZ CHECK FAILED: %s\n%s\n", what.c_str(), detail.c_str());
    std::abort();
}

ForwardingPlatform& forwarder() {
    static auto* p = [] {
        auto shared = std::make_shared<ForwardingPlatform>();
        platform::install(shared);
        return new std::shared_ptr<ForwardingPlatform>(shared);
    }();
    return **p;
}

// A C string argument: null, a name, a hostile name or random bytes. The
// storage lives in `keep` until the call is over.
const char* cString(FuzzedDataProvider& in, std::vector<std::string>& keep) {
    if (in.ConsumeIntegralInRange(0, 9) == 0) return nullptr;
    keep.push_back(randomName(in));
    return keep.back().c_str();
}

// Timeouts stay small: the virtual clock is polled every 0.05 s.
std::int32_t timeout(FuzzedDataProvider& in) {
    switch (in.ConsumeIntegralInRange(0, 5)) {
        case 0: return INT32_MIN;
        case 1: return -1;
        case 2: return 0;
        default: return in.ConsumeIntegralInRange(1, 1500);
    }
}

bool samePasteboard(const std::vector<sim::SimPasteboardItem>& a, const std::vector<sim::SimPasteboardItem>& b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (a[i].entries != b[i].entries) return false;
    return true;
}

struct Checker {
    sim::SimDesktop& desk;
    std::vector<sim::SimPasteboardItem> pasteboardBefore;
    std::string call;
    bool illFormed = false;  // the desktop holds text that is not UTF-8: fallbacks allowed

    void begin(const char* name) {
        call = name;
        desk.clearTrace();
        pasteboardBefore = desk.pasteboard();
    }
    void handles() {
        if (desk.liveHandles() != 0) fail(call + " left handles alive", std::to_string(desk.liveHandles()));
    }
    void pasteboardUnchanged() {
        if (!samePasteboard(desk.pasteboard(), pasteboardBefore)) fail(call + " changed the pasteboard", "");
    }
    // A string result: shape-checked, then freed.
    void text(const char* result, std::string (*check)(std::string_view)) {
        handles();
        pasteboardUnchanged();
        if (result == nullptr) fail(call + " returned null", "");
        const std::string_view t = result;
        // The fallback for text that does not decode as UTF-8 (see randomDesktop).
        if ((t == "{}" || t == "[]") && illFormed) {
            zeblo_free_string(result);
            return;
        }
        const std::string problem = check(result);
        if (!problem.empty()) fail(call + ": " + problem, result);
        zeblo_free_string(result);
    }
    // A boolean export that logs: one "<name> error: " line exactly when false.
    void logged(bool ok, const char* exportName) {
        handles();
        const std::string prefix = std::string(exportName) + " error: ";
        int errorLines = 0;
        for (const auto& line : desk.logLines())
            if (line.rfind(prefix, 0) == 0) ++errorLines;
        if (errorLines != (ok ? 0 : 1))
            fail(call + " returned " + (ok ? "true" : "false") + " with " + std::to_string(errorLines) +
                     " error lines",
                 "");
    }
};

std::string arrayOrError(std::string_view t) { return checkStringArray(t, true); }
std::string arrayOnly(std::string_view t) { return checkStringArray(t, false); }
std::string buttons(std::string_view t) { return checkStringArray(t, true, 1000); }
std::string windowText(std::string_view t) { return checkStringArray(t, true, 1002); }
std::string frontmost(std::string_view t) { return checkFrontmost(t); }
std::string menus(std::string_view t) { return checkMenus(t); }

// The running applications' names as the export must give them.
void checkRunningApps(Checker& c, const char* result) {
    const std::string text = result != nullptr ? result : "";
    c.text(result, arrayOnly);
    std::vector<std::string> expected;
    bool allValid = true;
    for (const auto& app : c.desk.apps()) {
        if (!app.name || app.name->empty()) continue;  // nameless and empty names are left out
        allValid = allValid && text::isValidUtf8(*app.name);
        expected.push_back(*app.name);
    }
    if (!allValid && text == "[]") return;  // the documented fallback for text that is not UTF-8
    (void)c.illFormed;
    if (nlohmann::json::parse(text) != nlohmann::json(expected))
        fail("zeblo_get_running_apps lost names", text + " instead of " + nlohmann::json(expected).dump(-1, ' ', true));
}

void checkPaste(Checker& c, bool ok, const std::string& pasted) {
    c.logged(ok, "zeblo_paste_text");
    std::vector<sim::SimPasteboardItem> expected;
    if (ok) {
        sim::SimPasteboardItem restored;
        for (const auto& item : c.pasteboardBefore)
            for (const auto& entry : item.entries)
                if (entry.second) restored.entries.push_back(entry);
        if (!restored.entries.empty()) expected.push_back(std::move(restored));
    } else {
        sim::SimPasteboardItem text;
        text.entries.emplace_back(std::string(platform::kPasteboardTypeString),
                                  platform::Bytes(pasted.begin(), pasted.end()));
        expected.push_back(std::move(text));
    }
    if (!samePasteboard(c.desk.pasteboard(), expected))
        fail("zeblo_paste_text: the pasteboard does not hold what it must",
             sim::SimDesktop::pasteboardJson(c.desk.pasteboard()).dump());
}

void oneCall(FuzzedDataProvider& in, Checker& c) {
    std::vector<std::string> keep;
    keep.reserve(16);  // c_str() pointers must stay valid
    const auto s = [&] { return cString(in, keep); };
    switch (in.ConsumeIntegralInRange(0, 24)) {
        case 0: c.begin("zeblo_get_app_menus"); c.text(zeblo_get_app_menus(s()), menus); break;
        case 1: case 2: case 3: {
            // A path with null entries; the array itself may be null, the
            // count negative or larger than what is there only when null.
            std::vector<const char*> path;
            for (int n = in.ConsumeIntegralInRange(0, 4); n > 0; --n) path.push_back(s());
            const int kind = in.ConsumeIntegralInRange(0, 5);
            const char* const* array = kind == 0 ? nullptr : path.data();
            std::int32_t count = static_cast<std::int32_t>(path.size());
            if (kind == 0) count = in.ConsumeIntegral<std::int32_t>();
            if (kind == 1) count = -in.ConsumeIntegralInRange(1, INT32_MAX);
            const char* app = s();
            const int which = in.ConsumeIntegralInRange(0, 2);
            if (which == 0) {
                c.begin("zeblo_menu_click");
                c.logged(zeblo_menu_click(app, array, count), "zeblo_menu_click");
                c.pasteboardUnchanged();
            } else {
                c.begin(which == 1 ? "zeblo_menu_item_exists" : "zeblo_menu_item_enabled");
                (void)(which == 1 ? zeblo_menu_item_exists(app, array, count)
                                  : zeblo_menu_item_enabled(app, array, count));
                c.handles();
                c.pasteboardUnchanged();
            }
            break;
        }
        case 4: {
            const char* app = s();
            const char* key = in.ConsumeBool() ? s() : (keep.push_back(in.ConsumeRandomLengthString(6)), keep.back().c_str());
            c.begin("zeblo_send_keystroke");
            c.logged(zeblo_send_keystroke(app, key, in.ConsumeIntegral<std::int32_t>()), "zeblo_send_keystroke");
            c.pasteboardUnchanged();
            break;
        }
        case 5: {
            std::vector<std::uint16_t> codes(in.ConsumeIntegralInRange(0, 6));
            for (auto& k : codes) k = in.ConsumeIntegral<std::uint16_t>();
            const bool nullArray = in.ConsumeIntegralInRange(0, 4) == 0;
            std::int32_t count = static_cast<std::int32_t>(codes.size());
            if (nullArray || in.ConsumeIntegralInRange(0, 4) == 0) count = in.ConsumeIntegralInRange(INT32_MIN, nullArray ? INT32_MAX : count);
            c.begin("zeblo_send_global_keystroke");
            c.logged(zeblo_send_global_keystroke(nullArray ? nullptr : codes.data(), count,
                                                 in.ConsumeIntegral<std::uint64_t>()),
                     "zeblo_send_global_keystroke");
            c.pasteboardUnchanged();
            break;
        }
        case 6: {
            const char* text = s();
            c.begin("zeblo_type_text");
            c.logged(zeblo_type_text(text, in.ConsumeBool()), "zeblo_type_text");
            c.pasteboardUnchanged();
            break;
        }
        case 7: case 8: {
            const char* text = s();
            c.begin("zeblo_paste_text");
            const bool ok = zeblo_paste_text(text);
            checkPaste(c, ok, text == nullptr ? std::string() : zeblo::text::decodeUtf8Lossy(text));
            break;
        }
        case 9: {
            const char* text = s();
            c.begin("zeblo_paste_into_focused_field");
            c.logged(zeblo_paste_into_focused_field(text, in.ConsumeBool()), "zeblo_paste_into_focused_field");
            c.pasteboardUnchanged();
            break;
        }
        case 10: case 11: {
            const char *app = s(), *window = s(), *name = s();
            const bool button = in.ConsumeBool();
            c.begin(button ? "zeblo_click_button" : "zeblo_click_checkbox");
            if (button) c.logged(zeblo_click_button(app, window, name), "zeblo_click_button");
            else c.logged(zeblo_click_checkbox(app, window, name), "zeblo_click_checkbox");
            c.pasteboardUnchanged();
            break;
        }
        case 12: {
            const char *app = s(), *window = s();
            c.begin("zeblo_get_window_buttons");
            c.text(zeblo_get_window_buttons(app, window), buttons);
            break;
        }
        case 13: {
            const char *app = s(), *window = s(), *name = s();
            c.begin("zeblo_set_checkbox_value");
            c.logged(zeblo_set_checkbox_value(app, window, name, in.ConsumeIntegral<std::int32_t>()),
                     "zeblo_set_checkbox_value");
            c.pasteboardUnchanged();
            break;
        }
        case 14: {
            const char *app = s(), *window = s(), *name = s();
            c.begin("zeblo_get_popup_menu_items");
            c.text(zeblo_get_popup_menu_items(app, window, name), arrayOrError);
            break;
        }
        case 15: {
            const char *app = s(), *window = s();
            c.begin("zeblo_get_window_text");
            c.text(zeblo_get_window_text(app, window), windowText);
            break;
        }
        case 16: c.begin("zeblo_get_frontmost_info"); c.text(zeblo_get_frontmost_info(), frontmost); break;
        case 17: c.begin("zeblo_get_running_apps"); checkRunningApps(c, zeblo_get_running_apps()); break;
        case 18: {
            const char *app = s(), *window = s();
            const bool doSwitch = in.ConsumeBool(), launch = in.ConsumeBool();
            const std::int32_t ms = timeout(in);
            c.begin("zeblo_focus_app");
            const bool focused = zeblo_focus_app(app, window, doSwitch, launch, ms);
            c.logged(focused, "zeblo_focus_app");
            // No application name: nothing is done and the answer is true.
            if ((app == nullptr || *app == '\0') && (!focused || !c.desk.trace().empty()))
                fail("zeblo_focus_app with no name did something", "");
            c.pasteboardUnchanged();
            break;
        }
        case 19: {
            const char* app = s();
            c.begin("zeblo_launch_app");
            c.logged(zeblo_launch_app(app), "zeblo_launch_app");
            break;
        }
        case 20: c.begin("zeblo_is_in_text_field"); (void)zeblo_is_in_text_field(); c.handles(); break;
        case 21: {
            const char *app = s(), *window = s();
            c.begin("zeblo_window_exists");
            (void)zeblo_window_exists(app, window);
            c.handles();
            break;
        }
        case 22: {
            const char* app = s();
            c.begin("zeblo_get_window_titles");
            c.text(zeblo_get_window_titles(app), arrayOnly);
            break;
        }
        case 23: {
            const char *app = s(), *window = s();
            const std::int32_t condition = in.ConsumeBool() ? in.ConsumeIntegralInRange(0, 2)
                                                            : in.ConsumeIntegral<std::int32_t>();
            const std::int32_t ms = timeout(in);
            c.begin("zeblo_wait_for_window");
            const double before = c.desk.clock();
            const bool held = zeblo_wait_for_window(app, window, condition, ms);
            c.handles();
            // Any other condition, and a timeout of 0 or less, answer false at once.
            if ((condition < 0 || condition > 2 || ms <= 0) && (held || c.desk.clock() != before))
                fail("zeblo_wait_for_window did not return false at once", std::to_string(condition));
            c.pasteboardUnchanged();
            break;
        }
        default: {
            const char *app = s(), *window = s();
            c.begin("zeblo_close_window");
            c.logged(zeblo_close_window(app, window, timeout(in)), "zeblo_close_window");
            c.pasteboardUnchanged();
            zeblo_free_string(nullptr);
            break;
        }
    }
}

}  // namespace
}  // namespace zeblo::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace zeblo::fuzz;
    FuzzedDataProvider in(data, size);
    zeblo::testing::ForwardingPlatform& p = forwarder();
    std::shared_ptr<zeblo::sim::SimDesktop> desk = randomDesktop(in);
    const bool illFormed = lastDesktopHasIllFormedText();
    p.setTarget(desk);
    Checker c{*desk, {}, {}, illFormed};
    for (int n = 0; n < kMaxCalls && in.remaining_bytes() > 0; ++n) oneCall(in, c);
    p.setTarget(nullptr);
    return 0;
}
