// The application's own words for people; those about fields stand in the tables of labels and rules.
#pragma once

#include "examples/slope/Language.h"

#include <string>
#include <string_view>

namespace slope {

/// UTF-8. A "%" stands for a number or a name.
struct Words {
    std::string_view code; // of the language, as in HTML
    wchar_t decimalPoint;

    std::string_view label, value, unit; // titles of columns
    std::string_view missing, none, more;
    std::string_view yes, no;

    std::string_view crossSection; // of the report
    std::string_view crossSectionOf;
    std::string_view distance, elevation; // titles of its axes
    std::string_view tooLarge;
    std::string_view unnamed; // a project without a name
    std::string_view waterLine, porePressure, slipCircle, noMaterial;
    std::string_view made; // at the foot of the page
};

Words const& WordsOf(Language language);

/// `text` with `name` in the place of its "%".
std::string Filled(std::string_view text, std::string_view name);

} // namespace slope
