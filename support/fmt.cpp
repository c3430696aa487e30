#include "support/fmt.h"

#include "support/number.h"
#include "support/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <type_traits>
#include <utility>

namespace str::fmt {
namespace {

/// Cuts a pattern into its tokens, literal text and placeholders in turn.
template <class S>
class Tokens {
public:
    using Char = typename S::value_type;
    using View = std::basic_string_view<Char>;

    explicit Tokens(View pattern) noexcept : rest(pattern) {}

    /// The literal text up to the next placeholder or the end, appended to `out`.
    void AppendLiteral(S& out) {
        for (;;) {
            std::size_t const percent = rest.find(Char('%'));
            if (percent == rest.npos || percent + 1 == rest.size()) {
                out += rest;
                rest = {};
                return;
            }
            out += rest.substr(0, percent);
            rest.remove_prefix(percent);
            if (IsPlaceholder(rest[1])) return;
            out += Char('%');
            rest.remove_prefix(rest[1] == Char('%') ? 2 : 1);
        }
    }

    /// The placeholder behind the literal text; empty at the end.
    View Placeholder() noexcept {
        View const token = rest.substr(0, 2);
        rest.remove_prefix(token.size());
        return token;
    }

private:
    static bool IsPlaceholder(Char c) noexcept {
        return c == Char('s') || c == Char('d') || c == Char('u') || c == Char('x');
    }

    View rest;
};

template <class S>
S FillPattern(std::basic_string_view<typename S::value_type> pattern, std::span<impl::Argument const> arguments) {
    Tokens<S> tokens(pattern);
    S out;
    S text;
    for (std::size_t i = 0;; ++i) {
        tokens.AppendLiteral(out);
        S const token(tokens.Placeholder());
        if (token.empty()) return out;
        if (i >= arguments.size()) continue;
        std::visit([&](auto const& argument) { argument.convert_to_text(text, token); }, arguments[i]);
        out += text;
    }
}

template <class S, class C>
void AssignText(S& out, std::basic_string_view<C> text) {
    if constexpr (std::same_as<typename S::value_type, C>) {
        out.assign(text);
    } else if constexpr (std::same_as<S, std::wstring>) {
        AssignWide(out, text);
    } else {
        out.clear();
        AppendUtf8(out, text);
    }
}

template <class S, class T>
void AssignValue(S& out, T const& value) {
    if constexpr (std::same_as<T, char> || std::same_as<T, wchar_t>) {
        AssignText(out, std::basic_string_view<T>(&value, 1));
    } else if constexpr (std::same_as<T, char const*> || std::same_as<T, wchar_t const*>) {
        using View = std::basic_string_view<std::remove_const_t<std::remove_pointer_t<T>>>;
        AssignText(out, value ? View(value) : View());
    } else if constexpr (std::same_as<T, std::string_view> || std::same_as<T, std::wstring_view>) {
        AssignText(out, value);
    } else if constexpr (std::same_as<T, bool>) {
        AssignText(out, std::string_view(value ? "true" : "false"));
    } else {
        std::array<char, math::numberTextSize> room;
        char* const first = room.data();
        char* const last = first + room.size();
        char* end = first;
        if constexpr (std::same_as<T, double>) {
            end = math::FormatDouble(first, value);
        } else if constexpr (std::same_as<T, void const*>) {
            *end++ = '0';
            *end++ = 'x';
            end = std::to_chars(end, last, reinterpret_cast<std::uintptr_t>(value), 16).ptr;
        } else {
            end = std::to_chars(first, last, value).ptr;
        }
        out.assign(first, end);
    }
}

template <class S>
void CutText(typename S::value_type* buffer, std::size_t size, S const& text) noexcept {
    if (size == 0) return;
    std::size_t const length = std::min(size - 1, text.size());
    std::copy_n(text.data(), length, buffer);
    buffer[length] = typename S::value_type();
}

} // namespace

template <class S>
bool tokenize(S& token, unsigned index, std::type_identity_t<S> const& format) {
    // The format may be the very text that is to hold the token.
    S const pattern = format; // NOLINT(performance-unnecessary-copy-initialization)
    token.clear();
    Tokens<S> tokens(pattern);
    for (unsigned at = 0;; at += 2) {
        S literal;
        tokens.AppendLiteral(literal);
        S placeholder(tokens.Placeholder());
        if (at == index) {
            token = std::move(literal);
            return true;
        }
        if (placeholder.empty()) return false;
        if (at + 1 == index) {
            token = std::move(placeholder);
            return true;
        }
    }
}
template bool tokenize<std::string>(std::string&, unsigned, std::string const&);
template bool tokenize<std::wstring>(std::wstring&, unsigned, std::wstring const&);

template <class T>
void arg<T>::convert_to_text(std::string& out, std::string const&) const {
    AssignValue(out, value);
}
template <class T>
void arg<T>::convert_to_text(std::wstring& out, std::wstring const&) const {
    AssignValue(out, value);
}

template struct arg<char>;
template struct arg<wchar_t>;
template struct arg<char const*>;
template struct arg<wchar_t const*>;
template struct arg<short>;
template struct arg<int>;
template struct arg<htl::Int64>;
template struct arg<unsigned short>;
template struct arg<unsigned>;
template struct arg<htl::UInt64>;
template struct arg<double>;
template struct arg<void const*>;
template struct arg<bool>;
template struct arg<std::string_view>;
template struct arg<std::wstring_view>;

namespace impl {

std::string Fill(std::string_view pattern, std::span<Argument const> arguments) {
    return FillPattern<std::string>(pattern, arguments);
}
std::wstring Fill(std::wstring_view pattern, std::span<Argument const> arguments) {
    return FillPattern<std::wstring>(pattern, arguments);
}

void Cut(char* buffer, std::size_t size, std::string const& text) noexcept { CutText(buffer, size, text); }
void Cut(wchar_t* buffer, std::size_t size, std::wstring const& text) noexcept { CutText(buffer, size, text); }

} // namespace impl
} // namespace str::fmt
