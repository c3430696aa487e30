#include "examples/slope/EditJob.h"

#include "examples/slope/Table.h"
#include "examples/slope/Text.h"
#include "examples/slope/Tree.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>
#include <system_error>
#include <utility>

namespace slope {

namespace {

// Both are exact by definition.
constexpr double foot = 0.3048;                   // m
constexpr double poundForce = 4.4482216152605e-3; // kN
constexpr double squareFoot = foot * foot;        // m2
constexpr double cubicFoot = squareFoot * foot;   // m3
constexpr double psf = poundForce / squareFoot;   // kPa
constexpr double pcf = poundForce / cubicFoot;    // kN/m3
constexpr double closeEnough = 1e-12;             // of the value: the last digits of a double

/// For people, who compare two numbers: the last digits of a double are of no use.
std::string TenDigits(double number) {
    char buffer[32];
    auto const end = std::to_chars(buffer, buffer + sizeof(buffer), number, std::chars_format::general, 10).ptr;
    return {buffer, end};
}

/// The node that is staged in the end, however it was asked for.
std::string SourceName(zo::H const& node) {
    std::string const source = IsAlias(node) ? LeadsTo(node) : std::string();
    return source.empty() ? node->Name() : source;
}

} // namespace

EditJob::EditJob(Document& edited, std::string scratchFile, std::ostream& report)
    : document(edited), scratch(std::move(scratchFile)), out(report), steps(Steps_()), before(Bytes_()) {}

std::vector<EditJob::Step> EditJob::Steps_() {
    Project const& project = document.Content();
    if (project.materials.empty()) return {};
    Material const& soil = project.materials.front();
    // By name, as code does, indices count from 0; by tag, as documents and people do, from 1.
    std::vector<Step> all{
        {"name", "Materials[0].Cohesion", Decimal(soil.cohesion + 2.5)},
        {"tag", "Materials[1].UnitWeight", Decimal(soil.unitWeight + 1)},
        {"link", "Regions[0].Material.Friction", Decimal(soil.friction + (soil.friction < 30 ? 1 : -1))},
        {"name", "Materials[0].Strength", soil.strength == StrengthModel::Undrained ? "MohrCoulomb" : "Undrained"}};
    if (!project.analyses.empty()) all.push_back({"name", "Project.CurrentAnalysis", "1"});
    return all;
}

bool EditJob::TryOut() {
    auto const transaction = document.Begin();
    bool good = Stage_(*transaction, true);

    // A value outside of its range is refused, and what was staged stays.
    std::string const name = "Materials[0].Friction";
    zo::H const friction = transaction->Find(name);
    if (!friction) return Say_(false, "There is no " + name + ".");
    std::string const staged = ValueText(friction);
    htl::status const refusal = friction->Set(L"75");
    good &= Say_(refusal.IsError() && ValueText(friction) == staged,
                 "Refused: " + name + " = 75: " + (refusal.IsError() ? Message(refusal) : "no, it was taken"));

    bool const untouched = Bytes_() == before;
    good &= Say_(untouched, untouched ? "The model has not changed: it would be saved as before, byte for byte."
                                      : "THE MODEL HAS CHANGED before the commit.");
    transaction->Rollback();
    htl::status const nothing = transaction->Commit("", "");
    bool const dropped = !nothing.IsError() && Bytes_() == before;
    return Say_(dropped, dropped ? "Rolled back: there is nothing left to commit." : "THE ROLLBACK LEFT SOMETHING.") &&
           good;
}

bool EditJob::Commit() {
    auto const transaction = document.Begin();
    bool good = Stage_(*transaction, false);
    htl::status const failure = transaction->Commit("", "", &journal);
    if (failure.IsError()) return Say_(false, "Not committed: " + Message(failure));
    after = Bytes_();

    Table table({{"Changed"}, {"Before"}, {"After"}});
    for (zo::ZOJournal::Entry const& entry : journal.Entries()) {
        auto const shown = [](std::wstring const& text) { return text.empty() ? "(none)" : Narrow(text); };
        table.Add({entry.name, shown(entry.before), shown(entry.after)});
    }
    table.Print(out);
    good &= journal.Entries().size() == steps.size() && after != before;
    // The application's own field, without the tree.
    good &= !steps.empty() && Decimal(document.Content().materials.front().cohesion) == steps.front().text;

    if (zo::H const factor = document.Find("CurrentAnalysis.FactorOfSafety"))
        out << "  CurrentAnalysis.FactorOfSafety is " << factor->Name() << " now: " << ValueText(factor) << '\n';
    else
        good &= document.Content().analyses.empty();
    return Say_(good, good ? "The model holds all of it." : "THE MODEL DOES NOT HOLD ALL OF IT.");
}

bool EditJob::UndoAndRedo() {
    htl::status const undo = document.Undo(journal);
    if (undo.IsError()) return Say_(false, "Not undone: " + Message(undo));
    std::string const undone = Bytes_();
    bool good = undone == before;
    Say_(good, good ? "Undone: the file would be the one from before the edit, byte for byte (" +
                          Count(undone.size(), "byte", "bytes") + ")."
                    : "UNDONE, BUT THE FILE WOULD BE ANOTHER ONE THAN BEFORE THE EDIT.");

    htl::status const redo = document.Redo(journal);
    if (redo.IsError()) return Say_(false, "Not done again: " + Message(redo));
    std::string const redone = Bytes_();
    bool const same = redone == after;
    return Say_(same, same ? "Done again: the file would be the edited one, byte for byte (" +
                                 Count(redone.size(), "byte", "bytes") + ")."
                           : "DONE AGAIN, BUT THE FILE WOULD BE ANOTHER ONE THAN AFTER THE EDIT.") &&
           good;
}

bool EditJob::Stage_(zo::ZOTransaction& transaction, bool show) {
    Table table({{"Found by"}, {"Asked for"}, {"Node"}, {"In the model"}, {"Staged"}});
    bool good = !steps.empty();
    for (Step const& step : steps) {
        bool const byTag = std::string(step.how) == "tag";
        zo::H const node = byTag ? transaction.FindTag(Wide(step.where)) : transaction.Find(step.where);
        if (!node) {
            good = Say_(false, "There is no " + step.where + ".");
            continue;
        }
        htl::status const failure = node->Set(Wide(step.text));
        std::string const name = SourceName(node);
        zo::H const live = document.Find(name);
        std::string const staged = failure.IsError() ? Message(failure) : ValueText(node);
        good &= live && staged == step.text && ValueText(live) != staged;
        table.Add({step.how, step.where, name, live ? ValueText(live) : "", staged});
    }
    if (show) table.Print(out);
    return good;
}

bool EditJob::Say_(bool good, std::string const& line) {
    out << "  " << line << '\n';
    return good;
}

std::string EditJob::Bytes_() {
    if (htl::status const failure = document.Save(scratch); failure.IsError()) {
        Say_(false, "Not saved: " + Message(failure));
        return "not saved " + std::to_string(++failures); // the same as no other
    }
    std::string bytes;
    {
        std::ifstream file(scratch, std::ios::binary);
        bytes.assign(std::istreambuf_iterator<char>(file), {});
    }
    std::error_code ignored; // a temporary folder goes as a whole
    std::filesystem::remove(scratch, ignored);
    return bytes;
}

bool TakeIntoMetric(Material const& given, std::ostream& out) {
    Project metric;
    metric.name = "metric";
    metric.materials.resize(1);
    Document document;
    document.SetContent(std::move(metric));

    struct Value {
        char const* name;
        std::string text;    // as the paper gives it
        double byDefinition; // in the metric project
        zo::H staged = {};
    };
    std::vector<Value> values{{"Cohesion", Decimal(given.cohesion), given.cohesion * psf},
                              {"UnitWeight", Decimal(given.unitWeight), given.unitWeight * pcf},
                              {"Friction", Decimal(given.friction), given.friction}};
    std::string const soil = "Materials[0]", units = "Project.Units";
    auto const transaction = document.Begin();
    // In the transaction the project is one in feet and pounds, and so are the values. Only the soil is committed.
    bool good = !transaction->Find(units)->Set(L"Imperial").IsError();
    for (Value& value : values) {
        value.staged = transaction->Find(soil + "." + value.name);
        good &= value.staged && !value.staged->Set(Wide(value.text)).IsError();
    }
    if (!good) return out << "  The soil can't be staged.\n", false;
    if (htl::status const failure = transaction->CommitAs(soil, soil, units, units); failure.IsError())
        return out << "  Not committed: " << Message(failure) << '\n', false;

    Table table({{"Value"}, {"Staged", true}, {"Unit"}, {"Committed", true}, {"Unit"}, {"By definition", true}});
    math::UnitSet const pounds = hzn::units::SystemUnitSet(math::unitsystem::Imperial);
    for (Value const& value : values) {
        zo::H const node = document.Find(soil + "." + value.name);
        double committed = 0;
        good &= !node->Get(committed).IsError();
        good &= std::abs(committed - value.byDefinition) <= closeEnough * std::abs(value.byDefinition);
        table.Add({soil + "." + value.name, ValueText(value.staged), UnitText(node, pounds), TenDigits(committed),
                   UnitText(node, document.Units()), TenDigits(value.byDefinition)});
    }
    table.Print(out);
    out << "  1 psf is " << TenDigits(psf) << " kPa and 1 pcf is " << TenDigits(pcf)
        << " kN/m³: 1 ft is 0.3048 m and 1 lbf is 4.4482216152605 N.\n";
    good &= document.Content().units == UnitSystem::Metric;
    out << (good ? "  The values agree, and the project is still metric.\n" : "  THE VALUES DO NOT AGREE.\n");
    return good;
}

} // namespace slope
