// What people read of a node: what it is called, its value, its unit, its colour. All of it comes out of the tree.
#pragma once

#include "examples/slope/Document.h"
#include "examples/slope/Words.h"

#include <zo/zo.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace slope {

/// The bits of a query that ask for a view.
enum ViewBits : int { dataView = 1, propertyView = 2, reportView = 4 };

/// Reads the nodes of a document that was made ready for people, in its language.
class Display {
public:
    explicit Display(Document& document);

    /// The node's label; of an element of a list its name, or its number where it has none.
    std::string Label(zo::H const& node) const;
    std::string Description(zo::H const& node) const;
    /// The value as people read it, without its unit: "(none)" for a link that is not set, "(missing)" for a missing
    /// value, the first values of a list of values, "(3)" for a list of records, "" for a structure.
    ///
    /// A number that is shown in other units than it is stored in is rounded to six digits.
    std::string Value(zo::H const& node) const;
    /// The unit of the value, or of the values of a list; "" without one.
    std::string Unit(zo::H const& node) const;
    /// The number in the units that people see; none for a missing value, for what is no number, and beyond what a
    /// number can hold.
    std::optional<double> Number(zo::H const& node) const;
    /// The node's colour, 0xBBGGRR; none without one.
    std::optional<unsigned long> Color(zo::H const& node) const;

    /// A number in the language's notation, with at most `digits` significant digits, or all in front of the point
    /// where that has more of them and no more than 15; or with `places` behind the point. "" for one that is not
    /// finite.
    std::string Rounded(double number, unsigned digits) const;
    std::string Fixed(double number, unsigned places) const;

    /// A count with the language's mark between thousands.
    std::string Amount(std::size_t count) const;

    Words const& OwnWords() const { return words; }

private:
    std::string Values_(zo::H const& list) const;
    bool IsConverted_(zo::H const& node) const;

    Words const& words;
    math::UnitSet stored;
};

/// Whether the node is a list of records or of lists; false for a list of values, which are shown in one line.
bool IsListOfRecords(zo::H const& node);
bool IsList(zo::H const& node);
/// The children that a node shows, in order. Links are doors to records that have a place of their own: they have none.
zo::view::Children ShownChildren(zo::H const& node, int query);
/// "#C8A165"
std::string ColorText(unsigned long color);
/// Whether a text is a number in a notation.
bool IsNumber(std::string const& text, Words const& words);

} // namespace slope
