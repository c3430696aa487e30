#include "Common/xml/ElemWriter.h"

#include "Common/ZOUtil/NamePath.h"
#include "Common/model/ZOArray.h"
#include "Common/registry/ZORegistry.h"
#include "Common/xml/ActiveNode.h"
#include "Common/xml/Write.h"

#include <utility>

namespace zo::xml::impl {
namespace {

bool IsLeftOut(ZOPersistEntry const& entry, bool isDefault) {
    return entry.persist.Type == meta::MetaPersistTraits::IfNotDefined && isDefault;
}

} // namespace

ZOElemWriter::ZOElemWriter(ZOPersistEntry const* first, ZOPersistEntry const* end, ZOElemWriter* parent,
                           WriteFilter const* filter)
    : ZOElemWriter(Unplaced(), first, end, parent, filter) {
    Restart_(first, end);
}

ZOElemWriter::ZOElemWriter(Unplaced, ZOPersistEntry const* first, ZOPersistEntry const* end, ZOElemWriter* parent,
                           WriteFilter const* filter)
    : current(first), end(end), parent(parent), filter(filter),
      registry(parent ? parent->registry : *ZORegistry::Instance()) {}

ZOElemWriter::~ZOElemWriter() = default;

void ZOElemWriter::Restart_(ZOPersistEntry const* first, ZOPersistEntry const* last) {
    current = first;
    end = last;
    node = current == end ? H() : registry.Find(parent->node, current->name);
    if (node)
        Prepare_();
    else if (current != end)
        Step_();
}

std::wstring ZOElemWriter::Tag() {
    std::wstring const& tag = current->persist.Tag;
    if (current->isArray && length == 0) return {};
    if (selection == Selection::Nothing) return {};
    if (!parent || parent->current->isArray) return tag;
    if (current->persist.IsPersistedAsValue) return !hasText && attributeCount == 0 ? std::wstring() : tag;
    if (!current->persist.IsAllChildrenValue) return tag;
    return attributeCount == 0 ? std::wstring() : tag;
}

std::wstring ZOElemWriter::Text() {
    // The text of a long array can be larger than all the rest of the document: a copy of it costs more than its
    // numbers.
    constexpr std::size_t copyLimit = 4096;
    if (textIsGone) (void)FetchText_();
    textIsGone = text.size() > copyLimit;
    return textIsGone ? std::exchange(text, {}) : text;
}

std::pair<sys::file::XmlAttribute const*, sys::file::XmlAttribute const*> ZOElemWriter::Attributes() {
    if (attributeCount == 0) return {nullptr, nullptr};
    return {attributes.data(), attributes.data() + attributeCount};
}

bool ZOElemWriter::IsArrayEntry() { return false; }

bool ZOElemWriter::Step_() {
    node.release();
    if (!parent) {
        current = end;
        return false;
    }
    while (current != end && ++current != end) {
        H found = registry.Find(parent->node, current->name);
        if (!found || !IsActive(found)) continue;
        node = std::move(found);
        Prepare_();
        return true;
    }
    return false;
}

htl::handle<sys::file::XmlElemWriter> ZOElemWriter::Next() {
    return htl::handle<sys::file::XmlElemWriter>(Step_() ? this : nullptr);
}

htl::handle<sys::file::XmlElemWriter> ZOElemWriter::FirstChild() {
    // Beside a selected entry only the place counts.
    if (selection == Selection::Nothing || selection == Selection::Place) return {};
    if (current->persist.IsPersistedAsValue) return {};
    if (!current->isArray && current->persist.IsAllChildrenValue) return {};
    if (current->isArray && length == 0) return {};
    if (current->children.empty() || !node) return {};
    ZOPersistEntry const* const first = current->children.data();
    ZOPersistEntry const* const last = first + current->children.size();

    if (current->isArray) {
        auto* const array = dynamic_cast<ZOArray*>(node.get());
        if (!array) return {}; // an alias of an array: its elements are written where they live
        if (spareEntries && spareEntries->RefCount() == 1)
            spareEntries->Restart_(first, last, array);
        else
            spareEntries =
                htl::handle<ZOElemWriterArrayEntry>(new ZOElemWriterArrayEntry(first, last, this, array, filter));
        if (!spareEntries->HasEntry()) return {};
        return spareEntries;
    }
    if (spareChild && spareChild->RefCount() == 1)
        spareChild->Restart_(first, last);
    else
        spareChild = htl::handle<ZOElemWriter>(new ZOElemWriter(first, last, this, filter));
    if (spareChild->IsAtEnd()) return {};
    return spareChild;
}

std::wstring ZOElemWriter::FilterPath() const {
    if (!parent) return current->persist.Tag;
    return path::Join(parent->FilterPath(), current->persist.Tag);
}

std::wstring ZOElemWriter::LocalTag() const { return node ? node->Tag() : std::wstring(); }

std::wstring ZOElemWriter::ErrorTag() const {
    if (!parent) return LocalTag();
    std::wstring result = parent->LocalTag();
    if (parent->parent && parent->current->isArray) result = path::Join(parent->parent->LocalTag(), result);
    return path::Join(result, LocalTag());
}

WriteFilter::Selection ZOElemWriter::AskFilter_() const {
    if (!filter || (parent && parent->selection == Selection::All)) return Selection::All;
    return filter->SelectionOf(FilterPath());
}

sys::file::XmlAttribute& ZOElemWriter::Slot_() {
    if (attributeCount == attributes.size()) {
        attributes.emplace_back();
        slotTags.push_back(nullptr);
    }
    auto& slot = attributes[attributeCount];
    slot.second.clear();
    return slot;
}

void ZOElemWriter::AddAttribute_(std::wstring_view name, std::wstring_view value) {
    auto& slot = Slot_();
    slot.first.assign(name);
    slotTags[attributeCount] = nullptr;
    slot.second.assign(value);
    ++attributeCount;
}

bool ZOElemWriter::FetchText_() {
    text.clear();
    textIsGone = false;
    bool isDefault = false;
    // A value that can't be read is not written, and nobody is told.
    bool const failed = !current->getter || (current->*current->getter)(node, nullptr, text, isDefault).IsError();
    bool const isWritten = !failed && !IsLeftOut(*current, isDefault);
    if (!isWritten) text.clear();
    return isWritten;
}

void ZOElemWriter::Prepare_() {
    attributeCount = 0;
    text.clear();
    hasText = textIsGone = false;
    length = current->length;
    selection = AskFilter_();
    if (!node || selection == Selection::Nothing) return;
    if (current->isArray && length == 0) length = node->Length();

    if (current->persist.IsPersistedAsValue) {
        bool const isWritten = FetchText_();
        hasText = !text.empty();
        if (isWritten && !hasText) AddAttribute_(L"Missing", L"true");
    } else if (current->isArray) {
        AddAttribute_(L"Len", std::to_wstring(length));
    } else if (current->persist.IsAllChildrenValue && selection != Selection::Place) {
        auto* const wrapper = asWrapper(*node);
        for (ZOPersistEntry const& child : current->children) {
            if (child.persist.Type == meta::MetaPersistTraits::No || !child.getter) continue;
            bool isDefault = true;
            auto& slot = Slot_();
            if ((child.*child.getter)(node, wrapper, slot.second, isDefault).IsError() || IsLeftOut(child, isDefault))
                continue;
            // The entries of an array have one tag for each place.
            if (std::exchange(slotTags[attributeCount], &child.persist.Tag) != &child.persist.Tag)
                slot.first = child.persist.Tag;
            ++attributeCount;
        }
    }
}

ZOElemWriterRoot::ZOElemWriterRoot(ZOPersistEntry const* first, ZOPersistEntry const* end,
                                   hzn::version::NumberKind<0> const& version, std::vector<std::wstring> const* wanted)
    : ZOElemWriter(Unplaced(), first, end, nullptr, nullptr), version(version) {
    if (wanted) filter = &texts.emplace(*wanted);
    node = registry.Find(first->node->Name());
    Prepare_();
    AddAttribute_(rootattribute::FileVersion(), str::as_wstring(version));
    AddAttribute_(rootattribute::AppVersion(), str::as_wstring(hzn::version::Current().application));
}

std::wstring ZOElemWriterRoot::ErrorTag() const { return LocalTag(); }

ZOElemWriterArrayEntry::ZOElemWriterArrayEntry(ZOPersistEntry const* first, ZOPersistEntry const* end,
                                               ZOElemWriter* parent, ZOArray* array, WriteFilter const* filter)
    : ZOElemWriter(Unplaced(), first, end, parent, filter), array(array) {
    Restart_(first, end, array);
}

void ZOElemWriterArrayEntry::Restart_(ZOPersistEntry const* first, ZOPersistEntry const* last, ZOArray* other) {
    current = first;
    end = last;
    array = other;
    index = 0;
    node = registry.Find(array, index);
    if (node) Prepare_();
}

htl::handle<sys::file::XmlElemWriter> ZOElemWriterArrayEntry::Next() {
    node.release();
    if (++index < parent->length) node = registry.Find(array, index);
    if (!node) return {};
    Prepare_();
    return htl::handle<sys::file::XmlElemWriter>(this);
}

bool ZOElemWriterArrayEntry::IsArrayEntry() { return true; }

std::wstring ZOElemWriterArrayEntry::FilterPath() const {
    return parent ? path::Join(parent->FilterPath(), std::to_wstring(index + 1)) : std::wstring();
}

std::wstring ZOElemWriterArrayEntry::LocalTag() const { return std::to_wstring(index + 1); }

} // namespace zo::xml::impl
