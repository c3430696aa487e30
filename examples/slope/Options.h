// The words of a command line, sorted.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace slope {

/// What a command line asks for.
struct Options {
    std::string command = "run"; // also with no word at all
    std::vector<std::string> arguments;
    std::string problem;           // --problem ID; empty: all
    std::string data;              // --data DIR; empty: the tables that come with the application
    std::string out;               // --out DIR; empty: a temporary folder
    std::string view = "property"; // --view, a word that --help lists, as for the next ones
    std::string physics = "all";   // --physics
    std::string mode = "define";   // --mode
    std::string lang = "en";       // --lang
    std::string units;             // --units; empty: the project's own
    std::string color = "auto";    // --color
    bool tag = false;              // --tag
    bool asSeen = false;           // --view of the schema, which has no word
    bool help = false;             // --help, -h
};

/// Sorts the words. A word behind "--" is an argument, whatever it begins with. False, with a sentence in `mistake`,
/// for an unknown command or option, an option without its value, with a word that it doesn't know, or one that the
/// command has no use for, and for too few or too many arguments.
bool ParseOptions(std::vector<std::string> const& words, Options& options, std::string& mistake);

/// The text of --help.
std::string HelpText();

} // namespace slope
