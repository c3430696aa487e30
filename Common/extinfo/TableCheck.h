// What a table of labels and rules lacks for the fields that an application declared, or says in vain.
//
// For developers and translators: a command or a test of the application runs it and prints the report.
#pragma once

#include "Common/extinfo/ExtendedInfoEntry.h"

#include "support/export.h"

#include <cstddef>
#include <string>
#include <vector>

namespace zo {

class ExtendedInfoStore;

/// What `CheckTable` found. A field is a registered row with a tag, the root and the aliases of traversal lists apart.
///
/// Lists of fields hold full tags in the order of registration, the others stand in the order of the table.
struct ZO_API TableReport {
    /// A label or description that stands in one of two tables.
    struct OneLanguage {
        std::wstring tag;              ///< of the entry
        ExtendedInfoField::Type field; ///< `Label` or `Description`
        std::wstring text;             ///< as it stands in the table that has it
    };

    std::size_t fieldCount = 0;  ///< of the registry
    std::size_t entryCount = 0;  ///< of the first table
    bool hasSecondTable = false; ///< whether one was read

    /// Fields that no entry speaks for, be it by tag, pattern or type: all people know of them is the entry "Default".
    std::vector<std::wstring> withoutEntry;
    /// Fields with an entry that show in some view, and whose label is empty or blank.
    std::vector<std::wstring> withoutLabel;
    /// The tags of those two lists that a row can be added for: no row stands under them yet.
    std::vector<std::wstring> rowsToAdd;
    /// Tags of entries that speak for no field first, and that compilation therefore refuses. Those marked as dynamic,
    /// and "Default", may be without a field.
    std::vector<std::wstring> unused;
    /// Texts of the first table that the second one lacks.
    std::vector<OneLanguage> untranslated;
    /// Texts of the second table that the first one lacks.
    std::vector<OneLanguage> onlyTranslated;
    /// Tags of the second table that the first one lacks. Compilation refuses them.
    std::vector<std::wstring> unknownTranslations;

    /// Whether all lists are empty.
    bool IsClean() const noexcept;
    /// The report for people, a line each, every line with its end.
    std::wstring Text() const;
    /// The rows to add, in UTF-8, to be pasted into the table's document and filled in:
    /// `  <Entry Tag="Soils.[].Cohesion" Label="" Description=""/>`, a line each.
    std::string SkeletonRows() const;
};

/// Checks a table against the current registry, whose registration has ended.
///
/// The tables may have been compiled or not: what counts is what each entry states itself. Two tables that were not
/// compiled are compared as they were read. Nothing is changed. Without a store it is the registry's own.
/// Cost: that of a compilation.
ZO_API TableReport CheckTable();
ZO_API TableReport CheckTable(ExtendedInfoStore& store);

} // namespace zo
