#include "examples/slope/Options.h"

#include "examples/slope/Text.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>

namespace slope {

namespace {

struct Command {
    std::string_view name, arguments, what;
    std::size_t fewest, most;  // arguments
    std::string_view switches; // the options that it takes
    bool hasPairs = false;     // behind the first argument
};

constexpr std::size_t manyArguments = std::numeric_limits<std::size_t>::max();

constexpr std::array commands{
    Command{"run", "", "import, edit, save, load and compare", 0, 0, "--problem --data --out"},
    Command{"show", "FILE", "print the tree of a saved file", 1, 1, ""},
    Command{"get", "FILE NAME", "print one value", 2, 2, "--tag"},
    Command{"set", "FILE NAME VALUE [NAME VALUE]...", "change values, all or none, and save the file", 3, manyArguments,
            "--tag", true},
    Command{"copy", "FILE NAME...", "print materials, regions or analyses, with all that they use, to be pasted", 2,
            manyArguments, "--tag"},
    Command{"paste", "FILE", "add what copy printed, read from standard input, and save the file", 1, 1, ""},
    Command{"check", "FILE", "list everything that is wrong with a file", 1, 1, ""},
    Command{"import", "PROBLEM FILE", "save a published problem as a file", 2, 2, "--data"},
    Command{"grid", "FILE", "print what people see of a file: label, value, unit", 1, 1,
            "--view --physics --mode --lang --units --color"},
    Command{"explain", "FILE NAME", "say who speaks for a node, and what shows or hides it", 2, 2,
            "--view --physics --mode --lang --tag"},
    Command{"report", "FILE PAGE", "write a page of HTML with a cross-section", 2, 2, "--lang --units"},
    Command{"table", "", "check the application's tables of labels and rules", 0, 0, ""},
    Command{"schema", "OUT [--view]", "describe what is declared, or with --view what people see of it", 1, 1,
            "--view"},
    Command{"xsd", "OUT", "write an XML Schema by which other tools can check a file", 1, 1, ""},
    Command{"loctext", "OUT [EARLIER]", "write the texts of the table for a translator, with those of EARLIER", 1, 2,
            ""},
    Command{"large", "[COUNT]", "make, save, load and compare COUNT cells (106257)", 0, 1, "--out"},
};

struct Switch {
    std::string_view name, value, what;
    std::string Options::*member = nullptr; // where its value goes
    std::string_view words = {};            // that it may have; empty: any
};

constexpr std::array switches{
    Switch{"--problem", "ID", "run only this problem: AT1, AT2, AT3, FK1, FK3 or GL1", &Options::problem},
    Switch{"--data", "DIR", "read the tables of the published problems from DIR", &Options::data},
    Switch{"--out", "DIR", "save into DIR and keep the files; without it they are temporary", &Options::out},
    Switch{"--view", "WORD", "show a view: data, property or report (property)", &Options::view,
           "data property report"},
    Switch{"--physics", "WORD", "show what matters to an analysis (all): see below", &Options::physics,
           "solute dynamic water stress slope heat air project all"},
    Switch{"--mode", "WORD", "show what matters to a mode: define, contour or all (define)", &Options::mode,
           "define contour all"},
    Switch{"--lang", "WORD", "speak English or German: en or de (en)", &Options::lang, "en de"},
    Switch{"--units", "WORD", "show metres and kPa or feet and pounds: si or us (the project's own)", &Options::units,
           "si us"},
    Switch{"--color", "WORD", "show colours: always, never or auto, which looks at the terminal (auto)",
           &Options::color, "always never auto"},
    Switch{"--tag", "", "NAME is a tag: as in documents, indices from 1"},
    Switch{"--help", "", "print this text"},
};

/// The words of a list with blanks between them.
std::vector<std::string> Split(std::string_view list) {
    std::vector<std::string> words;
    str::split(words, std::string(list), " ");
    return words;
}

bool Lists(std::string_view list, std::string_view word) {
    std::vector<std::string> const words = Split(list);
    return std::find(words.begin(), words.end(), word) != words.end();
}

/// "data, property or report"
std::string Choice(std::string_view list) {
    std::vector<std::string> words = Split(list);
    std::string const last = words.back();
    words.pop_back();
    return Join(words, ", ") + " or " + last;
}

std::string Padded(std::string text, std::size_t width) {
    text.resize(std::max(width, text.size() + 1), ' ');
    return text;
}

} // namespace

bool ParseOptions(std::vector<std::string> const& words, Options& options, std::string& mistake) {
    options = {};
    std::vector<std::string> plain, given;
    bool onlyArguments = false;
    for (std::size_t i = 0; i < words.size(); ++i) {
        std::string const& word = words[i];
        if (onlyArguments || word.size() < 2 || word[0] != '-') {
            plain.push_back(word);
            continue;
        }
        if (word == "--") {
            onlyArguments = true;
            continue;
        }
        if (word == "--help" || word == "-h") {
            options.help = true;
            continue;
        }
        auto const found =
            std::find_if(switches.begin(), switches.end(), [&](Switch const& s) { return s.name == word; });
        if (found == switches.end()) {
            // A negative number is the value that is to be set.
            if (std::string_view("0123456789.").find(word[1]) != std::string_view::npos) {
                plain.push_back(word);
                continue;
            }
            mistake = "There is no option " + word + ".";
            return false;
        }
        given.push_back(word);
        if (found->value.empty()) {
            options.tag = true;
            continue;
        }
        if (word == "--view" && !plain.empty() && plain.front() == "schema") {
            options.asSeen = true;
            continue;
        }
        if (++i == words.size() || words[i].empty()) {
            mistake = word + " needs a value.";
            return false;
        }
        if (!found->words.empty() && !Lists(found->words, words[i])) {
            mistake = word + " takes " + Choice(found->words) + ", and not \"" + words[i] + "\".";
            return false;
        }
        options.*found->member = words[i];
    }
    if (options.help) return true;

    if (!plain.empty()) {
        options.command = plain.front();
        options.arguments.assign(plain.begin() + 1, plain.end());
    }
    auto const command =
        std::find_if(commands.begin(), commands.end(), [&](Command const& c) { return c.name == options.command; });
    if (command == commands.end()) {
        mistake = "There is no command \"" + options.command + "\".";
        return false;
    }
    std::size_t const count = options.arguments.size();
    if (count < command->fewest || count > command->most || (command->hasPairs && count % 2 == 0)) {
        mistake = "Usage: slope " + std::string(command->name) +
                  (command->arguments.empty() ? "" : " " + std::string(command->arguments));
        return false;
    }
    for (std::string const& name : given)
        if (!Lists(command->switches, name)) {
            mistake = options.command + " takes no " + name + ".";
            return false;
        }
    return true;
}

std::string HelpText() {
    std::string text = "Published slope stability problems, as an example of the library.\n"
                       "\n"
                       "Usage: slope [COMMAND] [OPTIONS]\n"
                       "\n"
                       "Commands:\n";
    std::size_t width = 0;
    for (Command const& command : commands)
        width = std::max(width, command.name.size() + 1 + command.arguments.size() + 2);
    for (Command const& command : commands)
        text += "  " + Padded(std::string(command.name) + " " + std::string(command.arguments), width) +
                std::string(command.what) + (command.name == "run" ? " (no command does the same)" : "") + "\n";
    text += "\nOptions:\n";
    for (Switch const& option : switches)
        text += "  " + Padded(std::string(option.name) + " " + std::string(option.value), width) +
                std::string(option.what) + "\n";
    text +=
        "\n"
        "NAME is a name such as Materials[0].Cohesion, with indices from 0, or with --tag a tag such as\n"
        "Materials[1].Cohesion. `show` lists both. VALUE is text as `get` prints it; behind -- it may begin with -.\n"
        "Names go through links and other names: Regions[2].Material.Cohesion, CurrentAnalysis.Method.\n"
        "`set` takes its pairs in any order; lengths and links come first by themselves, and Project.HasWater makes\n"
        "the water before its values are set. If one is refused, all that is wrong is listed and nothing is saved.\n"
        "Analyses are solute, dynamic, water, stress, slope, heat, air and project; all stands for each of them.\n"
        "`copy` takes single ones, all of one kind, or a whole list: copy a.xml Regions[0] Regions[1]. A region "
        "brings\n"
        "its material, an analysis its region. `paste` adds them under names of their own; what they use is what goes "
        "by\n"
        "its name in FILE, and is replaced if it differs. Numbers of lines stay as they are.\n"
        "A file is only ever replaced as a whole, and `set` and `paste` don't touch one of which they couldn't read\n"
        "everything.\n"
        "\n"
        "Exit status: 0 all is well; 1 something was refused, differs, or is wrong with a file; 2 the command line\n"
        "makes no sense.\n";
    return text;
}

} // namespace slope
