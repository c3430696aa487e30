// The seam between the document reader and the XML parser.
//
// Everything above it knows elements, attributes and text; everything below it knows the parser library. One source
// file includes that library's header.
#pragma once

#include "support/status.h"

#include <cstddef>
#include <memory>
#include <span>

namespace sys::file {

/// How many elements may stand inside each other, in documents that are read and written alike. Readers and their
/// destructors may recurse by depth, so a document must not be able to choose it.
constexpr std::size_t xmlDepthLimit = 4096;

/// Bytes of a file that are read or written at once.
constexpr std::size_t xmlBlockSize = 65'536;

/// What the parser reports. Text is well-formed UTF-8 in whole characters and valid during the call only. Exceptions
/// thrown by an operation end the parse and come out of `XmlParser::Parse`.
class XmlEvents {
public:
    /// An element starts. `attributes` alternates names and values and ends with null. With false nothing of the
    /// element is reported, neither its content nor its end.
    virtual bool StartElement(char const* name, char const* const* attributes) = 0;
    /// The innermost element that was not skipped ends.
    virtual void EndElement() = 0;
    /// A piece of the innermost element's text, which may come in any number of pieces. `layout` says that it is white
    /// space that stands in the document as such, neither as a reference nor in a CDATA section. A CDATA section
    /// begins with an empty piece that is no layout.
    virtual void Characters(char const* text, std::size_t length, bool layout) = 0;

protected:
    ~XmlEvents() = default;
};

/// What the blocks of a document hold.
enum class XmlSource {
    bytes,   ///< the document as it lies in a file: it says itself how it is encoded
    wideText ///< UTF-8 that was wide text, so its declaration names UTF-16 or nothing
};

/// Parses one document, block by block.
class XmlParser {
public:
    /// `events` must live as long as the parser.
    explicit XmlParser(XmlEvents& events, XmlSource source = XmlSource::bytes);
    ~XmlParser();
    XmlParser(XmlParser const&) = delete;
    XmlParser& operator=(XmlParser const&) = delete;

    /// Where to put the next bytes of the document, not empty. Valid until the next call of either operation.
    /// Failure: message 90002, out of memory; also for a single tag or comment of about a gibibyte, which the parser
    /// can't hold.
    htl::status Block(std::span<char>& place);
    /// Takes the first `used` bytes of the block; `last` says that they end the document.
    /// Failure: messages 90002, 90008 and 90009. The parser is of no use afterwards.
    htl::status Parse(std::size_t used, bool last);

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace sys::file
