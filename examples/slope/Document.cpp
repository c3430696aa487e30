#include "examples/slope/Document.h"

#include "examples/slope/Audit.h"
#include "examples/slope/Modules.h"
#include "examples/slope/TableText.h"
#include "examples/slope/Text.h"

#include <stdexcept>
#include <string_view>
#include <utility>

namespace slope {

namespace {

constexpr std::size_t mostBadValues = 11; // that a load names

math::UnitSet SetOf(UnitSystem system) {
    return hzn::units::SystemUnitSet(system == UnitSystem::Imperial ? math::unitsystem::Imperial
                                                                    : math::unitsystem::Metric);
}

htl::status Read(std::string_view table) { return zo::ZOExtendedInfoRead(table.data(), table.data() + table.size()); }

} // namespace

Document::Document(Language language)
    : language(language), project(std::make_shared<Project>()), registry(new zo::ZORegistry) {
    MakeCurrent();
    RegisterModules(project, language);
}

Document::~Document() {
    // A registry that was saved from lives as long as the process; the modules see that the project is gone.
    if (zo::ZORegistry::Instance() == registry.get()) zo::ZORegistry::SetInstance(nullptr);
}

void Document::SetContent(Project content) {
    *project = std::move(content);
    MakeCurrent();
    registry->InvalidateMemory("");
    UpdateCalculated();
}

void Document::UpdateCalculated() {
    // The trigger takes any write: it has no rule that could refuse one.
    (void)zo::UpdateCalculatedValues(Find("Project"));
}

void Document::MakeCurrent() { zo::ZORegistry::SetInstance(registry.get()); }

zo::H Document::Root() {
    MakeCurrent();
    return registry->Root();
}

htl::status Document::Present(std::optional<UnitSystem> shown) {
    MakeCurrent();
    // The registry may outlive the document.
    auto const stored = [held = std::weak_ptr(project)] {
        auto const there = held.lock();
        return there ? SetOf(there->units) : math::UnitSet();
    };
    zo::RegisterUnitsProvider(stored, {},
                              [stored, shown](hzn::units::Kind::Type) { return shown ? SetOf(*shown) : stored(); });
    htl::status failure = Read(EnglishTable());
    if (!failure.IsError() && language == Language::German) failure = Read(GermanTable());
    return failure.IsError() ? failure : zo::CompileExtendedInfo();
}

zo::H Document::Find(std::string const& name) {
    MakeCurrent();
    return zo::Find(name);
}

zo::H Document::FindTag(std::string const& tag) {
    MakeCurrent();
    if (zo::H const node = zo::FindTag(tag)) return node;
    // Step by step, through links and aliases. A path that ends where it began names nothing.
    zo::H const node = zo::LookupRelative(registry->Root(), Wide(tag));
    return node && node->RegID() != 0 ? node : zo::H();
}

std::vector<zo::H> Document::Aliases() {
    zo::H const current = Find("CurrentAnalysis");
    return current ? std::vector{current} : std::vector<zo::H>();
}

htl::status Document::Save(std::string const& path) {
    MakeCurrent();
    return zo::xml::FileWrite(Wide(path), documentVersion);
}

LoadReport Document::Load(std::string const& path) {
    SetContent({});
    LoadReport report;
    double const ours = hzn::version::number::Encode(documentVersion);
    auto const collect = [&](zo::ZOSet*, zo::xml::Unknowns& unknown, double version, zo::xml::impl::XMLError&) {
        if (version == missing)
            report.dropped.push_back("The document has no version, so it may be no slope project.");
        else if (version > ours)
            report.dropped.push_back("The document's format is version " + Decimal(version) +
                                     ", and this application knows " + Decimal(ours) + " and below.");
        for (auto const& [name, text] : unknown)
            report.dropped.push_back(Narrow(name) + ": unknown element or attribute" +
                                     (text.empty() ? "" : " \"" + Narrow(text) + "\""));
    };
    std::vector<htl::status> badValues;
    report.failure = zo::xml::FileRead(Wide(path), badValues, {}, collect);
    UpdateCalculated();
    for (htl::status const& bad : badValues) report.dropped.push_back(Message(bad));
    if (badValues.size() >= mostBadValues)
        report.dropped.push_back("There may be more values like these; the first " + Count(mostBadValues) +
                                 " are named.");
    if (report.failure.IsError()) return report;

    report.failure = AuditElements(path, report.dropped, report.invalid);
    for (std::string& problem : Problems()) report.invalid.push_back(std::move(problem));
    return report;
}

std::vector<std::string> Document::Problems() {
    std::vector<std::string> problems;
    CheckValues_(Root(), problems);
    for (std::string& broken : BrokenReferences(*project)) problems.push_back(std::move(broken));
    return problems;
}

htl::handle<zo::ZOTransaction> Document::Begin() {
    MakeCurrent();
    return registry->CreateTransaction();
}

htl::status Document::Undo(zo::ZOJournal const& journal) {
    MakeCurrent();
    htl::status failure = journal.Undo(*registry);
    UpdateCalculated();
    return failure;
}

htl::status Document::Redo(zo::ZOJournal const& journal) {
    MakeCurrent();
    htl::status failure = journal.Redo(*registry);
    UpdateCalculated();
    return failure;
}

math::UnitSet Document::Units() const { return SetOf(project->units); }

void Document::CheckValues_(zo::H const& parent, std::vector<std::string>& invalid) {
    // Loading converts values and asks no rule, so that a file with a bad value can be opened and mended.
    for (zo::H const& node : *parent) {
        if (!node->IsValueType()) {
            CheckValues_(node, invalid);
            continue;
        }
        if (node->GetPersistTraits().Type == meta::MetaPersistTraits::No) continue;
        if (htl::status const refusal = node->Verify(); refusal.IsError())
            invalid.push_back(Narrow(node->TagName(zo::FullTagType)) + ": " + Message(refusal));
    }
}

} // namespace slope
