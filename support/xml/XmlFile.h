// Reading and writing whole documents, in files and in memory.
//
// A document is well-formed XML 1.0 without a document type declaration, so it has no entities but the five that every
// document has, and nothing outside of it is ever looked at. Both directions stream: memory grows with the depth of
// the document and its longest value, not with its size.
#pragma once

#include "support/export.h"
#include "support/status.h"
#include "support/xml/XmlElemReader.h"
#include "support/xml/XmlElemWriter.h"

#include <string>
#include <string_view>
#include <vector>

namespace sys::file {

/// Reads the document in a file, which may be in UTF-8, UTF-16 of either byte order, US-ASCII or ISO-8859-1. A mark or
/// the first two bytes tell 16 bits from 8; else the declaration decides, and UTF-8 if it says nothing.
///
/// `reader` stands for the document element; its name is not looked at. With a null reader the document is only
/// checked. What was handed to readers before a failure stays handed over.
/// Failure: message 90001 (the file can't be opened or read), 90011 (`name` is no file name), 90002 (not well-formed,
/// an encoding that is not known, or a 16-bit document with an unpaired surrogate), 90008 (a document type
/// declaration), 90009 (more than 4096 elements inside each other). Lines and columns count from 1.
[[nodiscard]] ZO_API htl::status XmlFileRead(std::wstring const& name, htl::handle<XmlElemReader> const& reader);

/// The same for a document in memory, given as its bytes.
[[nodiscard]] ZO_API htl::status XmlStringRead(std::vector<unsigned char> const& document,
                                               htl::handle<XmlElemReader> const& reader);

/// The same for a document in wide text, which counts as UTF-16, so its declaration names that or no encoding. Nothing
/// is copied but one block at a time. Failure: further message 90012 if the text holds what is no code point; nothing
/// is read then.
[[nodiscard]] ZO_API htl::status XmlTextRead(std::wstring_view document, htl::handle<XmlElemReader> const& reader);

/// Writes a document into a file, as UTF-8 without a mark, two blanks of indentation a level, lines ended by a line
/// feed. `writer` stands for the document element.
///
/// A file that is there is replaced when the new one is complete and on disk; until then, and on every failure, it
/// stays as it is, and nothing else stays behind. Symbolic links are followed; the mode of the old file is kept. What
/// is no regular file (a pipe, a device) is written directly.
/// Failure: message 90010 (an empty tag of the document element, a name that is none in XML, an attribute given twice,
/// more than 4096 elements inside each other), 90003 (the file can't be written), 90011 (`name` is no file name).
[[nodiscard]] ZO_API htl::status XmlFileWrite(std::wstring const& name, htl::handle<XmlElemWriter> const& writer);

/// Appends the same document to `document`, which after a failure or an exception holds what it held before.
/// Failure: message 90010 as above.
[[nodiscard]] ZO_API htl::status XmlStringWrite(std::vector<unsigned char>& document,
                                                htl::handle<XmlElemWriter> const& writer);

/// Replaces `document` by the same document in wide text, whose declaration names UTF-16; empty after a failure or an
/// exception. The text is allocated once, when its length is known; until then the document is held in UTF-8, and never
/// both in whole.
/// Failure: message 90010 as above.
[[nodiscard]] ZO_API htl::status XmlTextWrite(std::wstring& document, htl::handle<XmlElemWriter> const& writer);

/// Whether `name` can be the name of an element or attribute: whether the parser would accept it. That is a name by the
/// first four editions of XML 1.0, so characters above U+FFFF and scripts that came later are refused. Colons count
/// as letters.
[[nodiscard]] ZO_API bool IsXmlName(std::wstring_view name) noexcept;

/// Replaces `path` by the file name as the system takes it: UTF-8, whatever the locale. A backslash is a character as
/// any other.
/// Failure: message 90011 if `name` holds U+0000, a surrogate or something above U+10FFFF; `path` is then empty.
[[nodiscard]] ZO_API htl::status native_path(std::string& path, std::wstring const& name);

} // namespace sys::file
