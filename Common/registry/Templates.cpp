// From a name to the registered node that describes it, without its data.
#include "Common/ZOUtil/NamePath.h"
#include "Common/registry/Find.h"
#include "Common/registry/RegistryImpl.h"
#include "Common/registry/ZORedirect.h"

#include <string>
#include <string_view>

namespace zo {

using impl::Current;

namespace {

// One component below a row, or from the top.
std::size_t Step(ZORegistryImpl const& tables, std::size_t row, std::string_view component) {
    if (row == IZO::npos) return tables.RowOfName(component);
    if (std::size_t const child = tables.ChildByName(row, component); child != IZO::npos) return child;
    if (component.starts_with("At(") && component.find(')') != component.npos) {
        std::size_t const element = tables.ChildByName(row, "[]");
        if (element == IZO::npos || !tables.assocBits[row]) return element;
        return tables.ChildByName(element, "second");
    }
    if (!component.empty() && component.front() >= '0' && component.front() <= '9')
        return tables.ChildByName(row, "[]");
    return IZO::npos;
}

} // namespace

std::size_t impl::FollowRedirects(std::size_t row, int& redirectsLeft) {
    while (row != IZO::npos && Current().redirects[row]) {
        if (redirectsLeft == 0) return IZO::npos;
        --redirectsLeft;
        H const target = Current().redirects[row]->Redirect();
        row = target && Current().HasRow(target->RegID()) ? target->RegID() : IZO::npos;
    }
    return row;
}

std::size_t impl::TemplateRow(std::string const& name, int& redirectsLeft) {
    std::string normal = name;
    if (!path::Normalize(normal)) return IZO::npos;
    ZORegistryImpl const& tables = Current();
    if (std::size_t const row = tables.RowOfName(normal); row != IZO::npos) return row;

    std::size_t row = IZO::npos;
    std::string_view rest = normal;
    for (bool more = true; more;) {
        std::size_t const dot = rest.find('.');
        std::string_view const component = rest.substr(0, dot);
        more = dot != rest.npos;
        if (more) rest.remove_prefix(dot + 1);

        row = FollowRedirects(row, redirectsLeft);
        std::size_t next = Step(tables, row, component);
        if (next == IZO::npos && row != IZO::npos) {
            // A field of a structure is registered once, below the template of the structure's type.
            auto const type = tables.typeTemplates.find(tables.dataTraits[row].TypeName());
            if (type != tables.typeTemplates.end() && tables.HasRow(type->second))
                next = Step(tables, type->second, component);
        }
        if (next == IZO::npos) return IZO::npos;
        row = next;
    }
    return row;
}

IZO* GetTemplate(std::string const& name) {
    int redirectsLeft = impl::mostRedirects;
    std::size_t const row = impl::TemplateRow(name, redirectsLeft);
    return row == IZO::npos ? nullptr : Current().nodes[row].get();
}

bool IsMatching(std::string const& a, std::string const& b) {
    std::string first = a, second = b;
    (void)ZORegistry::NormalizeName(first); // malformed text is compared as far as it goes
    (void)ZORegistry::NormalizeName(second);
    return GetTemplate(first) == GetTemplate(second);
}

} // namespace zo
