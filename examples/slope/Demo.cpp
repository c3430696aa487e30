#include "examples/slope/Demo.h"

#include "examples/slope/Aquifer.h"
#include "examples/slope/Document.h"
#include "examples/slope/Import.h"
#include "examples/slope/Progress.h"
#include "examples/slope/Table.h"
#include "examples/slope/Text.h"
#include "examples/slope/Tree.h"

#include <cstdlib>
#include <filesystem>
#include <ostream>
#include <system_error>
#include <vector>

namespace slope {

namespace {

/// Where files go: a folder that the user named, or a temporary one that goes when the work is done.
class Folder {
public:
    explicit Folder(std::string const& named) : path(named), temporary(named.empty()) {
        std::error_code error;
        if (temporary) {
            path = std::filesystem::temp_directory_path(error).string() + "/slope-XXXXXX";
            if (!mkdtemp(path.data())) path.clear();
        } else {
            std::filesystem::create_directories(path, error);
        }
    }
    Folder(Folder const&) = delete;
    Folder& operator=(Folder const&) = delete;
    ~Folder() {
        std::error_code ignored; // what can't be removed stays among the temporary files
        if (temporary && !path.empty()) std::filesystem::remove_all(path, ignored);
    }

    std::string File(std::string const& name) const { return path + "/" + name; }
    /// The file as reports show it: a temporary folder is called differently each time.
    std::string Shown(std::string const& name) const { return temporary ? name : File(name); }
    bool IsTemporary() const { return temporary; }

private:
    std::string path;
    bool temporary;
};

/// Saves, loads into a fresh document, compares: what every model goes through.
class RoundTrip {
public:
    explicit RoundTrip(std::ostream& out) : out(out) {}

    /// Whether the loaded document is the same as `document`.
    bool Run(Document& document, Folder const& folder, std::string const& fileName) {
        std::string const path = folder.File(fileName);
        htl::status failure;
        {
            Progress const progress("Saving " + fileName);
            failure = document.Save(path);
        }
        if (failure.IsError()) return Say_("Not saved: " + Message(failure)), false;
        std::error_code error;
        size = std::filesystem::file_size(path, error);
        Say_("Saved as " + folder.Shown(fileName) + ", " + Count(size) + " bytes.");

        Document loaded;
        LoadReport report;
        {
            Progress const progress("Loading " + fileName);
            report = loaded.Load(path);
        }
        if (report.failure.IsError()) return Say_("Not loaded: " + Message(report.failure)), false;
        for (auto const* const lines : {&report.dropped, &report.invalid})
            for (std::string const& line : *lines) Say_(line);
        Say_("Loaded into a fresh model: " +
             (report.IsClean() ? "no problems."
                               : Count(report.dropped.size() + report.invalid.size(), "problem.", "problems.")));
        bool const same = Compare_(document, loaded, fileName);
        return report.IsClean() && same;
    }

    Comparison comparison;
    std::uintmax_t size = 0;

private:
    bool Compare_(Document& before, Document& after, std::string const& fileName) {
        {
            Progress progress("Comparing " + fileName);
            comparison = CompareTrees(before, after, [&](std::size_t count) { progress.Done(count); });
        }
        for (std::string const& difference : comparison.differences) Say_("Differs: " + difference);
        Say_("Compared node by node: " + Count(comparison.nodes, "node, ", "nodes, ") + Count(comparison.differing) +
             " differing.");

        Progress const progress("Comparing the saved values of " + fileName);
        bool const identical = SaveTheSame(before, after);
        Say_(std::string("What a save would write is ") + (identical ? "the same." : "different."));
        bool const same = identical && comparison.differing == 0;
        Say_(same ? "Nothing changed." : "SOMETHING CHANGED.");
        return same;
    }

    void Say_(std::string const& line) { out << "  " << line << '\n'; }

    std::ostream& out;
};

std::string Amounts(Project const& project) {
    std::vector<std::string> amounts{Count(project.materials.size(), "material", "materials"),
                                     Count(project.points.size(), "point", "points"),
                                     Count(project.lines.size(), "line", "lines"),
                                     Count(project.analyses.size(), "factor of safety", "factors of safety")};
    if (!project.slipCircles.empty())
        amounts.push_back(Count(project.slipCircles.size(), "slip circle", "slip circles"));
    amounts.push_back(project.water ? "water" : "no water");
    return Join(amounts, ", ");
}

/// The job on one problem.
class ProblemJob {
public:
    ProblemJob(std::ostream& out, std::size_t elementLimit) : roundTrip(out), out(out), elementLimit(elementLimit) {}

    bool Run(Project project, Folder const& folder) {
        Document document;
        document.SetContent(std::move(project));
        Project& content = document.Content();
        std::string const heading = content.name + ": " + content.title;
        out << heading << '\n' << std::string(Width(heading), '=') << '\n';
        out << "  Imported " << Amounts(content) << ".\n";

        out << "\nThe tree\n";
        PrintTree(out, document.Root(), document.Units(), elementLimit);

        out << "\nLooking up and editing\n";
        bool const edited = Edit_(document);

        out << "\nSaving and loading\n";
        bool const kept = roundTrip.Run(document, folder, content.name + ".xml");
        out << '\n';
        return edited && kept;
    }

