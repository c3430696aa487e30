// Staging: how nodes get into a transaction.
#include "Common/registry/ZOTransaction.h"

#include "Common/ZOUtil/NamePath.h"
#include "Common/model/ZOArray.h"
#include "Common/registry/RegistryImpl.h"
#include "Common/registry/ZORegistry.h"

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>
#include <typeinfo>
#include <utility>
#include <vector>

namespace zo {

using impl::EntryName;
using impl::NodeAccess;

namespace {

/// The component that leads from `parent` to `name`, if it is written as names of nodes are: behind a "." or in
/// brackets. Empty for any other spelling.
std::string_view PlainComponent(std::string_view parent, std::string_view name) {
    if (parent.empty() || name.size() < parent.size() + 2) return {};
    std::string_view rest = name.substr(parent.size() + 1);
    if (name[parent.size()] == IZO::chArrayOpen) {
        if (rest.back() != IZO::chArrayClose) return {};
        rest.remove_suffix(1);
    } else if (name[parent.size()] != IZO::chSeparator) {
        return {};
    }
    return rest.find_first_of(".[]") == rest.npos ? rest : std::string_view();
}

/// Whether `name` is an element behind the end of a staged array, which may be shorter than the source's.
bool IsPastEnd(IZO const& array, std::string_view name) {
    if (!name.ends_with(IZO::chArrayClose) || &typeid(array) != &typeid(ZOArrayClone)) return false;
    std::size_t index = 0;
    name.remove_suffix(1);
    return path::ParseIndex(name.substr(std::min(name.rfind(IZO::chArrayOpen) + 1, name.size())), index) &&
           index >= array.Length();
}

/// The hashes of a name and of what stands before each of its boundaries, from one pass over it.
class Hashes {
public:
    explicit Hashes(std::string_view name) : name(name) {
        if (name.size() > ZOTransaction::longestName) return;
        std::uint64_t hash = path::emptyHash;
        for (std::size_t i = 0; i < name.size(); ++i) {
            if (name[i] == IZO::chSeparator || name[i] == IZO::chArrayOpen) {
                if (boundaries < known.size()) known[boundaries] = {i, hash};
                ++boundaries;
            }
            hash = path::Hash(hash, name[i]);
        }
        whole = hash;
    }

