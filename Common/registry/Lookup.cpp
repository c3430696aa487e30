// From a name to a live node.
#include "Common/model/ZOArray.h"
#include "Common/model/ZOWrapper.h"
#include "Common/registry/Find.h"
#include "Common/registry/RegistryImpl.h"
#include "Common/registry/ZORegistry.h"

#include <array>
#include <string>
#include <string_view>
#include <utility>

namespace zo {

using impl::Current;
using impl::NodeAccess;

namespace {

constexpr std::array<bool, 256> isBoundary = [] {
    std::array<bool, 256> table{};
    table['.'] = table['['] = table[']'] = true;
    return table;
}();

// The next component boundary from `start` on, the size of the text at its end.
std::size_t NextBoundary(std::string_view text, std::size_t start) noexcept {
    while (start < text.size() && !isBoundary[static_cast<unsigned char>(text[start])]) ++start;
    return start;
}

// The walk along a name, component by component.
class NameScan {
public:
    explicit NameScan(std::string_view name)
        : text(name), boundary(NextBoundary(name, 0)), token(name.substr(0, boundary)) {}

    std::string_view Token() const noexcept { return token; }
    bool AtEnd() const noexcept { return boundary >= text.size(); }
    /// What was read so far, a closing bracket included.
    std::string_view Read() const noexcept {
        return text.substr(0, boundary + (boundary < text.size() && text[boundary] == IZO::chArrayClose));
    }

    enum Step { Component, Ended, Malformed };
    /// Steps over one boundary: `a[3].b`, `a.[3].b` and `a.3.b` alike. An empty component ends the name at the end of
    /// the text, as behind "a[3]"; elsewhere it names nothing.
    Step Next() noexcept {
        std::size_t start = boundary + 1;
        bool const opened = text[boundary] == IZO::chArrayOpen;
        if (start < text.size() && text[start] == IZO::chSeparator) ++start;
        if (!opened && start < text.size() && text[start] == IZO::chArrayOpen) ++start;
        boundary = NextBoundary(text, start);
        token = start < text.size() ? text.substr(start, boundary - start) : std::string_view();
        if (!token.empty()) return Component;
        return start >= text.size() ? Ended : Malformed;
    }

private:
    std::string_view text;
    std::size_t boundary;
    std::string_view token;
};

// A spare entry of a set, in whose name the canonical name grows: it costs no memory if the entry is entered later.
class SpareEntry {
public:
    explicit SpareEntry(ZOSetImpl& impl)
        : impl(impl), entry(impl.trackTemporaries ? impl.entries.Acquire() : nullptr) {}
    SpareEntry(SpareEntry const&) = delete;
    SpareEntry& operator=(SpareEntry const&) = delete;
    ~SpareEntry() {
        if (entry) impl.entries.Recycle(entry);
    }

    std::string& Name() noexcept { return entry->name; }
    /// The place reached: a node that has an entry brings that entry's name, whatever was read.
    void Extend(IZO const& node, std::string_view component) {
        if (node.OwnerID() != IZO::npos)
            entry->name = impl::EntryName(node);
        else
            path::ExtendCanonical(entry->name, component);
    }
    void EnterHidden(ZOSet* set, IZO* node) { impl.Enter(set, std::exchange(entry, nullptr), node, false, false); }

private:
    ZOSetImpl& impl;
    SetEntry* entry;
};

H Visible(ZOSetImpl const& impl, std::string_view name) {
    SetEntry const* const entry = impl.entries.FirstVisible(name);
    return entry ? H(entry->node) : H();
}

// A place in client memory on the way to the one that is looked for. A structure or array that is only passed needs no
// node: where its row and its memory are known, so is the place of its parts.
class Place {
public:
    Place() = default;
    Place(std::size_t row, IZOWrapper* prototype, void* memory) : row(row), prototype(prototype), memory(memory) {}

    explicit operator bool() const noexcept { return prototype != nullptr; }
    /// Whether a step from here may need no node. Any other place is taken at once.
    bool GoesOn(ZORegistryImpl const& tables) const noexcept { return tables.stepRows[row].kind != StepRow::AskNode; }
    /// A view of the place. Leaves none behind.
    H Take() { return H(std::exchange(prototype, nullptr)->RemapClone(memory, manager)); }

