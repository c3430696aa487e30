// What takes a document apart: one object for each element that is of interest.
//
// The parser pushes. It knows nothing of nodes or tables, so whoever reads a document derives from this class and
// decides, element by element, what is looked at.
#pragma once

#include "support/export.h"
#include "support/handle.h"

#include <string>
#include <utility>

namespace sys::file {

/// Name and value of one attribute.
using XmlAttribute = std::pair<std::wstring, std::wstring>;

/// Receives the content of one element: first its attributes in the order of the document, then its child elements,
/// last its text.
///
/// The object handed to a read function stands for the document element. One object may serve many elements one after
/// the other. The arguments are valid during the call only.
/// Lifetime: the parser holds a handle from the start of the element to its end. Allocate on the heap, behind a handle.
/// Exceptions thrown by an operation end the read and reach its caller.
struct ZO_API XmlElemReader : htl::handle_ref_counter {
    ~XmlElemReader() override;

    /// A child element called `tag` starts. Its content goes to the reader returned; null skips the whole element.
    /// The base class skips.
    virtual htl::handle<XmlElemReader> Element(std::wstring const& tag);

    /// One attribute; all of them come before the first child element. The base class ignores it.
    virtual void Attribute(XmlAttribute const& item);

    /// The character data of the element, joined, with references and CDATA sections resolved and every line end as
    /// a line feed. Called once at the end of the element at most, and not at all if there are no data or if they are
    /// white space that stands in the document as such, neither as a reference nor in a CDATA section: such white
    /// space is layout. The base class ignores it.
    virtual void Text(std::wstring const& text);
};

} // namespace sys::file
