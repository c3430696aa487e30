// One whole edit, as an application makes it: staged, refused in part, rolled back; staged again, committed with a
// journal, taken back and done again.
#pragma once

#include "examples/slope/Document.h"

#include <zo/zo.h>

#include <iosfwd>
#include <string>
#include <vector>

namespace slope {

/// The edit of one document, step by step in the order of the functions. Each one reports to `out` and says whether all
/// went as it should.
class EditJob {
public:
    /// `scratch` is the path of a file that the job may write and removes again: what a save would write is the measure
    /// for "nothing changed".
    EditJob(Document& document, std::string scratch, std::ostream& out);

    /// Stages values that were found by name, by tag and through a link, and drops them. The document must not change.
    bool TryOut();
    /// Stages the same again and commits it.
    bool Commit();
    /// Takes the commit back and does it again, and compares what would be saved with what it was.
    bool UndoAndRedo();

private:
    struct Step {
        char const* how; // the name leads to the node
        std::string where;
        std::string text;
    };

    std::vector<Step> Steps_();
    bool Stage_(zo::ZOTransaction& transaction, bool show);
    bool Say_(bool good, std::string const& line);
    std::string Bytes_();

    Document& document;
    std::string scratch;
    std::ostream& out;
    std::vector<Step> steps;
    zo::ZOJournal journal;
    int failures = 0;          // to save
    std::string before, after; // what a save writes
};

/// Takes a soil in pounds and feet into a metric project, by a commit that converts. Reports to `out`, beside what the
/// definitions of foot and pound-force give. Whether the two agree.
bool TakeIntoMetric(Material const& soil, std::ostream& out);

} // namespace slope
