// The published slopes: six problems from the literature, read from tables into projects.
#pragma once

#include "examples/slope/Model.h"

#include <zo/zo.h>

#include <string>
#include <vector>

namespace slope {

/// Where the tables lie that come with the application.
std::string DefaultDataFolder();

/// Replaces `names` by the problems of a folder's tables, in their order.
htl::status ListProblems(std::string const& folder, std::vector<std::string>& names);

/// Replaces `project` by the problem `name`.
///
/// Layers become materials and regions from the top; points that lines share are one; a piezometric line and a pore
/// pressure ratio become the water table; colours are given by layer.
/// Failure: a table that can't be read or a row that makes no sense, with file and line; a name that no row has, with
/// the names there are. `project` then stays as it was.
htl::status ImportProblem(std::string const& folder, std::string const& name, Project& project);

} // namespace slope
