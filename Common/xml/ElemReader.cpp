#include "Common/xml/ElemReader.h"

#include "Common/ZOUtil/NamePath.h"
#include "Common/model/ZOArray.h"
#include "Common/registry/RegistryImpl.h"
#include "Common/registry/ZORedirect.h"
#include "Common/registry/ZORegistry.h"
#include "Common/xml/ActiveNode.h"
#include "Common/xml/Write.h"

#include "support/number.h"
#include "support/text.h"
#include "support/version.h"

#include <limits>

namespace zo::xml::impl {
namespace {

constexpr std::size_t keptInFront = 125;
constexpr std::size_t keptBehind = 128;
constexpr std::wstring_view ellipsis = L"...";
static_assert(keptInFront + ellipsis.size() + keptBehind == unknownNameLimit);

/// Shortens a name. A shortened name with a step behind it comes out like the whole name with that step.
void Shorten(std::wstring& name) {
    if (name.size() > unknownNameLimit) name.replace(keptInFront, name.size() - keptInFront - keptBehind, ellipsis);
}

/// The index from 0 that an attribute's name stands for: "3" or "[3]" is 2. Anything else, and "0", is a tag.
bool IndexOf(std::wstring_view name, std::size_t& index) {
    if (name.empty()) return false;
    if (name.size() >= 3 && name.front() == L'[' && name.back() == L']')
        name = name.substr(1, name.size() - 2);
    else if (!str::IsDigit(name.front()))
        return false;
    if (!path::ParseIndex(name, index) || index == 0) return false;
    --index;
    return true;
}

/// The child row of an alias, which stands in no list of tags but is known under its own; npos for none.
std::size_t AliasByTag(ZORegistryImpl const& tables, std::size_t regID, std::wstring const& tag) {
    if (!tables.HasRow(regID)) return IZO::npos;
    std::size_t const row = tables.RowOfTag(path::Join(std::wstring_view(tables.tagNames[regID]), tag));
    return row != IZO::npos && tables.parents[row] == regID && tables.IsAlias(row) ? row : IZO::npos;
}

/// The node behind the aliases that `node` is one of; empty where they lead nowhere.
H BehindAliases(H const& node) {
    H at = node;
    for (int steps = 0; steps <= zo::impl::mostRedirects; ++steps) {
        auto const* const redirect = dynamic_cast<ZORedirect const*>(at.get());
        if (!redirect || !redirect->IsAlias()) return at;
        at = redirect->Redirect();
    }
    return {};
}

/// Names the member that the next structure view is asked for, so that it needs no search.
class FindHint {
public:
    FindHint(std::size_t& hint, std::size_t row) : hint(hint) { hint = row; }
    FindHint(FindHint const&) = delete;
    FindHint& operator=(FindHint const&) = delete;
    ~FindHint() { hint = IZO::npos; }

private:
    std::size_t& hint;
};

} // namespace

void XMLError::ReportError(htl::status const& error) {
    if (errors.size() <= limit) errors.push_back(error);
}

ZOElemReader::ZOElemReader(ZOElemReader* parent, ZORootReader* root, bool skip)
    : parent(parent), skip(skip), root(root) {}

ZOElemReader::~ZOElemReader() {
    // One by one: a chain as deep as the document would recurse.
    while (child && child->RefCount() == 1) {
        htl::handle<ZOElemReader> below = std::move(child->child);
        child = std::move(below);
    }
}

std::size_t ZOElemReader::AttributeRows::Find(ZORegistryImpl const& tables, std::size_t regID,
                                              std::wstring const& tag) {
    if (parentRow != regID) {
        hits.clear();
        parentRow = regID;
        next = 0;
    }
    // From where the last one was found: records leave out what is at its default, but keep the order.
    for (std::size_t i = next; i < hits.size(); ++i)
        if (hits[i].tag == tag) {
            next = i + 1;
            return hits[i].row;
        }
    std::size_t row = tables.ChildByTag(regID, tag);
    if (row == IZO::npos) {
        row = AliasByTag(tables, regID, tag);
        // One that no document holds must not let a document write elsewhere.
        if (row != IZO::npos && tables.persistTraits[row].Type == meta::MetaPersistTraits::No) row = IZO::npos;
    }
    // A hostile element may have attributes without number.
    constexpr std::size_t limit = 64;
    if (row != IZO::npos && hits.size() < limit) {
        hits.insert(hits.begin() + static_cast<std::ptrdiff_t>(next), Hit{tag, row});
        ++next;
    }
    return row;
}

void ZOElemReader::DropBelow() noexcept {
    ZOElemReader* below = std::exchange(used, nullptr);
    while (below) {
        below->node.release();
        below->array = nullptr;
        below = std::exchange(below->used, nullptr);
    }
}

void ZOElemReader::Reset_() {
    node.release();
    array = nullptr;
    arrayMode = false;
    position = IZO::npos;
    unknownIndex = noUnknown;
    fullTag.clear();
    attributeRows.Rewind();
}

void ZOElemReader::BecomeUnknown_() {
    std::wstring name = FullTag();
    node.release();
    unknownIndex = static_cast<std::uint32_t>(root->unknown.size());
    root->unknown.emplace_back(std::move(name), std::wstring());
}

htl::handle<sys::file::XmlElemReader> ZOElemReader::Element(std::wstring const& elementTag) {
    return Element_(child, elementTag);
}

htl::handle<sys::file::XmlElemReader> ZOElemReader::Element_(htl::handle<ZOElemReader>& reader,
                                                             std::wstring const& elementTag) {
    DropBelow();
    if (!reader) {
        if (skip) return {};
        reader = htl::handle<ZOElemReader>(new ZOElemReader(this, root));
    }
    ZOElemReader& entry = *reader;
    entry.Reset_();
    used = &entry;

    if (arrayMode) {
        ++position;
        if (array)
            entry.node = root->set->Find(array, position);
        else
            entry.BecomeUnknown_();
        return reader;
    }
    entry.tag = elementTag;
    if (!node) {
        if (unknownIndex != noUnknown) entry.BecomeUnknown_();
        return reader;
    }
    entry.node = Child_(elementTag);
    if (!entry.node) {
        entry.BecomeUnknown_();
        return reader;
    }
    if (!IsActive(entry.node)) entry.node.release();
    if (entry.TakesPart_()) return reader;
    if (root->tagPolicy && !root->tagPolicy(entry.FullTag()).empty()) entry.BecomeUnknown_();
    return reader;
}

H ZOElemReader::Child_(std::wstring const& elementTag) const {
    auto const& tables = root->tables;
    H const link = tables.HasRow(node->RegID()) && tables.redirects[node->RegID()] ? BehindAliases(node) : H();
    if (!dynamic_cast<ZORedirect const*>(link.get())) return root->set->FindTag(node, elementTag);
    // The fields of the record behind a link are written where the record stands. A document that goes on below the
    // link would change whichever record it led to before its number was read.
    std::size_t const row = link->RegID();
    if (!tables.HasRow(row)) return {};
    std::size_t own = tables.ChildByTag(row, elementTag);
    if (own == IZO::npos) own = AliasByTag(tables, row, elementTag);
    return own == IZO::npos ? H() : root->set->Find(link, tables.subNames[own]);
}

bool ZOElemReader::TakesPart_() const { return node && root->Persists_(*node); }

void ZOElemReader::Attribute(sys::file::XmlAttribute const& item) {
    auto const& [name, value] = item;
    if (unknownIndex != noUnknown) {
        std::wstring full = root->unknown[unknownIndex].first;
        path::Append(full, name);
        Shorten(full);
        root->unknown.emplace_back(std::move(full), value);
        if (name == L"Len") arrayMode = true;
    }
    if (!node) return;
    if (name == L"Len") return ReadLength_(item);
    if (name == L"Missing") {
        // A node that takes no empty text keeps its value, and nobody is told.
        (void)node->Set(std::wstring());
        return;
    }
    H const target = SubNode_(name);
    if (!target) {
        std::wstring full = FullTag();
        path::Append(full, name);
        Shorten(full);
        root->unknown.emplace_back(std::move(full), value);
        return;
    }
    if (htl::status const failure = target->Set(value); failure.IsError())
        Report_(path::Join(ErrorTag(), name), value, failure);
}

void ZOElemReader::ReadLength_(sys::file::XmlAttribute const& item) {
    std::size_t length = 0;
    htl::status failure = str::from_wstring(item.second, length);
    if (failure.IsError() || !root->Claims_(length))
        failure = ZOError::file_invalid_element_attribute(ErrorTag(), item.first, item.second);
    else
        failure = node->SetLength(length);
    if (failure.IsError()) return Report_(ErrorTag(), item.second, failure);
    arrayMode = true;
    array = dynamic_cast<ZOArray*>(node.get());
}

H ZOElemReader::SubNode_(std::wstring const& name) {
    std::size_t const row = node->RegID();
    if (row == IZO::npos) return {};
    std::size_t index = 0;
    if (IndexOf(name, index)) {
        if (auto* const elements = dynamic_cast<ZOArray*>(node.get())) return root->set->Find(elements, index);
        return SubNodeOfOtherSet_(name);
    }
    std::size_t const member = attributeRows.Find(root->tables, row, name);
    if (member == IZO::npos) return SubNodeOfOtherSet_(name);
    auto& tables = root->tables;
    FindHint const hint(tables.findHint, member);
    return root->set->Find(node, tables.subNames[member]);
}

H ZOElemReader::SubNodeOfOtherSet_(std::wstring const& name) const {
    // The registry's own flag is off while it is read into itself.
    if (!root->tables.trackTemporaries || SubRegID(node->RegID()) == IZO::npos) return {};
    return root->set->FindTag(path::Join(node->TagName(FullTagType), name));
}

void ZOElemReader::Text(std::wstring const& text) {
    DropBelow();
    if (unknownIndex != noUnknown) root->unknown[unknownIndex].second = text;
    if (!node) return;
    if (htl::status const failure = node->Set(text); failure.IsError()) Report_(ErrorTag(), text, failure);
}

void ZOElemReader::Report_(std::wstring const& name, std::wstring const& value, htl::status const& cause) {
    root->errors.ReportError(ZOError::file_assign(name, value, cause));
}

std::wstring ZOElemReader::LocalTag() const { return parent->arrayMode ? std::to_wstring(parent->position + 1) : tag; }

std::wstring ZOElemReader::FullTag() const {
    if (unknownIndex != noUnknown) return root->unknown[unknownIndex].first;
    if (fullTag.empty()) {
        fullTag = path::Join(parent->FullTag(), LocalTag());
        Shorten(fullTag);
    }
    return fullTag;
}

std::wstring ZOElemReader::ErrorTag() const {
    std::wstring result = parent->LocalTag();
    if (parent->parent && parent->parent->arrayMode) result = path::Join(parent->parent->LocalTag(), result);
    return path::Join(result, LocalTag());
}

ZOSkipReader::ZOSkipReader(ZOElemReader* parent, ZORootReader* root, Filter const& filter)
    : ZOElemReader(parent, root), skipUnlisted(!filter.empty()) {
    for (auto const& [path, flag] : filter) AddFilter_(path, flag);
}

ZOSkipReader::~ZOSkipReader() = default;

void ZOSkipReader::AddFilter_(std::wstring_view path, bool flag) {
    if (path.empty()) {
        skipUnlisted = flag;
        return;
    }
    std::size_t const cut = path.find_first_of(L".[]");
    std::wstring_view rest;
    if (cut != std::wstring_view::npos) {
        rest = path.substr(cut + 1);
        if (rest.starts_with(L'.')) rest.remove_prefix(1);
    }
    filterNames.emplace_back(path.substr(0, cut), flag);
    filterReaders.push_back(
        rest.empty() ? htl::handle<ZOElemReader>(new ZOElemReader(this, root, flag))
                     : htl::handle<ZOElemReader>(new ZOSkipReader(this, root, {{std::wstring(rest), flag}})));
}

htl::handle<sys::file::XmlElemReader> ZOSkipReader::Element(std::wstring const& elementTag) {
    if (filterNames.empty()) return Element_(child, elementTag);
    for (std::size_t i = 0; i < filterNames.size(); ++i)
        if (filterNames[i].first == elementTag) return Element_(filterReaders[i], elementTag);
    if (skipUnlisted) return {};
    return Element_(child, elementTag);
}

ZORootReader::ZORootReader(ZOSet* set, TagPolicy const& policy, Filter const& filter, std::size_t documentSize)
    : ZOSkipReader(nullptr, this, filter), version(std::numeric_limits<double>::max()), set(set),
      tables(zo::impl::Current()), errors(10), tagPolicy(policy) {
    // Every entry takes some bytes, and a small document may leave some out.
    constexpr std::size_t atLeast = 65536;
    entriesLeft = documentSize < IZO::npos - atLeast ? documentSize + atLeast : IZO::npos;
    node = set->Find(ZORegistry::RootName());
}

ZORootReader::~ZORootReader() = default;

bool ZORootReader::Claims_(std::size_t entries) noexcept {
    // A few bytes must not fill the memory: what all lengths claim together stays in proportion to the document.
    if (entries > entriesLeft) return false;
    if (entriesLeft != IZO::npos) entriesLeft -= entries;
    return true;
}

bool ZORootReader::Persists_(IZO const& of) {
    std::size_t const row = of.RegID();
    // An alias answers with the traits of what it stands for now.
    if (!tables.HasRow(row) || tables.IsAlias(row)) return of.GetPersistTraits().Type != meta::MetaPersistTraits::No;
    if (persists.size() < tables.RowCount()) persists.resize(tables.RowCount(), Answer::Open);
    if (persists[row] == Answer::Open)
        persists[row] = of.GetPersistTraits().Type != meta::MetaPersistTraits::No ? Answer::Yes : Answer::No;
    return persists[row] == Answer::Yes;
}

void ZORootReader::Attribute(sys::file::XmlAttribute const& item) {
    auto const& [name, value] = item;
    std::wstring const full = path::Join(LocalTag(), name);
    htl::status failure;
    if (name == rootattribute::AppVersion()) {
        hzn::version::NumberKind<1> application;
        failure = str::from_wstring(value, application);
    } else if (name == rootattribute::FileVersion()) {
        math::ParseResult const result = math::ParseDouble(value, version);
        auto const& kind = htl::Convert_error_status::FloatingPointString();
        if (result == math::ParseResult::OutOfRange)
            failure = htl::Convert_error_status::OutOfRangeStatus(value, kind);
        else if (result != math::ParseResult::Ok)
            failure = htl::Convert_error_status::InvalidCharStatus(value, kind);
    } else {
        errors.ReportError(ZOError::not_recognized(full));
        return;
    }
    if (failure.IsError()) errors.ReportError(ZOError::file_assign(full, value, failure));
}

std::wstring ZORootReader::LocalTag() const { return node ? node->Tag() : str::as_wstring(ZORegistry::RootName()); }

std::wstring ZORootReader::FullTag() const { return LocalTag(); }

std::wstring ZORootReader::ErrorTag() const { return LocalTag(); }

} // namespace zo::xml::impl
