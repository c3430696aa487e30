// What comes before binding: the tables are joined and checked, and sorted by how they are searched.
#include "Common/extinfo/ExtendedInfo.h"
#include "Common/extinfo/ExtendedInfoStore.h"
#include "Common/extinfo/TagMatcher.h"
#include "Common/registry/RegistryImpl.h"

#include "support/fmt.h"
#include "support/text.h"

#include <algorithm>
#include <bit>
#include <cassert>

namespace zo {
namespace {

using Field = ExtendedInfoField;

// The number of "*", where more than two are as good as two.
unsigned CountStars(std::wstring const& text) {
    std::size_t const first = text.find(L'*');
    if (first == text.npos) return 0;
    return text.find(L'*', first + 1) == text.npos ? 1 : 2;
}

template <class... A>
htl::status Failure(wchar_t const* pattern, A const&... arguments) {
    return htl::status::FromText(str::fmt::format(pattern, arguments...));
}

// Whether a mask has all bits of the fields that are not stated.
bool UnstatedIsWhole(ExtendedInfoEntry const& entry) {
    std::uint32_t const unstated = (entry.fields[Field::ViewExcl] ? 0 : viewmask::views) |
                                   (entry.fields[Field::Physics] ? 0 : viewmask::physics) |
                                   (entry.fields[Field::Mode] ? 0 : viewmask::modes);
    return (entry.mask & unstated) == unstated;
}

// What is wrong in an entry, told once it is known to be the last.
struct Flaw {
    wchar_t const* pattern = nullptr;
    std::wstring const* tag = nullptr;
    std::wstring const* text = nullptr;

    htl::status Tell() const {
        if (!pattern) return {};
        return text ? Failure(pattern, *tag, *text) : Failure(pattern, *tag);
    }
};

// The last flaw in the tags of one item.
void CheckItem(std::wstring const& tag, ViewTravItem const& item, Flaw& flaw) {
    std::wstring const& source = item.SourceTag;
    unsigned const sourceStars = CountStars(source);
    if (sourceStars == 1 && !source.ends_with(L".*"))
        flaw = {L"%s: Traversal source tags can only end in '.*': %s", &tag, &source};
    if (sourceStars > 1) flaw = {L"%s: Traversal source tags do not support multiple wildcards : %s", &tag, &source};
    std::wstring const& dest = item.DestTag;
    unsigned const destStars = CountStars(dest);
    if (destStars == 1 && dest.back() != L'*')
        flaw = {L"%s: Traversal destination tags can only end in '*': %s", &tag, &dest};
    if (destStars > 1) flaw = {L"%s: Traversal destination tags do not support multiple wildcards : %s", &tag, &dest};
    if (dest.find(L'.') != dest.npos)
        flaw = {L"%s: Traversal destination tags may not express their own sub hierarchy: %s", &tag, &dest};
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
    keepFailure(CheckEntries_());
    if (result.IsError()) return result;

    std::vector<std::wstring_view> patterns;
    patterns.reserve(wildcards.size());
    for (Place const wildcard : wildcards) patterns.push_back(entries[wildcard].Tag);
    matcher = std::make_shared<extinfo::TagMatcher>(patterns);
    fromDefault.assign(entries.size(), 0);
    for (Place const wildcard : wildcards) {
        entryFlags[wildcard] |= General;
        generalFields |= entries[wildcard].fields;
    }
    compiled = true;
    return {};
}

// Whose texts an entry has, before any others are joined to them.
void ExtendedInfoStore::NoteTexts_(std::size_t index) {
    auto const& fields = entries[index].fields;
    entryFlags.push_back(static_cast<std::uint8_t>((fields[Field::Label] ? FirstLabel : 0) |
                                                   (fields[Field::Description] ? FirstDescription : 0)));
}

// Two texts of the second table go into the first; both are sorted.
htl::status ExtendedInfoStore::Join_() {
    if (firstTableCount == 0) return {};
    std::size_t const firstEnd = firstTableCount;
    while (entryFlags.size() < firstEnd) NoteTexts_(entryFlags.size());

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
        entryFlags.clear(); // which table a text came with can't be told any more
    }
    return result;
}

htl::status ExtendedInfoStore::FillDefault_() {
    Place const place = Bisect_(L"Default");
    if (place == none) return htl::status::FromText(L"ExtendedInfo should always have a 'Default' entry.");
    defaultEntry = entries[place];
    // As if each field were copied from the entry to itself.
    defaultEntry.fields.set();
    return {};
}

// Lists the wildcards, checks all tags, and notes where entries are. One walk, since entries are large: failures of
// single stars, which count as found before all others, are kept apart.
htl::status ExtendedInfoStore::CheckEntries_() {
    Flaw star;
    Flaw other;
    entryFlags.reserve(entries.size());
    unstatedIsWhole = true;
    tagSlots.assign(std::bit_ceil(entries.size() + entries.size() / 2 + 1), {0, none});
    std::size_t const slots = tagSlots.size() - 1;
    constexpr std::size_t ahead = 6;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        ExtendedInfoEntry const& entry = entries[i];
        // Tags lie elsewhere; they are fetched while others are looked at.
        if (i + 2 * ahead < entries.size()) {
            __builtin_prefetch(&entries[i + 2 * ahead].Tag);
            __builtin_prefetch(&entries[i + 2 * ahead].fields);
            __builtin_prefetch(entries[i + ahead].Tag.data());
        }
        // A table that is joined after a check failed has noted some before.
        if (i == entryFlags.size()) NoteTexts_(i);
        unstatedIsWhole = unstatedIsWhole && UnstatedIsWhole(entry);
        entryFlags[i] |=
            static_cast<std::uint8_t>((entry.fields.any() ? Speaks : 0) | (entry.IsDynamic ? Optional : 0) |
                                      (entry.viewTravList.empty() ? 0 : Shapes));

        std::uint64_t const hash = HashOf_(entry.Tag);
        auto const part = static_cast<std::uint32_t>(hash);
        std::size_t at = hash >> 32 & slots;
        while (tagSlots[at].entry != none &&
               (tagSlots[at].hash != part || entries[tagSlots[at].entry].Tag != entry.Tag))
            at = (at + 1) & slots;
        if (tagSlots[at].entry == none) tagSlots[at] = {part, static_cast<Place>(i)};

        if (unsigned const stars = CountStars(entry.Tag)) {
            wildcards.push_back(static_cast<Place>(i));
            if (entry.Tag.size() == 1)
                star = {L"%s '*' is not allowed; it matches everything and destroys all other lookup logic",
                        &entry.Tag};
            if (stars > 1) other = {L"%s Multiple wildcards in the same match string are not supported", &entry.Tag};
        }
        for (ViewTravItem const& item : entry.viewTravList) CheckItem(entry.Tag, item, other);
    }
    return (other.pattern ? other : star).Tell();
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
