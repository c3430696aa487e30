// Staging: how nodes get into a transaction.
#include "Common/registry/ZOTransaction.h"

#include "Common/ZOUtil/NamePath.h"
#include "Common/model/ZOArray.h"
#include "Common/registry/RegistryImpl.h"
#include "Common/registry/ZORegistry.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <memory>
#include <string_view>
#include <typeinfo>
#include <utility>
#include <vector>

namespace zo {

using impl::EntryName;
using impl::NodeAccess;

namespace {

/// The component that leads from `parent` to `name`, which begins with it: behind a ".", in brackets, or both. Empty
/// for any other spelling.
std::string_view PlainComponent(std::string_view parent, std::string_view name) {
    if (parent.empty() || name.size() < parent.size() + 2) return {};
    if (parent.back() == IZO::chSeparator || parent.back() == IZO::chArrayOpen) return {};
    std::string_view rest = name.substr(parent.size());
    if (rest.starts_with(IZO::chSeparator)) {
        rest.remove_prefix(1);
        if (!rest.starts_with(IZO::chArrayOpen))
            return rest.find_first_of(".[]") == rest.npos ? rest : std::string_view();
    }
    if (!rest.starts_with(IZO::chArrayOpen) || !rest.ends_with(IZO::chArrayClose)) return {};
    rest = rest.substr(1, rest.size() - 2);
    return rest.find_first_of(".[]") == rest.npos ? rest : std::string_view();
}

/// The name with its indices in their shortest form, `a[3]` for `a[03]` and `a[3 ]`. Empty if it is written so.
std::string InShortestForm(std::string_view name) {
    bool differs = false;
    std::string shortest;
    std::size_t index = 0;
    for (std::size_t open = name.find(IZO::chArrayOpen); open != name.npos; open = name.find(IZO::chArrayOpen, open)) {
        std::size_t const first = ++open;
        std::size_t const close = name.find(IZO::chArrayClose, first);
        if (close == name.npos) break;
        if (close == first + 1) continue; // one digit needs no look
        std::string_view const text = name.substr(first, close - first);
        bool const isShort = text.front() != '0' && text.back() != ' ' && !(text.back() >= '\t' && text.back() <= '\r');
        if (isShort || !path::ParseIndex(text, index)) continue;
        shortest += name.substr(0, first);
        shortest += std::to_string(index);
        name.remove_prefix(close);
        open = 0;
        differs = true;
    }
    return differs ? shortest += name : std::string();
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
                if (boundaries < few.size())
                    few[boundaries] = {i, hash};
                else
                    more.push_back({i, hash});
                if (++boundaries == ZOTransaction::mostComponents) return;
            }
            hash = path::Hash(hash, name[i]);
        }
        whole = hash;
    }

    bool IsTooDeep() const noexcept {
        return name.size() > ZOTransaction::longestName || boundaries >= ZOTransaction::mostComponents;
    }
    std::uint64_t Whole() const noexcept { return whole; }
    /// `length` is that of the whole name, or where a boundary stands.
    std::uint64_t OfPrefix(std::size_t length) const noexcept {
        if (length == name.size()) return whole;
        auto const isBefore = [](Prefix const& prefix, std::size_t end) { return prefix.length < end; };
        if (auto const at = std::lower_bound(more.begin(), more.end(), length, isBefore);
            at != more.end() && at->length == length)
            return at->hash;
        auto const last = few.begin() + static_cast<std::ptrdiff_t>(std::min(boundaries, few.size()));
        auto const at = std::lower_bound(few.begin(), last, length, isBefore);
        assert(at != last && at->length == length);
        return at->hash;
    }

private:
    struct Prefix {
        std::size_t length;
        std::uint64_t hash;
    };
    std::string_view name;
    std::size_t boundaries = 0;
    std::uint64_t whole = 0;
    std::array<Prefix, 12> few; // names of ordinary depth take no memory
    std::vector<Prefix> more;
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

/// Whether `set`, or one that it reads through, has a visible entry of the name.
bool IsEntered(ZOSet const* set, std::string_view name, std::uint64_t hash) {
    for (; set; set = set->Source())
        if (set->Impl()->entries.FirstVisible(name, hash)) return true;
    return false;
}

} // namespace

ZOTransaction::ZOTransaction(htl::handle<ZOSet> const& from, htl::handle<ZOSet> const& to, bool pin)
    : ZOSet(std::make_unique<ZOSetImpl>(), from, to) {
    assert(from);
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
    std::size_t length = 0; // of the parent's name
    H parent;               // staged
    H live;                 // the source's node of the parent's name, where the source is a registry
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
        std::string_view const reached = std::string_view(name).substr(0, length);
        step.hash = hashes.OfPrefix(length);
        // Behind a name that leads nowhere, only what was inserted by hand can be found.
        if (step.sourceEnded && !step.parent && !IsEntered(Source(), reached, step.hash)) continue;
        step.name = reached;
        if (step.parent && IsPastEnd(*step.parent, step.name)) return {};
        node = Stage_(step);
        step.parent = node;
        step.length = length;
    }
    return node;
}

H ZOTransaction::Stage_(Step& step) {
    std::string const& name = step.name;
    H found;
    std::string resolved;
    bool isHere = false; // under the name that was asked for

    // Step by step where that is the same: a name that leads through many aliases costs each of them once.
    H live;
    bool isAbsent = false;
    if (step.live) {
        std::string_view const parent = std::string_view(name).substr(0, step.length);
        if (std::string_view const component = PlainComponent(parent, name); !component.empty()) {
            live = Source()->Find(step.live, std::string(component));
            // What was entered by hand is found under the name as it is written.
            isAbsent = !live && EntryName(*step.live) == parent && path::Join(parent, component) == name;
        }
    }
    if (!live && !isAbsent) live = Source()->Find(name);
    step.live.release();
    step.sourceEnded = !live;
    if (live) {
        isHere = EntryName(*live) == name;
        if (!isHere) {
            resolved = live->Name();
        } else {
            // Staged apart, the value of one spelling would undo that of the other.
            std::string const shortest = InShortestForm(name);
            if (!shortest.empty()) found = impl::MakeAlias(shortest, this);
            if (!found) found = H(live->Clone());
        }
        if (Source()->Impl()->IsRegistryImpl()) step.live = std::move(live);
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
        if (std::string shortest = InShortestForm(resolved); !shortest.empty()) resolved = std::move(shortest);
        isHere = resolved == name;
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
            H empty(node->EmptyClone());
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
