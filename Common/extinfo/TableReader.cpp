#include "Common/extinfo/TableReader.h"

#include "Common/extinfo/Cells.h"

#include "support/fmt.h"

#include <algorithm>

namespace zo {
namespace {

constexpr wchar_t entryColumns[] = L"Tag,IsDynamic,Description,Label,LabelTag,ViewExcl,Physics,Mode,Style,"
                                   L"PrettyPrintNameTag,PrettyPrintValueTag,ColorTag,CustomView,Category,"
                                   L"ViewHierarchy";
constexpr wchar_t travColumns[] = L"SourceTag,DestTag,RemoveFromSource,IsDynamic";

/// Places in `entryColumns`. The list is in the row's child element, so nobody reads the last column.
namespace column {
enum : std::size_t {
    Tag,
    IsDynamic,
    Description,
    Label,
    LabelTag,
    ViewExcl,
    Physics,
    Mode,
    Style,
    PrettyPrintNameTag,
    PrettyPrintValueTag,
    ColorTag,
    CustomView,
    Category
};
} // namespace column

/// Places in `travColumns`.
namespace travcolumn {
enum : std::size_t { SourceTag, DestTag, RemoveFromSource, IsDynamic };
} // namespace travcolumn

/// Of all lists of a document together. Any list may declare a million items in a few bytes, and each item would be
/// copied for every entry that takes the list over. All of them fail alike: they name no source.
constexpr std::size_t mostAbsentItems = 100;

using TableReader = sys::file::XmlArrayElementDataTableReader;

/// Fills an entry from the cells of a row, up to the first that can't be read.
class RowReader {
public:
    RowReader(TableReader const& table, std::size_t row, ExtendedInfoEntry& entry) noexcept
        : table(table), row(row), entry(entry) {}

    htl::status Read() {
        using Field = ExtendedInfoField;
        entry.IsDynamic = extinfo::ReadBool(table.Cell(row, column::IsDynamic));
        entry.fields.set(Field::IsDynamic);
        Text_(column::Description, Field::Description, entry.Description);
        Text_(column::Label, Field::Label, entry.Label);
        Text_(column::LabelTag, Field::LabelTag, entry.LabelTag);
        Parsed_(column::ViewExcl, Field::ViewExcl, entry.mask, extinfo::ReadViewExcl);
        Parsed_(column::Physics, Field::Physics, entry.mask, extinfo::ReadPhysics);
        Parsed_(column::Mode, Field::Mode, entry.mask, extinfo::ReadMode);
        Parsed_(column::Style, Field::Style, entry.Style, extinfo::ReadStyle);
        Text_(column::PrettyPrintNameTag, Field::PrettyPrintNameTag, entry.PrettyPrintNameTag);
        Text_(column::PrettyPrintValueTag, Field::PrettyPrintValueTag, entry.PrettyPrintValueTag);
        Text_(column::ColorTag, Field::ColorTag, entry.ColorTag);
        Text_(column::CustomView, Field::CustomView, entry.CustomView);
        Text_(column::Category, Field::Category, entry.Category);
        return failure;
    }

private:
    void Text_(std::size_t place, unsigned field, std::wstring& text) {
        std::wstring const& cell = table.Cell(row, place);
        if (cell.empty()) return;
        text = cell;
        entry.fields.set(field);
    }
    template <class T>
    void Parsed_(std::size_t place, unsigned field, T& value, htl::status (&read)(T&, std::wstring const&)) {
        std::wstring const& cell = table.Cell(row, place);
        if (failure.IsError() || cell.empty()) return;
        failure = read(value, cell);
        entry.fields.set(field);
    }

