#include "Common/registry/ZOJournal.h"

#include "Common/ZOUtil/NamePath.h"
#include "Common/model/ZOArray.h"
#include "Common/registry/JournalWriter.h"
#include "Common/registry/RegistryImpl.h"
#include "Common/registry/ZORedirect.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace zo {

using Entry = ZOJournal::Entry;

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// The array whose length a node stands for: the array itself, or the one that a "Len" belongs to. Its name in `name`.
ZOArray* ArrayOf(IZO& node, std::string& name, ZOSet& set, H& held) {
    if (auto* const array = dynamic_cast<ZOArray*>(&node)) return array;
    if (node.RegID() != IZO::npos || path::LastPart(std::string_view(name)) != "Len") return nullptr;
    std::string above(path::ParentPart(std::string_view(name)));
    held = above.empty() ? H() : set.Find(above);
    auto* const array = dynamic_cast<ZOArray*>(held.get());
    if (array) name = std::move(above);
    return array;
}

Entry::Kind KindOf(ZOArray const& array) {
    return impl::LevelsBelowKeys(array.RegID()) == 0 ? Entry::Keyed : Entry::Length;
}

std::string ElementName(std::string const& array, std::size_t index) {
    return array + IZO::chArrayOpen + std::to_string(index) + IZO::chArrayClose;
}

/// The elements of an array from `from` on that may hold anything of their own, in ascending order.
///
/// In a registry these are all. In a transaction an array takes any length without having elements: those that nobody
/// staged and no set below has are as new, and there may be more of them than anybody can look at.
std::vector<std::size_t> Elements(ZOSet& set, std::string const& array, std::size_t from, std::size_t length) {
    ZOSet* last = &set;
    std::size_t most = 0;
    for (; last->Source(); last = last->Source()) most += last->Impl()->entryOrder.size();
    std::size_t below = length;
    if (last != &set) {
        H const live = last->Find(array);
        below = std::min(length, live ? live->Length() : 0);
        if (length - from <= most + below) below = length;
    }
    std::vector<std::size_t> elements;
    for (std::size_t i = from; i < below; ++i) elements.push_back(i);
    if (below == length) return elements;

    std::string const start = array + IZO::chArrayOpen;
    for (ZOSet* at = &set; at != last; at = at->Source())
        for (SetEntry const* const entry : at->Impl()->entryOrder) {
            if (!entry || !entry->name.starts_with(start)) continue;
            std::string_view const rest = std::string_view(entry->name).substr(start.size());
            std::size_t index = 0;
            if (path::ParseIndex(rest.substr(0, rest.find(IZO::chArrayClose)), index) && index >= from &&
                index >= below && index < length)
                elements.push_back(index);
        }
    std::sort(elements.begin(), elements.end());
    elements.erase(std::unique(elements.begin(), elements.end()), elements.end());
    return elements;
}

/// The texts of everything under a node of `set`, parents before their children. The names are those of
/// the walk.
void TakeTexts(ZOSet& set, H const& node, std::string const& name, std::vector<Entry>& texts) {
    if (!node) return;
    // What an alias or a link leads to has a place of its own.
    auto const* const redirect = dynamic_cast<ZORedirect const*>(node.get());
    if (redirect && redirect->IsAlias()) return;
    Entry entry;
    entry.name = name;
    if (node->IsValueType()) {
        if (!node->Get(entry.before).IsError()) texts.push_back(std::move(entry));
        return;
    }
    if (redirect) return;
    if (auto const* const array = dynamic_cast<ZOArray const*>(node.get())) {
        entry.kind = KindOf(*array);
        entry.before = std::to_wstring(array->Length());
        texts.push_back(std::move(entry));
        if (set.Source()) {
            for (std::size_t const index : Elements(set, name, 0, array->Length())) {
                std::string const element = ElementName(name, index);
                TakeTexts(set, set.Find(element), element, texts);
            }
            return;
        }
    }
    for (ZOFwrdIterator at = node->begin(); at.current; ++at) TakeTexts(set, at.current, at.current->Name(), texts);
}

bool IsChange(Entry const& entry) { return entry.before != entry.after || entry.existedBefore != entry.existsAfter; }

