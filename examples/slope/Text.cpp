#include "examples/slope/Text.h"

#include "examples/slope/Model.h"

#include <algorithm>
#include <charconv>

namespace slope {

namespace {

/// Whether a byte begins a character of UTF-8.
bool Begins(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }

} // namespace

std::wstring Wide(std::string const& text) { return str::as_wstring(text); }

std::string Narrow(std::wstring const& text) { return str::as_cstring(text); }

std::string Message(htl::status const& failure) { return Narrow(failure.AsWString()); }

std::string Join(std::vector<std::string> const& pieces, std::string_view separator) {
    std::string joined;
    for (std::string const& piece : pieces) {
        if (&piece != pieces.data()) joined += separator;
        joined += piece;
    }
    return joined;
}

std::string Decimal(double number) {
    if (number == missing) return {};
    char buffer[32];
    auto const [end, error] = std::to_chars(buffer, buffer + sizeof(buffer), number);
    return {buffer, end};
}

std::string ThreePlaces(double number) {
    if (number == missing) return {};
    char buffer[512]; // the greatest double has 309 places before the point
    auto const [end, error] = std::to_chars(buffer, buffer + sizeof(buffer), number, std::chars_format::fixed, 3);
    return {buffer, end};
}

std::string Count(std::size_t count) {
    std::string text = std::to_string(count);
    for (std::size_t place = text.size(); place > 3;) text.insert(place -= 3, 1, ',');
    return text;
}

std::string Count(std::size_t count, std::string const& singular, std::string const& plural) {
    return Count(count) + " " + (count == 1 ? singular : plural);
}

std::size_t Width(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), Begins));
}

std::size_t ControlLength(std::string_view text) {
    auto const byte = static_cast<unsigned char>(text[0]);
    if (byte < 0x20 || byte == 0x7F) return 1;
    // U+0080 to U+009F in UTF-8.
    return byte == 0xC2 && text.size() > 1 && static_cast<unsigned char>(text[1]) < 0xA0 ? 2 : 0;
}

std::string Fit(std::string_view text, std::size_t width) {
    // A value may hold anything; a line end or an escape sequence would spoil the table, or the terminal.
    std::string line;
    while (!text.empty()) {
        std::size_t const control = ControlLength(text);
        line += control ? ' ' : text[0];
        text.remove_prefix(control ? control : 1);
    }
    if (Width(line) <= width) return line;
    std::size_t const kept = width > 3 ? width - 3 : 0;
    std::size_t end = 0;
    for (std::size_t columns = 0; end < line.size(); ++end)
        if (Begins(line[end]) && columns++ == kept) break;
    line.resize(end);
    return line + "...";
}

} // namespace slope