    /// Goes on to a member or an element. False, and the place as it was, for what a node has to answer.
    bool StepInto(ZORegistryImpl const& tables, std::string_view component) {
        switch (tables.stepRows[row].kind) {
        case StepRow::Structure: return StepIntoStructure_(tables, component);
        case StepRow::Array: return StepIntoArray_(tables, component);
        case StepRow::AskNode: break;
        }
        return false;
    }

private:
    bool StepIntoStructure_(ZORegistryImpl const& tables, std::string_view component) {
        // A hint is for one step of a node.
        if (tables.findHint != IZO::npos) return false;
        std::size_t const member = tables.ChildByName(row, component);
        if (member == IZO::npos) return false;
        StepRow const& step = tables.stepRows[member];
        if (!step.wrapper) return false;
        row = member;
        prototype = step.wrapper;
        // As numbers: the offset is no pointer, and arithmetic on one would be undefined.
        memory = reinterpret_cast<void*>(reinterpret_cast<std::uintptr_t>(memory) + step.offset);
        return true;
    }
    bool StepIntoArray_(ZORegistryImpl const& tables, std::string_view component) {
        std::size_t index = 0;
        if (component[0] < '0' || component[0] > '9' || !path::ParseIndex(component, index)) return false;
        std::size_t const elementRow = tables.ElementTemplate(row);
        IZOWrapper* const element = elementRow == IZO::npos ? nullptr : tables.stepRows[elementRow].wrapper;
        auto const& array = static_cast<ZOArrayWrapper const&>(*tables.stepRows[row].node);
        // Clients derive managers, too: from here on what this one says of its array counts. It also keeps the arrays
        // around it from being resized by what the client's functions look up.
        htl::handle<ZOMemMgr> child(array.ChildMemMgr()->RemapClone(memory));
        child->SetOuter(manager);
        void* const container = child->Memory();
        meta::MetaTraitsArray const* const record = child->Traits().AsArray();
        if (!element || !record || !record->length || !record->elementAt || index >= record->length(container))
            return false;
        void* found = nullptr;
        {
            // The client's function may look something up, and must not find the array free to be resized.
            impl::ViewGuard const guard(*child);
            found = record->elementAt(container, index);
        }
        if (!found) return false;
        row = elementRow;
        prototype = element;
        memory = found;
        manager = std::move(child);
        return true;
    }

