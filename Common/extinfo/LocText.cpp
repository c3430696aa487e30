#include "Common/extinfo/LocText.h"

#include "Common/extinfo/ExtendedInfoStore.h"
#include "Common/extinfo/LocTextWriter.h"

#include "support/text.h"
#include "support/xml/XmlFile.h"

#include <cstddef>

namespace zo {
namespace {

using sys::file::XmlElemWriter;
using Entries = std::vector<ExtendedInfoEntry>;

/// The tags and texts of the entries that have a text, in their order.
Entries Texts(ExtendedInfoStore& store) {
    sys::thread::impl::ExclusiveAccessGuard const guard(store.Lock());
    Entries texts;
    for (std::size_t i = 0; i < store.EntryCount(); ++i) {
        ExtendedInfoEntry const& entry = store.Entry(i);
        if (entry.Label.empty() && entry.Description.empty()) continue;
        ExtendedInfoEntry& copy = texts.emplace_back();
        copy.Tag = entry.Tag;
        copy.Label = entry.Label;
        copy.Description = entry.Description;
    }
    return texts;
}

/// Puts texts of `earlier` in the place of those under the same tag. Both are sorted by tag.
void PutOver(Entries& texts, Entries const& earlier) {
    auto to = texts.begin();
    auto from = earlier.begin();
    while (to != texts.end() && from != earlier.end()) {
        int const order = str::CompareUtf16(to->Tag, from->Tag);
        if (order == 0) {
            if (!from->Label.empty()) to->Label = from->Label;
            if (!from->Description.empty()) to->Description = from->Description;
        }
        if (order <= 0) ++to;
        if (order >= 0) ++from;
    }
}

} // namespace

XmlExtendedZOWriter::XmlExtendedZOWriter(Entries const& entries)
    : current(entries.data()), end(entries.data() + entries.size()) {}

XmlExtendedZOWriter::~XmlExtendedZOWriter() = default;

std::wstring XmlExtendedZOWriter::Tag() { return state == State::Head ? L"Meta_ExtendedInfo" : L"Entry"; }

std::wstring XmlExtendedZOWriter::Text() { return {}; }

std::pair<sys::file::XmlAttribute const*, sys::file::XmlAttribute const*> XmlExtendedZOWriter::Attributes() {
    if (state == State::Head)
        attributes = {{L"Len", std::to_wstring(end - current)}};
    else
        attributes = {{L"Tag", current->Tag}, {L"Label", current->Label}, {L"Description", current->Description}};
    return {attributes.data(), attributes.data() + attributes.size()};
}

htl::handle<XmlElemWriter> XmlExtendedZOWriter::Next() {
    if (state == State::Head || ++current == end) return {};
    return htl::handle<XmlElemWriter>(this);
}

htl::handle<XmlElemWriter> XmlExtendedZOWriter::FirstChild() {
    if (state == State::Row || current == end) return {};
    state = State::Row;
    return htl::handle<XmlElemWriter>(this);
}

bool XmlExtendedZOWriter::IsArrayEntry() { return XmlElemWriter::IsArrayEntry(); }

htl::status MergeExtendedInfoLocTextToFile(std::wstring const& earlier, std::wstring const& file) {
    Entries texts = Texts(extinfo::Store());
    if (texts.empty()) return htl::status::FromText(L"No labels or descriptions found in metadata");
    if (!earlier.empty()) {
        ExtendedInfoStore translation;
        if (htl::status failure = translation.ReadFile(earlier); failure.IsError()) return failure;
        PutOver(texts, Texts(translation));
    }
    htl::handle<XmlElemWriter> const writer(new XmlExtendedZOWriter(texts));
    htl::status const failure = sys::file::XmlFileWrite(file, writer);
    if (!failure.IsError()) return {};
    return htl::status::FromText(L"Could not write to file:" + failure.AsWString());
}

} // namespace zo
