#include "Common/extinfo/TableCheck.h"

#include "Common/extinfo/ExtendedInfoStore.h"
#include "Common/extinfo/TagMatcher.h"
#include "Common/registry/RegistryImpl.h"

#include "support/fmt.h"
#include "support/text.h"
#include "support/xml/XmlFile.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <string_view>
#include <unordered_map>

namespace zo {
namespace {

constexpr std::size_t End = ExtendedInfoStore::End;

bool IsBlankText(std::wstring_view text) { return std::ranges::all_of(text, str::IsBlank); }

/// The entries of the first table by what they are called, and what they state themselves.
///
/// A store's own lookups complete entries, and they work after compilation only.
class Entries {
public:
    explicit Entries(ExtendedInfoStore const& store)
        : store(store), count(store.FirstTableCount() ? store.FirstTableCount() : store.EntryCount()) {
        exact.reserve(count);
        std::vector<std::wstring_view> patterns;
        for (std::size_t i = 0; i < count; ++i) {
            std::wstring_view const tag = store.Entry(i).Tag;
            exact.emplace(tag, i);
            // A pattern with several stars, or with nothing else, is refused by compilation.
            if (tag.size() < 2 || std::ranges::count(tag, L'*') != 1) continue;
            patterns.push_back(tag);
            wildcards.push_back(i);
        }
        matcher.emplace(patterns);
    }

    std::size_t Count() const noexcept { return count; }
    ExtendedInfoEntry const& operator[](std::size_t index) const noexcept { return store.Entry(index); }

    std::size_t Exact(std::wstring_view tag) const {
        auto const found = exact.find(tag);
        return found == exact.end() ? End : found->second;
    }
    std::size_t Wildcard(std::wstring_view tag) const {
        std::size_t const place = matcher->Match(tag);
        return place == extinfo::TagMatcher::npos ? End : wildcards[place];
    }
    /// Whether the entry states a field itself, instead of having it from another one.
    bool States(std::size_t index, unsigned field) const {
        return store.IsCompiled() ? store.StatedBy(index, field) == index : store.Entry(index).Has(field);
    }

private:
    ExtendedInfoStore const& store;
    std::size_t count;
    std::unordered_map<std::wstring_view, std::size_t> exact; // of equal tags the first
    std::vector<std::size_t> wildcards;
    std::optional<extinfo::TagMatcher> matcher;
};

/// The entries that speak for a row, the most specific one first.
class Chain {
public:
    void Add(std::size_t index) {
        if (index != End) places[size++] = index;
    }
    std::size_t const* begin() const noexcept { return places.data(); }
    std::size_t const* end() const noexcept { return places.data() + size; }
    bool IsEmpty() const noexcept { return size == 0; }

private:
    std::array<std::size_t, 4> places{};
    std::size_t size = 0;
};

class Checker {
public:
    Checker(ExtendedInfoStore& store, ZORegistryImpl const& tables)
        : store(store), tables(tables), entries(store), used(entries.Count(), false),
          defaultEntry(entries.Exact(L"Default")) {}

    TableReport Run() {
        for (std::size_t row = 0; row < tables.RowCount(); ++row) CheckRow_(row);
        report.entryCount = entries.Count();
        for (std::size_t i = 0; i < entries.Count(); ++i)
            if (!used[i] && !entries[i].IsDynamic && entries[i].Tag != L"Default")
                report.unused.push_back(entries[i].Tag);
        if (store.FirstTableCount())
            CompareTables_();
        else
            CompareJoined_();
        return std::move(report);
    }

private:
    void CheckRow_(std::size_t row) {
        std::wstring const& tag = tables.tagNames[row];
        Chain chain = ByTag_(tag, tables.subTags[row], tables.parents[row]);
        bool const boundByTag = !chain.IsEmpty();
        std::size_t const ofType = tables.IsAlias(row) ? End : entries.Exact(TypeOf_(row));
        chain.Add(ofType);
        // Values are not bound by their type, which would be "double" for most of them.
        if (boundByTag || (ofType != End && !tables.dataTraits[row].AsAtomic())) used[*chain.begin()] = true;
        if (!store.IsCompiled()) UseByAliases_(row, chain);

        bool const isOfTable = tables.IsAlias(row) && tables.viewRecords[row].kind == ViewTravRecord::RegistryName;
        if (row == 0 || tag.empty() || isOfTable) return;
        ++report.fieldCount;
        if (chain.IsEmpty()) {
            report.withoutEntry.push_back(tag);
            report.rowsToAdd.push_back(tag);
        } else if (Shows_(chain) && !IsLabelled_(chain)) {
            report.withoutLabel.push_back(tag);
            if (entries.Exact(tag) == End) report.rowsToAdd.push_back(tag);
        }
    }

