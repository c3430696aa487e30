#include "Common/registry/ZOSet.h"

#include "Common/registry/SetImpl.h"

#include <array>
#include <string_view>
#include <utility>

namespace zo {

ZOSet::ZOSet(std::unique_ptr<ZOSetImpl> tables, htl::handle<ZOSet> from, htl::handle<ZOSet> to)
    : impl(std::move(tables)), source(std::move(from)), base(to ? std::move(to) : source),
      anchor(new impl::SetAnchor{this}) {}

ZOSet::~ZOSet() {
    // Nodes before the set that they were read from; and while the tables can still be asked for by way of their owner.
    impl->ReleaseAll();
    anchor->set = nullptr;
    impl::SetAnchor::Drop(anchor);
}

H ZOSet::Find(std::string const& name, int a, int b, int c) { return Find(FormName(name, a, b, c)); }

std::string ZOSet::FormName(std::string const& text, int a, int b, int c) {
    constexpr std::string_view prefix = "HZDocumentGetCurrent()";
    std::array const arguments = {a, b, c};
    std::string_view rest = text;
    if (rest.starts_with(prefix)) {
        rest.remove_prefix(prefix.size());
        if (rest.starts_with('.'))
            rest.remove_prefix(1);
        else if (rest.starts_with("->"))
            rest.remove_prefix(2);
    }

    std::string name;
    name.reserve(rest.size());
    int depth = 0;
    // The marker word at the start of the rest, 0 for none.
    auto const markerLength = [&rest]() -> std::size_t {
        if (rest.front() == IZO::chSub) return 1;
        if (rest.size() > 7 && rest.starts_with("ZO_INDEX")) return 8;
        if (rest.size() >= 6 && rest.starts_with("ZO_ARG")) return 6;
        return 0;
    };
    while (!rest.empty()) {
        if (std::size_t const marker = markerLength()) {
            rest.remove_prefix(marker);
            if (rest.empty()) break;
            char const digit = rest.front();
            rest.remove_prefix(1);
            if (digit < '1' || digit > '3') continue;
            int const argument = arguments[static_cast<std::size_t>(digit - '1')];
            if (argument < 0) {
                name += IZO::chSub;
                name += digit;
            } else {
                name += std::to_string(argument);
            }
        } else if (rest.size() >= 2 && rest.front() == IZO::chFuncOpen) {
            if (rest[1] == IZO::chFuncClose) {
                rest.remove_prefix(2);
                continue;
            }
            if (++depth == 1) name += IZO::chFuncOpen;
            rest.remove_prefix(1);
        } else if (rest.front() == IZO::chFuncClose) {
            if (--depth == 0) name += IZO::chFuncClose;
            rest.remove_prefix(1);
        } else if (depth == 0 && rest.starts_with("->")) {
            name += IZO::chSeparator;
            rest.remove_prefix(2);
        } else {
            if (depth < 2) name += rest.front();
            rest.remove_prefix(1);
        }
    }
    return name;
}

} // namespace zo
