// What the application tells the library about its structures.
#pragma once

#include "examples/slope/Model.h"

#include <memory>

namespace slope {

/// Declares the project's structures and registers them in the current registry, which then finds, edits, saves and
/// loads `*project`. The registry may outlive the project: its branches are then gone.
///
/// Throws std::logic_error with all mistakes, a line each, if a declaration is wrong. Nothing is registered then.
void RegisterModules(std::shared_ptr<Project> const& project);

} // namespace slope
