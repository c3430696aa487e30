#include "Common/present/Calculated.h"

#include "Common/model/ZOAtomicAccess.h"
#include "Common/model/ZOWrapper.h"
#include "Common/redirect/Identity.h"
#include "Common/registry/Find.h"
#include "Common/registry/RegistryImpl.h"

#include <cstddef>
#include <cstdint>
#include <utility>

IFn::~IFn() = default;

namespace zo {

namespace {

DataParamType ParameterIn(H const& field) {
    H const source = GetSource(field);
    // The type's own conversions belong to the application, and may know the parameter by another number.
    if (auto const* const kind = dynamic_cast<IZOKind<DataParamType> const*>(source.get())) return kind->GetData();
    htl::Int64 number = 0;
    if (field->Get(number).IsError() || !std::in_range<std::int32_t>(number)) return {};
    return static_cast<DataParamType>(number);
}

} // namespace

htl::status UpdateCalculatedValues(H const& object) {
    H const trigger = FindTag(object, std::wstring(L"UpdateCalculatedValues"));
    if (!trigger) return {};
    htl::Int64 const now = 1;
    return trigger->Set(now);
}

template <>
H GetAtomicWrapper<IFn>(IFn* function) {
    IZO const* const prototype = ZOTypeTemplate::Lookup(typeid(IFn));
    return GetWrapper(prototype ? prototype->RegID() : IZO::npos, function);
}

DataParamType LookupParam(H const& node, std::string const& name) {
    // Each parent's name is shorter, unless a node was entered again under a name below its own.
    std::size_t left = impl::mostRedirects + (node ? node->Name().size() : 0);
    for (H level = node; level && left > 0; level = GetParent(level, 1), --left)
        if (H const field = GetSibling(level, name)) return ParameterIn(field);
    return {};
}

bool IsTemplate(H const& node) { return IsTemplate(node.get()); }

bool IsTemplate(IZO const* node) {
    ZORegistryImpl const& tables = impl::Current();
    return node && tables.HasRow(node->RegID()) && tables.nodes[node->RegID()].get() == node;
}

} // namespace zo