/// Marks what lies behind an array's end on either side. `entries` are in the order of names, each array before its
/// elements: an assignment to a new element finds it already there, with a default that it never had before.
void MarkAbsent(std::vector<Entry>& entries) {
    struct Array {
        std::size_t entry;
        std::size_t before = 0, after = 0;
    };
    std::vector<Array> around; // the innermost last
    for (std::size_t i = 0; i < entries.size(); ++i) {
        Entry& entry = entries[i];
        while (!around.empty() && !impl::IsWithin(entry.name, entries[around.back().entry].name)) around.pop_back();
        if (!around.empty()) {
            Array const& array = around.back();
            Entry const& outer = entries[array.entry];
            std::string_view rest = std::string_view(entry.name).substr(outer.name.size());
            std::size_t index = 0;
            bool const isElement = rest.starts_with(IZO::chArrayOpen) &&
                                   path::ParseIndex(rest.substr(1, rest.find(IZO::chArrayClose) - 1), index);
            if (!outer.existedBefore || (isElement && index >= array.before)) entry.existedBefore = false;
            if (!outer.existsAfter || (isElement && index >= array.after)) entry.existsAfter = false;
        }
        if (!entry.existedBefore) entry.before.clear();
        if (!entry.existsAfter) entry.after.clear();
        if (entry.kind == Entry::Value) continue;
        Array array{i};
        (void)path::ParseIndex(entry.before, array.before); // no number on the side where there is no array
        (void)path::ParseIndex(entry.after, array.after);
        around.push_back(array);
    }
}

/// Writes one text. Success where there is nothing to write.
htl::status Write(IZO& node, Entry::Kind kind, std::wstring const& text) {
    if (kind == Entry::Value) return node.Set(text);
    std::size_t length = 0;
    if (!path::ParseIndex(text, length)) return ZOError::not_recognized(text);
    if (kind == Entry::Keyed)
        if (htl::status failure = node.SetLength(0); failure.IsError()) return failure;
    return node.SetLength(length);
}

/// Switches the checks of a set's values off.
class Unchecked {
public:
    explicit Unchecked(ZOSetImpl& impl) : impl(impl), before(std::exchange(impl.validateValues, false)) {}
    Unchecked(Unchecked const&) = delete;
    Unchecked& operator=(Unchecked const&) = delete;
    ~Unchecked() { impl.validateValues = before; }

private:
    ZOSetImpl& impl;
    bool before;
};

htl::status Restore(std::vector<Entry> const& entries, ZOSet& set, bool back) {
    Unchecked const unchecked(*set.Impl());
    std::vector<Entry const*> waiting;
    std::vector<std::string_view> closed; // could not be emptied: keys would meet those that are there
    auto const isClosed = [&closed](std::string const& name) {
        return std::any_of(closed.begin(), closed.end(),
                           [&name](std::string_view whole) { return impl::IsWithin(name, whole); });
    };
    for (Entry const& entry : entries)
        if (back ? entry.existedBefore : entry.existsAfter) waiting.push_back(&entry);

    htl::status first;
    // A value may bring others into being, in whatever order their names stand.
    while (!waiting.empty()) {
        std::vector<Entry const*> missing;
        for (Entry const* const entry : waiting) {
            if (isClosed(entry->name)) continue;
            H const node = set.Find(entry->name);
            if (!node) {
                missing.push_back(entry);
                continue;
            }
            htl::status failure = Write(*node, entry->kind, back ? entry->before : entry->after);
            if (failure.IsError() && entry->kind == Entry::Keyed) closed.push_back(entry->name);
            if (failure.IsError() && !first.IsError() && !failure.Is(21661)) first = std::move(failure);
        }
        if (missing.size() == waiting.size()) {
            if (!first.IsError()) first = ZOError::not_found(missing.front()->name);
            break;
        }
        waiting = std::move(missing);
    }
    return first;
}

} // namespace

void ZOJournal::Cover(std::string name) { covered.push_back(std::move(name)); }

void ZOJournal::Clear() { entries.clear(); }

htl::status ZOJournal::Undo(ZOSet& set) const { return Restore(entries, set, true); }

htl::status ZOJournal::Redo(ZOSet& set) const { return Restore(entries, set, false); }

