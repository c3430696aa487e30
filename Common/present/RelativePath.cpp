#include "Common/present/RelativePath.h"

#include "Common/ZOUtil/NamePath.h"
#include "Common/redirect/Identity.h"
#include "Common/redirect/ZOAlias.h"
#include "Common/registry/Find.h"
#include "Common/registry/RegistryImpl.h"

#include "support/text.h"

#include <algorithm>

namespace zo::impl {

namespace {

constexpr int mostNested = 64;
thread_local constinit int nested = 0;

} // namespace

H NodeAtPath(H const& node, std::wstring const& path) {
    H current = node;
    for (int steps = 0; current; ++steps) {
        auto const* const redirect = dynamic_cast<ZORedirect const*>(current.get());
        if (!redirect) return LookupRelative(current, path);
        // A link is a place of its own: what is asked below it is the record's.
        if (!dynamic_cast<ZOAliasBase const*>(current.get())) return LookupRelative(GetSource(current), path);
        if (steps == mostRedirects) break;
        current = redirect->Redirect();
    }
    return {};
}

bool ElementIndex(H const& node, std::size_t& index) {
    if (!node) return false;
    std::string const name = node->SubName();
    auto const isDigit = [](char c) { return c >= '0' && c <= '9'; };
    auto const begin = std::find_if(name.begin(), name.end(), isDigit);
    auto const end = std::find_if_not(begin, name.end(), isDigit);
    std::size_t number = 0;
    // The number after it has to be a number, too.
    if (!path::ParseIndex(std::string_view(begin, end), number) || number == IZO::npos) return false;
    index = number;
    return true;
}

std::wstring PositionText(H const& node) {
    std::size_t index = 0;
    return ElementIndex(node, index) ? std::to_wstring(index + 1) : std::wstring();
}

bool IsAlphanumeric(wchar_t c) noexcept {
    wchar_t const lower = str::ToLowerAscii(c);
    return str::IsDigit(c) || (lower >= L'a' && lower <= L'z');
}

bool IsAlphanumericToken(std::wstring_view text) noexcept {
    return !text.empty() && std::all_of(text.begin(), text.end(), IsAlphanumeric);
}

NestingGuard::NestingGuard() noexcept : inside(++nested <= mostNested) {}

NestingGuard::~NestingGuard() { --nested; }

} // namespace zo::impl
