// What the tests of the view ask: what shows below a node, as one text.
#pragma once

#include "Common/extinfo/ExtendedInfo.h"
#include "Common/kit/kit.h"
#include "Common/redirect/Identity.h"
#include "Common/registry/Find.h"
#include "Common/registry/SetImpl.h"
#include "Common/view/View.h"
#include "tests/fixtures/ViewModel.h"

#include <string>
#include <vector>

namespace shown {

using dam::Compile;
using embankment::FailsAs;
using embankment::Succeeds;
using embankment::TextOf;
using fixture::Also;
using fixture::As;
using fixture::From;
using fixture::TableText;
using zo::H;

/// Every view, analysis and mode.
inline constexpr int all = static_cast<int>(zo::viewmask::everything);
/// More children than any node of a test has.
inline constexpr std::size_t endless = 100'000;

inline std::string NameOf(H const& node) { return node ? node->Name() : "<no node>"; }

/// The view children of a node, by name.
inline std::vector<std::string> Names(H const& node, int query = all) {
    std::vector<std::string> names;
    for (H const& child : zo::view::Children(node, query)) {
        names.push_back(child->Name());
        if (names.size() == endless) break;
    }
    return names;
}
inline std::vector<std::string> Names(std::string const& name, int query = all) { return Names(zo::Find(name), query); }
inline std::vector<std::string> RootNames(int query = all) { return Names(zo::ZORegistry::Instance()->Root(), query); }

/// The tags that they show under.
inline std::vector<std::wstring> Tags(H const& node, int query = all) {
    std::vector<std::wstring> tags;
    for (H const& child : zo::view::Children(node, query)) tags.push_back(child->TagName(zo::SimpleTagType));
    return tags;
}

using List = std::vector<std::string>;
using WideList = std::vector<std::wstring>;

/// An entry that hides its node in every view.
inline std::vector<fixture::Cell> Hidden() { return {{L"ViewExcl", L"all"}}; }

/// Number of entries in a set: of everything that somebody holds, and of what the set keeps.
inline std::size_t EntryCount(zo::ZOSet const& set) { return set.Impl()->entries.Size(); }

} // namespace shown
