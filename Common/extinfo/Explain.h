// Why a node is labelled, printed and shown as it is: which rows of the table speak for it, and what hides it.
//
// For commands and diagnostics of developers. The answers are texts, so they outlive the table and the node.
#pragma once

#include "Common/extinfo/ExtendedInfoEntry.h"
#include "Common/model/IZO.h"

#include "support/export.h"

#include <array>
#include <cstdint>
#include <string>

namespace zo {

/// Where one field of a node comes from.
struct FieldSource {
    ExtendedInfoField::Type field = ExtendedInfoField::IsDynamic; ///< which one
    std::wstring value;    ///< as a cell of the table says it; of a traversal list its items, as "Source as Dest"
    std::wstring entry;    ///< tag of the entry that answers for the node; empty without a compiled table
    std::wstring statedBy; ///< tag of the row that states it; empty if none does, and the value is what cells that are
                           ///< empty stand for
};

/// Where all fields of a node come from, in the order of their numbers.
struct ZO_API FieldsExplained {
    std::wstring node; ///< full tag, the name of a node without one; empty for an empty handle
    std::array<FieldSource, ExtendedInfoField::count> fields; ///< each at the place of its number

    /// A line for the node, and one for each field that a row states.
    std::wstring Text() const;
};

/// One group of bits of an entry's mask against those of a query.
struct GroupTest {
    std::uint32_t asked = 0; ///< bits of the query
    std::uint32_t shows = 0; ///< bits of the entry
    bool passes = false;     ///< whether a node shows by it
    std::wstring
        statedBy; ///< tag of the row that states the group; empty if none does, and the node shows in all of it
};

/// The mask of an entry against a query.
struct EntryTest {
    bool isAsked = false; ///< if not, all else is empty
    std::wstring entry;   ///< its tag
    GroupTest views;      ///< passes if the query ignores views
    GroupTest physics;    ///< the analyses
    GroupTest modes;      ///< the modes
    bool passes = false;  ///< all three do
};

/// What shows or hides a node. The tests stand in the order in which they are asked; after the first that fails none
/// is.
struct ZO_API VisibilityExplained {
    std::wstring node; ///< as in `FieldsExplained`
    EntryTest byRow;   ///< of a node that has a row: the entry of that row
    /// Of a node without a row, or that stands for another one: the entry found by its tag, or behind the redirect.
    EntryTest atRunTime;
    bool isRuleAsked = false; ///< the rule of a type
    std::wstring ruleOf; ///< the node whose type it is: of an alias the source; empty without one, and the rule says no
    bool rulePasses = false; ///< what it answered
    bool isVisible = false;  ///< the answer to all of it

    /// A line for the answer, and one for each test that was asked.
    std::wstring Text() const;
};

/// A field's value as a cell of the table says it.
ZO_API std::wstring CellText(ExtendedInfoEntry const& entry, unsigned field);

/// Asks the current registry's table for each field of a node, registered or not; of an empty handle for the entry
/// "Default". As with any question, entries take over the fields that they lack.
ZO_API FieldsExplained ExplainFields(H const& node);
/// Asks what `IsVisible` asks, with the same answer; the rule of the type is asked once.
ZO_API VisibilityExplained ExplainVisibility(H const& node, int query);

} // namespace zo
