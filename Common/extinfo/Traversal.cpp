#include "Common/extinfo/Traversal.h"

#include "Common/extinfo/ExtendedInfoStore.h"
#include "Common/redirect/ZOAlias.h"
#include "Common/redirect/ZOAliasRegistrator.h"

#include "support/fmt.h"
#include "support/text.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace zo::extinfo {

namespace {

constexpr std::wstring_view allChildren = L".*";

template <class... A>
htl::status Failure(wchar_t const* pattern, A const&... arguments) {
    return htl::status::FromText(str::fmt::format(pattern, arguments...));
}

// "@Parent" as a component of its own.
bool StripParent(std::wstring_view& tag) {
    constexpr std::wstring_view climb = L"@Parent";
    if (!tag.starts_with(climb)) return false;
    wchar_t const next = tag.size() == climb.size() ? L'.' : tag[climb.size()];
    if (next != L'.' && next != L'@') return false;
    tag.remove_prefix(climb.size());
    if (tag.starts_with(L'.')) tag.remove_prefix(1);
    return true;
}

bool IsRelative(std::wstring_view source) { return source.empty() || source.front() == L'.' || source.front() == L'@'; }

// Whether a row below another one can have this tag: a single component, no index and no way up.
bool IsOneComponent(std::wstring_view tag) {
    return !tag.empty() && tag.find_first_of(L".[]") == tag.npos && !str::IsDigit(tag.front()) && tag.front() != L'@';
}

// Rows that are added go behind the others of their parent, whatever their names.
class Reopened {
public:
    explicit Reopened(ZORegistryImpl& tables)
        : tables(tables), wasComplete(std::exchange(tables.initializationComplete, false)) {}
    Reopened(Reopened const&) = delete;
    Reopened& operator=(Reopened const&) = delete;
    ~Reopened() { tables.initializationComplete = wasComplete; }

private:
    ZORegistryImpl& tables;
    bool wasComplete;
};

} // namespace

bool IsDynamicForm(std::vector<ViewTravItem> const& list) noexcept {
    return list.size() == 1 && list.front().SourceTag == allChildren;
}

void ViewChains::Fill() {
    previous.assign(tables.RowCount(), IZO::npos);
    last.assign(tables.RowCount(), IZO::npos);
    for (std::size_t parent = 0; parent < tables.RowCount(); ++parent)
        for (std::size_t row = tables.viewFirstChildren[parent]; row != IZO::npos;
             row = tables.viewRecords[row].ViewTravNextID)
            previous[row] = std::exchange(last[parent], row);
}

void ViewChains::Grow() {
    previous.push_back(IZO::npos);
    last.push_back(IZO::npos);
}

void ViewChains::Remove(std::size_t row) {
    std::size_t const parent = std::exchange(tables.viewParents[row], IZO::npos);
    if (parent == IZO::npos) return;
    std::size_t const before = std::exchange(previous[row], IZO::npos);
    std::size_t const after = std::exchange(tables.viewRecords[row], {}).ViewTravNextID;
    (before == IZO::npos ? tables.viewFirstChildren[parent] : tables.viewRecords[before].ViewTravNextID) = after;
    (after == IZO::npos ? last[parent] : previous[after]) = before;
    if (parent != indexed) return;
    auto const count = tagCounts.find(tables.subTags[row]);
    if (count != tagCounts.end() && --count->second == 0) tagCounts.erase(count);
}

void ViewChains::Append(std::size_t parent, std::size_t row) {
    assert(tables.viewParents[row] == IZO::npos);
    std::size_t const before = std::exchange(last[parent], row);
    (before == IZO::npos ? tables.viewFirstChildren[parent] : tables.viewRecords[before].ViewTravNextID) = row;
    previous[row] = before;
    tables.viewRecords[row].ViewTravNextID = IZO::npos;
    tables.viewParents[row] = parent;
    if (parent == indexed) ++tagCounts[tables.subTags[row]];
}

void ViewChains::Index(std::size_t parent) {
    indexed = parent;
    tagCounts.clear();
    for (std::size_t row = tables.viewFirstChildren[parent]; row != IZO::npos;
         row = tables.viewRecords[row].ViewTravNextID)
        ++tagCounts[tables.subTags[row]];
}

bool ViewChains::HasTag(std::size_t parent, std::wstring const& tag) const {
    if (parent == indexed) return tagCounts.contains(tag);
    std::size_t row = tables.viewFirstChildren[parent];
    while (row != IZO::npos && tables.subTags[row] != tag) row = tables.viewRecords[row].ViewTravNextID;
    return row != IZO::npos;
}

ViewShaper::ViewShaper(ExtendedInfoStore& store)
    : store(store), tables(impl::Current()), chains(tables), moved(tables.RowCount(), false) {}

