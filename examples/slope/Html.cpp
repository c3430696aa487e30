#include "examples/slope/Html.h"

#include "examples/slope/Text.h"

namespace slope {

namespace {

std::string_view EntityOf(char c) {
    switch (c) {
    case '&': return "&amp;";
    case '<': return "&lt;";
    case '>': return "&gt;";
    case '"': return "&quot;";
    case '\'': return "&#39;";
    default: return {};
    }
}

} // namespace

std::string Escaped(std::string_view text) {
    std::string escaped;
    while (!text.empty()) {
        std::size_t const control = text[0] == '\n' ? 0 : ControlLength(text);
        std::string_view const entity = EntityOf(text[0]);
        if (control)
            escaped += ' ';
        else if (!entity.empty())
            escaped += entity;
        else
            escaped += text[0];
        text.remove_prefix(control ? control : 1);
    }
    return escaped;
}

} // namespace slope
