#include "Common/redirect/ParentChain.h"

#include "Common/redirect/Placeholders.h"
#include "Common/registry/RegistryImpl.h"
#include "Common/registry/ZORegistry.h"

#include "support/split.h"
#include "support/text.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace zo::impl {

H MakeParents(std::wstring const& tagPath, std::string const& namePath, std::uint32_t type) {
    std::vector<std::wstring_view> tags;
    std::vector<std::string_view> names;
    str::SplitComponents(tags, tagPath, L".");
    str::SplitComponents(names, namePath, ".");
    std::wstring wide;
    std::string narrow;
    H last;
    for (std::size_t level = 0; level < std::max(tags.size(), names.size()); ++level) {
        bool const hasTag = level < tags.size();
        if (hasTag) {
            if (!wide.empty()) wide += L'.';
            wide += tags[level];
        }
        if (!narrow.empty()) narrow += '.';
        if (level < names.size()) {
            narrow += names[level];
        } else {
            narrow += "placeholder_";
            str::AppendUtf8(narrow, tags[level]);
        }

        ZORegistryImpl const& tables = Current();
        std::size_t row = tables.RowOfName(narrow);
        if (row == IZO::npos && hasTag) {
            // A tag that another name owns is that row's: a second row of the tag would be refused.
            std::wstring normal = wide;
            if (ZORegistry::NormalizeTag(normal)) row = tables.RowOfTag(normal);
        }
        if (row != IZO::npos) {
            last = tables.nodes[row];
            continue;
        }
        last = H(new ZOParentPlaceholder(IZO::npos, nullptr));
        // Where the tag path has ended the level has no tag: its tag again would name a level twice.
        meta::MetaPersistTraits const persist(type, hasTag ? wide : std::wstring());
        ZORegistry::Instance()->RegisterZO(htl::handle<IODS>(new ODSName(narrow)), last, persist,
                                           ZOParentPlaceholder::Traits());
    }
    return last;
}

bool IsParentPlaceholder(IZO const& node) { return dynamic_cast<ZOParentPlaceholder const*>(&node) != nullptr; }

} // namespace zo::impl
