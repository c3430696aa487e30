#include "examples/slope/Display.h"

#include "examples/slope/Text.h"
#include "examples/slope/Tree.h"

#include "support/locale.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace slope {

namespace {

constexpr std::size_t shownValuesWidth = 40;
constexpr unsigned convertedDigits = 6;

/// The place of an element in its list, from 1; 0 of any other node.
std::size_t PlaceInList(zo::H const& node) {
    std::string const name = node->Name();
    std::size_t const bracket = name.rfind('[');
    std::size_t index = 0;
    if (bracket == std::string::npos || !name.ends_with(']')) return 0;
    char const* const first = name.data() + bracket + 1;
    char const* const last = name.data() + name.size() - 1;
    auto const [stop, error] = std::from_chars(first, last, index);
    return error == std::errc() && stop == last ? index + 1 : 0;
}

zo::H FirstElement(zo::H const& list) {
    auto* const array = dynamic_cast<zo::ZOArray*>(list.get());
    return array ? zo::Find(array, 0) : zo::H();
}

str::locale::ID Notation(Words const& words) { return {words.decimalPoint, L'\0'}; }

bool IsTruthValue(zo::H const& node) { return node->GetDataTraits().TypeName() == "bool"; }

} // namespace

bool IsList(zo::H const& node) { return node->GetDataTraits().AsArray(); }

bool IsListOfRecords(zo::H const& node) {
    if (!IsList(node)) return false;
    zo::H const first = FirstElement(node);
    return first && !first->IsValueType();
}

zo::view::Children ShownChildren(zo::H const& node, int query) {
    return {zo::IsLinkField(node) ? zo::H() : node, query};
}

std::string ColorText(unsigned long color) {
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "#%02X%02X%02X", static_cast<unsigned>(color & 0xFF),
                  static_cast<unsigned>(color >> 8 & 0xFF), static_cast<unsigned>(color >> 16 & 0xFF));
    return text.data();
}

bool IsNumber(std::string const& text, Words const& words) {
    std::wstring const wide = Wide(text);
    double number = 0;
    std::size_t used = 0;
    return !str::locale::from_string(number, used, wide, Notation(words)).IsError() && used == wide.size();
}

Display::Display(Document& document) : words(WordsOf(document.Speaks())), stored(document.Units()) {
    document.MakeCurrent();
}

std::string Display::Label(zo::H const& node) const {
    std::size_t const place = PlaceInList(node);
    if (place) {
        std::string const name = Narrow(zo::PrettyPrintNameValue(node));
        if (!name.empty()) return name;
    }
    std::string const label = Narrow(zo::Label(node));
    return place ? label + " " + std::to_string(place) : label;
}

std::string Display::Description(zo::H const& node) const { return Narrow(zo::Description(node)); }

std::string Display::Value(zo::H const& node) const {
    if (IsList(node)) return Values_(node);
    if (!node->IsValueType()) return {};
    if (node->IsUndefined()) return std::string(zo::IsLinkField(node) ? words.none : words.missing);
    if (zo::IsColor(node)) return ColorText(zo::Color(node));
    if (IsTruthValue(node)) {
        bool value = false;
        if (!node->Get(value).IsError()) return std::string(value ? words.yes : words.no);
    }
    if (IsConverted_(node))
        if (std::optional<double> const number = Number(node)) return Rounded(*number, convertedDigits);
    std::wstring text = zo::PrettyPrintValue(node);
    // A number that leads to no record has nothing to be called by.
    if (text.empty() && zo::IsLinkField(node) && node->Get(text).IsError()) return {};
    return Narrow(text);
}

std::string Display::Unit(zo::H const& node) const {
    zo::H const first = FirstElement(node);
    return Narrow(zo::UnitString(first ? first : node));
}

std::optional<double> Display::Number(zo::H const& node) const {
    double number = missing;
    if (!node || !node->IsValueType() || node->IsUndefined() || node->Get(number).IsError()) return {};
    if (number == missing) return {};
    number = math::units::ConvertBetweenUnitSets(zo::Units(node), number, stored, zo::VisibleUnits(node));
    return std::isfinite(number) ? std::optional(number) : std::nullopt;
}

std::optional<unsigned long> Display::Color(zo::H const& node) const {
    if (!zo::HasColor(node)) return {};
    unsigned long const color = zo::Color(node);
    return color > 0xFFFFFF ? std::optional<unsigned long>() : color;
}

std::string Display::Rounded(double number, unsigned digits) const {
    if (!std::isfinite(number)) return {};
    // All digits in front of the point stay, or the text would have an exponent. So it has where they mean nothing.
    constexpr double mostDigits = 15;
    double const whole = std::floor(std::log10(std::max(std::abs(number), 1.0))) + 1;
    if (whole <= mostDigits) digits = std::max(digits, static_cast<unsigned>(whole));
    std::wstring text;
    if (str::locale::to_string(text, number, str::locale::notGiven, digits, str::locale::floatformat::General,
                               Notation(words))
            .IsError())
        return {};
    return Narrow(text);
}

std::string Display::Fixed(double number, unsigned places) const {
    std::wstring text;
    if (str::locale::to_string(text, number, places, str::locale::notGiven, str::locale::floatformat::Fixed,
                               Notation(words))
            .IsError())
        return {};
    return Narrow(text);
}

std::string Display::Amount(std::size_t count) const {
    std::string text = Count(count);
    if (words.decimalPoint == L',') std::replace(text.begin(), text.end(), ',', '.');
    return text;
}

std::string Display::Values_(zo::H const& list) const {
    std::size_t const length = list->Length();
    if (length == 0) return std::string(words.none);
    if (IsListOfRecords(list)) return "(" + Amount(length) + ")";
    auto* const array = dynamic_cast<zo::ZOArray*>(list.get());
    if (!array) return {};
    std::vector<std::string> texts;
    std::size_t width = 0;
    for (std::size_t i = 0; i < length; ++i) {
        std::string text = Value(zo::Find(array, i));
        width += Width(text) + 2;
        if (!texts.empty() && width > shownValuesWidth) break;
        texts.push_back(std::move(text));
    }
    if (texts.size() < length) texts.push_back(Filled(words.more, Amount(length - texts.size())));
    // Where the point is a comma another one between values would be one too many.
    return Join(texts, words.decimalPoint == L',' ? "; " : ", ");
}

bool Display::IsConverted_(zo::H const& node) const {
    return zo::Units(node) != hzn::units::Kind::None && zo::VisibleUnits(node) != stored;
}

} // namespace slope
