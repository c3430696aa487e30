// The command line: what the application can be asked to do.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace slope {

/// What the process ends with.
enum ExitStatus {
    exitOk = 0,
    exitProblems = 1, ///< something was refused, differs, or is wrong with a file
    exitUsage = 2     ///< the command line makes no sense
};

/// Runs a command line without the program's name. Results go to `out`, messages to `err`; what is pasted comes from
/// `in`.
int RunCommandLine(std::vector<std::string> const& words, std::istream& in, std::ostream& out, std::ostream& err);

} // namespace slope