    Chain ByTag_(std::wstring const& tag, std::wstring const& subTag, std::size_t parent) {
        Chain chain;
        if (tag.empty()) return chain;
        chain.Add(entries.Exact(tag));
        chain.Add(Qualified_(subTag, parent));
        chain.Add(entries.Wildcard(tag));
        return chain;
    }

    /// The entry for the path below an ancestor's type; that of the outermost ancestor.
    std::size_t Qualified_(std::wstring path, std::size_t ancestor) const {
        std::size_t found = End;
        std::wstring key;
        while (ancestor != IZO::npos && ancestor != 0) {
            std::wstring const type = TypeOf_(ancestor);
            if (type == L"void") break;
            key.assign(type).append(1, L'.').append(path);
            if (std::size_t const index = entries.Exact(key); index != End) found = index;
            path.insert(0, 1, L'.').insert(0, tables.subTags[ancestor]);
            ancestor = tables.parents[ancestor];
        }
        return found;
    }

    std::wstring TypeOf_(std::size_t row) const { return str::as_wstring(tables.dataTraits[row].TypeName()); }

    /// Compilation will add aliases for items of traversal lists, and entries may speak for these.
    void UseByAliases_(std::size_t row, Chain const& chain) {
        std::size_t const list = Stating_(chain, ExtendedInfoField::ViewHierarchy);
        if (list == End) return;
        for (ViewTravItem const& item : entries[list].viewTravList) {
            std::wstring_view source = item.SourceTag;
            std::wstring subTag = item.DestTag;
            if (source.ends_with(L".*")) {
                source.remove_suffix(2);
                if (subTag.ends_with(L'*')) subTag.back() = L'_';
            }
            if (MerelyMoves_(row, item, source)) continue;
            if (subTag.empty()) subTag = source.substr(source.rfind(L'.') + 1);
            std::wstring const tag = row == 0 ? subTag : tables.tagNames[row] + L'.' + subTag;
            Chain const ofAlias = ByTag_(tag, subTag, row);
            if (!ofAlias.IsEmpty()) used[*ofAlias.begin()] = true;
        }
    }

    /// Whether an item takes a row out of its place without an alias: the first one that does so with it.
    bool MerelyMoves_(std::size_t row, ViewTravItem const& item, std::wstring_view source) {
        if (item.IsDynamic || !item.DestTag.empty() || !item.RemoveFromSource) return false;
        bool const isBelow = source.starts_with(L'.');
        std::wstring tag(source.substr(isBelow));
        if (isBelow && row != 0) tag = tables.tagNames[row] + std::wstring(source);
        std::size_t const moved = tables.RowOfTag(tag);
        return moved != IZO::npos && movedRows.insert(moved).second;
    }

    /// The entry that a field comes from, `End` without one.
    std::size_t Stating_(Chain const& chain, unsigned field) const {
        for (std::size_t const index : chain)
            if (entries.States(index, field)) return index;
        return defaultEntry;
    }
    bool Shows_(Chain const& chain) const {
        std::size_t const index = Stating_(chain, ExtendedInfoField::ViewExcl);
        return index == End || (entries[index].mask & viewmask::views);
    }
    bool IsLabelled_(Chain const& chain) const {
        std::size_t const label = Stating_(chain, ExtendedInfoField::Label);
        if (label != End && !IsBlankText(entries[label].Label)) return true;
        std::size_t const composed = Stating_(chain, ExtendedInfoField::LabelTag);
        return composed != End && !IsBlankText(entries[composed].LabelTag);
    }

    /// Two tables that stand one behind the other.
    void CompareTables_() {
        report.hasSecondTable = true;
        std::unordered_map<std::wstring_view, ExtendedInfoEntry const*> second;
        for (std::size_t i = store.FirstTableCount(); i < store.EntryCount(); ++i) {
            ExtendedInfoEntry const& entry = store.Entry(i);
            if (entries.Exact(entry.Tag) == End)
                report.unknownTranslations.push_back(entry.Tag);
            else
                second.emplace(entry.Tag, &entry);
        }
        static ExtendedInfoEntry const none;
        for (std::size_t i = 0; i < entries.Count(); ++i) {
            ExtendedInfoEntry const& entry = entries[i];
            auto const found = second.find(entry.Tag);
            ExtendedInfoEntry const& other = found == second.end() ? none : *found->second;
            Compare_(entry.Tag, ExtendedInfoField::Label, entry.Label, other.Label);
            Compare_(entry.Tag, ExtendedInfoField::Description, entry.Description, other.Description);
        }
    }
    void Compare_(std::wstring const& tag, ExtendedInfoField::Type field, std::wstring const& first,
                  std::wstring const& second) {
        if (first.empty() == second.empty()) return;
        if (second.empty())
            report.untranslated.push_back({tag, field, first});
        else
            report.onlyTranslated.push_back({tag, field, second});
    }

