#include "examples/slope/Commands.h"

#include "examples/slope/Aquifer.h"
#include "examples/slope/Demo.h"
#include "examples/slope/Display.h"
#include "examples/slope/Document.h"
#include "examples/slope/Exchange.h"
#include "examples/slope/Grid.h"
#include "examples/slope/Import.h"
#include "examples/slope/Options.h"
#include "examples/slope/Progress.h"
#include "examples/slope/Report.h"
#include "examples/slope/SetValues.h"
#include "examples/slope/Text.h"
#include "examples/slope/Tree.h"

#include "support/locale.h"

#include <array>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <istream>
#include <ostream>
#include <string_view>
#include <system_error>

#include <unistd.h>

namespace slope {

namespace {

constexpr std::size_t shownElements = 20;

/// What every command reads from and writes to.
struct Streams {
    std::istream& in;
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

/// A file that a command changes: loaded, and saved once all of the change is made.
class Change {
public:
    Change(std::string const& file, Streams const& streams)
        : file(file), streams(streams), report(LoadWithProgress(document, file)) {}

    /// Whether the file could be saved without losing any of it; says what would be lost.
    bool CanBegin() const {
        if (report.failure.IsError()) return Refuse({Message(report.failure)}), false;
        if (!report.dropped.empty()) {
            // Saving would write the file without what the load couldn't take.
            std::vector<std::string> reasons = report.dropped;
            reasons.push_back("Saving would lose what couldn't be read.");
            return Refuse(reasons), false;
        }
        Warn(report, file, streams); // a file with bad values can be mended
        return true;
    }
    int Refuse(std::vector<std::string> const& reasons) const {
        for (std::string const& reason : reasons) streams.Problem(reason);
        return streams.Problem(file + " stays as it is.");
    }
    /// Saves the file, and writes what was done in it.
    int Save(std::string const& done) {
        if (htl::status const failure = document.Save(file); failure.IsError()) return Refuse({Message(failure)});
        streams.out << done;
        // Such as regions whose material went with the others. Saved all the same: the next command may mend it.
        if (std::size_t const count = document.Problems().size(); count > report.invalid.size())
            streams.Problem(file + " has " + Count(count, "problem", "problems") + " now; `slope check` lists them.");
        return exitOk;
    }

