// What clearing the registry leaves behind and a load must not find: the elements of arrays.
#pragma once

namespace zo::xml::impl {

/// Sets the length of every live, active, resizable array that the current registry saves to 0. An array that refuses
/// keeps its length.
///
/// An array without elements isn't in a document, and clearing keeps the shape of client memory. Without this, loading
/// a project without soils into one with three would leave three blank ones.
void EmptyPersistedArrays();

} // namespace zo::xml::impl