    std::size_t row = IZO::npos;
    IZOWrapper* prototype = nullptr;
    void* memory = nullptr;
    htl::handle<ZOMemMgr> manager;
};

// The child of an unowned node is unowned, too.
void Disown(IZO& node) {
    ZOSetImpl::LeavePlace(node);
    NodeAccess::SetOwner(node, nullptr, IZO::npos);
}

} // namespace

H ZORegistry::Find(std::string const& name) {
    ZORegistryImpl& tables = Current();
    ZOSetImpl& own = *Impl();
    bool const track = own.trackTemporaries;
    NameScan scan(name);

    H node;
    Place place; // in place of a node, as long as that goes
    std::size_t const row = tables.TopLevel(scan.Token());
    if (row == IZO::npos) {
        node = Visible(own, scan.Token());
    } else {
        StepRow const& step = tables.stepRows[row];
        if (!step.store->IsAvailable()) return {};
        if (step.wrapper) {
            void* const memory = step.store->GetPtrType();
            if (!memory) return {};
            place = Place(row, step.wrapper, memory);
            if (!place.GoesOn(tables)) node = place.Take();
        } else {
            node = H(step.node);
        }
    }
    if (!node && !place) return {};

    SpareEntry canonical(own);
    auto const extend = [&] {
        if (!track) return;
        if (place)
            path::ExtendCanonical(canonical.Name(), scan.Token());
        else
            canonical.Extend(*node, scan.Token());
    };
    extend();
    std::string component; // one for all steps: children are asked with a string
    auto const ask = [&] {
        // What comes out of an associative array works out its name from the array's.
        bool const isNameless = track && node->OwnerID() == IZO::npos && tables.HasRow(node->RegID());
        if (isNameless && tables.assocBits[node->RegID()]) own.Enter(this, canonical.Name(), node.get(), false, false);
        H child = NodeAccess::GetSubZO(*node, component);
        // What stands for a node beside it, below an element, climbs there from its own place.
        if (!child && isNameless && tables.aliasBits[node->RegID()] && tables.nodes[node->RegID()] != node) {
            own.Enter(this, canonical.Name(), node.get(), false, false);
            child = NodeAccess::GetSubZO(*node, component);
        }
        return child;
    };
    while (!scan.AtEnd()) {
        NameScan::Step const step = scan.Next();
        if (step == NameScan::Malformed) return {};
        if (step == NameScan::Ended) break;
        H child;
        if (place && place.StepInto(tables, scan.Token())) {
            if (place.GoesOn(tables)) {
                extend();
                continue;
            }
            child = place.Take();
        } else {
            if (place) node = place.Take();
            component = scan.Token();
            child = ask();
        }
        if (!child && track) child = Visible(own, scan.Read());
        node = std::move(child);
        if (!node) return {};
        extend();
    }
    if (place) node = place.Take();
    if (track && node->OwnerID() == IZO::npos) canonical.EnterHidden(this, node.get());
    return node;
}

H ZORegistry::Find(H const& node, std::string const& name) {
    if (!node) return {};
    H result = NodeAccess::GetSubZO(*node, name);
    if (node->OwnerID() == IZO::npos) {
        if (result && !node->Owner()) Disown(*result);
        return result;
    }
    ZOSetImpl& own = *Impl();
    if (!own.trackTemporaries) return result;
    if (!result) return Visible(own, path::Join(impl::EntryName(*node), name));
    if (result->OwnerID() == IZO::npos) {
        SpareEntry canonical(own);
        canonical.Name() = impl::EntryName(*node);
        path::ExtendCanonical(canonical.Name(), name);
        canonical.EnterHidden(this, result.get());
    }
    return result;
}

H ZORegistry::Find(ZOArray* array, std::size_t index) {
    if (!array) return {};
    H result = array->GetSubZO(index);
    if (!result) return {};
    if (array->OwnerID() == IZO::npos) {
        if (!array->Owner()) Disown(*result);
        return result;
    }
    ZOSetImpl& own = *Impl();
    if (own.trackTemporaries && result->OwnerID() == IZO::npos) {
        SpareEntry canonical(own);
        canonical.Name() = impl::EntryName(*array);
        canonical.Name() += IZO::chArrayOpen;
        canonical.Name() += std::to_string(index);
        canonical.Name() += IZO::chArrayClose;
        canonical.EnterHidden(this, result.get());
    }
    return result;
}

namespace {

ZOSet& SetOf(IZO const* node) { return node && node->Owner() ? *node->Owner() : *ZORegistry::Instance(); }

} // namespace

H Find(std::string const& name) { return ZORegistry::Instance()->Find(name); }
H Find(std::string const& name, int a, int b, int c) { return ZORegistry::Instance()->ZOSet::Find(name, a, b, c); }
H Find(H const& node, std::string const& name) { return SetOf(node.get()).Find(node, name); }
H Find(ZOArray* array, std::size_t index) { return SetOf(array).Find(array, index); }

ZOFwrdIterator Find(H const& parent, H const& child) {
    if (!parent || !child) return {};
    std::string const name = child->SubName();
    ZOFwrdIterator position = parent->begin();
    while (position.current && !(position.current->RegID() == child->RegID() && position.current->SubName() == name))
        ++position;
    return position.current ? position : parent->end();
}

H GetParent(H const& node, unsigned levels) {
    H at = node;
    for (; levels > 0 && at; --levels) {
        std::string const parent = at->ParentName();
        at = parent.empty() ? H() : SetOf(at.get()).Find(parent);
    }
    return at;
}

H GetSibling(H const& node, std::string const& name) {
    H const parent = GetParent(node, 1);
    return parent ? SetOf(node.get()).Find(parent, name) : H();
}

} // namespace zo
