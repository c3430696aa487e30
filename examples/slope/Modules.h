// What the application tells the library about its structures.
#pragma once

#include "examples/slope/Language.h"
#include "examples/slope/Model.h"

#include <zo/zo.h>

#include <memory>

namespace slope {

/// The groups of things that have numbers, to which others refer. A number is a position, from 1.
enum RecordGroup : GID { materialRecords = 10, regionRecords, analysisRecords };

/// Declares the project's structures and registers them in the current registry, which then finds, edits, saves and
/// loads `*project`. The registry may outlive the project: its branches are then gone. `language` is that of the words
/// that people read for a choice; documents have the same words in all.
///
/// Throws std::logic_error with all mistakes, a line each, if a declaration is wrong. Nothing is registered then.
void RegisterModules(std::shared_ptr<Project> const& project, Language language);

} // namespace slope
