#include "Common/ZOUtil/NamePath.h"

#include "support/text.h"

#include <limits>

namespace zo::path {
namespace {

template <class C>
constexpr bool IsBracketOrDot(C c) noexcept {
    return c == C('.') || c == C('[');
}

template <class C>
constexpr bool IsAsciiDigit(C c) noexcept {
    return c >= C('0') && c <= C('9');
}

// Where the last component's separator begins: a "." before a "[" belongs to it. npos without one.
template <class C>
std::size_t LastSeparator(std::basic_string_view<C> text) noexcept {
    for (std::size_t i = text.size(); i-- > 0;) {
        if (!IsBracketOrDot(text[i])) continue;
        return i > 0 && text[i - 1] == C('.') ? i - 1 : i;
    }
    return std::basic_string_view<C>::npos;
}

template <class C>
std::basic_string_view<C> ParentOf(std::basic_string_view<C> text) noexcept {
    std::size_t const p = LastSeparator(text);
    return p == text.npos ? std::basic_string_view<C>() : text.substr(0, p);
}

template <class C>
std::basic_string_view<C> LastOf(std::basic_string_view<C> text) noexcept {
    std::size_t const p = LastSeparator(text);
    std::size_t const start = p == text.npos || p == 0 ? 0 : p + 1;
    std::size_t end = text.size();
    if (end > start && text[end - 1] == C(']') && !(end > 1 && text[end - 2] == C('['))) --end;
    return text.substr(start, end - start);
}

template <class C>
void AppendComponent(std::basic_string<C>& path, std::basic_string_view<C> component) {
    if (path.empty()) {
        path = component;
    } else if (!component.empty() && IsAsciiDigit(component.front())) {
        path += C('[');
        path += component;
        path += C(']');
    } else {
        if (component.empty() || !IsBracketOrDot(component.front())) path += C('.');
        path += component;
    }
}

template <class C>
bool NormalizeText(std::basic_string<C>& text) {
    std::size_t const size = text.size();
    std::size_t write = 0;
    bool afterDot = false;
    for (std::size_t read = 0; read < size; ++read) {
        if (text[read] == C('[')) {
            std::size_t const close = text.find(C(']'), read);
            if (close == text.npos) {
                text.resize(write);
                return false;
            }
            read = close;
            if (!afterDot) text[write++] = C('.');
            // What is written must stay behind what was read: an empty index has no room for the added ".".
            if (write + 1 > read) {
                text.resize(write);
                return false;
            }
            text[write++] = C('[');
        }
        afterDot = text[read] == C('.');
        text[write++] = text[read];
    }
    text.resize(write);
    return true;
}

template <class C>
bool ReadIndex(std::basic_string_view<C> text, std::size_t& index) noexcept {
    text = str::Trim(text);
    if (text.empty()) return false;
    std::size_t value = 0;
    constexpr std::size_t most = std::numeric_limits<std::size_t>::max();
    for (C const c : text) {
        if (!IsAsciiDigit(c)) return false;
        std::size_t const digit = static_cast<std::size_t>(c - C('0'));
        if (value > (most - digit) / 10) return false;
        value = value * 10 + digit;
    }
    index = value;
    return true;
}

} // namespace

std::string_view ParentPart(std::string_view name) noexcept { return ParentOf(name); }
std::wstring_view ParentPart(std::wstring_view tag) noexcept { return ParentOf(tag); }
std::string_view LastPart(std::string_view name) noexcept { return LastOf(name); }
std::wstring_view LastPart(std::wstring_view tag) noexcept { return LastOf(tag); }

std::string Join(std::string_view path, std::string_view component) {
    std::string joined;
    joined.reserve(path.size() + component.size() + 2);
    joined = path;
    AppendComponent(joined, component);
    return joined;
}
std::wstring Join(std::wstring_view path, std::wstring_view component) {
    std::wstring joined;
    joined.reserve(path.size() + component.size() + 2);
    joined = path;
    AppendComponent(joined, component);
    return joined;
}
void Append(std::string& path, std::string_view component) { AppendComponent(path, component); }
void Append(std::wstring& path, std::wstring_view component) { AppendComponent(path, component); }

bool IsAttributeComponent(std::string_view name) noexcept {
    std::size_t const boundary = name.find_first_of(".[]");
    std::size_t const first = boundary == name.npos ? 0 : boundary + 1;
    return first < name.size() && name[first] == ':';
}

bool Normalize(std::string& name) { return NormalizeText(name); }
bool Normalize(std::wstring& tag) { return NormalizeText(tag); }

std::size_t Depth(std::wstring_view tag) noexcept {
    if (tag.empty()) return 0;
    std::size_t depth = 1;
    for (wchar_t const c : tag) depth += c == L'.';
    return depth;
}

bool ParseIndex(std::string_view text, std::size_t& index) noexcept { return ReadIndex(text, index); }
bool ParseIndex(std::wstring_view text, std::size_t& index) noexcept { return ReadIndex(text, index); }

void ExtendCanonical(std::string& name, std::string_view component) {
    if (!component.empty() && IsAsciiDigit(component.front())) {
        name += '[';
        name += component;
        name += ']';
        return;
    }
    if (component.size() > 3 && component.starts_with("At(")) {
        std::size_t const close = component.rfind(')');
        std::size_t key = 0;
        if (close != component.npos && ParseIndex(component.substr(3, close - 3), key) && key > 0) {
            name += '[';
            name += std::to_string(key - 1);
            name += ']';
            return;
        }
    }
    if (!(component.starts_with('[') || name.empty())) name += '.';
    name += component;
}

} // namespace zo::path
