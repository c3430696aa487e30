// A small plan, saved and loaded as a document: what the tests of the document work on.
#pragma once

#include "Common/redirect/Stores.h"
#include "Common/registry/Find.h"
#include "Common/registry/ZORegistry.h"
#include "Common/xml/Read.h"
#include "Common/xml/Write.h"
#include "tests/fixtures/Embankment.h"

#include "support/describe.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace plan {

using meta::MetaDataTraits;
using meta::MetaPersistTraits;
using zo::H;
using zo::IZO;

/// A registry of its own, current from construction to destruction, with rows over active stores.
class Rows {
public:
    Rows();
    Rows(Rows const&) = delete;
    Rows& operator=(Rows const&) = delete;
    /// Takes the stores off the client's memory, since registries live on, and puts the old registry back.
    ~Rows();

    htl::handle<zo::ODS> Add(std::string const& name, H const& node, MetaPersistTraits const& persist,
                             MetaDataTraits const& traits, void* object = nullptr, bool active = true);
    /// A branch without data of its own, with or without object.
    htl::handle<zo::ODS> Branch(std::string const& name, std::wstring const& tag, bool active = true);
    htl::handle<zo::ODS> Text(std::string const& name, std::wstring const& tag, std::wstring& value,
                              std::uint32_t type = MetaPersistTraits::Always, bool active = true);
    htl::handle<zo::ODS> Number(std::string const& name, std::wstring const& tag, double& value,
                                std::uint32_t type = MetaPersistTraits::Always, bool active = true);
    /// Numbers in a std::vector<double>, as one text.
    void Numbers(std::string const& name, std::wstring const& tag, std::vector<double>& value,
                 std::uint32_t type = MetaPersistTraits::Always);
    void Finish() { registry->OnPostRegistration(); }

    htl::handle<zo::ZORegistry> registry;

private:
    zo::ZORegistry* previous;
    std::vector<htl::handle<zo::ODS>> stores;
};

struct Point {
    double X = 0;
    double Y = 0;
};

struct Project {
    std::wstring Title;
    std::vector<Point> Points;
    std::vector<double> Weights;
    double Tolerance = 0;
    std::wstring Comment;
};

MetaDataTraits PointTraits();
MetaDataTraits PointsTraits();
MetaDataTraits NumbersTraits();
MetaDataTraits ProjectTraits();

/// Registers "Project" with its members: Title (always), Points of records X and Y (left out at 0), Weights as one
/// text, Tolerance (left out at 0) and Comment (always).
void AddProject(Rows& rows, Project& project, std::string const& name = "Project",
                std::wstring const& tag = L"Project");

/// The project of the worked document.
Project Example();

/// Every test gets an empty project; the versions written are 12.03 and 11.2.0.4711.
class PlanTest : public testing::Test {
protected:
    PlanTest();
    ~PlanTest() override;

    Rows rows;
    Project project;

private:
    hzn::version::Record before;
};

inline constexpr hzn::version::NumberKind<0> formatVersion{12, 3};

/// What `StringWrite` gives for the current registry; a failure's text in "<>".
std::wstring Written(std::vector<std::wstring> const* filter = nullptr);
/// The document without the white space between tags.
std::wstring Compact(std::wstring const& document);
/// The child elements of the document element, compacted.
std::wstring Saved(std::vector<std::wstring> const& filter);
std::wstring Saved();
/// A document with these child elements.
std::wstring Document(std::wstring const& body);

/// What a load gave besides values.
struct Loaded {
    htl::status result;
    std::vector<htl::status> errors;
    zo::xml::Unknowns unknown;
    double version = 0;
    int handled = 0;
};
Loaded LoadText(std::wstring const& text, zo::xml::Filter const& filter = {}, zo::xml::TagPolicy const& policy = {});
/// Loads `Document(body)`.
Loaded Load(std::wstring const& body, zo::xml::Filter const& filter = {}, zo::xml::TagPolicy const& policy = {});
/// Loads `Document(body)` without clearing.
Loaded Import(std::wstring const& body, zo::xml::Filter const& filter = {}, zo::ZOSet* set = nullptr);

/// Whether a load succeeded without errors or unknown items.
testing::AssertionResult IsClean(Loaded const& loaded);

/// A path in a directory of this process that a test may write to.
std::string TemporaryFile(std::string const& name);
std::string Bytes(std::string const& file);
void Store(std::string const& file, std::string const& bytes);
inline std::wstring Wide(std::string const& text) { return str::as_wstring(text); }

} // namespace plan