    /// Two tables that have become one: a text that came with one of them alone still stands.
    void CompareJoined_() {
        report.hasSecondTable = store.HasSecondTable();
        if (!report.hasSecondTable) return;
        using Table = ExtendedInfoStore::Table;
        auto const text = [&](Table table, std::size_t index, unsigned field, std::wstring const& value) {
            return store.CameWith(table, index, field) ? value : std::wstring();
        };
        auto const compare = [&](std::size_t index, ExtendedInfoField::Type field, std::wstring const& value) {
            Compare_(entries[index].Tag, field, text(Table::First, index, field, value),
                     text(Table::Second, index, field, value));
        };
        for (std::size_t i = 0; i < entries.Count(); ++i) {
            compare(i, ExtendedInfoField::Label, entries[i].Label);
            compare(i, ExtendedInfoField::Description, entries[i].Description);
        }
    }

    ExtendedInfoStore& store;
    ZORegistryImpl const& tables;
    Entries entries;
    std::vector<bool> used;
    std::set<std::size_t> movedRows;
    std::size_t defaultEntry;
    TableReport report;
};

/// A document with a row for each tag.
class SkeletonWriter : public sys::file::XmlElemWriter {
public:
    explicit SkeletonWriter(std::vector<std::wstring> const& tags) : tags(tags) {}

    std::wstring Tag() override { return atRow ? L"Entry" : L"Meta_ExtendedInfo"; }
    std::wstring Text() override { return {}; }
    std::pair<sys::file::XmlAttribute const*, sys::file::XmlAttribute const*> Attributes() override {
        if (!atRow) return {nullptr, nullptr};
        cells[0].second = tags[next];
        return {cells.data(), cells.data() + cells.size()};
    }
    htl::handle<XmlElemWriter> Next() override {
        return ++next < tags.size() ? htl::handle<XmlElemWriter>(this) : htl::handle<XmlElemWriter>();
    }
    htl::handle<XmlElemWriter> FirstChild() override {
        if (atRow || tags.empty()) return {};
        atRow = true;
        return htl::handle<XmlElemWriter>(this);
    }

private:
    std::vector<std::wstring> const& tags;
    std::array<sys::file::XmlAttribute, 3> cells{{{L"Tag", {}}, {L"Label", {}}, {L"Description", {}}}};
    std::size_t next = 0;
    bool atRow = false;
};

void Append(std::wstring& text, wchar_t const* heading, std::vector<std::wstring> const& tags) {
    if (tags.empty()) return;
    text += str::fmt::format(L"%s (%u):\n", heading, tags.size());
    for (std::wstring const& tag : tags) text.append(2, L' ').append(tag).append(1, L'\n');
}

void Append(std::wstring& text, wchar_t const* heading, std::vector<TableReport::OneLanguage> const& texts) {
    if (texts.empty()) return;
    text += str::fmt::format(L"%s (%u):\n", heading, texts.size());
    for (TableReport::OneLanguage const& one : texts)
        text += str::fmt::format(L"  %s, %s: \"%s\"\n", one.tag,
                                 one.field == ExtendedInfoField::Label ? L"label" : L"description", one.text);
}

} // namespace

bool TableReport::IsClean() const noexcept {
    return withoutEntry.empty() && withoutLabel.empty() && unused.empty() && untranslated.empty() &&
           onlyTranslated.empty() && unknownTranslations.empty();
}

std::wstring TableReport::Text() const {
    std::wstring text = str::fmt::format(L"%u fields, %u entries%s.\n", fieldCount, entryCount,
                                         hasSecondTable ? L", two languages" : L"");
    Append(text, L"Fields without an entry", withoutEntry);
    Append(text, L"Fields without a label", withoutLabel);
    Append(text, L"Entries that no field uses", unused);
    Append(text, L"Texts that are not translated", untranslated);
    Append(text, L"Texts that stand in the translation alone", onlyTranslated);
    Append(text, L"Entries of the translation that the table does not have", unknownTranslations);
    return text;
}

std::string TableReport::SkeletonRows() const {
    std::vector<unsigned char> document;
    // The names are those above, so the write can't be refused.
    (void)sys::file::XmlStringWrite(document, htl::handle<sys::file::XmlElemWriter>(new SkeletonWriter(rowsToAdd)));
    std::string rows;
    std::string_view rest(reinterpret_cast<char const*>(document.data()), document.size());
    while (!rest.empty()) {
        std::size_t const length = std::min(rest.find('\n'), rest.size() - 1) + 1;
        if (rest.starts_with("  <")) rows += rest.substr(0, length);
        rest.remove_prefix(length);
    }
    return rows;
}

TableReport CheckTable() { return CheckTable(extinfo::Store()); }

TableReport CheckTable(ExtendedInfoStore& store) {
    sys::thread::impl::ExclusiveAccessGuard const guard(store.Lock());
    return Checker(store, impl::Current()).Run();
}

} // namespace zo
