#include "Common/view/ZOFwrdViewIterator.h"

#include "Common/ZOUtil/NamePath.h"
#include "Common/extinfo/Visible.h"
#include "Common/redirect/Identity.h"
#include "Common/redirect/ZOAlias.h"
#include "Common/registry/Find.h"
#include "Common/registry/RegistryImpl.h"
#include "Common/view/ZOViewAlias.h"

#include "support/pool.h"

#include <utility>

namespace zo::view::impl {

using zo::impl::Current;

namespace {

constexpr std::size_t npos = IZO::npos;
constexpr unsigned mostNested = 256;
constexpr unsigned mostSplices = 10'000;

ZOSet& SetOf(IZO const& node) { return node.Owner() ? *node.Owner() : *ZORegistry::Instance(); }

/// The node whose children are walked. What no redirect is registered for is none.
H SourceOf(H const& node) {
    ZORegistryImpl const& tables = Current();
    return tables.HasRow(node->RegID()) && !tables.redirects[node->RegID()] ? node : GetSource(node);
}

bool IsArray(IZO const& node) { return node.GetDataTraits().AsArray() != nullptr; }

} // namespace

/// A walk that is at work, and the one that it serves, which splices it in.
struct ZOFwrdViewIterator::Level {
    std::size_t row; // of the walked node
    Level const* above;
    unsigned nested;
    unsigned& splicesLeft; // of the outermost walk

    Level(std::size_t row, Level const* above, unsigned& own)
        : row(row), above(above), nested(above ? above->nested + 1 : 0), splicesLeft(above ? above->splicesLeft : own) {
    }

    bool IsAtWorkOn(std::size_t other) const noexcept {
        for (Level const* at = this; at; at = at->above)
            if (at->row == other) return true;
        return false;
    }
};

struct ZOFwrdViewIterator::State {
    H walked;                   // no redirect
    ZOFwrdIterator real;        // over what `begin()` gives, of this node or of a spliced one
    ZOFwrdViewIterator spliced; // over the view children of a spliced node
    int query;
    std::size_t position = npos; // row of the child in the view where the walk stands; npos where it isn't used
    unsigned splicesLeft = mostSplices;
    bool realIsArray = false;
    bool realIsFirst = false; // nothing of `real` was tested yet

    State(H&& walked, int query) : walked(std::move(walked)), query(query) {}

    static void* operator new(std::size_t size) { return htl::pool::Allocate(size); }
    static void operator delete(void* block, std::size_t size) { htl::pool::Free(block, size); }

    /// The row that the walk is at: a child of the walked node, else its own.
    std::size_t Container() const noexcept { return position != npos ? position : walked->RegID(); }

    /// The first visible one of the children that the node has at run time.
    H BeginReal(IZO& node) {
        real = node.begin();
        realIsFirst = true;
        realIsArray = real.parent && IsArray(*real.parent);
        return NextReal();
    }

    H NextReal() {
        while (real.current) {
            H child = real.current;
            // The elements of an array share one entry, so the first one speaks for all.
            bool const isTested = realIsArray && !realIsFirst;
            realIsFirst = false;
            if (!isTested && !IsVisible(child, query)) {
                if (realIsArray) {
                    real = {};
                    break;
                }
                ++real;
                continue;
            }
            ++real;
            std::wstring const& pattern = Current().viewRecords[Container()].renamePattern;
            if (!pattern.empty()) child = ZOViewAlias::For(child, *walked, pattern);
            if (child) return child;
        }
        return {};
    }

    H NextSpliced(Level const& level) {
        H child = spliced.current;
        if (child) spliced.Next_(&level);
        return child;
    }

    /// The first child in the view from a row on, itself or one that it is spliced for. Leaves the position at it.
    H NextInView(std::size_t row, Level const& level) {
        for (;; row = Current().viewRecords[row].ViewTravNextID) {
            position = row = FirstVisible_(row);
            if (row == npos) return {};
            H child = Resolve_(row);
            if (!child || child->Tag().empty() || !visible::impl::PassesAtRunTime(child, query)) continue;
            std::uint32_t const flags = Current().viewRecords[row].flags;
            if (!(flags & ViewTravRecord::Splice)) return child;
            if (flags & ViewTravRecord::WalkChildren) {
                child = BeginReal(*child);
            } else {
                spliced.Begin_(child, query, &level);
                child = NextSpliced(level);
            }
            if (child) return child;
        }
    }

private:
    // By rows alone, so that what is hidden costs no lookup.
    std::size_t FirstVisible_(std::size_t row) const {
        for (; row != npos; row = Current().viewRecords[row].ViewTravNextID)
            if ((Current().stepRows[row].length > 0 || Current().aliasBits[row]) && IsVisible(row, query)) break;
        return row;
    }