    Document document;

private:
    std::string const& file;
    Streams const& streams;
    LoadReport report;
};

int Set(Options const& options, Streams const& streams) {
    Change change(options.arguments[0], streams);
    if (!change.CanBegin()) return exitProblems;
    std::vector<WantedValue> wanted;
    for (std::size_t i = 1; i + 1 < options.arguments.size(); i += 2)
        wanted.push_back({options.arguments[i], options.arguments[i + 1]});
    std::vector<ChangedValue> changed;
    std::vector<std::string> const problems = SetValues(change.document, wanted, options.tag, changed);
    if (!problems.empty()) return change.Refuse(problems);
    std::string done;
    for (ChangedValue const& value : changed)
        done += value.name + ": " + value.before + " -> " + value.after +
                (value.asked.empty() ? "" : " (by way of " + value.asked + ")") + "\n";
    return change.Save(done);
}

int Copy(Options const& options, Streams const& streams) {
    Document document;
    LoadReport const report = LoadWithProgress(document, options.arguments[0]);
    if (!Warn(report, options.arguments[0], streams)) return exitProblems;
    std::vector<std::string> const names(options.arguments.begin() + 1, options.arguments.end());
    std::string text;
    std::vector<std::string> const problems = CopyText(document, names, options.tag, text);
    for (std::string const& problem : problems) streams.Problem(problem);
    streams.out << text;
    return report.IsClean() && problems.empty() ? exitOk : exitProblems;
}

/// All of a stream, up to a size that no copied text comes near. False for more.
bool ReadAll(std::istream& in, std::string& text) {
    constexpr std::size_t most = 256'000'000, piece = 65'536;
    for (std::size_t size = 0; in && size <= most; size += static_cast<std::size_t>(in.gcount())) {
        text.resize(size + piece);
        in.read(text.data() + size, static_cast<std::streamsize>(piece));
        text.resize(size + static_cast<std::size_t>(in.gcount()));
    }
    return text.size() <= most;
}

int Paste(Options const& options, Streams const& streams) {
    Change change(options.arguments[0], streams);
    if (!change.CanBegin()) return exitProblems;
    std::string text;
    if (!ReadAll(streams.in, text)) return change.Refuse({"The text is too long to be one that `slope copy` made."});
    Pasted const pasted = PasteText(change.document, text);
    if (!pasted.problems.empty()) return change.Refuse(pasted.problems);
    std::string done;
    for (std::string const& name : pasted.added) done += "Added " + name + "\n";
    for (std::string const& name : pasted.replaced) done += "Replaced what is called " + name + "\n";
    return change.Save(done);
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

Language LanguageOf(Options const& options) { return options.lang == "de" ? Language::German : Language::English; }

/// Makes a loaded document ready for people.
htl::status Present(Document& document, Options const& options) {
    std::optional<UnitSystem> shown;
    if (options.units == "si") shown = UnitSystem::Metric;
    if (options.units == "us") shown = UnitSystem::Imperial;
    return document.Present(shown);
}

/// What the options ask to see.
int QueryOf(Options const& options) {
    using hzn::apptype::Value;
    struct Analysis {
        std::string_view word;
        Value value;
    };
    constexpr std::array analyses{
        Analysis{"solute", Value::Solute}, Analysis{"dynamic", Value::Dynamic}, Analysis{"water", Value::Water},
        Analysis{"stress", Value::Stress}, Analysis{"slope", Value::Slope},     Analysis{"heat", Value::Heat},
        Analysis{"air", Value::Air},       Analysis{"project", Value::Project}, Analysis{"all", Value::AllPhysics}};
    int query = options.view == "data" ? dataView : options.view == "property" ? propertyView : reportView;
    for (Analysis const& analysis : analyses)
        if (options.physics == analysis.word) query |= zo::visible::Mask(analysis.value);
    using hzn::appmode::Value::Any;
    using hzn::appmode::Value::Contour;
    using hzn::appmode::Value::Define;
    return query | zo::visible::Mask(options.mode == "define" ? Define : options.mode == "contour" ? Contour : Any);
}

bool UsesColor(Options const& options) {
    if (options.color != "auto") return options.color == "always";
    auto const set = [](char const* name) {
        char const* const value = std::getenv(name);
        return std::string_view(value ? value : "");
    };
    return isatty(STDOUT_FILENO) && set("NO_COLOR").empty() && !set("TERM").empty() && set("TERM") != "dumb";
}

int ShowGrid(Options const& options, Streams const& streams) {
    Document document(LanguageOf(options));
    LoadReport const report = LoadWithProgress(document, options.arguments[0]);
    if (!Warn(report, options.arguments[0], streams)) return exitProblems;
    if (htl::status const failure = Present(document, options); failure.IsError())
        return streams.Problem(Message(failure));
    PrintGrid(streams.out, Display(document), document.Root(), QueryOf(options), UsesColor(options));
    return report.IsClean() ? exitOk : exitProblems;
}

/// The node's name in reports, with one blank where the library joins two pieces by two.
std::string NameInReports(zo::H const& node) {
    std::wstring const name = zo::PrettyPrintName(node, L'/');
    std::wstring text;
    for (wchar_t const c : name)
        if (c != L' ' || (!text.empty() && text.back() != L' ')) text += c;
    return Narrow(text);
}

int Explain(Options const& options, Streams const& streams) {
    Document document(LanguageOf(options));
    LoadReport const report = LoadWithProgress(document, options.arguments[0]);
    if (!Warn(report, options.arguments[0], streams)) return exitProblems;
    if (htl::status const failure = Present(document, options); failure.IsError())
        return streams.Problem(Message(failure));
    zo::H const node = Lookup(document, options);
    if (!node) return streams.Problem(NothingThere(options));
    std::string const name = NameInReports(node);
    if (!name.empty()) streams.out << name << "\n\n";
    streams.out << Narrow(zo::ExplainFields(node).Text()) << '\n'
                << Narrow(zo::ExplainVisibility(node, QueryOf(options)).Text());
    return report.IsClean() ? exitOk : exitProblems;
}

/// Whether both names lead to one file that is there.
bool IsSameFile(std::string const& a, std::string const& b) {
    std::error_code ignored; // without either file there is nothing to lose
    return std::filesystem::equivalent(a, b, ignored);
}

int WriteReport(Options const& options, Streams const& streams) {
    std::string const &file = options.arguments[0], &page = options.arguments[1];
    if (IsSameFile(file, page))
        return streams.Problem(page + " is the project itself; a page needs a file of its own.");
    Document document(LanguageOf(options));
    LoadReport const report = LoadWithProgress(document, file);
    if (!Warn(report, file, streams)) return exitProblems;
    htl::status failure = Present(document, options);
    if (!failure.IsError())
        failure = WritePage(page, ReportPage(document, std::filesystem::path(file).filename().string()));
    if (failure.IsError()) return streams.Problem(Message(failure));
    streams.out << "The report is in " << page << '\n';
    return report.IsClean() ? exitOk : exitProblems;
}

int CheckTables(Streams const& streams) {
    Document document(Language::German); // whose table lies over the English one
    htl::status const failure = document.Present();
    if (failure.IsError()) streams.Problem(Message(failure));
    zo::TableReport const report = zo::CheckTable();
    streams.out << Narrow(report.Text()) << report.SkeletonRows();
    return failure.IsError() || !report.IsClean() ? exitProblems : exitOk;
}

int WriteTexts(Options const& options, Streams const& streams) {
    std::string const& file = options.arguments[0];
    std::string const earlier = options.arguments.size() > 1 ? options.arguments[1] : "";
    Document document;
    htl::status failure = document.Present();
    if (!failure.IsError()) failure = zo::MergeExtendedInfoLocTextToFile(Wide(earlier), Wide(file));
    if (failure.IsError()) return streams.Problem(Message(failure));
    streams.out << "The texts are in " << file << '\n';
    return exitOk;
}

int WriteSchema(Options const& options, Streams const& streams) {
    std::wstring const file = Wide(options.arguments[0]);
    Document document;
    htl::status failure = document.Present();
    if (!failure.IsError()) failure = options.asSeen ? zo::schema::Save(0, file) : zo::schema::Save(file);
    if (failure.IsError()) return streams.Problem(Message(failure));
    streams.out << "The schema is in " << options.arguments[0] << '\n';
    return exitOk;
}

int WriteXsd(Options const& options, Streams const& streams) {
    Document document;
    htl::status failure = document.Present(); // the labels are in it
    if (!failure.IsError()) failure = zo::schema::SaveXsd(Wide(options.arguments[0]));
    if (failure.IsError()) return streams.Problem(Message(failure));
    streams.out << "The XML Schema is in " << options.arguments[0] << '\n';
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

int RunCommandLine(std::vector<std::string> const& words, std::istream& in, std::ostream& out, std::ostream& err) {
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
    Streams const streams{in, out, err};
    // Numbers go with the words around them, whatever the system is set to.
    str::locale::SetNative({WordsOf(LanguageOf(options)).decimalPoint, L'\0'});
    if (options.command == "show") return Show(options, streams);
    if (options.command == "get") return Get(options, streams);
    if (options.command == "set") return Set(options, streams);
    if (options.command == "copy") return Copy(options, streams);
    if (options.command == "paste") return Paste(options, streams);
    if (options.command == "check") return Check(options, streams);
    if (options.command == "import") return Import(options, streams);
    if (options.command == "grid") return ShowGrid(options, streams);
    if (options.command == "explain") return Explain(options, streams);
    if (options.command == "report") return WriteReport(options, streams);
    if (options.command == "table") return CheckTables(streams);
    if (options.command == "schema") return WriteSchema(options, streams);
    if (options.command == "xsd") return WriteXsd(options, streams);
    if (options.command == "loctext") return WriteTexts(options, streams);
    if (options.command == "large") return Large(options, streams);
    return RunDemo(options.data.empty() ? DefaultDataFolder() : options.data, options.problem, options.out, out, err)
               ? exitOk
               : exitProblems;
}

} // namespace slope
