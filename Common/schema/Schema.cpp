#include "Common/schema/Schema.h"

#include "Common/schema/XmlZOSchemaWriter.h"

#include "support/xml/XmlFile.h"

namespace zo::schema {
namespace {

htl::status SaveRows(std::wstring const& path, bool flat) {
    htl::handle<sys::file::XmlElemWriter> const writer(new XmlZOSchemaWriter(flat));
    return sys::file::XmlFileWrite(path, writer);
}

} // namespace

htl::status Save(std::wstring const& path) { return SaveRows(path, true); }

htl::status Save(std::size_t, std::wstring const& path) { return SaveRows(path, false); }

} // namespace zo::schema
