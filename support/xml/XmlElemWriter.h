// What a document is made from: a cursor over elements.
//
// The writer pulls. A cursor never prints anything, so escaping, layout and the replacement of files are settled in one
// place, whatever is written.
#pragma once

#include "support/xml/XmlElemReader.h"

namespace sys::file {

/// A cursor over sibling elements.
///
/// For each element the writer asks `Tag`, `Text`, `Attributes` and `FirstChild` once, in this order, then walks the
/// children, then calls `Next`. On an element with an empty tag it asks nothing but `Next`. `Next` is never called for
/// the document element, and nothing is asked of a cursor between its `FirstChild` and its `Next`, so the two may be
/// one object.
/// Lifetime: the writer holds a handle while it uses the cursor. Allocate on the heap, behind a handle.
/// Exceptions thrown by an operation end the write and reach its caller.
struct ZO_API XmlElemWriter : htl::handle_ref_counter {
    ~XmlElemWriter() override;

    /// Name of the current element. If it is empty, neither the element nor anything below it is written.
    virtual std::wstring Tag() = 0;

    /// Character data of the current element, empty for none. Characters that no document can hold are written as
    /// U+FFFD.
    virtual std::wstring Text() = 0;

    /// Begin and end of the attributes of the current element, null and null for none. They have to stay valid until
    /// the next call.
    virtual std::pair<XmlAttribute const*, XmlAttribute const*> Attributes() = 0;

    /// Steps to the next sibling. Null at the end; a cursor that steps in place returns itself.
    virtual htl::handle<XmlElemWriter> Next() = 0;

    /// A cursor on the first child of the current element, null if there is none. The base class has none.
    virtual htl::handle<XmlElemWriter> FirstChild();

    /// Whether the cursor walks the entries of an array. The writer does not ask; the base class says no.
    virtual bool IsArrayEntry();
};

} // namespace sys::file
