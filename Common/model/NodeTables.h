// What nodes ask of the registry's tables, declared where nodes are and defined beside the columns.
//
// All answers come from the current registry of the calling thread. Rows are not tested unless a function says so.
#pragma once

#include "Common/model/IZO.h"

#include <string>
#include <utility>
#include <vector>

namespace zo {

class IZOWrapper;
class ZOArray;

namespace impl::tables {

/// Whether `set` is the current registry of this thread.
bool IsCurrentRegistry(ZOSet const* set);
/// Whether a row is there.
bool HasRow(std::size_t regID);
/// Whether the node is the registered prototype of its row.
bool IsPrototype(IZO const& node);
meta::MetaDataTraits const& DataTraits(std::size_t regID);
/// The registered prototype seen as a wrapper, null if it is none.
IZOWrapper* WrapperPrototype(std::size_t regID);
IZO* Prototype(std::size_t regID);
/// The child row of a name, npos if absent.
std::size_t ChildByName(std::size_t regID, std::string const& name);
/// The row of an array's element template, npos without one.
std::size_t ElementTemplate(std::size_t regID);
/// Records that a row is an associative array.
void MarkAssociative(std::size_t regID);
/// A member of a structure: its row, npos for none, and its prototype as a wrapper, null if it is none.
struct MemberRow {
    std::size_t row = IZO::npos;
    IZOWrapper* wrapper = nullptr;
};
/// The member of row `regID` under a name. A hint that a caller left for this step spares the search; it is used up in
/// every case, and counts only if it names a child of `regID`.
MemberRow FindMember(std::size_t regID, std::string const& name);
/// Whether values are checked before they are stored in nodes of `set`.
bool ValidatesValues(ZOSet const& set);
/// The node's owner, or the current registry if it has none.
ZOSet& OwnerOrCurrent(IZO const& node);
/// Lookups on a set, as its virtual operations answer them.
H Find(ZOSet& set, std::string const& name);
H FindElement(ZOSet& set, ZOArray* array, std::size_t index);

} // namespace impl::tables
} // namespace zo