htl::status ViewShaper::Run(std::size_t rowCount) {
    htl::status result;
    std::vector<ViewTravItem> list;
    for (std::size_t const row : store.RowsWithLists_(tables, rowCount)) {
        {
            sys::thread::impl::ExclusiveAccessGuard const guard(store.Lock());
            std::size_t const entry = store.LookupRow_(row, ExtendedInfoField::ViewHierarchy);
            std::vector<ViewTravItem> const& own =
                (entry == ExtendedInfoStore::End ? store.DefaultEntry() : store.Entry(entry)).viewTravList;
            if (own.empty()) continue;
            // A copy: other threads may ask, and complete the entry, while aliases are registered.
            list = own;
        }
        // Registration refused this row, and something else has its name or tag.
        if (tables.nodes[row]->RegID() != row) continue;
        if (htl::status failure = ApplyList_(row, list); failure.IsError()) result = std::move(failure);
    }
    return result;
}

htl::status ViewShaper::ApplyList_(std::size_t parent, std::vector<ViewTravItem> const& list) {
    if (tables.dataTraits[parent].AsArray())
        return Failure(L"%s: Re-parenting an object under an array is not allowed.", CallOf_(parent));
    if (!std::exchange(changed, true)) chains.Fill();
    if (IsDynamicForm(list)) {
        tables.viewRecords[parent].flags |= ViewTravRecord::WalkChildren;
        if (!list.front().DestTag.empty())
            return Failure(L"%s: You can't rename children of a dynamic traversal.", CallOf_(parent));
        return {};
    }
    // Below this the walk along the children is cheaper.
    constexpr std::size_t worthAnIndex = 8;
    if (list.size() >= worthAnIndex) chains.Index(parent);
    std::size_t const rowsBefore = tables.RowCount();
    htl::status result;
    for (ViewTravItem const& item : list) {
        std::size_t shown = IZO::npos;
        htl::status failure = ApplyItem_(parent, item, shown);
        if (!failure.IsError()) {
            if (chains.HasTag(parent, tables.subTags[shown]))
                failure = Failure(L"%s: Duplicate tag {%s} assigned", CallOf_(parent), tables.subTags[shown]);
            else
                chains.Append(parent, shown);
        }
        if (failure.IsError()) result = std::move(failure);
    }
    if (tables.RowCount() != rowsBefore && tables.initializationComplete)
        std::stable_sort(tables.childrenByName[parent].begin(), tables.childrenByName[parent].end(),
                         [](auto const& a, auto const& b) { return a.first < b.first; });
    return result;
}

htl::status ViewShaper::ApplyItem_(std::size_t parent, ViewTravItem const& item, std::size_t& shown) {
    auto const noSource = [&] { return Failure(L"%s: Unable to find source {%s}.", CallOf_(parent), item.SourceTag); };
    std::wstring sourceTag = item.SourceTag;
    std::wstring destTag = item.DestTag;
    bool const isSpliced = sourceTag.ends_with(allChildren);
    if (isSpliced) {
        sourceTag.resize(sourceTag.size() - allChildren.size());
        if (destTag.ends_with(L'*')) destTag.back() = L'_';
    }

    Source source;
    if (!item.IsDynamic) {
        source = Resolve_(parent, sourceTag);
        if (source.row == IZO::npos && !source.isBehindDynamic)
            return Failure(L"Unknown source tag: %s", item.SourceTag);
    }
    bool const isKnown = source.row != IZO::npos;
    // An element stays with its array: there is no place in the view for one that has no index.
    bool const isElement = isKnown && tables.subNames[source.row] == "[]";
    bool const needsAlias = item.IsDynamic || !destTag.empty() || !item.RemoveFromSource || source.isBehindDynamic ||
                            (isKnown && WasMoved_(source.row));
    std::wstring aliasTag;
    if (needsAlias) {
        aliasTag = destTag;
        if (aliasTag.empty() && !sourceTag.empty())
            aliasTag =
                isKnown ? tables.subTags[source.row] : std::wstring(path::LastPart(std::wstring_view(sourceTag)));
        if (!IsOneComponent(aliasTag)) {
            if (destTag.empty()) return noSource();
            return Failure(L"%s: Traversal destination tags may not express their own sub hierarchy: %s",
                           CallOf_(parent), item.DestTag);
        }
    } else if (sourceTag.empty() || (isElement && IsRelative(sourceTag))) {
        return noSource();
    }

    if (isKnown && item.RemoveFromSource && !WasMoved_(source.row) && !isElement) chains.Remove(source.row);
    if (needsAlias) {
        if (htl::status failure = AddAlias_(parent, aliasTag, sourceTag, source, shown); failure.IsError())
            return failure;
    } else {
        shown = source.row;
        if (moved.size() <= shown) moved.resize(tables.RowCount(), false);
        moved[shown] = true;
        std::wstring const& fullTag = tables.tagNames[shown];
        bool const isRelative = IsRelative(sourceTag);
        if (!isRelative && fullTag.find_first_of(L"[]") != fullTag.npos)
            return Failure(L"%s: We can't support an array using an absolute tag of {%s}", CallOf_(parent), fullTag);
        // It stands in no list now; what the record said of its old place doesn't hold any more.
        ViewTravRecord& record = tables.viewRecords[shown] = {};
        record.kind = isRelative ? ViewTravRecord::RelativeTag : ViewTravRecord::AbsoluteTag;
        if (!isRelative)
            record.path = fullTag;
        else
            record.path = sourceTag.front() == L'.' ? sourceTag.substr(1) : sourceTag;
    }

    bool const isDynamic = isKnown && IsDynamic_(source.row);
    ViewTravRecord& record = tables.viewRecords[shown];
    record.flags = isSpliced ? ViewTravRecord::Splice : 0u;
    // An alias walks nothing itself: what it stands for has a record of its own.
    bool const isWalked = isSpliced ? isDynamic || source.isBehindDynamic : isDynamic && !needsAlias;
    if (isWalked) record.flags |= ViewTravRecord::WalkChildren;
    if (isWalked && isSpliced && !destTag.empty()) record.renamePattern = destTag.substr(0, destTag.size() - 1);
    return {};
}

