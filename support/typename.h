// Readable names of types, as traits and diagnostics show them.
#pragma once

#include "support/export.h"

#include <string>
#include <typeinfo>

namespace meta {

/// The type's name as a C++ source would write it, namespaces included and without "struct", "class" or "enum": "int",
/// "std::wstring", "__int64", "slope::Soil".
///
/// Lifetime: the text lives as long as the process. Threads: any. Cost: a hashed lookup after the first call for a
/// type.
ZO_API std::string const& TypeName(std::type_info const& type);

} // namespace meta
