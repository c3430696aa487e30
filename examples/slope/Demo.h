// The main job: everything that the library does for an application, on real models, with a report that can be read.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>

namespace slope {

/// Imports the problems of a folder's tables (one, if `problem` isn't empty), and for each: prints its tree, stages an
/// edit by name, by tag and through a link, provokes a refusal and rolls back, stages again and commits, saves, loads
/// into a fresh model and compares, takes the edit back and does it again. A soil in pounds and feet is taken into a
/// metric project, too. Files go to `outFolder`, or are temporary if that is empty. Whether all went as it should.
bool RunDemo(std::string const& dataFolder, std::string const& problem, std::string const& outFolder, std::ostream& out,
             std::ostream& err);

/// Makes an aquifer of `count` cells, saves it, loads it into a fresh model and compares. Whether nothing changed.
bool RunLarge(std::size_t count, std::string const& outFolder, std::ostream& out, std::ostream& err);

} // namespace slope
