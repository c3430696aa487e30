// Filling values into patterns: "Soils[%d] has no %s".
//
// Each "%s", "%d", "%u" or "%x" takes the next argument, and the argument's own type decides how it is written, so a
// letter that doesn't fit is harmless. "%%" is a percent sign; any other "%" stands for itself.
#pragma once

#include "support/export.h"
#include "support/int64.h"

#include <concepts>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

namespace str::fmt {

/// Gives token number `index` of `format`. Tokens alternate: even ones are the literal text between placeholders ("%%"
/// already turned into "%", possibly empty), odd ones the placeholders as they are written. A format of n placeholders
/// has 2n + 1 tokens. False, with `token` empty, beyond the last one. S is std::string or std::wstring.
/// Cost: linear in the format.
template <class S>
bool tokenize(S& token, unsigned index, std::type_identity_t<S> const& format);
extern template ZO_API bool tokenize<std::string>(std::string&, unsigned, std::string const&);
extern template ZO_API bool tokenize<std::wstring>(std::wstring&, unsigned, std::wstring const&);

/// One argument. T is char, wchar_t, char const *, wchar_t const *, short, int, `__int64`, unsigned short, unsigned,
/// `unsigned __int64`, double, void const *, bool, std::string_view or std::wstring_view; `format` finds the one that
/// holds a value. Text is borrowed.
template <class T>
struct arg {
    T value; ///< what is printed

    /// Replaces `out` by the text of the value. `token` is the placeholder that it stands for; none of them changes the
    /// text. Whole numbers are decimal, a double has the shortest text that reads back, a bool is "true" or "false", an
    /// address is "0x" and hexadecimal digits, null text is empty. Narrow text is UTF-8.
    void convert_to_text(std::string& out, std::string const& token) const;
    void convert_to_text(std::wstring& out, std::wstring const& token) const;
};

extern template struct ZO_API arg<char>;
extern template struct ZO_API arg<wchar_t>;
extern template struct ZO_API arg<char const*>;
extern template struct ZO_API arg<wchar_t const*>;
extern template struct ZO_API arg<short>;
extern template struct ZO_API arg<int>;
extern template struct ZO_API arg<htl::Int64>;
extern template struct ZO_API arg<unsigned short>;
extern template struct ZO_API arg<unsigned>;
extern template struct ZO_API arg<htl::UInt64>;
extern template struct ZO_API arg<double>;
extern template struct ZO_API arg<void const*>;
extern template struct ZO_API arg<bool>;
extern template struct ZO_API arg<std::string_view>;
extern template struct ZO_API arg<std::wstring_view>;

namespace impl {

using Argument = std::variant<arg<char>, arg<wchar_t>, arg<char const*>, arg<wchar_t const*>, arg<short>, arg<int>,
                              arg<htl::Int64>, arg<unsigned short>, arg<unsigned>, arg<htl::UInt64>, arg<double>,
                              arg<void const*>, arg<bool>, arg<std::string_view>, arg<std::wstring_view>>;

template <class T, class... U>
concept OneOf = (std::same_as<T, U> || ...);

/// The argument that holds `value` without loss.
template <class A>
Argument MakeArgument(A const& value) {
    if constexpr (OneOf<A, char, wchar_t, short, int, htl::Int64, unsigned short, unsigned, htl::UInt64, double, bool>)
        return arg<A>{value};
    else if constexpr (std::integral<A> && std::is_signed_v<A>)
        return arg<htl::Int64>{value};
    else if constexpr (std::integral<A>)
        return arg<htl::UInt64>{value};
    else if constexpr (std::floating_point<A>)
        return arg<double>{static_cast<double>(value)};
    // Pointers before views: a view can't be made from null.
    else if constexpr (std::convertible_to<A const&, char const*>)
        return arg<char const*>{value};
    else if constexpr (std::convertible_to<A const&, wchar_t const*>)
        return arg<wchar_t const*>{value};
    else if constexpr (std::convertible_to<A const&, std::string_view>)
        return arg<std::string_view>{value};
    else if constexpr (std::convertible_to<A const&, std::wstring_view>)
        return arg<std::wstring_view>{value};
    else
        return arg<void const*>{value};
}

ZO_API std::string Fill(std::string_view pattern, std::span<Argument const> arguments);
ZO_API std::wstring Fill(std::wstring_view pattern, std::span<Argument const> arguments);

/// Copies at most `size` - 1 characters and a terminating zero.
ZO_API void Cut(char* buffer, std::size_t size, std::string const& text) noexcept;
ZO_API void Cut(wchar_t* buffer, std::size_t size, std::wstring const& text) noexcept;

template <class View, class... A>
auto FillAll(View pattern, A const&... arguments) {
    if constexpr (sizeof...(A) == 0) {
        return Fill(pattern, {});
    } else {
        Argument const list[] = {MakeArgument(arguments)...};
        return Fill(pattern, list);
    }
}

} // namespace impl

/// The pattern with its placeholders filled in, first to last, in one pass: a "%" inside an argument is plain text. A
/// placeholder without an argument becomes empty, an argument without a placeholder is dropped.
template <class S, class... A>
requires impl::OneOf<S, std::string, std::wstring> S format(S const& pattern, A const&... arguments) {
    return impl::FillAll(std::basic_string_view<typename S::value_type>(pattern), arguments...);
}
template <class... A>
std::string format(char const* pattern, A const&... arguments) {
    return impl::FillAll(std::string_view(pattern), arguments...);
}
template <class... A>
std::wstring format(wchar_t const* pattern, A const&... arguments) {
    return impl::FillAll(std::wstring_view(pattern), arguments...);
}

} // namespace str::fmt

namespace str {

/// Writes `fmt::format(pattern, ...)` into `buffer`, cut to `size` - 1 characters (bytes in the narrow form, so the cut
/// may part a UTF-8 sequence) and always terminated. Size 0 writes nothing and `buffer` may then be null.
/// Returns the length that the whole text has.
template <class... A>
std::size_t snprintf(char* buffer, std::size_t size, char const* pattern, A const&... arguments) {
    std::string const text = fmt::format(pattern, arguments...);
    fmt::impl::Cut(buffer, size, text);
    return text.size();
}
template <class... A>
std::size_t snprintf(wchar_t* buffer, std::size_t size, wchar_t const* pattern, A const&... arguments) {
    std::wstring const text = fmt::format(pattern, arguments...);
    fmt::impl::Cut(buffer, size, text);
    return text.size();
}

} // namespace str