    bool IsTooDeep() const noexcept {
        return name.size() > ZOTransaction::longestName || boundaries >= ZOTransaction::mostComponents;
    }
    std::uint64_t Whole() const noexcept { return whole; }
    std::uint64_t OfPrefix(std::size_t length) const noexcept {
        for (std::size_t i = std::min(boundaries, known.size()); i > 0; --i)
            if (known[i - 1].length == length) return known[i - 1].hash;
        return path::Hash(name.substr(0, length));
    }

private:
    struct Prefix {
        std::size_t length;
        std::uint64_t hash;
    };
    std::string_view name;
    std::size_t boundaries = 0;
    std::uint64_t whole = 0;
    std::array<Prefix, 12> known;
};

/// The lengths of a name's prefixes, the last one in first out. Few of them take no memory.
class Lengths {
public:
    void Push(std::size_t length) {
        if (count < few.size())
            few[count] = length;
        else
            more.push_back(length);
        ++count;
    }
    /// 0 when there is none left.
    std::size_t Pop() noexcept {
        if (count == 0) return 0;
        if (--count < few.size()) return few[count];
        std::size_t const length = more.back();
        more.pop_back();
        return length;
    }

private:
    std::array<std::size_t, 16> few;
    std::vector<std::size_t> more;
    std::size_t count = 0;
};

/// No set that `set` reads through has had a visible entry with a longer name.
std::size_t LongestVisible(ZOSet const* set) {
    std::size_t longest = 0;
    for (; set; set = set->Source()) longest = std::max(longest, set->Impl()->entries.LongestVisible());
    return longest;
}

} // namespace

ZOTransaction::ZOTransaction(htl::handle<ZOSet> const& from, htl::handle<ZOSet> const& to, bool pin)
    : ZOSet(std::make_unique<ZOSetImpl>(), from, to) {
    if (pin) htl::handle_mgmt_refcounted::AddRef(this);
}

ZOTransaction::~ZOTransaction() = default;

htl::handle<ZOTransaction> ZOSet::CreateTransaction() {
    htl::handle<ZOSet> const self(this);
    return htl::handle<ZOTransaction>(new ZOTransaction(self, self, false));
}

/// One lookup on its way down a name.
struct ZOTransaction::Step {
    std::string name;
    std::uint64_t hash = 0;
    H parent; // staged
    H live;   // the source's node of the parent's name, where the source is asked for its children one by one
    bool sourceEnded = false;
};

H ZOTransaction::Find(std::string const& name) {
    Hashes const hashes(name);
    if (hashes.IsTooDeep()) return {};
    if (SetEntry const* const entry = impl->entries.FirstVisible(name, hashes.Whole())) return H(entry->node);

    // Up to the first name that is staged, then down again, so that names of any depth need no stack.
    Lengths lengths; // the longest first
    lengths.Push(name.size());
    Step step;
    std::string_view top = path::ParentPart(std::string_view(name));
    for (; !top.empty(); top = path::ParentPart(top)) {
        if (top.size() <= impl->entries.LongestVisible())
            if (SetEntry const* const entry = impl->entries.FirstVisible(top, hashes.OfPrefix(top.size()))) {
                step.parent = H(entry->node);
                break;
            }
        lengths.Push(top.size());
    }

    H node;
    while (std::size_t const length = lengths.Pop()) {
        // Behind a name that leads nowhere, only what was inserted by hand can be found.
        if (step.sourceEnded && length > LongestVisible(Source())) return {};
        step.name.assign(name, 0, length);
        step.hash = length == name.size() ? hashes.Whole() : hashes.OfPrefix(length);
        if (step.parent && IsPastEnd(*step.parent, step.name)) return {};
        node = Stage_(step);
        step.parent = node;
    }
    return node;
}

H ZOTransaction::Stage_(Step& step) {
    std::string const& name = step.name;
    H found;
    std::string resolved;
    bool isHere = false; // under the name that was asked for

    std::string_view const component = step.live ? PlainComponent(EntryName(*step.live), name) : std::string_view();
    H live = component.empty() ? Source()->Find(name) : Source()->Find(step.live, std::string(component));
    step.live.release();
    step.sourceEnded = !live;
    if (live) {
        isHere = EntryName(*live) == name;
        if (isHere) {
            found = H(live->Clone());
            if (Source()->Impl()->IsRegistryImpl()) step.live = std::move(live);
        } else {
            resolved = live->Name();
            found = std::move(live);
        }
    } else {
        if (!step.parent) return {};
        std::string_view last = path::LastPart(std::string_view(name));
        if (last.starts_with(IZO::chArrayOpen)) last.remove_prefix(1);
        // No spelling of a component: as an alias it would lead on to the parent itself.
        if (last.empty() || last.find_first_of(".[]") != last.npos) return {};
        found = NodeAccess::GetSubZO(*step.parent, std::string(last));
        if (found && found->OwnerID() != IZO::npos) {
            resolved = found->Name();
        } else {
            resolved = step.parent->Name();
            path::ExtendCanonical(resolved, last);
        }
        isHere = resolved == name;
        if (found) step.sourceEnded = false;
    }

    // Reached by another name: the node of that name is staged, and this name leads there.
    if (!isHere) found = impl::MakeAlias(resolved, this);
    if (!found || found->OwnerID() != IZO::npos) return found;
    // On the way the same name may have been asked for.
    if (SetEntry const* const entry = impl->entries.FirstVisible(name, step.hash)) return H(entry->node);
    if (impl->entries.HasHidden() && impl->entries.First(name))
        throw htl::status_exception(ZOError::duplicate_name(), "zo", 2146);
    impl->Keep(this, name, step.hash, found.get());
    return found;
}

H ZOTransaction::Find(H const& node, std::string const& name) {
    if (!node) return {};
    std::string_view const parent = node->RegID() == 0 ? std::string_view() : EntryName(*node);
    return Find(parent.empty() ? name : path::Join(parent, name));
}

H ZOTransaction::Find(ZOArray* array, std::size_t index) {
    return array ? Find(array->Name() + "[" + std::to_string(index) + "]") : H();
}

htl::status ZOTransaction::Insert(std::string const& name, H const& node) {
    if (!node) return {};
    if (impl->entries.First(name)) return ZOError::duplicate_name();
    impl->Enter(this, name, node.get(), true, true);
    return {};
}

htl::status ZOTransaction::InsertTemporary(std::string const& name, H const& node) {
    if (node) impl->Enter(this, name, node.get(), true, false);
    return {};
}

void ZOTransaction::Rollback() {
    // What a node drops may be the last handle of another one, so the walk is over handles of its own. Names last until
    // all have been told.
    std::vector<H> staged;
    staged.reserve(impl->entryOrder.size());
    for (SetEntry const* const entry : impl->entryOrder)
        if (entry) staged.emplace_back(entry->node);
    for (H const& node : staged) NodeAccess::OnInvalidateMemory(*node);
    impl->ReleaseAll();
}

ZOEmptyTransaction::ZOEmptyTransaction(htl::handle<ZOSet> const& from, bool pin)
    : ZOTransaction(from, htl::handle<ZOSet>(ZORegistry::Instance()), pin) {}

ZOEmptyTransaction::~ZOEmptyTransaction() = default;

htl::handle<ZOTransaction> ZOEmptyTransaction::CreateTransaction() {
    return htl::handle<ZOTransaction>(new ZOTransaction(htl::handle<ZOSet>(this), source, false));
}

H ZOEmptyTransaction::Find(std::string const& name) {
    std::string asked = name;
    // A name that is the node's own is its last; the bound is for nodes that never agree.
    for (int redirects = 0; redirects < impl::mostRedirects; ++redirects) {
        if (SetEntry const* const entry = impl->entries.FirstVisible(asked)) return H(entry->node);
        std::string normal = asked;
        if (!path::Normalize(normal) || normal != asked) return {};
        H const node = source->Find(asked);
        if (!node) return {};
        std::string own = node->OwnerID() == IZO::npos ? asked : node->Name();
        if (own == asked) {
            H const empty(node->EmptyClone());
            if (htl::status const failure = Insert(own, empty); failure.IsError())
                throw htl::status_exception(failure, "zo", 2491);
            return empty;
        }
        asked = std::move(own);
    }
    return {};
}

H ZOEmptyTransaction::Find(H const& node, std::string const& name) {
    if (!node) return {};
    return Find(node->Name() + IZO::chSeparator + name);
}

H ZOEmptyTransaction::Find(ZOArray*, std::size_t) { return {}; }

} // namespace zo
