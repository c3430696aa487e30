// Between projects: materials, regions and analyses as text, with everything that they use.
//
// The text is a document like that of a file, cut down to what was copied, with one line more that says what it holds:
//
//     <?xml version="1.0" encoding="UTF-8"?>
//     <?slope-clipboard objects="10,11" version="1.00"?>
//     <HZNData ...>
#pragma once

#include "examples/slope/Document.h"

#include <string>
#include <vector>

namespace slope {

/// Puts what the names say into `text`: single materials, regions or analyses, all of one kind, or the whole list of a
/// kind. An analysis brings its region along, a region its material. With `tags` the names are tags.
///
/// What keeps it from being copied, a line each; `text` is then empty.
std::vector<std::string> CopyText(Document& document, std::vector<std::string> const& names, bool tags,
                                  std::string& text);

/// What a paste did.
struct Pasted {
    std::vector<std::string> problems; ///< why nothing, or not all of it, was pasted: a line each
    std::vector<std::string> added;    ///< what is new: a name and what it is called
    std::vector<std::string> replaced; ///< what is called so was replaced by another one of that name
};

/// Adds what the text holds to the document: each copied thing at the end of its list, under a name of its own. What it
/// uses is what goes by that name in the document; if that is another one, it is replaced.
///
/// The text may be anything. One that is refused, or comes from a project in other units, leaves the document as it is.
/// Numbers of lines are positions and stay as they are.
Pasted PasteText(Document& document, std::string const& text);

} // namespace slope
