// Lookups against a plain retelling of their rules: linear, without anything that is kept between questions.
#include "Common/extinfo/ExtendedInfo.h"
#include "Common/extinfo/ExtendedInfoStore.h"
#include "Common/registry/RegistryImpl.h"
#include "tests/registry/Rows.h"

#include "support/describe.h"
#include "support/text.h"

#include <algorithm>
#include <cstddef>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace oracle {

// Types of rows, as tables name them.
struct Layer {};
struct Slope {};
struct Well {};

} // namespace oracle

namespace {

using zo::ExtendedInfoEntry;
using zo::ExtendedInfoStore;
using zo::ZORegistryImpl;
using Field = zo::ExtendedInfoField;
using zo::viewmask::modes;
using zo::viewmask::physics;
using zo::viewmask::views;

constexpr std::size_t none = ExtendedInfoStore::End;

template <class T>
meta::MetaDataTraits TraitsOf() {
    static meta::MetaDataTraits const traits = meta::StructureBuilder<T>().Build();
    return traits;
}

/// The rules of lookup, one after the other.
class Rules {
public:
    Rules(ZORegistryImpl const& tables, std::vector<ExtendedInfoEntry> rows)
        : tables(tables), entries(std::move(rows)) {
        std::ranges::stable_sort(entries, str::LessUtf16(), &ExtendedInfoEntry::Tag);
        defaultEntry = entries[Exact(L"Default")];
        defaultEntry.fields.set();
        for (std::size_t i = 0; i < entries.size(); ++i) {
            if (entries[i].Tag.find(L'*') == std::wstring::npos) continue;
            if (entries[i].Tag.front() == L'*') split = wildcards.size();
            wildcards.push_back(i);
        }
        ++split;
        origins.assign(entries.size(), std::vector<std::size_t>(Field::count));
        for (std::size_t i = 0; i < entries.size(); ++i) origins[i].assign(Field::count, i);
    }

    /// Asks what a compilation asks, in its order.
    void Bind() {
        for (std::size_t row = 0; row < tables.RowCount(); ++row) Lookup(row, Field::ViewHierarchy);
        std::vector<std::size_t> bound(tables.RowCount(), none);
        map = bound;
        for (std::size_t row = 0; row < bound.size(); ++row) map[row] = Lookup(row, Field::Whole);
    }

    std::size_t Lookup(std::size_t row, unsigned f, int depth = 0) {
        std::size_t c = row < map.size() ? map[row] : none;
        if (Has(c, f)) return c;
        bool const alias = tables.aliasBits[row];
        bool lastFound = c != none;
        std::wstring const& tag = tables.tagNames[row];
        if (!tag.empty()) {
            if (c == none) {
                std::size_t const exact = Exact(tag);
                if (Has(exact, f)) return exact;
                c = exact;
            }
            std::size_t const qualified = Qualified(row);
            if (Has(qualified, f)) return Inherit(alias, c, qualified, f);
            if (c == none) c = qualified;
            std::size_t const wildcard = Wildcard(tag);
            if (Has(wildcard, f)) return Inherit(alias, c, wildcard, f);
            if (c == none) c = wildcard;
            lastFound = wildcard != none;
        }
        if (!alias && !(f == Field::Whole && tables.dataTraits[row].AsAtomic())) {
            std::size_t const type = Exact(str::as_wstring(tables.dataTraits[row].TypeName()));
            if (Has(type, f)) return Inherit(alias, c, type, f);
            if (c == none) c = type;
            lastFound = type != none;
        }
        zo::ViewTravRecord const& record = tables.viewRecords[row];
        if (!lastFound && record.kind == zo::ViewTravRecord::RegistryName && !record.path.empty() &&
            record.path != tag && depth < 1000) {
            std::size_t const source = tables.RowOfTag(record.path);
            if (source != zo::IZO::npos) {
                std::size_t const found = Lookup(source, f, depth + 1);
                if (found != none) return Inherit(alias, c, found, f);
            }
        }
        return Inherit(alias, c, none, f);
    }

    std::size_t Qualified(std::size_t row) const {
        std::size_t found = none;
        std::wstring path = tables.subTags[row];
        for (std::size_t at = row;;) {
            std::size_t const above = tables.parents[at];
            if (above == zo::IZO::npos || above == 0) return found;
            std::string const type = tables.dataTraits[above].TypeName();
            if (type == "void") return found;
            if (at != row) path = tables.subTags[at] + L"." + path;
            if (std::size_t const hit = Exact(str::as_wstring(type) + L"." + path); hit != none) found = hit;
            at = above;
        }
    }

