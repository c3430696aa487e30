// Small text helpers. The application's own texts are UTF-8; the library's names are, too, and its values, tags and
// messages are wide.
#pragma once

#include <zo/zo.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace slope {

std::wstring Wide(std::string const& text);
std::string Narrow(std::wstring const& text);

/// The message of a failure.
std::string Message(htl::status const& failure);

std::string Join(std::vector<std::string> const& pieces, std::string_view separator);

/// The shortest decimal text that reads back to the number; "" for a missing one.
std::string Decimal(double number);
/// With three places behind the point; "" for a missing one.
std::string ThreePlaces(double number);
/// A count with "," between thousands: "106,257".
std::string Count(std::size_t count);
/// "1 point", "3 points".
std::string Count(std::size_t count, std::string const& singular, std::string const& plural);

/// How many columns a text takes on a terminal: one for each character.
std::size_t Width(std::string_view text);
/// How many bytes of a text that isn't empty are a control character at its beginning; 0 for any other character.
std::size_t ControlLength(std::string_view text);
/// The text, cut to `width` columns with "..." at its end where it is longer, control characters as blanks.
std::string Fit(std::string_view text, std::size_t width);

} // namespace slope
