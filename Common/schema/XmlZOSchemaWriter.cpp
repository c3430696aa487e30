#include "Common/schema/XmlZOSchemaWriter.h"

#include "Common/extinfo/Cells.h"
#include "Common/extinfo/ExtendedInfoStore.h"
#include "Common/present/Measure.h"
#include "Common/registry/Find.h"
#include "Common/registry/RegistryImpl.h"

#include "support/lock.h"
#include "support/text.h"

#include <array>
#include <bit>
#include <limits>
#include <span>
#include <string_view>

namespace zo::schema {
namespace {

using meta::MetaPersistTraits;
using meta::MetaTraitsAtomic;
using Kind = hzn::units::Kind::Type;

struct BehaviourWord {
    MetaPersistTraits::PersistType behaviour;
    std::wstring_view text;
};
constexpr std::array behaviourWords = {
    BehaviourWord{MetaPersistTraits::No, L"No"},
    BehaviourWord{MetaPersistTraits::Always, L"Always"},
    BehaviourWord{MetaPersistTraits::IfNotDefined, L"IfNotDefined"},
};

/// Empty for a number that is no behaviour.
std::wstring_view BehaviourText(std::uint32_t type) {
    for (BehaviourWord const& word : behaviourWords)
        if (word.behaviour == type) return word.text;
    return {};
}

std::wstring BoolText(bool value) { return value ? L"true" : L"false"; }

/// The word for exactly these bits, else those for one bit each.
std::wstring BitText(std::uint32_t bits, std::span<extinfo::Word const> words) {
    for (extinfo::Word const& word : words)
        if (word.bits == bits) return std::wstring(word.text);
    std::wstring text;
    for (extinfo::Word const& word : words) {
        if (!std::has_single_bit(word.bits) || !(bits & word.bits)) continue;
        if (!text.empty()) text += L',';
        text += word.text;
    }
    return text;
}

std::wstring UnitText(Kind kind) { return impl::UnitText(kind, impl::UnitsShown(DataParamType{}, kind)); }

} // namespace

XmlZOSchemaWriter::XmlZOSchemaWriter(bool flat)
    : stack{0}, regID(IZO::npos), flat(flat), stepsLeft(impl::Current().RowCount()) {}

XmlZOSchemaWriter::~XmlZOSchemaWriter() = default;

std::wstring XmlZOSchemaWriter::Tag() { return atEnvelope ? L"ZOSchema" : L"Entry"; }

std::wstring XmlZOSchemaWriter::Text() { return {}; }

std::pair<sys::file::XmlAttribute const*, sys::file::XmlAttribute const*> XmlZOSchemaWriter::Attributes() {
    if (attributes.empty()) return {nullptr, nullptr};
    return {attributes.data(), attributes.data() + attributes.size()};
}

htl::handle<sys::file::XmlElemWriter> XmlZOSchemaWriter::FirstChild() {
    if (!atEnvelope) return {};
    Step_();
    atEnvelope = false;
    if (regID == IZO::npos) return {};
    Prepare_();
    return htl::handle<sys::file::XmlElemWriter>(this);
}

htl::handle<sys::file::XmlElemWriter> XmlZOSchemaWriter::Next() {
    if (atEnvelope) return {};
    if (enumerators) {
        if (++enumerators->index < enumerators->count) {
            Prepare_();
            return htl::handle<sys::file::XmlElemWriter>(this);
        }
        enumerators.reset();
    }
    Step_();
    if (regID == IZO::npos) return {};
    Prepare_();
    return htl::handle<sys::file::XmlElemWriter>(this);
}

void XmlZOSchemaWriter::Step_() {
    if (!atEnvelope && regID == IZO::npos) return; // the end stays the end
    if (stepsLeft == 0) {
        regID = IZO::npos;
        return;
    }
    --stepsLeft;
    if (!flat)
        StepInView_();
    else
        regID = atEnvelope ? 0 : regID + 1;
    if (!impl::Current().HasRow(regID)) regID = IZO::npos;
}

void XmlZOSchemaWriter::StepInView_() {
    ZORegistryImpl const& tables = impl::Current();
    regID = tables.viewFirstChildren[atEnvelope ? 0 : regID];
    if (regID != IZO::npos) {
        stack.push_back(regID);
        return;
    }
    while (!stack.empty()) {
        regID = tables.viewRecords[stack.back()].ViewTravNextID;
        if (regID != IZO::npos) {
            stack.back() = regID;
            return;
        }
        stack.pop_back();
    }
}

void XmlZOSchemaWriter::Prepare_() {
    attributes.clear();
    if (enumerators)
        PrepareEnumerator_();
    else
        PrepareRow_();
}

void XmlZOSchemaWriter::PrepareRow_() {
    ZORegistryImpl const& tables = impl::Current();
    meta::MetaDataTraits const& traits = tables.dataTraits[regID];
    MetaPersistTraits const& persist = tables.persistTraits[regID];

    Add_(L"RegID", std::to_wstring(regID));
    Add_(L"ZOName", str::as_wstring(tables.names[regID]));
    Add_(L"NTag", tables.tagNames[regID]);
    Add_(L"DataType", traits ? str::as_wstring(traits.TypeName()) : L"Missing");
    if (MetaTraitsAtomic const* const record = traits.AsAtomic()) {
        if (record->valueList) enumerators = GatherEnumerators_();
        // The registered node of a member has an offset where a live one has memory: there is no value to hand over.
        if (record->unitKind) AddUnits_(record->unitKind(nullptr, tables.nodes[regID].get()));
    }
    Add_(L"PersistBehaviour", std::wstring(BehaviourText(persist.Type)));
    Add_(L"IsPersistedAsValue", BoolText(persist.IsPersistedAsValue));
    Add_(L"IsAllChildrenValue", BoolText(persist.IsAllChildrenValue));
    Add_(L"ViewTravSubID", std::to_wstring(tables.viewFirstChildren[regID]));
    Add_(L"ViewTravNextID", std::to_wstring(tables.viewRecords[regID].ViewTravNextID));
    AddExtendedInfo_();
}

std::unique_ptr<XmlZOSchemaWriter::Enumerators> XmlZOSchemaWriter::GatherEnumerators_() const {
    ZORegistryImpl const& tables = impl::Current();
    int redirectsLeft = impl::mostRedirects;
    if (impl::TemplateRow(tables.names[regID], redirectsLeft) != regID) return {};

    auto found = std::make_unique<Enumerators>();
    MetaTraitsAtomic const& record = *tables.dataTraits[regID].AsAtomic();
    record.valueList(found->values, 0);
    record.valueList(found->abbreviations, 1);
    record.valueList(found->prettyTexts, 2);
    if (found->values.empty() || found->values.size() > std::numeric_limits<std::uint32_t>::max()) return {};
    found->regID = regID;
    found->index = 0;
    found->count = static_cast<std::uint32_t>(found->values.size());
    found->name = str::as_wstring(tables.names[regID]);
    // A list may be shorter than that of the values.
    found->abbreviations.resize(found->count);
    found->prettyTexts.resize(found->count);
    found->unitKinds.resize(found->count, Kind::None);
    // What redirects has no value of its own: a copy of it would write that of its source.
    H const node = tables.redirects[regID] ? H() : H(tables.nodes[regID]->EmptyClone());
    if (!node) return found;
    for (std::uint32_t i = 0; i < found->count; ++i)
        if (!node->Set(found->values[i]).IsError()) found->unitKinds[i] = Units(node);
    return found;
}

void XmlZOSchemaWriter::PrepareEnumerator_() {
    Enumerators const& all = *enumerators;
    std::uint32_t const i = all.index;
    Add_(L"RegID", std::to_wstring(all.regID));
    Add_(L"ZOName", all.name + L'.' + all.values[i]);
    Add_(L"NTag", all.values[i]);
    Add_(L"DataType", all.name);
    AddUnits_(all.unitKinds[i]);
    Add_(L"AbbrevValue", all.abbreviations[i]);
    Add_(L"PrettyPrintValue", all.prettyTexts[i]);
}

void XmlZOSchemaWriter::AddExtendedInfo_() {
    ExtendedInfoStore& store = extinfo::Store();
    sys::thread::impl::ExclusiveAccessGuard const guard(store.Lock());
    std::size_t const index = store.Lookup(regID, ExtendedInfoField::Whole);
    if (index == ExtendedInfoStore::End) return;
    ExtendedInfoEntry const& entry = store.Entry(index);
    if (entry.Tag.empty()) return;
    Add_(L"ExtendedInfoSearchTag", entry.Tag);
    Add_(L"Label", entry.Label);
    Add_(L"Description", entry.Description);
    Add_(L"PrettyPrintNameSubTag", entry.PrettyPrintNameTag);
    Add_(L"PrettyPrintValueSubTag", entry.PrettyPrintValueTag);
    Add_(L"ColorSubTag", entry.ColorTag);
    Add_(L"CustomView", entry.CustomView);
    Add_(L"Category", entry.Category);
    // The mask has the views in which the node shows, the column those in which it doesn't.
    Add_(L"ViewExcl", BitText(~entry.mask & viewmask::views, extinfo::viewWords));
    Add_(L"Physics", BitText(entry.mask & viewmask::physics, extinfo::physicsWords));
    Add_(L"Modes", BitText(entry.mask & viewmask::modes, extinfo::modeWords));
}

void XmlZOSchemaWriter::AddUnits_(Kind kind) {
    if (kind == Kind::None) return;
    Add_(L"UnitKind", hzn::units::KindName(kind));
    Add_(L"Units", UnitText(kind));
}

void XmlZOSchemaWriter::Add_(std::wstring_view name, std::wstring value) {
    attributes.emplace_back(std::wstring(name), std::move(value));
}

} // namespace zo::schema
