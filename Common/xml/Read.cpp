#include "Common/xml/Read.h"

#include "Common/registry/SetImpl.h"
#include "Common/registry/ZORegistry.h"
#include "Common/xml/ElemReader.h"
#include "Common/xml/EmptyArrays.h"

#include "support/text.h"
#include "support/xml/XmlFile.h"

namespace zo::xml {
namespace {

using Reader = htl::handle<sys::file::XmlElemReader>;

/// Reads a document that `parse` takes apart.
template <class Parse>
htl::status Load(Parse const& parse, std::vector<htl::status>& errors, Filter const& filter, ZOSet* set,
                 UnknownHandler const& handler, TagPolicy const& policy) {
    if (!set) set = ZORegistry::Instance();
    htl::handle<impl::ZORootReader> const reader(new impl::ZORootReader(set, policy, filter));
    htl::status result;
    {
        TrackingSuspension const suspended(*set->Impl());
        result = parse(Reader(reader));
        // The handler may resize arrays, which views from the load would forbid.
        reader->DropBelow();
    }
    if (result.IsError()) return result;
    if (handler) handler(set, reader->UnknownItems(), reader->Version(), reader->Errors());
    errors = reader->Errors().GetErrors();
    return result;
}

void ClearRegistry() {
    ZORegistry::Instance()->Clear();
    impl::EmptyPersistedArrays();
}

} // namespace

namespace impl {

UnknownHandler UnknownAreErrors() {
    return [](ZOSet*, Unknowns& items, double, XMLError& errors) {
        for (auto const& item : items) errors.ReportError(ZOError::not_recognized(item.first));
    };
}

TagPolicy UnknownTagIsMissing() {
    return [](std::wstring const&) { return std::wstring(); };
}

} // namespace impl

htl::status FileRead(std::wstring const& path, std::vector<htl::status>& errors, Filter const& filter,
                     UnknownHandler const& handler, TagPolicy const& policy) {
    ClearRegistry();
    return FileImport(path, errors, filter, ZORegistry::Instance(), handler, policy);
}

htl::status FileImport(std::wstring const& path, std::vector<htl::status>& errors, Filter const& filter, ZOSet* set,
                       UnknownHandler const& handler, TagPolicy const& policy) {
    return Load([&](Reader const& reader) { return sys::file::XmlFileRead(path, reader); }, errors, filter, set,
                handler, policy);
}

htl::status StringRead(std::wstring const& text, std::vector<htl::status>& errors, Filter const& filter,
                       UnknownHandler const& handler, TagPolicy const& policy) {
    ClearRegistry();
    TrackingSuspension const suspended(*ZORegistry::Instance()->Impl());
    return StringImport(text, errors, filter, ZORegistry::Instance(), handler, policy);
}

htl::status StringImport(std::wstring const& text, std::vector<htl::status>& errors, Filter const& filter, ZOSet* set,
                         UnknownHandler const& handler, TagPolicy const& policy) {
    auto const parse = [&](Reader const& reader) {
        std::vector<unsigned char> bytes;
        if (htl::status failure = str::as_utf16le(text, bytes); failure.IsError()) return failure;
        return sys::file::XmlStringRead(bytes, reader);
    };
    return Load(parse, errors, filter, set, handler, policy);
}

} // namespace zo::xml