    std::size_t Wildcard(std::wstring const& tag) const {
        auto const longest = [&](std::size_t begin, std::size_t end) {
            std::size_t best = none;
            for (std::size_t i = begin; i < end; ++i) {
                std::wstring const& pattern = entries[wildcards[i]].Tag;
                std::size_t const star = pattern.find(L'*');
                if (pattern.size() <= tag.size() && tag.compare(0, star, pattern, 0, star) == 0 &&
                    tag.ends_with(pattern.substr(star + 1)) && pattern.size() > LengthOf(best))
                    best = wildcards[i];
            }
            return best;
        };
        std::size_t const end = std::min(split, wildcards.size());
        std::size_t const prefixed = longest(end, wildcards.size());
        std::size_t const starred = longest(0, end);
        return LengthOf(starred) > LengthOf(prefixed) ? starred : prefixed;
    }

    ZORegistryImpl const& tables;
    std::vector<ExtendedInfoEntry> entries;
    ExtendedInfoEntry defaultEntry;
    std::vector<std::vector<std::size_t>> origins; // by entry and field
    std::vector<std::size_t> map;

private:
    bool Has(std::size_t index, unsigned f) const { return index != none && entries[index].Has(f); }
    std::size_t LengthOf(std::size_t index) const { return index == none ? 0 : entries[index].Tag.size(); }
    std::size_t Exact(std::wstring const& tag) const {
        for (std::size_t i = 0; i < entries.size(); ++i)
            if (entries[i].Tag == tag) return i;
        return none;
    }
    std::size_t Inherit(bool alias, std::size_t c, std::size_t e, unsigned f) {
        if (f == Field::Whole || c == none) return e;
        ExtendedInfoEntry& own = entries[c];
        if (alias && own.IsDynamic) return e;
        if (own.fields[f]) return e;
        ExtendedInfoEntry const& from = e == none ? defaultEntry : entries[e];
        origins[c][f] = e == none ? none : origins[e][f];
        own.fields.set(f);
        switch (f) {
        case Field::IsDynamic: own.IsDynamic = from.IsDynamic; break;
        case Field::Label: own.Label = from.Label; break;
        case Field::LabelTag: own.LabelTag = from.LabelTag; break;
        case Field::Description: own.Description = from.Description; break;
        case Field::PrettyPrintNameTag: own.PrettyPrintNameTag = from.PrettyPrintNameTag; break;
        case Field::PrettyPrintValueTag: own.PrettyPrintValueTag = from.PrettyPrintValueTag; break;
        case Field::ColorTag: own.ColorTag = from.ColorTag; break;
        case Field::CustomView: own.CustomView = from.CustomView; break;
        case Field::Category: own.Category = from.Category; break;
        case Field::ViewHierarchy: own.viewTravList = from.viewTravList; break;
        case Field::ViewExcl: own.mask &= (from.mask & views) | ~views; break;
        case Field::Physics: own.mask |= from.mask & physics; break;
        case Field::Mode: own.mask |= from.mask & modes; break;
        default: own.Style = from.Style; break;
        }
        return c;
    }

    std::vector<std::size_t> wildcards;
    std::size_t split = 0;
};

/// Small trees and tables that have much to do with each other.
class RandomProject {
public:
    explicit RandomProject(unsigned seed) : random(seed) {
        static constexpr wchar_t const* components[] = {L"A", L"B", L"Ab", L"Name", L"N"};
        std::vector<std::string> names{""};
        for (std::size_t left = 10 + Below(50); left > 0; --left) {
            std::wstring const component = components[Below(std::size(components))];
            std::string const& above = names[Below(names.size())];
            std::string const name = above + (above.empty() ? "" : ".") + str::as_cstring(component);
            if (!taken.insert(name).second) continue;
            // A row without a tag has none below it, either.
            bool const tagged = Below(12) != 0;
            bool const alias = Below(6) == 0;
            zo::H const node = alias ? zo::H(new rows::OtherName("A", true)) : zo::H(new rows::Plain);
            registry.Add(name, node, tagged ? component : L"", AnyType());
            if (!alias) names.push_back(name);
        }
        registry->OnPostRegistration();
        ZORegistryImpl& tables = Tables();
        tables.viewIsFinal = true;
        // What a traversal list makes of its aliases.
        for (std::size_t row = 1; row < tables.RowCount(); ++row)
            if (tables.aliasBits[row] && Below(4) != 0) {
                tables.viewRecords[row].kind = zo::ViewTravRecord::RegistryName;
                tables.viewRecords[row].path = tables.tagNames[Below(tables.RowCount())];
            }
    }

    ZORegistryImpl& Tables() { return *registry->Tables(); }

