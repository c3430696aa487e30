#include "support/xml/XmlFile.h"

#include "support/text.h"

namespace sys::file {

htl::status native_path(std::string& path, std::wstring const& name) {
    constexpr unsigned noFileName = 90011;
    path.clear();
    for (wchar_t const c : name) {
        auto const code = static_cast<char32_t>(c);
        if (code == 0) return htl::status(noFileName, name, "it holds the character U+0000");
        if (code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF))
            return htl::status(noFileName, name, "it holds something that is no character");
    }
    str::AppendUtf8(path, name);
    return {};
}

} // namespace sys::file
