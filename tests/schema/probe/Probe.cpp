// Keeps every document that a program writes, each beside the schema that it should be valid by.
//
// Loaded before the library (LD_PRELOAD), it stands in for the two functions that write documents. So the documents of
// all tests can be checked, and no test needs to know. What it finds goes into the directory that ZO_DOCUMENTS names,
// into a folder for each schema.
#include "Common/schema/Xsd.h"
#include "Common/xml/Write.h"

#include "support/text.h"
#include "support/xml/XmlFile.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>

#include <dlfcn.h>

namespace {

/// The library's own function of this name.
template <class F>
F* Real(char const* name) {
    // There is no other way from an address to a function.
    auto* const found = reinterpret_cast<F*>(::dlsym(RTLD_NEXT, name));
    if (!found) {
        std::fprintf(stderr, "the library has no %s\n", name);
        std::abort();
    }
    return found;
}

std::string Name(std::string const& content) { return std::to_string(std::hash<std::string>()(content)); }

void Store(std::filesystem::path const& path, std::string const& content) {
    if (!std::filesystem::exists(path)) std::ofstream(path, std::ios::binary) << content;
}

void Keep(std::string const& document) {
    char const* const directory = std::getenv("ZO_DOCUMENTS");
    if (!directory) return;
    std::string schema;
    // A schema that can't be made is an empty one, by which no document is valid.
    if (htl::status const failure = zo::schema::XsdText(schema); failure.IsError())
        std::fprintf(stderr, "no schema: %s\n", str::as_cstring(failure.AsWString()).c_str());
    std::filesystem::path const folder = std::filesystem::path(directory) / Name(schema);
    std::error_code ignored; // storing says what is wrong
    std::filesystem::create_directories(folder, ignored);
    Store(folder / "schema.xsd", schema);
    Store(folder / (Name(document) + ".xml"), document);
}

} // namespace

namespace zo::xml {

ZO_API htl::status FileWrite(std::wstring const& path, hzn::version::NumberKind<0> const& version) {
    static auto* const real = Real<decltype(FileWrite)>("_ZN2zo3xml9FileWriteERKNSt7__cxx1112basic_stringIwSt11char_"
                                                        "traitsIwESaIwEEERKN3hzn7version10NumberKindILi0EEE");
    htl::status result = real(path, version);
    std::string native;
    if (!result.IsError() && !sys::file::native_path(native, path).IsError() &&
        std::filesystem::is_regular_file(native)) {
        std::ifstream in(native, std::ios::binary);
        Keep({std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()});
    }
    return result;
}

ZO_API htl::status StringWrite(std::wstring& text, hzn::version::NumberKind<0> const& version, std::size_t reserve,
                               std::vector<std::wstring> const* filter) {
    static auto* const real =
        Real<decltype(StringWrite)>("_ZN2zo3xml11StringWriteERNSt7__cxx1112basic_stringIwSt11char_"
                                    "traitsIwESaIwEEERKN3hzn7version10NumberKindILi0EEEm"
                                    "PKSt6vectorIS6_SaIS6_EE");
    htl::status result = real(text, version, reserve, filter);
    if (!result.IsError()) {
        std::wstring document = text;
        str::replace_all(document, L"encoding=\"UTF-16\"", L"encoding=\"UTF-8\"");
        Keep(str::as_cstring(document));
    }
    return result;
}

} // namespace zo::xml
