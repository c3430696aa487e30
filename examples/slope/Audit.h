// What a load passes over in silence: a document that was edited by hand can hold more than its tree has places for.
#pragma once

#include <zo/zo.h>

#include <string>
#include <vector>

namespace slope {

/// Reads a file as plain XML and appends a line for each place where elements don't go with their parent.
///
/// `lost`: elements behind the number that their array's Len gives, and all but one of those that stand for the same
/// value. Saving what was loaded writes the file without them.
/// `absent`: arrays of fewer elements than their Len gives. A load makes the rest with defaults.
/// Failure: the file can't be opened or isn't well-formed, with line and column.
htl::status AuditElements(std::string const& path, std::vector<std::string>& lost, std::vector<std::string>& absent);

} // namespace slope
