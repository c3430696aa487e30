#include "Common/xml/EmptyArrays.h"

#include "Common/model/ZOArray.h"
#include "Common/registry/SetImpl.h"
#include "Common/registry/ZORegistry.h"
#include "Common/xml/ActiveNode.h"
#include "Common/xml/PersistTree.h"

#include <vector>

namespace zo::xml::impl {
namespace {

/// The part of the persist tree that leads to arrays, so that the walk over live nodes makes no others.
struct Step {
    ZOPersistEntry const* entry;
    std::vector<Step> below;
};

Step StepsTo(ZOPersistEntry const& entry) {
    Step step{&entry, {}};
    for (ZOPersistEntry const& child : entry.children)
        if (Step below = StepsTo(child); child.isArray || !below.below.empty()) step.below.push_back(std::move(below));
    return step;
}

void Empty(H const& node, Step const& step);

void EmptyBelow(H const& node, Step const& step) {
    for (Step const& below : step.below) {
        H const child = ZORegistry::Instance()->Find(node, below.entry->name);
        if (child && IsActive(child)) Empty(child, below);
    }
}

void Empty(H const& node, Step const& step) {
    ZOPersistEntry const& entry = *step.entry;
    if (!entry.isArray) return EmptyBelow(node, step);

    auto* const array = dynamic_cast<ZOArray*>(node.get());
    // An alias of an array is emptied only where the document holds all of its values.
    if (entry.persist.Type != meta::MetaPersistTraits::No && !entry.fixedLength &&
        (array || entry.persist.IsPersistedAsValue))
        // A refusal leaves the length: the document's own length may still be accepted.
        (void)node->SetLength(0);
    // What an alias keeps now may be an element, which would keep its array from being emptied.
    if (!array) zo::impl::NodeAccess::OnInvalidateMemory(*node);
    if (!array || step.below.empty()) return;
    for (std::size_t i = 0; i < array->Length(); ++i)
        for (Step const& element : step.below)
            if (H const found = ZORegistry::Instance()->Find(array, i)) {
                if (element.entry->isArray)
                    Empty(found, element);
                else
                    EmptyBelow(found, element);
            }
}

} // namespace

void EmptyPersistedArrays() {
    auto const [first, last] = PersistRoots(false);
    TrackingSuspension const suspended(*ZORegistry::Instance()->Impl());
    for (ZOPersistEntry const* root = first; root != last; ++root)
        EmptyBelow(ZORegistry::Instance()->Root(), StepsTo(*root));
}

} // namespace zo::xml::impl
