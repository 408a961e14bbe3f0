// The table of the exports. A row names its function once: the name, the C
// types and the way to call it are all taken from the function itself.
#include "capi/export_table.h"

#include <array>
#include <type_traits>
#include <utility>

#include "ops/apps/app_error.h"
#include "ops/keyboard/keystroke_error.h"
#include "ops/menus/menu_error.h"
#include "ops/windows/window_error.h"
#include "zeblo/zeblo.h"

namespace zeblo::capi {
namespace {

// --- How a row calls its function --------------------------------------------------

template <class T>
inline constexpr bool kIsArray = std::is_same_v<T, const char* const*> || std::is_same_v<T, const std::uint16_t*>;

// The C type's spelling in the header.
template <class T>
constexpr std::string_view cType() {
    if constexpr (std::is_same_v<T, const char*>) {
        return "const char *";
    } else if constexpr (std::is_same_v<T, const char* const*>) {
        return "const char *const *";
    } else if constexpr (std::is_same_v<T, const std::uint16_t*>) {
        return "const uint16_t *";
    } else if constexpr (std::is_same_v<T, std::int32_t>) {
        return "int32_t";
    } else if constexpr (std::is_same_v<T, std::uint64_t>) {
        return "uint64_t";
    } else if constexpr (std::is_same_v<T, bool>) {
        return "bool";
    } else {
        static_assert(std::is_void_v<T>, "a C type the exports do not use");
        return "void";
    }
}

// For each C parameter, the argument it is made from: an array's count is
// made from the array's argument.
template <class... P>
constexpr std::array<std::size_t, sizeof...(P)> argumentOf() {
    constexpr bool arrays[] = {kIsArray<P>..., false};
    std::array<std::size_t, sizeof...(P)> out{};
    std::size_t next = 0;
    for (std::size_t k = 0; k < sizeof...(P); ++k) out[k] = k > 0 && arrays[k - 1] ? next - 1 : next++;
    return out;
}

template <class... P>
constexpr std::array<bool, sizeof...(P)> isCount() {
    constexpr bool arrays[] = {false, kIsArray<P>...};
    std::array<bool, sizeof...(P)> out{};
    for (std::size_t k = 0; k < sizeof...(P); ++k) out[k] = arrays[k];
    return out;
}

std::vector<const char*> pointersOf(const Argument& argument) {
    std::vector<const char*> out;
    for (const std::string& title : std::get<std::vector<std::string>>(argument)) out.push_back(title.c_str());
    return out;
}

template <class P, bool Count>
P cArgument(const Argument& argument, const std::vector<const char*>& titles) {
    if constexpr (Count) {
        if (const auto* codes = std::get_if<std::vector<std::uint16_t>>(&argument)) {
            return static_cast<std::int32_t>(codes->size());
        }
        return static_cast<std::int32_t>(std::get<std::vector<std::string>>(argument).size());
    } else if constexpr (std::is_same_v<P, const char*>) {
        return std::holds_alternative<std::nullptr_t>(argument) ? nullptr : std::get<std::string>(argument).c_str();
    } else if constexpr (std::is_same_v<P, const char* const*>) {
        return titles.data();
    } else if constexpr (std::is_same_v<P, const std::uint16_t*>) {
        return std::get<std::vector<std::uint16_t>>(argument).data();
    } else {
        return std::get<P>(argument);
    }
}

template <auto Function, class R, class... P, std::size_t... K>
CallResult callWith(std::span<const Argument> arguments, std::index_sequence<K...>) {
    static constexpr auto argument = argumentOf<P...>();
    static constexpr auto count = isCount<P...>();
    // The pointer arrays of the titles, alive until the call returns.
    std::array<std::vector<const char*>, sizeof...(P)> titles;
    ((std::is_same_v<P, const char* const*> ? (void)(titles[K] = pointersOf(arguments[argument[K]])) : (void)0), ...);
    CallResult out;
    if constexpr (std::is_same_v<R, bool>) {
        out.answer = Function(cArgument<P, count[K]>(arguments[argument[K]], titles[K])...);
    } else if constexpr (std::is_same_v<R, const char*>) {
        out.text.reset(Function(cArgument<P, count[K]>(arguments[argument[K]], titles[K])...));
    } else {
        Function(cArgument<P, count[K]>(arguments[argument[K]], titles[K])...);
    }
    return out;
}

template <class Signature>
struct Traits;
template <class R, class... P>
struct Traits<R (*)(P...)> {
    template <auto Function>
    static CallResult call(std::span<const Argument> arguments) {
        return callWith<Function, R, P...>(arguments, std::index_sequence_for<P...>());
    }
    static std::vector<std::string_view> cTypes() { return {cType<P>()...}; }
    static constexpr std::string_view cResult() { return cType<R>(); }
    static constexpr ResultKind result() {
        return std::is_same_v<R, bool> ? ResultKind::boolean : std::is_void_v<R> ? ResultKind::none : ResultKind::json;
    }
};

// --- The rows ----------------------------------------------------------------------

template <auto Function>
Export row(std::string_view name, std::vector<Param> params, Effect effect, Failure failure,
           std::vector<Raises> raises) {
    using Signature = Traits<decltype(Function)>;
    return {name,
            std::move(params),
            effect,
            failure,
            std::move(raises),
            Signature::result(),
            Signature::cResult(),
            Signature::cTypes(),
            &Signature::template call<Function>};
}

// A row of the table: the function's name is written once, as the function.
#define ZEBLO_ROW(function, ...) row<&function>(#function, __VA_ARGS__)

using enum ParamKind;
using enum Effect;
using enum Failure;

const Param kApp{"appName", name};
const Param kWindow{"windowName", name};
const Param kPath{"menuPath", titles};

Raises menuErrors(std::vector<std::string_view> cases) { return {&kMenuError, std::move(cases)}; }
Raises windowErrors(std::vector<std::string_view> cases) { return {&kWindowError, std::move(cases)}; }
Raises appErrors(std::vector<std::string_view> cases) { return {&kAppError, std::move(cases)}; }
const Raises kKeystrokeFailures{nullptr, {}, kKeystrokeDomain};
// Every lookup of a window control: the application, the window, the control.
const std::vector<std::string_view> kFindWindow{"appNotFound", "noFrontmostApp", "windowNotFound"};

std::vector<std::string_view> plus(std::vector<std::string_view> cases, std::vector<std::string_view> more) {
    cases.insert(cases.end(), more.begin(), more.end());
    return cases;
}

std::vector<Export> makeTable() {
    const auto findMenuBar = std::vector<std::string_view>{"appNotFound", "noFrontmostApp", "menuBarNotFound"};
    return {
        // Menus
        ZEBLO_ROW(zeblo_get_app_menus, {kApp}, reads, errorObject, {menuErrors(findMenuBar)}),
        ZEBLO_ROW(zeblo_menu_click, {kApp, kPath}, acts, logged,
                  {menuErrors(plus(findMenuBar, {"menuItemNotFound", "emptyMenuPath", "menuClickFailed"}))}),
        ZEBLO_ROW(zeblo_menu_item_exists, {kApp, kPath}, reads, quiet, {}),
        ZEBLO_ROW(zeblo_menu_item_enabled, {kApp, kPath}, reads, quiet, {}),
        // Keyboard and text
        ZEBLO_ROW(zeblo_send_keystroke, {kApp, {"keyChar", text}, {"modifiers", integer}}, acts, logged,
                  {{&kKeystrokeError, {"appNotFound", "noFrontmostApp"}}, kKeystrokeFailures}),
        ZEBLO_ROW(zeblo_send_global_keystroke, {{"keyCodes", keyCodes}, {"modifierFlags", mask}}, acts, logged,
                  {kKeystrokeFailures}),
        ZEBLO_ROW(zeblo_type_text, {{"text", text}, {"markEvents", flag}}, acts, logged, {kKeystrokeFailures}),
        ZEBLO_ROW(zeblo_paste_text, {{"text", text}}, acts, logged, {kKeystrokeFailures}),
        ZEBLO_ROW(zeblo_paste_into_focused_field, {{"text", text}, {"sendEnter", flag}}, acts, logged,
                  {kKeystrokeFailures}),
        // Windows and controls
        ZEBLO_ROW(zeblo_click_button, {kApp, kWindow, {"buttonName", text}}, acts, logged,
                  {windowErrors(plus(kFindWindow, {"buttonNotFound", "clickFailed"}))}),
        ZEBLO_ROW(zeblo_click_checkbox, {kApp, kWindow, {"checkboxName", text}}, acts, logged,
                  {windowErrors(plus(kFindWindow, {"checkboxNotFound", "clickFailed"}))}),
        ZEBLO_ROW(zeblo_get_window_buttons, {kApp, kWindow}, reads, shortText, {windowErrors(kFindWindow)}),
        ZEBLO_ROW(zeblo_set_checkbox_value, {kApp, kWindow, {"checkboxName", text}, {"value", integer}}, acts, logged,
                  {windowErrors(plus(kFindWindow, {"checkboxNotFound", "clickFailed"}))}),
        ZEBLO_ROW(zeblo_get_popup_menu_items, {kApp, kWindow, {"popupName", text}}, acts, errorObject,
                  {windowErrors(plus(kFindWindow, {"buttonNotFound"}))}),
        ZEBLO_ROW(zeblo_get_window_text, {kApp, kWindow}, reads, errorObject, {windowErrors(kFindWindow)}),
        // Applications
        ZEBLO_ROW(zeblo_get_frontmost_info, {}, reads, errorObject, {appErrors({"noFrontmostApp"})}),
        ZEBLO_ROW(zeblo_get_running_apps, {}, reads, fallback, {}),
        ZEBLO_ROW(zeblo_focus_app,
                  {kApp, kWindow, {"shouldSwitch", flag}, {"shouldLaunch", flag}, {"timeout", milliseconds}}, acts,
                  logged, {appErrors({"appNotFound", "activationFailed"})}),
        ZEBLO_ROW(zeblo_launch_app, {{"appName", text}}, acts, logged, {appErrors({"launchFailed"})}),
        ZEBLO_ROW(zeblo_is_in_text_field, {}, reads, quiet, {}),
        // Windows, continued
        ZEBLO_ROW(zeblo_window_exists, {kApp, kWindow}, reads, quiet, {}),
        ZEBLO_ROW(zeblo_get_window_titles, {kApp}, reads, fallback, {}),
        ZEBLO_ROW(zeblo_wait_for_window, {kApp, kWindow, {"condition", integer}, {"timeout", milliseconds}}, reads,
                  quiet, {}),
        ZEBLO_ROW(zeblo_close_window, {kApp, kWindow, {"retryTimeout", milliseconds}}, acts, logged,
                  {windowErrors(plus(kFindWindow, {"closeFailed", "timeout"}))}),
        // Memory
        ZEBLO_ROW(zeblo_free_string, {{"ptr", returned}}, reads, none, {}),
    };
}

#undef ZEBLO_ROW

}  // namespace

void FreeString::operator()(const char* text) const noexcept { zeblo_free_string(text); }

const std::vector<Export>& exportTable() {
    static const std::vector<Export> table = makeTable();
    return table;
}

const Export* findExport(std::string_view name) {
    for (const Export& row : exportTable()) {
        if (row.name == name) return &row;
    }
    return nullptr;
}

}  // namespace zeblo::capi
