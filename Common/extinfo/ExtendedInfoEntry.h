// One row of the table of labels and rules: what people see of a node, and where it shows.
#pragma once

#include "support/export.h"

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zo {

namespace style {

/// How a report prints a node.
enum Type : std::int32_t {
    header = 0, ///< a heading above its children
    table = 1,  ///< a row or column of a table
    text = 2    ///< a line of text
};

} // namespace style

/// The fields of an entry, by number. The numbers are fixed: they are positions in an entry's set of fields.
struct ExtendedInfoField {
    /// The number of a field.
    enum Type : unsigned {
        IsDynamic = 0,
        Label = 1,
        LabelTag = 2,
        Description = 3,
        PrettyPrintNameTag = 4,
        PrettyPrintValueTag = 5,
        ColorTag = 6,
        CustomView = 7,
        Category = 8,
        ViewHierarchy = 9,
        ViewExcl = 10,
        Physics = 11,
        Mode = 12,
        Style = 13,
        Visibility = 15, ///< a question for ViewExcl, Physics and Mode; no bit of a set
        Whole = 16       ///< a question for all fields; no bit of a set
    };
    static constexpr unsigned count = 14; ///< of the fields that have a bit
};

/// The groups of bits in an entry's mask and in a query for what is visible.
namespace viewmask {

inline constexpr std::uint32_t views = 0x7;                          ///< the views that an entry shows in
inline constexpr std::uint32_t ignoreViews = 0x8;                    ///< in queries: the view bits are not tested
inline constexpr std::uint32_t physics = 0x1FF00;                    ///< the analyses
inline constexpr std::uint32_t modes = 0x60000;                      ///< the modes
inline constexpr std::uint32_t everything = views | physics | modes; ///< of an entry that shows everywhere

} // namespace viewmask

/// One item of a traversal list: which node shows below the entry's, and as what.
struct ViewTravItem {
    std::wstring DestTag;         ///< the tag that it shows under; empty for its own
    std::wstring SourceTag;       ///< the node; ending in ".*" its children
    bool RemoveFromSource = true; ///< it no longer shows in its old place
    bool IsDynamic = false;       ///< it is looked for while the application runs
};

/// One row of the table. A value; copies are deep.
struct ExtendedInfoEntry {
    std::wstring Tag;                 ///< the key: a tag, a type and a path below it, a tag with one "*", or a type
    std::wstring Label;               ///< with "&" before the key of an accelerator
    std::wstring LabelTag;            ///< how a label is composed
    std::wstring Description;         ///< a sentence for people
    std::wstring PrettyPrintNameTag;  ///< how the node's name in reports is composed
    std::wstring PrettyPrintValueTag; ///< which node's value is printed in place of its own
    std::wstring ColorTag;            ///< where the node's colour is
    std::wstring CustomView;          ///< the editor to use
    std::wstring Category;            ///< the heading in a property grid
    std::uint32_t mask = viewmask::everything; ///< bit groups of `viewmask`
    style::Type Style = style::text;           ///< how a report prints it
    std::vector<ViewTravItem> viewTravList;    ///< what shows below its node, in order
    bool IsDynamic = false; ///< it may be without a node, and on aliases it takes nothing from other entries
    std::bitset<ExtendedInfoField::count> fields; ///< those stated, or completed from other entries

    /// Whether a field is stated or completed; for `Whole` whether any is.
    bool Has(unsigned field) const noexcept {
        return field < ExtendedInfoField::count ? fields[field] : field == ExtendedInfoField::Whole && fields.any();
    }
};

} // namespace zo