    /// Adds rows when the table is compiled already.
    void AddLateRows() {
        for (int i = 0; i < 5; ++i)
            registry.Add("Late" + std::to_string(i), zo::H(new rows::Plain), i % 2 ? L"A" + std::to_wstring(i) : L"",
                         AnyType());
    }

    std::vector<ExtendedInfoEntry> Table() {
        partialMasks = Below(4) == 0;
        std::vector<ExtendedInfoEntry> table{AnyEntry(L"Default")};
        std::set<std::wstring> tags{L"Default", L"*"};
        for (std::size_t left = Below(60); left > 0; --left) {
            std::wstring const tag = AnyTag();
            // Now and then two entries have one tag: the first one counts.
            if (!tag.empty() && (tags.insert(tag).second || (tag != L"Default" && tag != L"*" && Below(8) == 0)))
                table.push_back(AnyEntry(tag));
        }
        return table;
    }

    /// A number below `end`.
    unsigned Below(std::size_t end) { return static_cast<unsigned>(random() % end); }

private:
    meta::MetaDataTraits AnyType() {
        switch (Below(6)) {
        case 0: return TraitsOf<oracle::Layer>();
        case 1: return TraitsOf<oracle::Slope>();
        case 2: return TraitsOf<oracle::Well>();
        case 3: return meta::AtomicTraits<double>();
        case 4: return meta::AtomicTraits<int>();
        default: return Below(3) == 0 ? meta::MetaDataTraits() : TraitsOf<oracle::Layer>();
        }
    }

    std::wstring AnyTag() {
        ZORegistryImpl const& tables = Tables();
        std::size_t const row = Below(tables.RowCount());
        std::wstring const& tag = tables.tagNames[row];
        switch (Below(8)) {
        case 0: {
            static constexpr wchar_t const* types[] = {L"oracle::Layer", L"oracle::Slope", L"double", L"int", L"void"};
            return types[Below(std::size(types))];
        }
        case 1:
        case 2: { // a type and a path
            std::wstring path = tables.subTags[row];
            std::size_t above = tables.parents[row];
            for (std::size_t climb = Below(3); climb > 0 && above != 0 && above < tables.RowCount(); --climb) {
                path = tables.subTags[above] + L"." + path;
                above = tables.parents[above];
            }
            if (above >= tables.RowCount()) return {};
            return str::as_wstring(tables.dataTraits[above].TypeName()) + L"." + path;
        }
        case 3:
        case 4: { // a wildcard
            std::size_t const start = tag.empty() ? 0 : Below(tag.size());
            std::size_t const end = start + Below(tag.size() - start + 1);
            return (Below(3) ? tag.substr(0, start) : L"") + L"*" + (Below(3) ? tag.substr(end) : L"");
        }
        default: return tag;
        }
    }

    ExtendedInfoEntry AnyEntry(std::wstring const& tag) {
        ExtendedInfoEntry entry;
        entry.Tag = tag;
        entry.fields.set(Field::IsDynamic);
        entry.IsDynamic = Below(4) == 0;
        // No document leaves such masks; rows that were made by hand may.
        if (partialMasks) entry.mask = Below(0x80000) & zo::viewmask::everything;
        for (unsigned field = 1; field < Field::count; ++field) {
            if (Below(3) != 0) continue;
            entry.fields.set(field);
            std::wstring const text = tag + L"/" + std::to_wstring(field);
            switch (field) {
            case Field::Label: entry.Label = text; break;
            case Field::LabelTag: entry.LabelTag = text; break;
            case Field::Description: entry.Description = text; break;
            case Field::PrettyPrintNameTag: entry.PrettyPrintNameTag = text; break;
            case Field::PrettyPrintValueTag: entry.PrettyPrintValueTag = text; break;
            case Field::ColorTag: entry.ColorTag = text; break;
            case Field::CustomView: entry.CustomView = text; break;
            case Field::Category: entry.Category = text; break;
            // The form that makes no alias.
            case Field::ViewHierarchy:
                if (Below(2)) entry.viewTravList = {{L"", L".*", true, false}};
                break;
            case Field::ViewExcl: entry.mask &= ~Below(8); break;
            case Field::Physics: entry.mask = (entry.mask & ~physics) | (Below(0x200) << 8 & physics); break;
            case Field::Mode: entry.mask = (entry.mask & ~modes) | (Below(4) << 17 & modes); break;
            default: entry.Style = static_cast<zo::style::Type>(Below(3)); break;
            }
        }
        return entry;
    }

