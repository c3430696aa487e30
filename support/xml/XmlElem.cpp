#include "support/xml/XmlElemReader.h"
#include "support/xml/XmlElemWriter.h"

namespace sys::file {

XmlElemReader::~XmlElemReader() = default;

htl::handle<XmlElemReader> XmlElemReader::Element(std::wstring const&) { return {}; }

void XmlElemReader::Attribute(XmlAttribute const&) {}

void XmlElemReader::Text(std::wstring const&) {}

XmlElemWriter::~XmlElemWriter() = default;

htl::handle<XmlElemWriter> XmlElemWriter::FirstChild() { return {}; }

bool XmlElemWriter::IsArrayEntry() { return false; }

} // namespace sys::file
