// The report: a page of HTML with a cross-section, for a browser or a printer.
#pragma once

#include "examples/slope/Document.h"

#include <string>

namespace slope {

/// The query for the report view, whatever the analysis and the mode.
int ReportQuery();

/// What the report view of a document shows, as one page that needs nothing else. `source` names what it was made from.
///
/// What the table calls a header is a section with a heading, what it calls a table a table of its records, and the
/// rest are lines. The document has to be ready for people.
std::string ReportPage(Document& document, std::string const& source);

/// Writes a page. A file that is there is replaced when the new one is complete, and stays as it is on failure.
htl::status WritePage(std::string const& path, std::string const& page);

} // namespace slope
