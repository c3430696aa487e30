// Several values of a document set together: all of them, or none is to be saved.
#pragma once

#include "examples/slope/Document.h"

#include <string>
#include <vector>

namespace slope {

/// A value that somebody wants: the text for the node of a name.
struct WantedValue {
    std::string name; // a tag where tags were asked for
    std::string text;
};

/// What became of one.
struct ChangedValue {
    std::string name;   ///< of the node that changed
    std::string before; ///< as `ValueText` gives it
    std::string after;
    std::string asked; ///< the name that was given, where it led to the node through a link or an alias
};

/// Sets the values, as far as it can in one transaction.
///
/// In which order they are given doesn't matter: lengths come before elements, links before what is reached through
/// them, and what isn't there yet waits until others have been set, such as the water that "Project.HasWater" makes.
/// Each of these steps is a commit of its own.
///
/// Returns all problems, a sentence each, in the order of the values: names that lead nowhere, values that are refused
/// or can't be edited, a value that is given twice, and one that is gone in the end because of others. With any problem
/// the document is changed in part, so it must not be saved. `changed` has the values in the order in which they were
/// set.
std::vector<std::string> SetValues(Document& document, std::vector<WantedValue> const& wanted, bool tags,
                                   std::vector<ChangedValue>& changed);

} // namespace slope
