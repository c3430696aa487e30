// What comes before binding: the tables are joined and checked, and sorted by how they are searched.
#include "Common/extinfo/ExtendedInfo.h"
#include "Common/extinfo/ExtendedInfoStore.h"
#include "Common/extinfo/TagMatcher.h"
#include "Common/registry/RegistryImpl.h"

#include "support/fmt.h"
#include "support/text.h"

#include <algorithm>
#include <cassert>

namespace zo {
namespace {

using Field = ExtendedInfoField;

std::size_t CountStars(std::wstring const& text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), L'*'));
}

template <class... A>
htl::status Failure(wchar_t const* pattern, A const&... arguments) {
    return htl::status::FromText(str::fmt::format(pattern, arguments...));
}

// The last failure among the tags of one item; success if they are well-formed.
htl::status CheckItem(std::wstring const& tag, ViewTravItem const& item) {
    htl::status result;
    std::wstring const& source = item.SourceTag;
    std::size_t const sourceStars = CountStars(source);
    if (sourceStars == 1 && !source.ends_with(L".*"))
        result = Failure(L"%s: Traversal source tags can only end in '.*': %s", tag, source);
    if (sourceStars > 1)
        result = Failure(L"%s: Traversal source tags do not support multiple wildcards : %s", tag, source);
    std::wstring const& dest = item.DestTag;
    std::size_t const destStars = CountStars(dest);
    if (destStars == 1 && dest.back() != L'*')
        result = Failure(L"%s: Traversal destination tags can only end in '*': %s", tag, dest);
    if (destStars > 1)
        result = Failure(L"%s: Traversal destination tags do not support multiple wildcards : %s", tag, dest);
    if (dest.find(L'.') != dest.npos)
        result = Failure(L"%s: Traversal destination tags may not express their own sub hierarchy: %s", tag, dest);
    return result;
}

} // namespace

htl::status ExtendedInfoStore::Prepare_() {
    sys::thread::impl::ExclusiveAccessGuard const guard(lock);
    if (compiled) return extinfo::AlreadyCompiled();
    wildcards.clear();
    htl::status result;
    auto const keepFailure = [&result](htl::status&& next) {
        if (next.IsError()) result = std::move(next);
    };
    keepFailure(Join_());
    keepFailure(FillDefault_());
    keepFailure(ListWildcards_());
    keepFailure(CheckEntries_());
    if (result.IsError()) return result;

    std::vector<std::wstring_view> patterns;
    patterns.reserve(wildcards.size());
    for (Place const wildcard : wildcards) patterns.push_back(entries[wildcard].Tag);
    matcher = std::make_shared<extinfo::TagMatcher>(patterns);
    statedBy.assign(entries.size() * Field::count, 0);
    for (Place const wildcard : wildcards) {
        entryFlags[wildcard] |= General;
        generalFields |= entries[wildcard].fields;
    }
    IndexRows_();
    compiled = true;
    return {};
}

// Two texts of the second table, both sorted, go into the first.
htl::status ExtendedInfoStore::Join_() {
    // Tables are joined once even if a check fails and more is read before the next attempt.
    std::size_t const known = entryFlags.size();
    std::size_t const firstEnd = firstTableCount == 0 ? entries.size() : firstTableCount;
    entryFlags.resize(firstEnd);
    for (std::size_t i = known; i < firstEnd; ++i)
        entryFlags[i] = static_cast<std::uint8_t>((entries[i].fields[Field::Label] ? FirstLabel : 0) |
                                                  (entries[i].fields[Field::Description] ? FirstDescription : 0));
    if (firstTableCount == 0) return {};

    htl::status result;
    std::size_t at = 0;
    for (std::size_t second = firstEnd; second < entries.size(); ++second) {
        ExtendedInfoEntry& from = entries[second];
        while (at < firstEnd && str::CompareUtf16(entries[at].Tag, from.Tag) < 0) ++at;
        if (at == firstEnd || entries[at].Tag != from.Tag) {
            result = Failure(L"Unexpected entry {%s} found in the second ExtendedInfo table.", from.Tag);
            continue;
        }
        ExtendedInfoEntry& to = entries[at];
        if (!from.Description.empty()) {
            to.Description = std::move(from.Description);
            to.fields.set(Field::Description);
            entryFlags[at] |= SecondDescription;
        }
        if (!from.Label.empty()) {
            to.Label = std::move(from.Label);
            to.fields.set(Field::Label);
            entryFlags[at] |= SecondLabel;
        }
    }
    entries.resize(firstEnd);
    firstTableCount = 0;
    secondTable = true;
    // More than two reads leave several sorted runs, which nothing could be found in.
    auto const before = [](ExtendedInfoEntry const& a, ExtendedInfoEntry const& b) {
        return str::CompareUtf16(a.Tag, b.Tag) < 0;
    };
    if (!std::ranges::is_sorted(entries, before)) {
        std::ranges::stable_sort(entries, before);
        entryFlags.clear();
    }
    return result;
}

htl::status ExtendedInfoStore::FillDefault_() {
    Place const place = FindExact_(L"Default");
    if (place == none) return htl::status::FromText(L"ExtendedInfo should always have a 'Default' entry.");
    defaultEntry = entries[place];
    // As if each field were copied from the entry to itself.
    defaultEntry.fields.set();
    return {};
}

htl::status ExtendedInfoStore::ListWildcards_() {
    htl::status result;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        std::wstring const& tag = entries[i].Tag;
        if (tag.find(L'*') == tag.npos) continue;
        wildcards.push_back(static_cast<Place>(i));
        if (tag.size() == 1)
            result = Failure(L"%s '*' is not allowed; it matches everything and destroys all other lookup logic", tag);
    }
    return result;
}

htl::status ExtendedInfoStore::CheckEntries_() const {
    htl::status result;
    for (ExtendedInfoEntry const& entry : entries) {
        if (CountStars(entry.Tag) > 1)
            result = Failure(L"%s Multiple wildcards in the same match string are not supported", entry.Tag);
        for (ViewTravItem const& item : entry.viewTravList)
            if (htl::status failure = CheckItem(entry.Tag, item); failure.IsError()) result = std::move(failure);
    }
    return result;
}

// One question to the registry for each entry, rather than a search in the table for each row.
void ExtendedInfoStore::IndexRows_() {
    ZORegistryImpl const& tables = impl::Current();
    SyncRows_(tables);
    for (std::size_t i = 0; i < entries.size(); ++i) {
        std::size_t const row = tables.RowOfTag(entries[i].Tag);
        if (row >= searches.size() || searches[row].exact != unknown) continue;
        searches[row].exact = static_cast<Place>(i);
    }
    // A tag that several rows have leads to one of them. All others without an entry are known to have none.
    std::size_t tagged = 0;
    for (RowSearch const& search : searches) tagged += (search.flags & Tagged) != 0;
    if (tagged != tables.tagIndex.size()) return;
    for (RowSearch& search : searches)
        if (search.exact == unknown) search.exact = none;
}

bool ExtendedInfoStore::HasSecondTable() const {
    sys::thread::impl::ExclusiveAccessGuard const guard(lock);
    return secondTable;
}

bool ExtendedInfoStore::CameWith(Table table, std::size_t index, unsigned field) const {
    sys::thread::impl::ExclusiveAccessGuard const guard(lock);
    if (index >= entryFlags.size()) return false;
    bool const first = table == Table::First;
    if (field == Field::Label) return entryFlags[index] & (first ? FirstLabel : SecondLabel);
    if (field == Field::Description) return entryFlags[index] & (first ? FirstDescription : SecondDescription);
    return false;
}

} // namespace zo
