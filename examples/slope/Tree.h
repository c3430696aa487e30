// Walks over the tree of nodes: printing it, and comparing two.
#pragma once

#include "examples/slope/Document.h"

#include <zo/zo.h>

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

namespace slope {

/// Whether the node only stands for another one, which has a place of its own in the tree.
bool IsAlias(zo::H const& node);

/// The name of the node that a link or an alias leads to now; "" for nothing, and for any other node.
std::string LeadsTo(zo::H const& node);

/// A node's value for people: of a list of values the first ones and how many there are, "(missing)" for a missing one,
/// "(none)" for a link that is not set, "" for a structure, the failure's message in "<>" where a value can't be read.
std::string ValueText(zo::H const& node);

/// Why a list or a structure can't be read or written as one value, and what can.
std::string NoValue(zo::H const& node);

/// The text of the unit that a node's value is stored in; "" without one.
std::string UnitText(zo::H const& node, math::UnitSet const& units);

/// Prints a table of all nodes under `top`, and of `aliases`: name, tag, value, unit. Of an array of records only the
/// first `elementLimit` are shown, and how many more there are. Links and aliases are shown with what they lead to.
void PrintTree(std::ostream& out, zo::H const& top, math::UnitSet const& units, std::size_t elementLimit,
               std::vector<zo::H> const& aliases = {});

/// The result of comparing two trees.
struct Comparison {
    std::size_t nodes = 0;                ///< that were compared
    std::size_t differing = 0;            ///< of those
    std::vector<std::string> differences; ///< the first 20, a line each
};

/// Compares the trees of two documents node by node: children, lengths and values, the missing and the computed ones
/// included. `progress` is called with the number of nodes compared, now and then; it may be empty.
Comparison CompareTrees(Document& before, Document& after, std::function<void(std::size_t)> const& progress = {});

/// Whether both documents would save the same.
bool SaveTheSame(Document& a, Document& b);

} // namespace slope