    TableReader const& table;
    std::size_t row;
    ExtendedInfoEntry& entry;
    htl::status failure;
};

} // namespace

XmlZOExtendedInfoTravListReader::XmlZOExtendedInfoTravListReader(std::wstring name)
    : XmlZOExtendedInfoTravListReader(std::move(name), htl::handle<TableReader>(new TableReader(travColumns))) {}

XmlZOExtendedInfoTravListReader::XmlZOExtendedInfoTravListReader(std::wstring name,
                                                                 htl::handle<TableReader> const& cells)
    : XmlArrayReader(std::move(name), cells), cells(cells) {}

XmlZOExtendedInfoTravListReader::~XmlZOExtendedInfoTravListReader() = default;

std::size_t XmlZOExtendedInfoTravListReader::AbsentRows() const noexcept {
    auto const present = static_cast<std::size_t>(CurrentRow() + 1);
    return std::max(DeclaredRows(), present) - present;
}

std::vector<ViewTravItem> XmlZOExtendedInfoTravListReader::Items(std::size_t mostAbsent) const {
    auto const present = static_cast<std::size_t>(CurrentRow() + 1);
    std::vector<ViewTravItem> items(present + std::min(AbsentRows(), mostAbsent));
    for (std::size_t row = 0; row < present; ++row) {
        ViewTravItem& item = items[row];
        item.SourceTag = cells->Cell(row, travcolumn::SourceTag);
        item.DestTag = cells->Cell(row, travcolumn::DestTag);
        std::wstring const& remove = cells->Cell(row, travcolumn::RemoveFromSource);
        item.RemoveFromSource = remove.empty() || extinfo::ReadBool(remove);
        item.IsDynamic = extinfo::ReadBool(cells->Cell(row, travcolumn::IsDynamic));
    }
    return items;
}

XmlZOExtendedInfoArrayElementReader::XmlZOExtendedInfoArrayElementReader()
    : XmlArrayElementDataTableReader(entryColumns) {}

XmlZOExtendedInfoArrayElementReader::~XmlZOExtendedInfoArrayElementReader() = default;

htl::handle<sys::file::XmlElemReader> XmlZOExtendedInfoArrayElementReader::Element(std::wstring const& tag) {
    if (!Array() || Array()->CurrentRow() < 0) return {};
    auto const row = static_cast<std::size_t>(Array()->CurrentRow());
    if (!lists.empty() && lists.back().first == row) return {};
    lists.emplace_back(row, htl::handle<XmlZOExtendedInfoTravListReader>(new XmlZOExtendedInfoTravListReader(tag)));
    return lists.back().second;
}

XmlZOExtendedInfoTravListReader const* XmlZOExtendedInfoArrayElementReader::TravList(std::size_t row) const {
    auto const found = std::ranges::lower_bound(lists, row, {}, [](auto const& list) { return list.first; });
    return found != lists.end() && found->first == row ? found->second.get() : nullptr;
}

XmlZOExtendedInfoReader::XmlZOExtendedInfoReader()
    : XmlZOExtendedInfoReader(
          htl::handle<XmlZOExtendedInfoArrayElementReader>(new XmlZOExtendedInfoArrayElementReader)) {}

XmlZOExtendedInfoReader::XmlZOExtendedInfoReader(htl::handle<XmlZOExtendedInfoArrayElementReader> const& rows)
    : XmlArrayReader(L"Meta_ExtendedInfo", rows), rows(rows) {}

XmlZOExtendedInfoReader::~XmlZOExtendedInfoReader() = default;

htl::status XmlZOExtendedInfoReader::Entries(std::vector<ExtendedInfoEntry>& entries) const {
    entries.clear();
    auto const rowCount = static_cast<std::size_t>(CurrentRow() + 1); // what is merely declared has no tag
    std::size_t tagged = 0;
    for (std::size_t row = 0; row < rowCount; ++row)
        if (!rows->Cell(row, column::Tag).empty()) ++tagged;
    entries.reserve(tagged);
    std::size_t absentLeft = mostAbsentItems;
    for (std::size_t row = 0; row < rowCount; ++row) {
        std::wstring const& tag = rows->Cell(row, column::Tag);
        if (tag.empty()) continue;
        ExtendedInfoEntry& entry = entries.emplace_back();
        entry.Tag = tag;
        if (htl::status failure = RowReader(*rows, row, entry).Read(); failure.IsError()) {
            failure =
                htl::status::FromText(str::fmt::format(L"Error with entry %s: %s", entry.Tag, failure.AsWString()));
            entries.clear();
            return failure;
        }
        if (auto const* const list = rows->TravList(row)) {
            entry.fields.set(ExtendedInfoField::ViewHierarchy);
            // One at least: a list of one item means something else than one of two.
            entry.viewTravList = list->Items(std::max<std::size_t>(absentLeft, 1));
            absentLeft -= std::min(absentLeft, list->AbsentRows());
        }
    }
    return {};
}

} // namespace zo