bool impl::ComesBefore(std::string_view a, std::string_view b) noexcept {
    std::size_t const common = std::min(a.size(), b.size());
    std::size_t at = 0;
    while (at < common && a[at] == b[at]) ++at;
    bool const digitA = at < a.size() && IsDigit(a[at]);
    bool const digitB = at < b.size() && IsDigit(b[at]);
    if (digitA || digitB) {
        std::size_t start = at;
        while (start > 0 && IsDigit(a[start - 1])) --start;
        if (start > 0 && a[start - 1] == IZO::chArrayOpen) {
            auto const digits = [start](std::string_view text) {
                std::size_t end = start;
                while (end < text.size() && IsDigit(text[end])) ++end;
                return end - start;
            };
            std::size_t const lengthA = digits(a), lengthB = digits(b);
            if (lengthA != lengthB) return lengthA < lengthB;
        }
    }
    if (at == common) return a.size() < b.size();
    return static_cast<unsigned char>(a[at]) < static_cast<unsigned char>(b[at]);
}

bool impl::IsWithin(std::string_view name, std::string_view whole) noexcept {
    if (!name.starts_with(whole)) return false;
    return name.size() == whole.size() || name[whole.size()] == IZO::chSeparator ||
           name[whole.size()] == IZO::chArrayOpen;
}

bool impl::IsKeyRow(std::size_t row) noexcept {
    ZORegistryImpl const& tables = Current();
    return tables.HasRow(row) && tables.HasSubName(row, "first") && LevelsBelowKeys(row) == 2;
}

int impl::LevelsBelowKeys(std::size_t row) noexcept {
    ZORegistryImpl const& tables = Current();
    for (int levels = 0; tables.HasRow(row); ++levels, row = tables.parents[row]) {
        if (!tables.assocBits[row]) continue;
        std::size_t const element = tables.ElementTemplate(row);
        if (element != IZO::npos && tables.ChildByName(element, "first") != IZO::npos) return levels;
    }
    return -1;
}

JournalWriter::JournalWriter(ZOJournal& journal, ZOSet& base) : journal(journal), base(base) {
    journal.Clear();
    for (std::string const& name : journal.covered) CoverWhole(name);
}

void JournalWriter::CoverWhole(std::string_view name) {
    if (IsCovered_(name)) return;
    Covered whole{std::string(name), {}};
    H node = base.Find(whole.name);
    // What an alias leads to now: behind the commit it may lead elsewhere.
    for (int left = impl::mostRedirects; node && left > 0; --left) {
        auto const* const redirect = dynamic_cast<ZORedirect const*>(node.get());
        if (!redirect || !redirect->IsAlias()) break;
        node = redirect->Redirect();
        if (!node || node->Name().empty()) break;
        whole.name = node->Name();
        if (IsCovered_(whole.name)) return;
    }
    TakeTexts(base, node, node && !node->Name().empty() ? node->Name() : whole.name, whole.before);
    coveredNames.insert(whole.name);
    covered.push_back(std::move(whole));
}

bool JournalWriter::IsCovered_(std::string_view name) const {
    if (coveredNames.empty()) return false;
    for (std::size_t end = 0; end < name.size(); ++end)
        if ((name[end] == IZO::chSeparator || name[end] == IZO::chArrayOpen) &&
            coveredNames.contains(name.substr(0, end)))
            return true;
    return coveredNames.contains(name);
}

void JournalWriter::Before(std::string const& name, IZO const& staged, H const& target) {
    isOpen = false;
    if (IsCovered_(name)) return;
    std::string where = name;
    H held;
    ZOArray* const array = ArrayOf(*target, where, base, held);
    open = Entry();
    if (array) {
        open.kind = KindOf(*array);
        open.before = std::to_wstring(array->Length());
        std::size_t length = staged.Length();
        htl::Int64 number = 0;
        if (held && !const_cast<IZO&>(staged).Get(number).IsError() && number >= 0)
            length = static_cast<std::size_t>(number);
        if (length < array->Length()) Lose_(where, length, array->Length());
    } else if (target->Get(open.before).IsError()) {
        return; // no value
    }
    open.name = std::move(where);
    isOpen = true;
}