    RoundTrip roundTrip;

private:
    bool Edit_(Document& document) {
        Table table({{"What"}, {"Where"}, {"Before"}, {"Given"}, {"After"}});
        bool good = true;

        // By name, as code does: indices from 0.
        std::string const name = "Materials[0].Cohesion";
        zo::H const cohesion = document.Find(name);
        if (!cohesion) return out << "  There is no " << name << ".\n", false;
        double value = 0;
        good &= !cohesion->Get(value).IsError();
        good &= EditRow_(table, "set by name", name, cohesion, Decimal(value + 2.5));
        good &= document.Content().materials[0].cohesion == value + 2.5; // the application's own field

        // By tag, as documents and people do: indices from 1.
        std::string const tag = "Materials[1].UnitWeight";
        zo::H const weight = document.FindTag(tag);
        if (!weight) return out << "  There is no " << tag << ".\n", false;
        good &= !weight->Get(value).IsError();
        good &= EditRow_(table, "set by tag", tag, weight, Decimal(value * 2));

        zo::H const model = document.Find("Materials[0].Strength");
        if (model) good &= EditRow_(table, "set by name", "Materials[0].Strength", model, "Undrained");
        good &= model && document.Content().materials[0].strength == StrengthModel::Undrained;

        // A value outside of its range is refused, and the old one stays.
        std::string const friction = "Materials[0].Friction";
        zo::H const angle = document.Find(friction);
        if (!angle) return out << "  There is no " << friction << ".\n", false;
        std::string const before = ValueText(angle);
        htl::status const refusal = angle->Set(L"75");
        table.Add({"refused", friction, before, "75", ValueText(angle)});
        good &= refusal.IsError() && ValueText(angle) == before;

        table.Print(out);
        out << "  The refusal says: " << Message(refusal) << '\n';
        return good;
    }

    static bool EditRow_(Table& table, std::string const& what, std::string const& where, zo::H const& node,
                         std::string const& text) {
        std::string const before = ValueText(node);
        htl::status const failure = node->Set(Wide(text));
        std::string const after = failure.IsError() ? Message(failure) : ValueText(node);
        table.Add({what, where, before, text, after});
        return !failure.IsError() && after == text;
    }

    std::ostream& out;
    std::size_t elementLimit;
};

std::string RangeText(FactorRange const& range) {
    std::string const lowest = ThreePlaces(range.lowest);
    std::string const highest = ThreePlaces(range.highest);
    return lowest == highest ? lowest : lowest + " to " + highest;
}

void SayWhereFilesAre(Folder const& folder, std::ostream& out) {
    if (folder.IsTemporary()) out << "The files were temporary; --out DIR keeps them.\n";
}

} // namespace

bool RunDemo(std::string const& dataFolder, std::string const& problem, std::string const& outFolder, std::ostream& out,
             std::ostream& err) {
    std::vector<std::string> problems{problem};
    if (problem.empty())
        if (htl::status const failure = ListProblems(dataFolder, problems); failure.IsError())
            return err << "slope: " << Message(failure) << '\n', false;

    Folder const folder(outFolder);
    Table summary(
        {{"Problem"}, {"Published FS", true}, {"Bytes", true}, {"Nodes", true}, {"Differing", true}, {"Result"}});
    bool good = true;
    for (std::string const& name : problems) {
        Project project;
        if (htl::status const failure = ImportProblem(dataFolder, name, project); failure.IsError())
            return err << "slope: " << Message(failure) << '\n', false;
        FactorRange const published = PublishedFactors(project);
        // One problem is shown as a whole, of many the first records of each array.
        ProblemJob job(out, problems.size() == 1 ? 100 : 2);
        bool const result = job.Run(std::move(project), folder);
        good &= result;
        summary.Add({name, RangeText(published), Count(job.roundTrip.size), Count(job.roundTrip.comparison.nodes),
                     Count(job.roundTrip.comparison.differing), result ? "nothing changed" : "FAILED"});
    }
    out << "Summary\n";
    summary.Print(out);
    SayWhereFilesAre(folder, out);
    return good;
}

bool RunLarge(std::size_t count, std::string const& outFolder, std::ostream& out) {
    Project project;
    project.name = "large";
    project.title = "Aquifer of " + Count(count, "cell", "cells");
    {
        Progress progress("Making cells", count);
        project.aquifer = std::make_unique<Aquifer>(MakeAquifer(count, [&](std::size_t done) { progress.Done(done); }));
    }
    Document document;
    document.SetContent(std::move(project));
    out << document.Content().title << ", " << Count(ActiveCells(count)) << " active\n";
    PrintTree(out, document.Root(), document.Units(), 2);
    out << '\n';
    Folder const folder(outFolder);
    bool const same = RoundTrip(out).Run(document, folder, "large.xml");
    SayWhereFilesAre(folder, out);
    return same;
}

} // namespace slope