    std::mt19937 random;
    rows::OwnRegistry registry;
    std::set<std::string> taken;
    bool partialMasks = false;
};

void ExpectSameEntry(ExtendedInfoEntry const& entry, ExtendedInfoEntry const& expected) {
    ASSERT_EQ(entry.Tag, expected.Tag);
    ASSERT_EQ(entry.fields, expected.fields) << testing::PrintToString(entry.Tag);
    ASSERT_EQ(entry.Label, expected.Label);
    ASSERT_EQ(entry.LabelTag, expected.LabelTag);
    ASSERT_EQ(entry.Description, expected.Description);
    ASSERT_EQ(entry.PrettyPrintNameTag, expected.PrettyPrintNameTag);
    ASSERT_EQ(entry.PrettyPrintValueTag, expected.PrettyPrintValueTag);
    ASSERT_EQ(entry.ColorTag, expected.ColorTag);
    ASSERT_EQ(entry.CustomView, expected.CustomView);
    ASSERT_EQ(entry.Category, expected.Category);
    ASSERT_EQ(entry.mask, expected.mask) << testing::PrintToString(entry.Tag);
    ASSERT_EQ(entry.Style, expected.Style);
    ASSERT_EQ(entry.IsDynamic, expected.IsDynamic);
    ASSERT_EQ(entry.viewTravList.size(), expected.viewTravList.size());
}

void ExpectSameEntries(ExtendedInfoStore const& store, Rules const& rules) {
    ASSERT_EQ(store.EntryCount(), rules.entries.size());
    for (std::size_t i = 0; i < store.EntryCount(); ++i) {
        ASSERT_NO_FATAL_FAILURE(ExpectSameEntry(store.Entry(i), rules.entries[i]));
        for (unsigned field = 0; field < Field::count; ++field) {
            std::size_t const origin = rules.entries[i].fields[field] ? rules.origins[i][field] : none;
            ASSERT_EQ(store.StatedBy(i, field), origin) << i << " " << field;
        }
    }
}

class LookupOracleTest : public testing::TestWithParam<unsigned> {};

TEST_P(LookupOracleTest, AnswersAndCompletesAsTheRulesSay) {
    for (unsigned round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        RandomProject project(GetParam() * 1000 + round);
        std::vector<ExtendedInfoEntry> const table = project.Table();
        ExtendedInfoStore& store = zo::extinfo::Store();
        (void)store.Add(table); // tags that come twice are told, and kept
        (void)store.Compile();  // so are entries that nothing uses
        ASSERT_TRUE(store.IsCompiled());
        Rules rules(project.Tables(), table);
        rules.Bind();
        ASSERT_NO_FATAL_FAILURE(ExpectSameEntries(store, rules));

        if (round % 3 == 0) project.AddLateRows();
        for (int question = 0; question < 300; ++question) {
            std::size_t const row = project.Below(project.Tables().RowCount());
            unsigned const field = project.Below(Field::count + 1);
            unsigned const asked = field == Field::count ? unsigned(Field::Whole) : field;
            ASSERT_EQ(store.Lookup(row, asked), rules.Lookup(row, asked))
                << project.Tables().names[row] << " " << asked;
        }
        ASSERT_NO_FATAL_FAILURE(ExpectSameEntries(store, rules));
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, LookupOracleTest, testing::Range(1u, 9u));

TEST(LookupMaskTest, MasksThatAreKeptAreThoseOfTheRules) {
    for (unsigned round = 0; round < 200; ++round) {
        SCOPED_TRACE(round);
        RandomProject project(77'000 + round);
        std::vector<ExtendedInfoEntry> const table = project.Table();
        ExtendedInfoStore& store = zo::extinfo::Store();
        (void)store.Add(table);
        (void)store.Compile();
        Rules rules(project.Tables(), table);
        rules.Bind();
        for (int question = 0; question < 200; ++question) {
            std::size_t const row = project.Below(project.Tables().RowCount());
            std::size_t const found = rules.Lookup(row, Field::Whole);
            if (found != none && !(project.Tables().aliasBits[row] && rules.entries[found].IsDynamic))
                for (unsigned const field : {Field::ViewExcl, Field::Physics, Field::Mode})
                    if (!rules.entries[found].fields[field]) rules.Lookup(row, field);
            std::uint32_t const expected = (found == none ? rules.defaultEntry : rules.entries[found]).mask;
            std::uint32_t mask = 0;
            if (std::uint32_t const kept = store.FinalMask(row)) {
                ASSERT_EQ(kept, expected | ExtendedInfoStore::maskIsKnown) << project.Tables().names[row];
            } else {
                ASSERT_EQ(store.LookupVisibility(row, mask), found);
                ASSERT_EQ(mask, expected) << project.Tables().names[row];
            }
        }
    }
}

} // namespace
