// A project with everything that the library adds to it: names, tags, and a file.
#pragma once

#include "examples/slope/Language.h"
#include "examples/slope/Model.h"

#include <zo/zo.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace slope {

/// The format of the documents that this application writes.
inline constexpr hzn::version::NumberKind<0> documentVersion{1, 0};

/// What a load came across.
struct LoadReport {
    htl::status failure;              ///< the file can't be opened, or isn't well-formed: with line and column
    std::vector<std::string> dropped; ///< what the file holds and the document doesn't take: a line each
    std::vector<std::string>
        invalid; ///< what was taken although a rule of the model refuses it, and what was made up: a line each

    bool IsClean() const { return !failure.IsError() && dropped.empty() && invalid.empty(); }
};

/// An open document. Each has a registry of its own, so that several can be open at once.
///
/// The library's free functions work on the current registry of the thread: `MakeCurrent` before using them. The
/// operations below see to that themselves. Nodes that came from a document must be let go before it ends.
class Document {
public:
    /// An empty project, for people who speak `language`. Throws std::logic_error with all mistakes if the modules are
    /// declared wrong.
    explicit Document(Language language = Language::English);
    Document(Document const&) = delete;
    Document& operator=(Document const&) = delete;
    ~Document();

    Project& Content() { return *project; }
    /// Takes over another project. No node of the old one may be held.
    void SetContent(Project content);
    /// Brings up to date what is worked out and kept. The operations below see to that themselves; who commits a
    /// transaction or writes to a node asks for it.
    void UpdateCalculated();

    void MakeCurrent();
    zo::H Root();
    Language Speaks() const { return language; }
    /// Reads the tables of labels and rules in the document's language, and lets people see values in the units of
    /// `shown`, or as they are stored without it. Called once.
    ///
    /// From then on the library's labels, views and printed values work on this document. Failure: that of a table, or
    /// of its compilation.
    htl::status Present(std::optional<UnitSystem> shown = {});
    /// The node under a name, such as "Materials[0].Cohesion"; empty if there is none. Indices count from 0.
    zo::H Find(std::string const& name);
    /// The node under a tag, such as "Materials[1].Cohesion"; empty if there is none. Indices count from 1. Both go
    /// through links and aliases, "Regions[1].Material.Cohesion".
    zo::H FindTag(std::string const& tag);

    /// The nodes that only stand for others. No walk comes to them.
    std::vector<zo::H> Aliases();

    /// Saves the document. A file that is there is replaced only when the new one is complete.
    htl::status Save(std::string const& path);
    /// Loads a file into the emptied document. After a failure the document holds a part of the file at most.
    LoadReport Load(std::string const& path);

    /// What is wrong with the values: those that a rule of the model refuses, and numbers that lead nowhere. A line
    /// each.
    std::vector<std::string> Problems();

    /// An empty transaction: what is found through it is staged, and its commit goes to this document.
    htl::handle<zo::ZOTransaction> Begin();
    /// Takes a commit to this document back, or does it again.
    htl::status Undo(zo::ZOJournal const& journal);
    htl::status Redo(zo::ZOJournal const& journal);

    /// The units in which the document's values are stored.
    math::UnitSet Units() const;

private:
    static void CheckValues_(zo::H const& parent, std::vector<std::string>& invalid);

    Language language;
    std::shared_ptr<Project> project;
    htl::handle<zo::ZORegistry> registry;
};

} // namespace slope
