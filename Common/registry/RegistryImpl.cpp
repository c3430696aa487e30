#include "Common/registry/RegistryImpl.h"

#include "Common/model/ZOArray.h"
#include "Common/model/ZOWrapper.h"
#include "Common/registry/ZORedirect.h"
#include "Common/registry/ZORegistry.h"

#include "support/text.h"

#include <algorithm>
#include <typeinfo>

namespace zo {

using impl::NodeAccess;

namespace {

// A tag without its bracket suffix: everything from the last "[" is dropped.
std::wstring_view CutAtBracket(std::wstring_view tag) { return tag.substr(0, tag.rfind(L'[')); }

// What stands between the last "[" and a last "]" behind it.
bool BracketText(std::wstring_view tag, std::wstring_view& inside) {
    std::size_t const open = tag.rfind(L'[');
    std::size_t const close = tag.rfind(L']');
    if (open == tag.npos || close == tag.npos || close < open) return false;
    inside = tag.substr(open + 1, close - open - 1);
    return true;
}

bool IsArrayKind(meta::MetaDataTraits const& traits) { return traits.AsArray() != nullptr; }

std::size_t FindChild(auto const& children, auto key, bool sorted, auto less) {
    if (sorted) {
        auto const at = std::lower_bound(children.begin(), children.end(), key,
                                         [&](auto const& child, auto const& k) { return less(child.first, k); });
        return at != children.end() && at->first == key ? at->second : IZO::npos;
    }
    for (auto const& child : children)
        if (child.first == key) return child.second;
    return IZO::npos;
}

void AddChild(auto& children, auto key, std::size_t id, bool sorted, auto less) {
    if (sorted) {
        auto const at = std::upper_bound(children.begin(), children.end(), key,
                                         [&](auto const& k, auto const& child) { return less(k, child.first); });
        children.emplace(at, std::move(key), id);
    } else {
        children.emplace_back(std::move(key), id);
    }
}

constexpr auto lessByBytes = [](std::string_view a, std::string_view b) { return a < b; };
constexpr auto lessByUnits = str::LessUtf16();

} // namespace

ZORegistryImpl::ZORegistryImpl(ZORegistry* owner) : owner(owner) {
    constexpr std::size_t leastBuckets = 10000;
    constexpr std::size_t rows = 5000;
    nameIndex.max_load_factor(1.0f);
    tagIndex.max_load_factor(1.0f);
    nameIndex.rehash(leastBuckets);
    tagIndex.rehash(leastBuckets);
    auto const reserve = [](auto&... columns) { (columns.reserve(rows), ...); };
    reserve(dataTraits, persistTraits, localTags, stores, nodes, names, subNames, tagNames, subTags, pathTags, wrappers,
            redirects, aliasBits, assocBits, parents, nextSiblings, firstChildren, viewFirstChildren, viewParents,
            childrenByName, childrenByTag, viewRecords, stepRows);
}

// Entries before rows.
ZORegistryImpl::~ZORegistryImpl() { ReleaseAll(); }

bool ZORegistryImpl::IsRegistryImpl() const { return true; }

void ZORegistryImpl::SuspendTracking() {
    ZOSetImpl::SuspendTracking();
    trackTemporaries = false;
}

meta::MetaPersistTraits ZORegistryImpl::Resolve(meta::MetaPersistTraits const& asked, IZO const* parent) const {
    using meta::MetaPersistTraits;
    MetaPersistTraits resolved = asked;
    std::uint32_t parentType = asked.Type;
    std::wstring parentTagName, parentTag;
    bool element = false;
    if (parent) {
        // A parent whose tag was taken has no row, and so no traits to ask for.
        element = HasRow(parent->RegID()) && IsArrayKind(parent->GetDataTraits());
        MetaPersistTraits const above = parent->GetPersistTraits();
        parentType = above.Type;
        parentTagName = above.TagName;
        parentTag = parent->RegID() != IZO::npos ? localTags[parent->RegID()] : above.Tag;
    }
    if (element) {
        // A plural with its singular in brackets names the elements; any other tag gets a "_".
        std::wstring_view inside;
        if (BracketText(parentTag, inside))
            resolved.Tag = inside;
        else
            resolved.Tag = parentTag.empty() ? parentTag : parentTag + L"_";
        resolved.TagName = resolved.Tag.empty() ? std::wstring() : parentTagName + L"[" + resolved.Tag + L"]";
        resolved.Type = parentType;
    } else {
        std::wstring_view inside;
        std::wstring const local(BracketText(asked.Tag, inside) ? CutAtBracket(asked.Tag)
                                                                : std::wstring_view(asked.Tag));
        if (parent) {
            if (local.empty() || parentTagName.empty()) {
                resolved.TagName.clear();
                resolved.Tag.clear();
            } else {
                resolved.TagName = path::Join(parentTagName, local);
            }
        } else if (std::size_t const dot = resolved.TagName.rfind(L'.'); dot != std::wstring::npos) {
            resolved.TagName.replace(dot + 1, std::wstring::npos, local);
        } else {
            resolved.TagName = local;
        }
    }
    if (parentType == MetaPersistTraits::No) resolved.Type = MetaPersistTraits::No;
    return resolved;
}

ZORegistryImpl::RegID ZORegistryImpl::AddRow(htl::handle<IODS> const& store, H const& node, IZO* parent,
                                             meta::MetaPersistTraits resolved, meta::MetaDataTraits const& data) {
    RegID const id = RowCount();
    RegID const parentID = parent ? parent->RegID() : IZO::npos;
    bool const parentHasRow = HasRow(parentID);
    std::string const& name = store->Name();
    std::string const subName(path::LastPart(std::string_view(name)));

    std::wstring tagName = resolved.TagName;
    (void)path::Normalize(tagName); // a malformed tag is kept as far as it goes

    std::wstring subTag =
        parentHasRow && IsArrayKind(dataTraits[parentID]) ? L"[]" : std::wstring(CutAtBracket(resolved.Tag));

    std::wstring pathTag = tagName;
    if (pathTag.empty() && !path::IsAttributeComponent(subName)) {
        bool inTree = true;
        if (parentHasRow && parentID != 0) {
            inTree = !path::IsAttributeComponent(subNames[parentID]) && !pathTags[parentID].empty();
            if (inTree) pathTag = pathTags[parentID] + L".";
        }
        if (inTree) pathTag += str::as_wstring(subName);
    }

    ZORedirect* const redirect = dynamic_cast<ZORedirect*>(node.get());
    bool const isAlias = redirect && (node->RegID() == IZO::npos || !HasRow(node->RegID()) ? redirect->IsAlias()
                                                                                           : IsAlias(node->RegID()));

    dataTraits.push_back(data);
    localTags.push_back(resolved.Tag);
    resolved.Tag = CutAtBracket(resolved.Tag);
    persistTraits.push_back(std::move(resolved));
    stores.push_back(store);
    nodes.push_back(node);
    names.push_back(name);
    subNames.push_back(subName);
    tagNames.push_back(tagName);
    subTags.push_back(subTag);
    pathTags.push_back(std::move(pathTag));
    wrappers.push_back(dynamic_cast<IZOWrapper*>(node.get()));
    redirects.push_back(redirect);
    aliasBits.push_back(redirect && redirect->IsAlias());
    assocBits.push_back(false);
    parents.push_back(parentID);
    nextSiblings.push_back(IZO::npos);
    firstChildren.push_back(IZO::npos);
    viewFirstChildren.push_back(IZO::npos);
    viewParents.push_back(IZO::npos);
    childrenByName.emplace_back();
    childrenByTag.emplace_back();
    viewRecords.emplace_back();

    StepRow& step = stepRows.emplace_back();
    step.wrapper = wrappers.back();
    step.store = store.get();
    step.node = node.get();
    if (step.wrapper) step.offset = reinterpret_cast<std::uintptr_t>(step.wrapper->Memory());
    if (parentHasRow) step.parent = static_cast<StepRow::Row>(parentID);
    std::size_t const kept = std::min(subName.size(), step.start.size());
    std::copy_n(subName.data(), kept, step.start.data());
    step.length = static_cast<std::uint8_t>(kept < subName.size() ? step.start.size() + 1 : kept);
    if (name.find_first_of(".[]") == name.npos) steps.Add(IZO::npos, name, id);

    if (parentHasRow) {
        steps.Add(parentID, subName, id);
        AddChild(childrenByName[parentID], subName, id, initializationComplete, lessByBytes);
        if (!isAlias && !subTag.empty())
            AddChild(childrenByTag[parentID], subTag, id, initializationComplete, lessByUnits);
        StepRow::Row& element = stepRows[parentID].elementTemplate;
        if (subName == "[]" && element == StepRow::none) element = static_cast<StepRow::Row>(id);
    }

    // The lines are part of the failure, not places in this file.
    if (!nameIndex.emplace(name, id).second) throw htl::status_exception(ZOError::duplicate_name(), "ZOImpl", 1234);
    if (!tagName.empty() && !tagIndex.emplace(tagName, id).second)
        throw htl::status_exception(ZOError::duplicate_name(), "ZOImpl", 1248);

    longestTag = std::max(longestTag, tagName.size());
    // A node answers for one row only, the last one that it was registered in.
    if (HasRow(node->RegID()) && nodes[node->RegID()] == node) stepRows[node->RegID()].kind = StepRow::AskNode;
    IZO const& prototype = *node;
    if (typeid(prototype) == typeid(ZOWrapperStruct)) stepRows[id].kind = StepRow::Structure;
    if (typeid(prototype) == typeid(ZOArrayWrapper)) stepRows[id].kind = StepRow::Array;
    LeavePlace(*node); // the node forgets it here
    NodeAccess::SetOwner(*node, owner, IZO::npos);
    NodeAccess::OnRegistration(*node, id);
    return id;
}

void ZORegistryImpl::Finish() {
    for (NamedChildren& children : childrenByName)
        std::stable_sort(children.begin(), children.end(),
                         [](auto const& a, auto const& b) { return a.first < b.first; });
    for (TaggedChildren& children : childrenByTag)
        std::stable_sort(children.begin(), children.end(),
                         [](auto const& a, auto const& b) { return lessByUnits(a.first, b.first); });
    BuildTagTree_();

    initializationComplete = true;
    if (viewIsFinal) return; // a table of rules has shaped the view; later rows are not in it

    viewFirstChildren = firstChildren;
    viewParents.assign(RowCount(), IZO::npos);
    for (RegID id = 0; id < RowCount(); ++id) {
        for (RegID child = firstChildren[id]; child != IZO::npos; child = nextSiblings[child]) viewParents[child] = id;
        ViewTravRecord& record = viewRecords[id] = {};
        record.ViewTravNextID = nextSiblings[id];
        if (parents[id] != 0 && parents[id] != IZO::npos && !subTags[id].empty()) {
            record.kind = ViewTravRecord::RelativeTag;
            record.path = subTags[id];
            record.isOwnTag = record.path.front() != L'@' && record.path.find_first_of(L".[") == std::wstring::npos;
        } else if (!tagNames[id].empty()) {
            record.kind = ViewTravRecord::AbsoluteTag;
            record.path = tagNames[id];
        }
    }
}

// The tree is shaped by tags: a row's parent is the row with the longest beginning of its path in whole components.
void ZORegistryImpl::BuildTagTree_() {
    nextSiblings.assign(RowCount(), IZO::npos);
    firstChildren.assign(RowCount(), IZO::npos);

    std::unordered_map<std::wstring_view, RegID, PathHash, std::equal_to<>> rowOfPath;
    rowOfPath.reserve(RowCount());
    auto const inTree = [this](RegID id) { return !IsAlias(id) && !pathTags[id].empty(); };
    for (RegID id = 1; id < RowCount(); ++id)
        if (inTree(id)) rowOfPath.emplace(pathTags[id], id);

    std::vector<RegID> topLevel;
    std::vector<RegID> lastChild(RowCount(), IZO::npos);
    for (RegID id = 1; id < RowCount(); ++id) {
        if (!inTree(id)) continue;
        RegID above = IZO::npos;
        for (std::wstring_view prefix = path::ParentPart(std::wstring_view(pathTags[id]));
             !prefix.empty() && above == IZO::npos; prefix = path::ParentPart(prefix))
            if (auto const found = rowOfPath.find(prefix); found != rowOfPath.end()) above = found->second;
        if (above == IZO::npos) {
            topLevel.push_back(id);
            continue;
        }
        // Rows come in order of registration, which is the order of siblings below the first level.
        RegID& last = lastChild[above];
        (last == IZO::npos ? firstChildren[above] : nextSiblings[last]) = id;
        last = id;
    }
    std::stable_sort(topLevel.begin(), topLevel.end(),
                     [this](RegID a, RegID b) { return lessByUnits(pathTags[a], pathTags[b]); });
    for (std::size_t i = 0; i < topLevel.size(); ++i)
        (i == 0 ? firstChildren[0] : nextSiblings[topLevel[i - 1]]) = topLevel[i];
}

ZORegistryImpl::RegID ZORegistryImpl::ChildByTag(RegID id, std::wstring_view tag) const noexcept {
    return FindChild(childrenByTag[id], tag, initializationComplete, lessByUnits);
}

ZORegistryImpl::RegID ZORegistryImpl::RowOfName(std::string_view name) const noexcept {
    auto const row = nameIndex.find(name);
    return row == nameIndex.end() ? IZO::npos : row->second;
}

ZORegistryImpl::RegID ZORegistryImpl::RowOfTag(std::wstring_view tag) const noexcept {
    auto const row = tagIndex.find(tag);
    return row == tagIndex.end() ? IZO::npos : row->second;
}

} // namespace zo
