// Which entry speaks for a node.
//
// Four searches lead to entries, from the most to the least specific: by the tag, by the type of an ancestor and the
// path below it, by wildcards, and by the type. The first entry that they find is the node's own; a field that it lacks
// is taken over from the next one that has it, and stays.
#include "Common/ZOUtil/NamePath.h"
#include "Common/extinfo/ExtendedInfoStore.h"
#include "Common/extinfo/TagMatcher.h"
#include "Common/registry/Find.h"
#include "Common/registry/RegistryImpl.h"
#include "Common/registry/ZORedirect.h"

#include "support/text.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cstring>
#include <functional>
#include <numeric>
#include <span>
#include <utility>

namespace zo {
namespace {

using sys::thread::impl::ExclusiveAccessGuard;
using Field = ExtendedInfoField;

unsigned AsLookedUp(unsigned field) noexcept { return field < Field::count ? field : unsigned(Field::Whole); }

bool HasMaskFields(ExtendedInfoEntry const& entry) noexcept {
    return entry.fields[Field::ViewExcl] && entry.fields[Field::Physics] && entry.fields[Field::Mode];
}

void CopyField(ExtendedInfoEntry& to, ExtendedInfoEntry const& from, unsigned field) {
    switch (field) {
    case Field::IsDynamic: to.IsDynamic = from.IsDynamic; break;
    case Field::Label: to.Label = from.Label; break;
    case Field::LabelTag: to.LabelTag = from.LabelTag; break;
    case Field::Description: to.Description = from.Description; break;
    case Field::PrettyPrintNameTag: to.PrettyPrintNameTag = from.PrettyPrintNameTag; break;
    case Field::PrettyPrintValueTag: to.PrettyPrintValueTag = from.PrettyPrintValueTag; break;
    case Field::ColorTag: to.ColorTag = from.ColorTag; break;
    case Field::CustomView: to.CustomView = from.CustomView; break;
    case Field::Category: to.Category = from.Category; break;
    case Field::ViewHierarchy:
        if (&to != &from) to.viewTravList = from.viewTravList;
        break;
    // A view that the other entry lacks is lost, while analyses and modes only add up: an entry that never stated them
    // has all of them, so it stays visible in each.
    case Field::ViewExcl: to.mask &= from.mask | ~viewmask::views; break;
    case Field::Physics: to.mask |= from.mask & viewmask::physics; break;
    case Field::Mode: to.mask |= from.mask & viewmask::modes; break;
    case Field::Style: to.Style = from.Style; break;
    default: assert(false); return;
    }
    to.fields.set(field);
}

// Calls `visit` with each field that a question is for.
template <class Visit>
void ForFieldsOf(unsigned question, Visit const& visit) {
    if (question == Field::Visibility)
        for (unsigned field : {Field::ViewExcl, Field::Physics, Field::Mode}) visit(field);
    else if (question == Field::Whole)
        for (unsigned field = 0; field < Field::count; ++field) visit(field);
}

} // namespace

ExtendedInfoStore::ExtendedInfoStore() {
    defaultEntry.mask = 0; // without a table nothing shows
}

ExtendedInfoStore::~ExtendedInfoStore() = default;

std::size_t ExtendedInfoStore::Lookup(std::size_t regID, unsigned field) {
    ExclusiveAccessGuard const guard(lock);
    return LookupRow_(regID, AsLookedUp(field));
}

std::size_t ExtendedInfoStore::LookupRow_(std::size_t row, unsigned field) {
    auto const boundTo = [this](std::size_t id) { return id < regIDMap.size() ? regIDMap[id] : End; };
    std::size_t candidate = boundTo(row);
    if (candidate != End && entries[candidate].Has(field)) return candidate;
    if (!compiled) return End;
    ZORegistryImpl const& tables = impl::Current();
    SyncRows_(tables);
    if (row >= searches.size()) return End;

    // Aliases may stand for aliases, in a circle even: those that wait for what they stand for are kept in a list.
    struct Waiting {
        bool isAlias;
        std::size_t candidate;
    };
    std::vector<Waiting> waiting;
    std::size_t found = End;
    while (true) {
        bool foundLast = candidate != End;
        if (SearchRow_(tables, row, field, candidate, found, foundLast)) break;
        bool const isAlias = searches[row].flags & Alias;
        std::size_t const source = foundLast || !isAlias ? IZO::npos : SourceOf_(tables, row);
        if (source == IZO::npos || waiting.size() == static_cast<std::size_t>(impl::mostRedirects)) {
            found = TakeOver_(isAlias, candidate, End, field);
            break;
        }
        waiting.push_back({isAlias, candidate});
        row = source;
        candidate = boundTo(row);
        if (candidate != End && entries[candidate].Has(field)) {
            found = candidate;
            break;
        }
    }
    for (; !waiting.empty(); waiting.pop_back())
        found = TakeOver_(waiting.back().isAlias, waiting.back().candidate, found, field);
    return found;
}

ExtendedInfoStore::Place ExtendedInfoStore::ExactOf_(ZORegistryImpl const& tables, std::size_t row) {
    RowSearch& search = searches[row];
    if (!(search.flags & Tagged)) return none;
    if (search.exact == unknown) FindExactFrom_(tables, row);
    return search.exact;
}

// The entry of a row as a whole. Most have one under their own tags; then that entry itself isn't read.
std::size_t ExtendedInfoStore::BoundTo_(ZORegistryImpl const& tables, std::size_t row) {
    SyncRows_(tables);
    Place const exact = ExactOf_(tables, row);
    return exact != none && entryFlags[exact] & Speaks ? exact : LookupRow_(row, Field::Whole);
}

// The searches for one row. True if they settle it, with the entry in `found`. Otherwise `candidate` is the row's own
// entry, and `foundLast` says whether the last search that ran found one.
bool ExtendedInfoStore::SearchRow_(ZORegistryImpl const& tables, std::size_t row, unsigned field,
                                   std::size_t& candidate, std::size_t& found, bool& foundLast) {
    RowSearch& search = searches[row];
    bool const isAlias = search.flags & Alias;
    auto const settle = [&](Place place) {
        foundLast = place != none;
        if (place == none) return false;
        if (entries[place].Has(field)) {
            found = TakeOver_(isAlias, candidate, place, field);
            return true;
        }
        if (candidate == End) candidate = place;
        return false;
    };
    if (search.flags & Tagged) {
        if (candidate == End && settle(ExactOf_(tables, row))) return true;
        if (candidate != End && GeneralHasNothing_(search, field)) {
            found = TakeOver_(isAlias, candidate, End, field);
            return true;
        }
        if (search.qualified == unknown)
            search.qualified = search.flags & BelowQualified ? FindQualified_(tables, row) : none;
        if (settle(search.qualified)) return true;
        if (search.wildcard == unknown) search.wildcard = FindWildcard_(tables.tagNames[row]);
        if (settle(search.wildcard)) return true;
    }
    if (!isAlias && !(field == Field::Whole && search.flags & Atomic)) return settle(types[search.type].entry);
    return false;
}

// Whether all that is more general than a row's own entry has a field from the default entry, if at all: then it makes
// no difference which of it the field comes from, and the more costly searches can wait.
bool ExtendedInfoStore::GeneralHasNothing_(RowSearch const& search, unsigned field) const {
    if (field == Field::Whole || search.flags & Alias || generalFields[field]) return false;
    // Masks are narrowed and widened rather than replaced, so that what stood there before counts, too.
    if (!unstatedIsWhole && (field == Field::ViewExcl || field == Field::Physics || field == Field::Mode)) return false;
    Place const type = types[search.type].entry;
    return type == none || !entries[type].fields[field] || fromDefault[type] >> field & 1;
}

// The row of what an alias in the view stands for.
std::size_t ExtendedInfoStore::SourceOf_(ZORegistryImpl const& tables, std::size_t row) {
    RowSearch& search = searches[row];
    if (search.source != unknown) return search.source;
    ViewTravRecord const& record = tables.viewRecords[row];
    if (record.kind != ViewTravRecord::RegistryName || record.path.empty() || record.path == tables.tagNames[row])
        return IZO::npos;
    std::size_t const source = tables.RowOfTag(record.path);
    if (source >= searches.size()) return IZO::npos;
    // Records change while the view is shaped.
    if (finished) search.source = static_cast<Place>(source);
    return source;
}

// The field goes from `found`, or from the default entry, to the entry that a node has already.
std::size_t ExtendedInfoStore::TakeOver_(bool redirects, std::size_t candidate, std::size_t found, unsigned field) {
    if (field == Field::Whole || candidate == End) return found;
    ExtendedInfoEntry const& own = entries[candidate];
    if ((redirects && own.IsDynamic) || own.fields[field]) return found;
    Complete_(candidate, found, field);
    return candidate;
}

void ExtendedInfoStore::Complete_(std::size_t index, std::size_t source, unsigned field) {
    CopyField(entries[index], source == End ? defaultEntry : entries[source], field);
    Place const origin = source == End ? none : Origin_(source, field);
    if (origin == none) {
        fromDefault[index] |= static_cast<std::uint16_t>(1u << field);
        return;
    }
    takenFrom[FieldPlace_(index, field)] = origin;
    if (entryFlags[index] & General) generalFields.set(field);
}

ExtendedInfoStore::Place ExtendedInfoStore::Origin_(std::size_t index, unsigned field) const {
    if (index < fromDefault.size() && fromDefault[index] >> field & 1) return none;
    auto const taken = takenFrom.find(FieldPlace_(index, field));
    return taken == takenFrom.end() ? static_cast<Place>(index) : taken->second;
}

std::size_t ExtendedInfoStore::LookupVisibility(std::size_t regID, std::uint32_t& mask) {
    ExclusiveAccessGuard const guard(lock);
    std::size_t const found = LookupRow_(regID, Field::Whole);
    if (found == End) {
        mask = defaultEntry.mask;
    } else {
        ExtendedInfoEntry const& entry = entries[found];
        if (!HasMaskFields(entry) && !(IsAliasRow_(regID) && entry.IsDynamic))
            ForFieldsOf(Field::Visibility, [&](unsigned field) {
                if (!entry.fields[field]) LookupRow_(regID, field);
            });
        mask = entry.mask;
    }
    // A field that is set never changes again.
    if (regID < finalMaskCount && (found == End || HasMaskFields(entries[found])))
        finalMasks[regID].store(mask | maskIsKnown, std::memory_order_relaxed);
    return found;
}

ExtendedInfoEntry const& ExtendedInfoStore::LookupWhole(std::size_t regID, unsigned field) {
    ExclusiveAccessGuard const guard(lock);
    std::size_t const found = LookupRow_(regID, AsLookedUp(field));
    if (found == End) return defaultEntry;
    ExtendedInfoEntry const& entry = entries[found];
    if (field >= Field::count && !(IsAliasRow_(regID) && entry.IsDynamic))
        ForFieldsOf(field, [&](unsigned asked) {
            if (!entry.fields[asked]) LookupRow_(regID, asked);
        });
    return entry;
}

ExtendedInfoEntry const& ExtendedInfoStore::Lookup(H const& node, unsigned field) {
    ExclusiveAccessGuard const guard(lock);
    if (!compiled) return defaultEntry;
    H last;
    std::size_t const found = LookupNode_(node, AsLookedUp(field), last);
    if (found == End) return defaultEntry;
    ExtendedInfoEntry const& entry = entries[found];
    if (field >= Field::count && MayTakeOver_(last ? *last : *node, found))
        ForFieldsOf(field, [&](unsigned asked) {
            H again;
            if (!entry.fields[asked]) LookupNode_(last ? last : node, asked, again);
        });
    return entry;
}

// Follows redirects until there is an entry. `last` is the node that it is for, if that isn't the given one.
std::size_t ExtendedInfoStore::LookupNode_(H const& node, unsigned field, H& last) {
    ZORegistryImpl const& tables = impl::Current();
    IZO* at = node.get();
    for (int steps = 0; at && steps <= impl::mostRedirects; ++steps) {
        bool const registered = tables.HasRow(at->RegID());
        std::size_t found = End;
        if (registered)
            found = LookupRow_(at->RegID(), field);
        else if (at->Owner())
            found = LookupByText_(*at, field);
        if (found != End) return found;
        // The column saves most nodes a search through their bases.
        if (!registered || tables.redirects[at->RegID()]) {
            if (auto const* const redirect = dynamic_cast<ZORedirect const*>(at)) {
                H next = redirect->Redirect();
                last = std::move(next);
                at = last.get();
                continue;
            }
        }
        Place const type = types[registered ? searches[at->RegID()].type : TypeOf_(at->GetDataTraits())].entry;
        if (type == none) return End;
        if (!entries[type].Has(field) && MayTakeOver_(*at, type)) TakeOver_(false, type, End, field);
        return type;
    }
    return End;
}

// A dynamic entry takes nothing over for nodes that stand for others.
bool ExtendedInfoStore::MayTakeOver_(IZO const& node, std::size_t entry) const {
    if (!entries[entry].IsDynamic) return true;
    ZORegistryImpl const& tables = impl::Current();
    if (tables.HasRow(node.RegID())) return !tables.IsAlias(node.RegID());
    return dynamic_cast<IZORedirector const*>(&node) == nullptr;
}

std::size_t ExtendedInfoStore::LookupByText_(IZO& node, unsigned field) {
    ZORegistryImpl const& tables = impl::Current();
    bool const redirects = tables.HasRow(node.RegID()) ? tables.IsAlias(node.RegID())
                                                       : dynamic_cast<IZORedirector const*>(&node) != nullptr;
    std::wstring const tag = node.TagName(FullTagType);
    std::wstring normal = tag;
    (void)path::Normalize(normal); // a malformed tag is looked up as far as it goes

    std::size_t candidate = End;
    std::size_t found = End;
    auto const settle = [&](Place place) {
        if (place == none) return false;
        if (entries[place].Has(field)) {
            found = TakeOver_(redirects, candidate, place, field);
            return true;
        }
        if (candidate == End) candidate = place;
        return false;
    };
    if (settle(FindExact_(normal)) || settle(FindQualified_(node, tag, normal)) || settle(FindWildcard_(normal)))
        return found;
    return TakeOver_(redirects, candidate, End, field);
}

// Rows come and go in one direction only, but the type of a row may still be named after it was seen.
void ExtendedInfoStore::SyncRows_(ZORegistryImpl const& tables) {
    if (typeTemplatesSeen != tables.typeTemplates.size()) {
        typeTemplatesSeen = tables.typeTemplates.size();
        searches.clear();
    }
    std::size_t const begin = searches.size();
    std::size_t const end = tables.RowCount();
    if (begin >= end) return;
    searches.resize(end);
    meta::MetaTraits const* lastTraits = nullptr;
    Place lastType = none;
    for (std::size_t row = begin; row < end; ++row) {
        RowSearch& search = searches[row];
        meta::MetaDataTraits const& traits = tables.dataTraits[row];
        // Rows of one type often come one after the other.
        if (lastType == none || traits.Descriptor() != lastTraits) {
            lastTraits = traits.Descriptor();
            lastType = TypeOf_(traits);
        }
        search.type = lastType;
        search.flags = (tables.aliasBits[row] ? Alias : 0u) | (traits.AsAtomic() ? Atomic : 0u) |
                       (tables.tagNames[row].empty() ? 0u : Tagged);
        // Parents have rows before their children.
        std::size_t const above = tables.parents[row];
        if (above == 0 || above >= row || types[searches[above].type].isVoid) continue;
        TypeSearch const& type = types[searches[above].type];
        if (type.first != type.last || searches[above].flags & BelowQualified) search.flags |= BelowQualified;
    }
}

ExtendedInfoStore::Place ExtendedInfoStore::TypeOf_(meta::MetaDataTraits const& traits) {
    std::type_info const* const key = traits.Descriptor() ? traits.Descriptor()->type : &typeid(void);
    auto const [known, isNew] = typePlaces.try_emplace(key, static_cast<Place>(types.size()));
    if (!isNew) return known->second;

    std::wstring name = str::as_wstring(traits.TypeName());
    TypeSearch type;
    type.isVoid = name == L"void";
    type.entry = FindExact_(name);
    name += L'.';
    type.prefixLength = name.size();
    auto const at = std::lower_bound(
        entries.begin(), entries.end(), name,
        [](ExtendedInfoEntry const& entry, std::wstring const& tag) { return str::CompareUtf16(entry.Tag, tag) < 0; });
    auto end = at;
    for (; end != entries.end() && end->Tag.starts_with(name); ++end) {
        Place const place = static_cast<Place>(end - entries.begin());
        entryFlags[place] |= General;
        for (unsigned field = 0; field < Field::count; ++field)
            if (end->fields[field] && !(fromDefault[place] >> field & 1)) generalFields.set(field);
    }
    type.first = static_cast<Place>(at - entries.begin());
    type.last = static_cast<Place>(end - entries.begin());
    types.push_back(type);
    return known->second;
}

std::uint64_t ExtendedInfoStore::HashOf_(std::wstring_view tag) const noexcept {
    static constexpr std::uint64_t factor = 0x9e3779b97f4a7c15u;
    // Two sums at a time, as each waits for its own product.
    std::uint64_t even = reinterpret_cast<std::uintptr_t>(this) * factor;
    std::uint64_t odd = tag.size();
    auto const add = [](std::uint64_t& sum, wchar_t const* text, std::size_t count) {
        std::uint64_t word = 0;
        std::memcpy(&word, text, count * sizeof(wchar_t));
        sum = (std::rotl(sum, 5) ^ word) * factor;
    };
    constexpr std::size_t step = sizeof(std::uint64_t) / sizeof(wchar_t);
    wchar_t const* text = tag.data();
    std::size_t left = tag.size();
    for (; left >= 2 * step; left -= 2 * step, text += 2 * step) {
        add(even, text, step);
        add(odd, text + step, step);
    }
    if (left >= step) {
        add(odd, text, step);
        left -= step;
        text += step;
    }
    if (left > 0) add(even, text, left);
    std::uint64_t const both = (even ^ std::rotl(odd, 32)) * factor;
    return both ^ both >> 29;
}

ExtendedInfoStore::Place ExtendedInfoStore::FindExact_(std::wstring_view tag, std::uint64_t hash) const noexcept {
    auto const part = static_cast<std::uint32_t>(hash);
    std::size_t const slots = tagSlots.size() - 1;
    for (std::size_t at = hash >> 32 & slots;; at = (at + 1) & slots) {
        TagSlot const& slot = tagSlots[at];
        if (slot.entry == none || (slot.hash == part && entries[slot.entry].Tag == tag)) return slot.entry;
    }
}

// Searches for a row and those behind it, which are usually asked about next. Each would wait for memory several times;
// together they wait at the same time.
void ExtendedInfoStore::FindExactFrom_(ZORegistryImpl const& tables, std::size_t row) {
    constexpr std::size_t most = 48;
    std::size_t const end = std::min(row + most, searches.size());
    std::size_t const slots = tagSlots.size() - 1;
    std::uint64_t hashes[most];
    Place guesses[most];
    // Most tags lie in two lines of the cache.
    auto const fetch = [](std::wstring const& text) {
        __builtin_prefetch(text.data());
        __builtin_prefetch(text.data() + text.size());
    };
    if (row == 0 || searches[row - 1].exact == unknown)
        for (std::size_t id = row; id < end; ++id) fetch(tables.tagNames[id]);
    for (std::size_t id = row; id < end; ++id) {
        hashes[id - row] = HashOf_(tables.tagNames[id]);
        __builtin_prefetch(&tagSlots[hashes[id - row] >> 32 & slots]);
    }
    for (std::size_t id = row; id < end; ++id) {
        Place const guess = guesses[id - row] = tagSlots[hashes[id - row] >> 32 & slots].entry;
        if (guess != none) __builtin_prefetch(&entries[guess].Tag);
    }
    for (Place const guess : std::span(guesses, end - row))
        if (guess != none) fetch(entries[guess].Tag);
    for (std::size_t id = end; id < std::min(end + most, searches.size()); ++id) fetch(tables.tagNames[id]);
    for (std::size_t id = row; id < end; ++id) searches[id].exact = FindExact_(tables.tagNames[id], hashes[id - row]);
}

ExtendedInfoStore::Place ExtendedInfoStore::Bisect_(std::wstring_view tag) const noexcept {
    auto const at = std::lower_bound(
        entries.begin(), entries.end(), tag,
        [](ExtendedInfoEntry const& entry, std::wstring_view key) { return str::CompareUtf16(entry.Tag, key) < 0; });
    return at != entries.end() && at->Tag == tag ? static_cast<Place>(at - entries.begin()) : none;
}

// The entry of a type and a path below it.
ExtendedInfoStore::Place ExtendedInfoStore::FindBelow_(TypeSearch const& type, std::wstring_view path) const noexcept {
    auto const pathOf = [&type](ExtendedInfoEntry const& entry) {
        return std::wstring_view(entry.Tag).substr(type.prefixLength);
    };
    auto const begin = entries.begin() + type.first;
    auto const end = entries.begin() + type.last;
    auto const at = std::lower_bound(begin, end, path, [&](ExtendedInfoEntry const& entry, std::wstring_view key) {
        return str::CompareUtf16(pathOf(entry), key) < 0;
    });
    return at != end && pathOf(*at) == path ? static_cast<Place>(at - entries.begin()) : none;
}

// Climbs to the top: the outermost ancestor whose type has an entry for the path wins.
ExtendedInfoStore::Place ExtendedInfoStore::FindQualified_(ZORegistryImpl const& tables, std::size_t row) {
    Place found = none;
    std::wstring& path = scratch;
    path = tables.subTags[row];
    while (searches[row].flags & BelowQualified) {
        std::size_t const above = tables.parents[row];
        TypeSearch const& type = types[searches[above].type];
        if (Place const place = FindBelow_(type, path); place != none) found = place;
        row = above;
        path.insert(0, 1, L'.').insert(0, tables.subTags[row]);
    }
    return found;
}

ExtendedInfoStore::Place ExtendedInfoStore::FindQualified_(IZO& node, std::wstring_view tag, std::wstring_view normal) {
    if (!node.Owner()) return none;
    Place found = none;
    std::wstring_view above = path::ParentPart(tag);
    std::wstring_view normalAbove = path::ParentPart(normal);
    for (; !above.empty(); above = path::ParentPart(above), normalAbove = path::ParentPart(normalAbove)) {
        H const parent = node.Owner()->FindTag(std::wstring(above));
        if (!parent) continue;
        TypeSearch const& type = types[TypeOf_(parent->GetDataTraits())];
        if (type.isVoid) break;
        if (type.first == type.last) continue;
        std::wstring_view rest = normal.substr(normalAbove.size());
        if (rest.starts_with(L'.')) rest.remove_prefix(1);
        if (Place const place = FindBelow_(type, rest); place != none) found = place;
    }
    return found;
}

ExtendedInfoStore::Place ExtendedInfoStore::FindWildcard_(std::wstring_view tag) const noexcept {
    std::size_t const place = matcher->Match(tag);
    return place == extinfo::TagMatcher::npos ? none : wildcards[place];
}

std::vector<std::size_t> ExtendedInfoStore::RowsWithLists_(ZORegistryImpl const& tables, std::size_t rowCount) {
    constexpr unsigned field = Field::ViewHierarchy;
    ExclusiveAccessGuard const guard(lock);
    SyncRows_(tables); // tells which entries speak for types
    std::vector<std::size_t> rows;
    auto const hasList = [this](TypeSearch const& type) {
        return type.entry != none && entries[type.entry].fields[field];
    };
    if (!defaultEntry.viewTravList.empty() || generalFields[field] || std::ranges::any_of(types, hasList)) {
        rows.resize(rowCount);
        std::iota(rows.begin(), rows.end(), std::size_t(0));
        return rows;
    }

    // An entry that speaks for one row alone, which is no alias, has nothing to take over but the default entry's list,
    // which is empty.
    std::vector<bool> isOwn(entries.size());
    for (std::size_t row = 0; row < rowCount; ++row)
        if (Place const exact = ExactOf_(tables, row); exact != none)
            isOwn[exact] = !tables.aliasBits[row] && !(entryFlags[exact] & (Optional | General));
    for (TypeSearch const& type : types)
        if (type.entry != none) isOwn[type.entry] = false;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (!isOwn[i] || entries[i].fields[field]) continue;
        entries[i].fields.set(field);
        fromDefault[i] |= 1u << field;
    }

    for (std::size_t row = 0; row < rowCount; ++row) {
        Place const exact = ExactOf_(tables, row);
        if (exact == none || !isOwn[exact] || entryFlags[exact] & Shapes) rows.push_back(row);
    }
    return rows;
}

void ExtendedInfoStore::FinishBinding_() {
    ExclusiveAccessGuard const guard(lock);
    finished = true;
    std::size_t const rows = impl::Current().RowCount();
    finalMasks = std::make_unique<std::atomic<std::uint32_t>[]>(rows);
    finalMaskCount.store(rows, std::memory_order_release);
}

std::size_t ExtendedInfoStore::StatedBy(std::size_t index, unsigned field) const {
    ExclusiveAccessGuard const guard(lock);
    if (index >= entries.size() || field >= Field::count || !entries[index].fields[field]) return End;
    Place const origin = Origin_(index, field);
    return origin == none ? End : origin;
}

std::size_t ExtendedInfoStore::IndexOf(ExtendedInfoEntry const& entry) const noexcept {
    std::less<> const before;
    ExtendedInfoEntry const* const first = entries.data();
    if (before(&entry, first) || !before(&entry, first + entries.size())) return End;
    return static_cast<std::size_t>(&entry - first);
}

} // namespace zo
