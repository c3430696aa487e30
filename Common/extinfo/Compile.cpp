// The steps of a compilation, and which entry is bound to which row.
#include "Common/extinfo/ExtendedInfoStore.h"
#include "Common/extinfo/Traversal.h"
#include "Common/registry/RegistryImpl.h"

#include "support/fmt.h"
#include "support/text.h"

#include <vector>

namespace zo {

htl::status ExtendedInfoStore::Compile() {
    if (htl::status failure = Prepare_(); failure.IsError()) return failure;

    ZORegistryImpl& tables = impl::Current();
    std::size_t const firstAlias = tables.RowCount();
    extinfo::ViewShaper shaper(*this);
    htl::status result = shaper.Run(firstAlias);
    // Rows that come later must not put the view back to the tree of tags.
    if (shaper.HasChanged()) tables.viewIsFinal = true;
    if (!result.IsError()) {
        result = Bind_(firstAlias);
        if (!result.IsError()) result = shaper.FindCircle();
    }
    FinishBinding_();
    return result;
}

htl::status ExtendedInfoStore::Bind_(std::size_t firstAlias) {
    ZORegistryImpl const& tables = impl::Current();
    sys::thread::impl::ExclusiveAccessGuard const guard(lock);
    std::size_t const rowCount = tables.RowCount();
    htl::status result;
    for (std::size_t row = firstAlias; row < rowCount && !result.IsError(); ++row) {
        // By its own tag: what its source's entry says, the source does. Without one it answers with its source's.
        if (tables.tagNames[row].empty()) continue;
        std::size_t const index = LookupByText_(*tables.nodes[row], ExtendedInfoField::Whole);
        if (index == End) continue;
        std::vector<ViewTravItem> const& list = entries[index].viewTravList;
        if (!list.empty() && !extinfo::IsDynamicForm(list))
            result = htl::status::FromText(str::fmt::format(
                L"%s: You can't declare a fixed <ViewTravList/> to an alias added for a <ViewTravList/>.",
                tables.tagNames[row]));
    }

    std::vector<bool> isUsed(entries.size(), false);
    regIDMap.assign(rowCount, End);
    for (std::size_t row = 0; row < rowCount; ++row) {
        std::size_t const index = BoundTo_(tables, row);
        if (index == End) continue;
        regIDMap[row] = index;
        isUsed[index] = true;
        if (entryFlags[index] & Optional && !tables.IsAlias(row))
            result = htl::status::FromText(str::fmt::format(L"Entry {%s} marked as dynamic, but is bound to {%s}",
                                                            entries[index].Tag, tables.tagNames[row]));
    }
    if (result.IsError()) return result;

    // Every table has the entry "Default"; nodes don't bind to it, it speaks for those without an entry.
    std::vector<htl::status> unused;
    for (std::size_t index = 0; index < entries.size(); ++index)
        if (!isUsed[index] && !(entryFlags[index] & Optional) && entries[index].Tag != L"Default")
            unused.push_back(htl::status::FromText(entries[index].Tag));
    if (unused.empty()) return {};
    return HznError::compound(htl::status::FromText(L"One or more extended info entries not used"), unused);
}

} // namespace zo