void JournalWriter::After(H const& target) {
    if (!isOpen) return;
    isOpen = false;
    if (open.kind == Entry::Value) {
        if (target->Get(open.after).IsError() || open.after == open.before) return;
    } else {
        H const array = base.Find(open.name);
        if (!array) return;
        open.after = std::to_wstring(array->Length());
        if (open.after == open.before) return;
    }
    journal.entries.push_back(std::move(open));
}

void JournalWriter::Lose_(std::string const& array, std::size_t from, std::size_t length) {
    for (std::size_t const index : Elements(base, array, from, length)) {
        std::string const name = ElementName(array, index);
        TakeTexts(base, base.Find(name), name, lost);
    }
}

void JournalWriter::Compare_(Covered& whole) {
    auto const byName = [](Entry const& a, Entry const& b) { return impl::ComesBefore(a.name, b.name); };
    std::vector<Entry> after;
    H const node = base.Find(whole.name);
    TakeTexts(base, node, node && !node->Name().empty() ? node->Name() : whole.name, after);
    std::stable_sort(whole.before.begin(), whole.before.end(), byName);
    std::stable_sort(after.begin(), after.end(), byName);

    std::vector<Entry> all;
    auto left = whole.before.begin();
    auto right = after.begin();
    while (left != whole.before.end() || right != after.end()) {
        bool const takeLeft = left != whole.before.end() && (right == after.end() || !byName(*right, *left));
        bool const takeRight = right != after.end() && (left == whole.before.end() || !byName(*left, *right));
        Entry entry = std::move(takeLeft ? *left : *right);
        if (takeLeft && takeRight)
            entry.after = std::move(right->before);
        else if (takeRight)
            entry.after = std::exchange(entry.before, {});
        entry.existedBefore = takeLeft;
        entry.existsAfter = takeRight;
        all.push_back(std::move(entry));
        if (takeLeft) ++left;
        if (takeRight) ++right;
    }

    // A container that is sorted by keys is filled anew, so all of it is needed once any of it changed.
    std::vector<bool> needed(all.size());
    for (std::size_t i = 0; i < all.size(); ++i) needed[i] = IsChange(all[i]);
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (all[i].kind != Entry::Keyed) continue;
        std::size_t end = i;
        while (end < all.size() && impl::IsWithin(all[end].name, all[i].name)) ++end;
        auto const first = needed.begin() + static_cast<std::ptrdiff_t>(i);
        auto const last = needed.begin() + static_cast<std::ptrdiff_t>(end);
        if (std::find(first, last, true) != last) std::fill(first, last, true);
    }
    for (std::size_t i = 0; i < all.size(); ++i)
        if (needed[i]) journal.entries.push_back(std::move(all[i]));
}

void JournalWriter::Finish() {
    // Elements that were cut off may be there again, if the array was made longer later.
    std::vector<Entry> assigned = std::exchange(journal.entries, {});
    for (Entry& entry : lost) {
        H const node = base.Find(entry.name);
        entry.existsAfter = static_cast<bool>(node);
        if (node && entry.kind == Entry::Value)
            (void)node->Get(entry.after); // a node without a value has no text
        else if (node)
            entry.after = std::to_wstring(node->Length());
        journal.entries.push_back(std::move(entry)); // even unchanged: its first text is the one from before
    }
    for (Covered& whole : covered) Compare_(whole);
    std::vector<Entry>& entries = journal.entries;
    std::move(assigned.begin(), assigned.end(), std::back_inserter(entries));

    // Of one name the first text before, the last one after.
    std::stable_sort(entries.begin(), entries.end(),
                     [](Entry const& a, Entry const& b) { return impl::ComesBefore(a.name, b.name); });
    std::size_t kept = 0;
    for (Entry& entry : entries) {
        if (kept > 0 && entries[kept - 1].name == entry.name) {
            entries[kept - 1].after = std::move(entry.after);
            entries[kept - 1].existsAfter = entry.existsAfter;
            continue;
        }
        if (&entries[kept] != &entry) entries[kept] = std::move(entry);
        ++kept;
    }
    entries.resize(kept);
    MarkAbsent(entries);
    std::erase_if(entries, [this](Entry const& entry) { return !IsChange(entry) && !IsCovered_(entry.name); });
    std::erase_if(entries, [](Entry const& entry) { return !entry.existedBefore && !entry.existsAfter; });
}

} // namespace zo
