// The parents that a registered name lacks.
#pragma once

#include "Common/model/IZO.h"

#include <cstdint>
#include <string>

namespace zo::impl {

/// Registers a made parent for every level of the two paths that has none, and gives the last one. A tag path that is
/// longer than the name path gets made-up names. Empty for two empty paths.
H MakeParents(std::wstring const& tagPath, std::string const& namePath, std::uint32_t type);

/// Whether the node is a made parent.
bool IsParentPlaceholder(IZO const& node);

} // namespace zo::impl
