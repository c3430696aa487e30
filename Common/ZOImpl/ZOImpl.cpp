// Joins the layers: what lower directories need of higher ones.
//
// The table is a constant, so it is whole before any code of the process runs.
#include "Common/present/Measure.h"
#include "Common/redirect/ParentChain.h"
#include "Common/registry/RegistryImpl.h"
#include "Common/xml/PersistTree.h"

namespace zo::impl {

constinit RegistryHooks const registryHooks = {
    .addPersistEntry = &xml::impl::AddPersistEntry,
    .makeParents = &MakeParents,
    .isParentPlaceholder = &IsParentPlaceholder,
};

} // namespace zo::impl

constinit meta::impl::UnitHooks const meta::impl::unitHooks = {
    .unitsOf = &zo::impl::ShownUnitsOf,
    .unitText = &zo::impl::ShownUnitText,
};
