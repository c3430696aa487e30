#include "Common/present/Values.h"

#include "Common/extinfo/ExtendedInfoStore.h"
#include "Common/model/NodeTables.h"
#include "Common/present/FormattedTraits.h"
#include "Common/present/Measure.h"
#include "Common/present/RelativePath.h"
#include "Common/present/UnitsProvider.h"
#include "Common/registry/Find.h"
#include "Common/registry/RegistryImpl.h"

#include "support/diag.h"
#include "support/text.h"

#include <string_view>
#include <typeinfo>
#include <utility>

namespace zo {

using impl::Current;
using impl::NodeAccess;
using meta::MetaTraitsAtomic;
using Kind = hzn::units::Kind::Type;

namespace {

constexpr int abbreviated = 1;
constexpr int pretty = 2;

/// Which node's value is printed in place of the node's own. Valid until a table is read.
std::wstring const& ValueTag(H const& node) {
    return extinfo::Store().Lookup(node, ExtendedInfoField::PrettyPrintValueTag).PrettyPrintValueTag;
}

/// A registered prototype of a member has a type, and no memory with a value.
bool HasMemory(IZO const& node) {
    return !impl::tables::WrapperPrototype(node.RegID()) || !impl::tables::IsPrototype(node);
}

/// The row's type if it is one of values, else null.
MetaTraitsAtomic const* ValueRow(std::size_t regID) {
    return Current().HasRow(regID) ? Current().dataTraits[regID].AsAtomic() : nullptr;
}

IZO const* RowNode(std::size_t regID) { return Current().nodes[regID].get(); }

/// What the formatted read of one node found out about its units, kept so that it need not be asked again for the unit
/// behind the number.
struct Question {
    IZO const* node;
    bool answered = false;
    meta::impl::ShownUnits units;
};
thread_local constinit Question* question = nullptr;

class Asking {
public:
    explicit Asking(Question& asked) noexcept : previous(std::exchange(question, &asked)) {}
    Asking(Asking const&) = delete;
    Asking& operator=(Asking const&) = delete;
    ~Asking() { question = previous; }

private:
    Question* previous;
};

std::wstring Print(H const& node, int format);

std::wstring ExpandValueTag(H const& node, std::wstring const& tag, int format) {
    constexpr std::wstring_view position = L"[]";
    if (tag == position) return impl::PositionText(node);
    std::wstring_view const all = tag;
    std::size_t end = 0;
    while (end < all.size() && impl::IsAlphanumericToken(all.substr(end, 1))) ++end;
    std::wstring_view const rest = all.substr(end);
    // Anything else behind the path gives nothing, and a tag of blanks is such.
    if (!rest.empty() && rest != position) return {};
    H const found = impl::NodeAtPath(node, std::wstring(all.substr(0, end)));
    if (!found) return {};
    return rest.empty() ? Print(found, format) : impl::PositionText(found);
}

std::wstring PrintOwn(H const& node, int format) {
    std::wstring text;
    meta::MetaDataTraits const traits = node->GetDataTraits();
    MetaTraitsAtomic const* const record = traits.AsAtomic();
    if (!record || !HasMemory(*node)) return text;
    // A number of 15 digits and its unit, in one piece of memory.
    if (question && question->node == node.get()) text.reserve(31);
    ZOAccessReadFormattedOutput trait(record->toWide, format, node.get(), text);
    (void)NodeAccess::CallValueTypeTrait(*node, trait); // there is nobody to tell: the text goes as far as it got
    return text;
}

std::wstring Print(H const& node, int format) {
    if (!node) return {};
    std::wstring const& tag = ValueTag(node);
    if (tag.empty()) return PrintOwn(node, format);
    impl::NestingGuard const guard;
    return guard ? ExpandValueTag(node, tag, format) : std::wstring();
}

std::wstring PrintRow(std::size_t regID, void const* value, int format) {
    std::wstring text;
    MetaTraitsAtomic const* const record = ValueRow(regID);
    if (record && record->toWide && value) (void)record->toWide(value, text, format, RowNode(regID)); // as above
    return text;
}

/// The unit's text behind the value's, each if there is one.
std::wstring Joined(std::wstring text, std::wstring const& unit) {
    if (!unit.empty()) (text += L' ') += unit;
    return text;
}

std::wstring PrintWithUnits(H const& node, int format) {
    if (!node) return {};
    Question asked{node.get(), false, {}};
    std::wstring text;
    {
        Asking const asking(asked);
        text = Print(node, format);
    }
    if (text.empty()) return text;
    return Joined(std::move(text),
                  asked.answered ? impl::UnitText(asked.units.kind, asked.units.shown) : UnitString(node));
}

htl::status SetText(H const& node, std::wstring const& text, int format) {
    if (!node) return ZOError::not_supported("");
    if (std::wstring const& tag = ValueTag(node); impl::IsAlphanumericToken(tag)) {
        impl::NestingGuard const guard;
        if (!guard) return ZOError::not_supported("");
        if (H const found = impl::NodeAtPath(node, tag)) return SetText(found, text, format);
    }
    meta::MetaDataTraits const traits = node->GetDataTraits();
    MetaTraitsAtomic const* const record = traits.AsAtomic();
    if (!record || !HasMemory(*node)) return ZOError::not_supported("");
    ZOAcessWriteFormattedOutput trait(record->fromWide, node.get(), format, text);
    return NodeAccess::CallValueTypeTrait(*node, trait);
}

/// The node whose value speaks for the node's, empty if the table names one that isn't there.
H Target(H const& node) {
    std::wstring const& tag = ValueTag(node);
    return impl::IsAlphanumericToken(tag) ? impl::NodeAtPath(node, tag) : node;
}

Kind KindOfTarget(H const& target) {
    if (!target) return Kind::None;
    meta::MetaDataTraits const traits = target->GetDataTraits();
    MetaTraitsAtomic const* const record = traits.AsAtomic();
    return record ? impl::KindOfNode(*target, *record) : Kind::None;
}

DataParamType ParameterOfTarget(H const& target, H const& node) {
    if (!target) return {};
    meta::MetaDataTraits const traits = target->GetDataTraits();
    MetaTraitsAtomic const* const record = traits.AsAtomic();
    return record ? impl::ParameterOf(*record, node.get()) : DataParamType{};
}

IZO* ParameterTemplate(meta::MetaDataTraits& traits) {
    IZO* const node = ZOTypeTemplate::Lookup(typeid(DataParamType));
    if (node) traits = node->GetDataTraits();
    return node && traits.AsAtomic() ? node : nullptr;
}

} // namespace

Kind impl::KindOfParameter(DataParamType parameter) {
    if (parameter == DataParamType{}) return Kind::None;
    meta::MetaDataTraits traits;
    IZO const* const node = ParameterTemplate(traits);
    return node && traits.AsAtomic()->unitKind ? traits.AsAtomic()->unitKind(&parameter, node) : Kind::None;
}

std::wstring impl::ParameterText(DataParamType parameter, int format) {
    std::wstring text;
    meta::MetaDataTraits traits;
    if (IZO const* const node = ParameterTemplate(traits); node && traits.AsAtomic()->toWide)
        (void)traits.AsAtomic()->toWide(&parameter, text, format, node); // a text that fails ends where it got
    return text;
}

Kind impl::KindOf(KindFunction const& function, DataParamType parameter, void const* value, IZO const* node) {
    if (Kind const kind = KindOfParameter(parameter); kind != Kind::None) return kind;
    return function ? function(value, node) : Kind::None;
}

Kind impl::KindOfNode(IZO const& node, MetaTraitsAtomic const& record) {
    // A prototype knows its kind without a value.
    if (!HasMemory(node)) return KindOf(record.unitKind, ParameterOf(record, &node), nullptr, &node);
    // A trait may change a value, so it takes a node that may be changed; this one doesn't.
    auto& target = const_cast<IZO&>(node);
    ZOAccessUnitKindTrait trait(record.unitKind, H(&target), IZO::npos);
    return NodeAccess::CallValueTypeTrait(target, trait).IsError() ? Kind::None : trait.Result();
}

math::UnitSet impl::UnitsShown(DataParamType parameter, Kind kind) {
    math::UnitSet const units = parameter != DataParamType{} ? UnitsOfParameter(parameter) : UnitsOfKind(kind);
    return units.IsZero() ? ActiveUnits() : units;
}

std::wstring impl::UnitText(Kind kind, math::UnitSet const& units) {
    std::wstring text = hzn::units::GetEngUnitValueString(kind, units);
    Debug_AppendUKName(text, kind);
    return text;
}

meta::impl::ShownUnits impl::ShownUnitsOf(void const* value, IZO const& node) {
    meta::impl::ShownUnits units;
    meta::MetaDataTraits const traits = node.GetDataTraits();
    if (MetaTraitsAtomic const* const record = traits.AsAtomic();
        record && (record->unitKind || record->dataParamType)) {
        DataParamType const parameter = ParameterOf(*record, &node);
        units.kind = KindOf(record->unitKind, parameter, value, &node);
        if (units.kind != Kind::None) {
            units.shown = UnitsShown(parameter, units.kind);
            units.stored = ActiveUnits();
        }
    }
    if (question && question->node == &node) {
        question->units = units;
        question->answered = true;
    }
    return units;
}

std::wstring impl::ShownUnitText(meta::impl::ShownUnits const& units) { return UnitText(units.kind, units.shown); }

std::wstring PrettyPrintValue(H const& node) { return Print(node, pretty); }
std::wstring PrettyPrintValue(std::string const& name) { return Print(Find(name), pretty); }
std::wstring PrettyPrintValue(std::size_t regID, void const* value) { return PrintRow(regID, value, pretty); }
std::wstring AbbrevValue(H const& node) { return Print(node, abbreviated); }
std::wstring AbbrevValue(std::string const& name) { return Print(Find(name), abbreviated); }
std::wstring AbbrevValue(std::size_t regID, void const* value) { return PrintRow(regID, value, abbreviated); }

std::wstring PrettyPrintValueWithUnits(H const& node) { return PrintWithUnits(node, pretty); }
std::wstring PrettyPrintValueWithUnits(std::string const& name) { return PrintWithUnits(Find(name), pretty); }
std::wstring AbbrevValueWithUnits(H const& node) { return PrintWithUnits(node, abbreviated); }
std::wstring AbbrevValueWithUnits(std::string const& name) { return PrintWithUnits(Find(name), abbreviated); }
std::wstring AbbrevValueWithUnits(std::size_t regID, void const* value) {
    std::wstring text = PrintRow(regID, value, abbreviated);
    return text.empty() ? text : Joined(std::move(text), UnitString(regID, value));
}

bool HasPrettyPrintValue(H const& node) {
    if (!node) return false;
    std::wstring const& tag = ValueTag(node);
    if (tag.empty()) return node->IsValueType();
    impl::NestingGuard const guard;
    if (!guard) return false;
    if (impl::IsAlphanumericToken(tag)) return HasPrettyPrintValue(impl::NodeAtPath(node, tag));
    return !ExpandValueTag(node, tag, pretty).empty();
}

htl::status SetPrettyPrintValue(H const& node, std::wstring const& text) { return SetText(node, text, pretty); }
htl::status SetAbbrevValue(H const& node, std::wstring const& text) { return SetText(node, text, abbreviated); }

Kind Units(H const& node) { return node ? KindOfTarget(Target(node)) : Kind::None; }
Kind Units(std::string const& name) {
    if (H const node = Find(name)) return Units(node);
    IZO const* const known = GetTemplate(name);
    return known ? Units(known->RegID(), nullptr) : Kind::None;
}
Kind Units(std::size_t regID, void const* value) {
    MetaTraitsAtomic const* const record = ValueRow(regID);
    if (!record) return Kind::None;
    IZO const* const node = RowNode(regID);
    return impl::KindOf(record->unitKind, impl::ParameterOf(*record, node), value, node);
}

DataParamType DataParameterType(H const& node) {
    return node ? ParameterOfTarget(Target(node), node) : DataParamType{};
}
DataParamType DataParameterType(std::string const& name) {
    if (H const node = Find(name)) return DataParameterType(node);
    IZO const* const known = GetTemplate(name);
    return known ? DataParameterType(known->RegID()) : DataParamType{};
}
DataParamType DataParameterType(std::size_t regID) {
    MetaTraitsAtomic const* const record = ValueRow(regID);
    return record ? impl::ParameterOf(*record, RowNode(regID)) : DataParamType{};
}

math::UnitSet VisibleUnits(H const& node) {
    if (!node) return {};
    H const target = Target(node);
    return impl::UnitsShown(ParameterOfTarget(target, node), KindOfTarget(target));
}
math::UnitSet VisibleUnits(std::string const& name) { return VisibleUnits(Find(name)); }
math::UnitSet VisibleUnits(std::size_t regID, void const* value) {
    return Current().HasRow(regID) ? impl::UnitsShown(DataParameterType(regID), Units(regID, value)) : math::UnitSet();
}
math::UnitSet VisibleUnits(DataParamType const& parameter) {
    return impl::UnitsShown(parameter, impl::KindOfParameter(parameter));
}

std::wstring UnitString(H const& node) {
    if (!node) return {};
    H const target = Target(node);
    Kind const kind = KindOfTarget(target);
    if (kind == Kind::None) return {};
    return impl::UnitText(kind, impl::UnitsShown(ParameterOfTarget(target, node), kind));
}
std::wstring UnitString(std::size_t regID, void const* value) {
    Kind const kind = Units(regID, value);
    if (kind == Kind::None) return {};
    return impl::UnitText(kind, impl::UnitsShown(DataParameterType(regID), kind));
}
std::wstring UnitString(DataParamType const& parameter) {
    Kind const kind = impl::KindOfParameter(parameter);
    if (kind == Kind::None) return {};
    return impl::UnitText(kind, impl::UnitsShown(parameter, kind));
}

void Debug_AppendUKName(std::wstring& text, Kind kind) {
    static std::wstring const& feature = *new std::wstring(L"HZN_UK");
    if (kind == Kind::None || !hzn::feature::IsFeatureEnabled(feature)) return;
    std::wstring const name = hzn::units::KindName(kind);
    if (name.empty()) return;
    text += L" [";
    text += name;
    text += L']';
}

} // namespace zo