htl::status ViewShaper::AddAlias_(std::size_t parent, std::wstring const& tag, std::wstring const& sourceTag,
                                  Source source, std::size_t& alias) {
    // The root has a name and a tag, but what is below it doesn't begin with them.
    bool const isTopLevel = parent == 0;
    std::wstring const fullTag = isTopLevel ? tag
                                 : tables.tagNames[parent].empty()
                                     ? std::wstring() // nothing below a node without a tag has one
                                     : tables.tagNames[parent] + L'.' + tag;
    std::string name = str::as_cstring(tag);
    if (!isTopLevel) name = tables.names[parent] + IZO::chSeparator + name;
    if (tables.RowOfName(name) != IZO::npos || (!fullTag.empty() && tables.RowOfTag(fullTag) != IZO::npos))
        return Failure(L"%s: Duplicate name {%s}", CallOf_(parent), fullTag.empty() ? str::as_wstring(name) : fullTag);

    H node;
    if (IsRelative(sourceTag))
        node = H(new ZOAliasRelative(L"@Parent" + sourceTag, IZO::npos, nullptr));
    else if (source.row == IZO::npos)
        node = H(new ZOAliasAbsoluteSlow(sourceTag, IZO::npos, nullptr));
    else
        node = H(new ZOAliasAbsolute(tables.names[source.row], IZO::npos, nullptr));
    alias = tables.RowCount();
    {
        // As while registration is open: putting each into its place by name would be quadratic, so the names of a
        // parent's children are sorted when its list is done.
        Reopened const registration(tables);
        ZOAliasRegistrator(node, htl::handle<IODS>(new ODSName(name)),
                           meta::MetaPersistTraits(meta::MetaPersistTraits::No, fullTag));
    }
    assert(tables.RowCount() == alias + 1);
    chains.Grow();
    ViewTravRecord& record = tables.viewRecords[alias];
    record.kind = ViewTravRecord::RegistryName;
    if (source.row != IZO::npos) record.path = tables.tagNames[source.row];
    return {};
}

ViewShaper::Source ViewShaper::Resolve_(std::size_t parent, std::wstring_view tag) const {
    if (!IsRelative(tag)) return {tables.RowOfTag(tag), false};
    std::size_t row = parent;
    while (!tag.empty()) {
        if (tag.front() == L'.') tag.remove_prefix(1);
        if (StripParent(tag)) {
            row = tables.parents[row];
            if (row == IZO::npos) return {};
            continue;
        }
        std::size_t const end = tag.find_first_of(L".[", tag.starts_with(L'[') ? 1 : 0);
        std::wstring_view const component = tag.substr(0, end);
        std::size_t next = tables.ChildByTag(row, component);
        // Aliases are in the list of names only.
        if (next == IZO::npos) next = tables.ChildByName(row, str::as_cstring(std::wstring(component)));
        if (next == IZO::npos) return {};
        row = next;
        tag.remove_prefix(component.size());
        if (!tag.empty() && IsDynamic_(row)) return {IZO::npos, true};
    }
    return {row, false};
}

bool ViewShaper::IsDynamic_(std::size_t row) const {
    sys::thread::impl::ExclusiveAccessGuard const guard(store.Lock());
    std::size_t const entry = store.Lookup(row, ExtendedInfoField::ViewHierarchy);
    return IsDynamicForm((entry == ExtendedInfoStore::End ? store.DefaultEntry() : store.Entry(entry)).viewTravList);
}

std::wstring ViewShaper::CallOf_(std::size_t row) const {
    return tables.tagNames[row].empty() ? str::as_wstring(tables.names[row]) : tables.tagNames[row];
}

htl::status ViewShaper::FindCircle() const {
    if (!changed) return {};
    enum : unsigned char { Unseen, OnTheWay, Seen };
    std::vector<unsigned char> state(tables.RowCount(), Unseen);
    for (std::size_t row = 0; row < tables.RowCount(); ++row) {
        std::size_t at = row;
        for (; at != IZO::npos && state[at] == Unseen; at = tables.viewParents[at]) state[at] = OnTheWay;
        if (at != IZO::npos && state[at] == OnTheWay)
            return Failure(L"%s: Moving an object under itself is not allowed.", CallOf_(at));
        for (at = row; at != IZO::npos && state[at] == OnTheWay; at = tables.viewParents[at]) state[at] = Seen;
    }
    return {};
}

} // namespace zo::extinfo
