// Tables into the store: the part that needs no registry.
#include "Common/extinfo/ExtendedInfoStore.h"

#include "Common/extinfo/TableReader.h"

#include "support/fmt.h"
#include "support/text.h"
#include "support/xml/XmlFile.h"

#include <algorithm>
#include <functional>
#include <iterator>

namespace zo {
namespace {

using sys::thread::impl::ExclusiveAccessGuard;

/// Sorts by tag, rows with equal ones in the order of the document. An entry is large, so each is moved once.
void SortByTag(std::vector<ExtendedInfoEntry>& rows) {
    auto const before = [](ExtendedInfoEntry const& a, ExtendedInfoEntry const& b) {
        return str::CompareUtf16(a.Tag, b.Tag) < 0;
    };
    if (std::ranges::is_sorted(rows, before)) return;
    std::vector<ExtendedInfoEntry*> order(rows.size());
    std::ranges::transform(rows, order.begin(), [](ExtendedInfoEntry& row) { return &row; });
    std::ranges::stable_sort(order, [&](auto const* a, auto const* b) { return before(*a, *b); });
    std::vector<ExtendedInfoEntry> sorted;
    sorted.reserve(rows.size());
    for (ExtendedInfoEntry* const row : order) sorted.push_back(std::move(*row));
    rows = std::move(sorted);
}

/// One failure with a line for each two neighbours with the same tag. A line a status would take a time that grows
/// with the square of the rows.
htl::status Duplicates(std::vector<ExtendedInfoEntry> const& sorted) {
    std::wstring text;
    for (std::size_t i = 1; i < sorted.size(); ++i) {
        if (sorted[i].Tag == sorted[i - 1].Tag) {
            text += L"Duplicate entry {";
            text += sorted[i].Tag;
            text += L"} found!\n";
        }
    }
    return text.empty() ? htl::status() : htl::status::FromText(text);
}

template <class Iterator>
Iterator FindTag(Iterator begin, Iterator end, std::wstring const& tag) {
    auto const found = std::lower_bound(begin, end, tag, [](ExtendedInfoEntry const& entry, std::wstring const& key) {
        return str::CompareUtf16(entry.Tag, key) < 0;
    });
    return found != end && found->Tag == tag ? found : end;
}

} // namespace

htl::status ExtendedInfoStore::ReadBytes(void const* begin, void const* end) {
    auto const* const first = static_cast<unsigned char const*>(begin);
    auto const* const last = static_cast<unsigned char const*>(end);
    // Bounds that hold nothing are an empty document, which is a failure of its own.
    std::vector<unsigned char> document;
    if (first && last && std::less<>()(first, last)) document.assign(first, last);
    return Read_([&](auto const& reader) { return sys::file::XmlStringRead(document, reader); });
}

htl::status ExtendedInfoStore::ReadFile(std::wstring const& name) {
    return Read_([&](auto const& reader) { return sys::file::XmlFileRead(name, reader); });
}

template <class Parse>
htl::status ExtendedInfoStore::Read_(Parse const& parse) {
    {
        ExclusiveAccessGuard const guard(lock);
        if (compiled) return extinfo::AlreadyCompiled();
    }
    htl::handle<XmlZOExtendedInfoReader> const reader(new XmlZOExtendedInfoReader);
    if (htl::status failure = parse(htl::handle<sys::file::XmlElemReader>(reader)); failure.IsError()) return failure;
    std::vector<ExtendedInfoEntry> rows;
    if (htl::status failure = reader->Entries(rows); failure.IsError()) return failure;
    return Add(std::move(rows));
}

htl::status ExtendedInfoStore::Add(std::vector<ExtendedInfoEntry> rows) {
    SortByTag(rows);
    htl::status result = Duplicates(rows);
    ExclusiveAccessGuard const guard(lock);
    if (compiled) return extinfo::AlreadyCompiled();
    firstTableCount = entries.size();
    if (entries.empty())
        entries = std::move(rows);
    else
        entries.insert(entries.end(), std::make_move_iterator(rows.begin()), std::make_move_iterator(rows.end()));
    return result;
}

std::size_t ExtendedInfoStore::Find(std::wstring const& tag) const {
    ExclusiveAccessGuard const guard(lock);
    // Until they are joined each of two tables is sorted by itself.
    auto const second = entries.begin() + static_cast<std::ptrdiff_t>(firstTableCount);
    auto found = FindTag(entries.begin(), second, tag);
    if (found == second) found = FindTag(second, entries.end(), tag);
    return found == entries.end() ? End : static_cast<std::size_t>(found - entries.begin());
}

} // namespace zo