    H Resolve_(std::size_t row) const {
        ZORegistryImpl const& tables = Current();
        StepRow const& step = tables.stepRows[row];
        // A walk over the tree itself doesn't meet what has no data now, either.
        if (!step.store->IsAvailable()) return {};
        ViewTravRecord const& record = tables.viewRecords[row];
        switch (record.kind) {
        case ViewTravRecord::RelativeTag:
            // Mostly a child by its own tag, which needs no search.
            if (record.isOwnTag && step.parent == walked->RegID())
                return SetOf(*walked).Find(walked, tables.subNames[row]);
            return LookupRelative(walked, record.path);
        case ViewTravRecord::AbsoluteTag:
            if (record.path == tables.tagNames[row] && tables.names[row].find(IZO::chArrayOpen) == std::string::npos)
                return tables.owner->Find(tables.names[row]);
            return tables.owner->FindTag(record.path);
        case ViewTravRecord::RegistryName: break;
        }
        return tables.aliasBits[row] ? AliasOf_(row) : SetOf(*walked).Find(walked, tables.subNames[row]);
    }

    /// A registered alias as a child of the walked node, in its set for as long as somebody holds it.
    H AliasOf_(std::size_t row) const {
        ZORegistryImpl const& tables = Current();
        H const alias(tables.nodes[row]->Clone());
        bool const isTop = walked->RegID() == 0;
        if (isTop || walked->OwnerID() != npos) {
            // A relative alias finds its source by its place.
            std::string const name = path::Join(isTop ? std::string() : walked->Name(), tables.subNames[row]);
            if (SetOf(*walked).InsertTemporary(name, alias).IsError()) return {};
        } else {
            // The child of an unnamed node has no name, either, and of an unowned one no owner.
            zo::impl::NodeAccess::SetOwner(*alias, walked->Owner(), npos);
        }
        auto* const source = dynamic_cast<ZOAliasBase*>(alias.get());
        return !source || source->Validate() ? alias : H();
    }
};

ZOFwrdViewIterator::ZOFwrdViewIterator() noexcept = default;
ZOFwrdViewIterator::ZOFwrdViewIterator(H const& node, int query) { BeginZO_(node, query); }
ZOFwrdViewIterator::ZOFwrdViewIterator(ZOFwrdViewIterator const& other) { CopyImpl_(other); }
ZOFwrdViewIterator::ZOFwrdViewIterator(ZOFwrdViewIterator&& other) noexcept = default;
ZOFwrdViewIterator::~ZOFwrdViewIterator() = default;

ZOFwrdViewIterator& ZOFwrdViewIterator::operator=(ZOFwrdViewIterator const& other) {
    if (this != &other) CopyImpl_(other);
    return *this;
}

ZOFwrdViewIterator& ZOFwrdViewIterator::operator=(ZOFwrdViewIterator&& other) noexcept = default;

ZOFwrdViewIterator& ZOFwrdViewIterator::operator++() {
    NextZO_();
    return *this;
}

ZOFwrdViewIterator ZOFwrdViewIterator::operator++(int) {
    ZOFwrdViewIterator before = *this;
    NextZO_();
    return before;
}

void ZOFwrdViewIterator::BeginZO_(H const& node, int query) { Begin_(node, query, nullptr); }
void ZOFwrdViewIterator::NextZO_() { Next_(nullptr); }

void ZOFwrdViewIterator::CopyImpl_(ZOFwrdViewIterator const& other) {
    ReleaseImpl_();
    current = other.current;
    if (other.state) state = std::make_unique<State>(*other.state);
}

void ZOFwrdViewIterator::ReleaseImpl_() {
    state.reset();
    current.release();
}

void ZOFwrdViewIterator::Begin_(H const& node, int query, Level const* above) {
    ReleaseImpl_();
    if (above) {
        if (above->nested == mostNested || above->splicesLeft == 0) return;
        --above->splicesLeft;
    }
    if (!IsVisible(node, query)) return;
    H source = SourceOf(node);
    std::size_t const row = source->RegID();
    if (!Current().HasRow(row) || (above && above->IsAtWorkOn(row))) return;
    bool const isReal = (Current().viewRecords[row].flags & ViewTravRecord::WalkChildren) || IsArray(*source);
    std::size_t const first = Current().viewFirstChildren[row];
    if (!isReal && first == npos) return;
    state = std::make_unique<State>(std::move(source), query);
    Level const level(row, above, state->splicesLeft);
    current = isReal ? state->BeginReal(*state->walked) : state->NextInView(first, level);
    if (!current) ReleaseImpl_();
}

void ZOFwrdViewIterator::Next_(Level const* above) {
    current.release();
    // Another registry may be current by now.
    if (!state || !Current().HasRow(state->Container())) return ReleaseImpl_();
    Level const level(state->walked->RegID(), above, state->splicesLeft);
    H next = state->NextReal();
    if (!next) next = state->NextSpliced(level);
    if (!next && state->position != npos)
        next = state->NextInView(Current().viewRecords[state->position].ViewTravNextID, level);
    if (next)
        current = std::move(next);
    else
        ReleaseImpl_();
}

} // namespace zo::view::impl
