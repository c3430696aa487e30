#include "examples/slope/Commands.h"

#include "examples/slope/Aquifer.h"
#include "examples/slope/Demo.h"
#include "examples/slope/Document.h"
#include "examples/slope/Import.h"
#include "examples/slope/Options.h"
#include "examples/slope/Progress.h"
#include "examples/slope/SetValues.h"
#include "examples/slope/Text.h"
#include "examples/slope/Tree.h"

#include <charconv>
#include <ostream>

namespace slope {

namespace {

constexpr std::size_t shownElements = 20;

/// What every command writes to.
struct Streams {
    std::ostream& out;
    std::ostream& err;

    /// Writes a message, and gives the exit status that goes with it.
    int Problem(std::string const& message) const {
        err << "slope: " << message << '\n';
        return exitProblems;
    }
};

LoadReport LoadWithProgress(Document& document, std::string const& file) {
    Progress const progress("Loading " + file);
    return document.Load(file);
}

/// Says on standard error what a load came across that doesn't keep the file from being looked at.
bool Warn(LoadReport const& report, std::string const& file, Streams const& streams) {
    if (report.failure.IsError()) {
        streams.Problem(Message(report.failure));
        return false;
    }
    std::size_t const count = report.dropped.size() + report.invalid.size();
    if (count) streams.Problem(file + " has " + Count(count, "problem", "problems") + "; `slope check` lists them.");
    return true;
}

zo::H Lookup(Document& document, Options const& options) {
    std::string const& name = options.arguments[1];
    return options.tag ? document.FindTag(name) : document.Find(name);
}

std::string NothingThere(Options const& options) {
    return std::string("There is no ") + (options.tag ? "tag" : "name") + " " + options.arguments[1] + " in " +
           options.arguments[0] + ".";
}

int Show(Options const& options, Streams const& streams) {
    Document document;
    LoadReport const report = LoadWithProgress(document, options.arguments[0]);
    if (!Warn(report, options.arguments[0], streams)) return exitProblems;
    PrintTree(streams.out, document.Root(), document.Units(), shownElements, document.Aliases());
    return report.IsClean() ? exitOk : exitProblems;
}

int Get(Options const& options, Streams const& streams) {
    Document document;
    LoadReport const report = LoadWithProgress(document, options.arguments[0]);
    if (!Warn(report, options.arguments[0], streams)) return exitProblems;
    zo::H const node = Lookup(document, options);
    if (!node) return streams.Problem(NothingThere(options));
    if (!node->IsValueType()) return streams.Problem(NoValue(node));
    std::wstring text;
    if (htl::status const failure = node->Get(text); failure.IsError()) return streams.Problem(Message(failure));
    streams.out << Narrow(text) << '\n';
    return report.IsClean() ? exitOk : exitProblems;
}

int Set(Options const& options, Streams const& streams) {
    std::string const& file = options.arguments[0];
    Document document;
    LoadReport const report = LoadWithProgress(document, file);
    auto const refuse = [&](std::string const& message) {
        streams.Problem(message);
        return streams.Problem(file + " stays as it is.");
    };
    if (report.failure.IsError()) return refuse(Message(report.failure));
    if (!report.dropped.empty()) {
        // Saving would write the file without what the load couldn't take.
        for (std::string const& line : report.dropped) streams.Problem(line);
        return refuse("Saving would lose what couldn't be read.");
    }
    Warn(report, file, streams); // a file with bad values can be mended

    std::vector<WantedValue> wanted;
    for (std::size_t i = 1; i + 1 < options.arguments.size(); i += 2)
        wanted.push_back({options.arguments[i], options.arguments[i + 1]});
    std::vector<ChangedValue> changed;
    std::vector<std::string> const problems = SetValues(document, wanted, options.tag, changed);
    for (std::string const& problem : problems) streams.Problem(problem);
    if (!problems.empty()) return streams.Problem(file + " stays as it is.");
    if (htl::status const failure = document.Save(file); failure.IsError()) return refuse(Message(failure));
    for (ChangedValue const& value : changed)
        streams.out << value.name << ": " << value.before << " -> " << value.after
                    << (value.asked.empty() ? "" : " (by way of " + value.asked + ")") << '\n';
    // Such as regions whose material went with the others. Saved all the same: the next command may mend it.
    if (std::size_t const count = document.Problems().size(); count > report.invalid.size())
        streams.Problem(file + " has " + Count(count, "problem", "problems") + " now; `slope check` lists them.");
    return exitOk;
}

int Check(Options const& options, Streams const& streams) {
    std::string const& file = options.arguments[0];
    Document document;
    LoadReport const report = LoadWithProgress(document, file);
    if (report.failure.IsError()) streams.out << Message(report.failure) << '\n';
    for (std::string const& line : report.dropped) streams.out << line << '\n';
    for (std::string const& line : report.invalid) streams.out << line << '\n';
    std::size_t const count = report.failure.IsError() + report.dropped.size() + report.invalid.size();
    streams.out << file << ": " << (count ? Count(count, "problem", "problems") : "no problems") << '\n';
    return count ? exitProblems : exitOk;
}

int Import(Options const& options, Streams const& streams) {
    Project project;
    std::string const folder = options.data.empty() ? DefaultDataFolder() : options.data;
    if (htl::status const failure = ImportProblem(folder, options.arguments[0], project); failure.IsError())
        return streams.Problem(Message(failure));
    Document document;
    document.SetContent(std::move(project));
    if (htl::status const failure = document.Save(options.arguments[1]); failure.IsError())
        return streams.Problem(Message(failure));
    streams.out << options.arguments[0] << " saved as " << options.arguments[1] << '\n';
    return exitOk;
}

int Large(Options const& options, Streams const& streams) {
    std::size_t count = largeCellCount;
    if (!options.arguments.empty()) {
        std::string const& text = options.arguments[0];
        char const* const end = text.data() + text.size();
        auto const [stop, error] = std::from_chars(text.data(), end, count);
        if (error != std::errc() || stop != end || count < 1 || count > mostElements) {
            streams.err << "slope: COUNT is a whole number from 1 to " << Count(mostElements) << ".\n";
            return exitUsage;
        }
    }
    return RunLarge(count, options.out, streams.out, streams.err) ? exitOk : exitProblems;
}

} // namespace

int RunCommandLine(std::vector<std::string> const& words, std::ostream& out, std::ostream& err) {
    Options options;
    std::string mistake;
    if (!ParseOptions(words, options, mistake)) {
        err << "slope: " << mistake << "\n`slope --help` says what there is.\n";
        return exitUsage;
    }
    if (options.help) {
        out << HelpText();
        return exitOk;
    }
    Streams const streams{out, err};
    if (options.command == "show") return Show(options, streams);
    if (options.command == "get") return Get(options, streams);
    if (options.command == "set") return Set(options, streams);
    if (options.command == "check") return Check(options, streams);
    if (options.command == "import") return Import(options, streams);
    if (options.command == "large") return Large(options, streams);
    return RunDemo(options.data.empty() ? DefaultDataFolder() : options.data, options.problem, options.out, out, err)
               ? exitOk
               : exitProblems;
}

} // namespace slope
