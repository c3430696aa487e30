#include "examples/slope/Demo.h"

#include "examples/slope/Aquifer.h"
#include "examples/slope/Display.h"
#include "examples/slope/Document.h"
#include "examples/slope/EditJob.h"
#include "examples/slope/Folder.h"
#include "examples/slope/Grid.h"
#include "examples/slope/Import.h"
#include "examples/slope/Progress.h"
#include "examples/slope/Report.h"
#include "examples/slope/Table.h"
#include "examples/slope/Text.h"
#include "examples/slope/Tree.h"

#include <filesystem>
#include <ostream>
#include <system_error>
#include <vector>

namespace slope {

namespace {

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
        PrintTree(out, document.Root(), document.Units(), elementLimit, document.Aliases());

        std::vector<Material> const published = content.materials; // before any edit
        EditJob edit(document, folder.File(content.name + ".scratch.xml"), out);
        out << "\nTrying an edit out: staged in a transaction, then dropped\n";
        bool good = edit.TryOut();
        out << "\nMaking the edit: staged again and committed\n";
        good &= edit.Commit();
        out << "\nSaving and loading\n";
        good &= roundTrip.Run(document, folder, content.name + ".xml");
        out << "\nTaking the edit back\n";
        good &= edit.UndoAndRedo();
        if (content.units == UnitSystem::Imperial && !published.empty()) {
            out << "\nUsing the published soil in a metric project\n";
            good &= TakeIntoMetric(published.front(), out);
        }
        out << "\nWhat people see of the saved file in a report\n";
        good &= Show_(folder, content.name);
        out << '\n';
        return good;
    }

    RoundTrip roundTrip;

private:
    /// Loads the file that was saved, prints the report view and writes the page.
    bool Show_(Folder const& folder, std::string const& name) {
        Document document;
        LoadReport const report = document.Load(folder.File(name + ".xml"));
        htl::status failure = report.failure;
        if (!failure.IsError()) failure = document.Present();
        if (!failure.IsError()) {
            PrintGrid(out, Display(document), document.Root(), ReportQuery(), false);
            failure = WritePage(folder.File(name + ".html"), ReportPage(document, name + ".xml"));
        }
        out << "  "
            << (failure.IsError() ? "NOT SHOWN: " + Message(failure)
                                  : "As a page with a cross-section: " + folder.Shown(name + ".html"))
            << '\n';
        return !failure.IsError();
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

void SayThatNoFolderIs(std::string const& named, std::ostream& err) {
    err << "slope: " << (named.empty() ? "A temporary folder" : "The folder " + named) << " can't be made.\n";
}

} // namespace

bool RunDemo(std::string const& dataFolder, std::string const& problem, std::string const& outFolder, std::ostream& out,
             std::ostream& err) {
    std::vector<std::string> problems{problem};
    if (problem.empty())
        if (htl::status const failure = ListProblems(dataFolder, problems); failure.IsError())
            return err << "slope: " << Message(failure) << '\n', false;

    Folder const folder(outFolder);
    if (!folder.IsThere()) return SayThatNoFolderIs(outFolder, err), false;
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
                     Count(job.roundTrip.comparison.differing), result ? "all as it should be" : "FAILED"});
    }
    out << "Summary\n";
    summary.Print(out);
    SayWhereFilesAre(folder, out);
    return good;
}

bool RunLarge(std::size_t count, std::string const& outFolder, std::ostream& out, std::ostream& err) {
    Folder const folder(outFolder);
    if (!folder.IsThere()) return SayThatNoFolderIs(outFolder, err), false;
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
    bool const same = RoundTrip(out).Run(document, folder, "large.xml");
    SayWhereFilesAre(folder, out);
    return same;
}

} // namespace slope
