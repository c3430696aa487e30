#include "Common/xml/Read.h"

#include "Common/registry/SetImpl.h"
#include "Common/registry/ZORegistry.h"
#include "Common/xml/ElemReader.h"
#include "Common/xml/EmptyArrays.h"

#include "support/xml/XmlFile.h"

#include <filesystem>
#include <system_error>

namespace zo::xml {
namespace {

using Reader = htl::handle<sys::file::XmlElemReader>;

/// Reads a document of `size` bytes (npos if nobody knows) that `parse` takes apart.
template <class Parse>
htl::status Load(Parse const& parse, std::size_t size, std::vector<htl::status>& errors, Filter const& filter,
                 ZOSet* set, UnknownHandler const& handler, TagPolicy const& policy) {
    if (!set) set = ZORegistry::Instance();
    htl::handle<impl::ZORootReader> const reader(new impl::ZORootReader(set, policy, filter, size));
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

/// npos for what is no regular file: its size is known when it was read.
std::size_t FileSize(std::wstring const& name) {
    std::string path;
    if (sys::file::native_path(path, name).IsError()) return IZO::npos;
    std::error_code failure;
    bool const regular = std::filesystem::is_regular_file(path, failure);
    auto const size = regular ? std::filesystem::file_size(path, failure) : 0;
    return regular && !failure ? static_cast<std::size_t>(size) : IZO::npos;
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
    return Load([&](Reader const& reader) { return sys::file::XmlFileRead(path, reader); }, FileSize(path), errors,
                filter, set, handler, policy);
}

htl::status StringRead(std::wstring const& text, std::vector<htl::status>& errors, Filter const& filter,
                       UnknownHandler const& handler, TagPolicy const& policy) {
    ClearRegistry();
    TrackingSuspension const suspended(*ZORegistry::Instance()->Impl());
    return StringImport(text, errors, filter, ZORegistry::Instance(), handler, policy);
}

htl::status StringImport(std::wstring const& text, std::vector<htl::status>& errors, Filter const& filter, ZOSet* set,
                         UnknownHandler const& handler, TagPolicy const& policy) {
    return Load([&](Reader const& reader) { return sys::file::XmlTextRead(text, reader); }, text.size(), errors, filter,
                set, handler, policy);
}

} // namespace zo::xml
