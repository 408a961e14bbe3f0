// How a row of an export table is made from its function: the C types and
// the result kind read from the function's type, and a call that turns
// argument values into the C arguments. Used by the table of the 25 exports
// and by the superset library's table.
#pragma once

#include <array>
#include <type_traits>
#include <utility>

#include "capi/export_table.h"

namespace zeblo::capi::detail {

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

inline std::vector<const char*> pointersOf(const Argument& argument) {
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

// A row of a table: the function's name is written once, as the function.
#define ZEBLO_ROW(function, ...) ::zeblo::capi::detail::row<&function>(#function, __VA_ARGS__)

}  // namespace zeblo::capi::detail
