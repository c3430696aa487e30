// From a transaction to the set that it commits to.
#include "Common/ZOUtil/NamePath.h"
#include "Common/model/CastCache.h"
#include "Common/model/ZOWrapper.h"
#include "Common/registry/BranchCommit.h"
#include "Common/registry/JournalWriter.h"
#include "Common/registry/RegistryImpl.h"
#include "Common/registry/ZORedirect.h"
#include "Common/registry/ZORegistry.h"
#include "Common/registry/ZOTransaction.h"

#include "support/units.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>
#include <typeinfo>
#include <utility>
#include <vector>

namespace zo {

namespace {

/// One entry on its way to the commit.
struct Staged {
    std::uint64_t key; // of the sort
    char const* text;
    std::uint32_t length;
    std::uint32_t index;

    std::string_view Name() const noexcept { return {text, length}; }
};

/// The 8 bytes of a name at an offset, the first one highest; zero behind its end.
std::uint64_t KeyAt(std::string_view name, std::size_t offset) noexcept {
    std::uint64_t key = 0;
    std::size_t const count = offset < name.size() ? std::min<std::size_t>(8, name.size() - offset) : 0;
    for (std::size_t i = 0; i < 8; ++i)
        key = key << 8 | (i < count ? static_cast<unsigned char>(name[offset + i]) : 0u);
    return key;
}

bool ByName(Staged const& a, Staged const& b) noexcept {
    int const order = a.Name().compare(b.Name());
    return order != 0 ? order < 0 : a.index < b.index;
}

/// Sorts by name, bytewise, entries of one name by position. Names in a tree share long beginnings, so the sort goes by
/// 8 bytes at a time and looks at further ones only where those are equal.
void SortByName(std::vector<Staged>& staged) {
    struct Range {
        std::size_t first, last, offset;
    };
    std::vector<Range> ranges{{0, staged.size(), 0}};
    while (!ranges.empty()) {
        Range const range = ranges.back();
        ranges.pop_back();
        auto const first = staged.begin() + static_cast<std::ptrdiff_t>(range.first);
        auto const last = staged.begin() + static_cast<std::ptrdiff_t>(range.last);
        constexpr std::ptrdiff_t few = 6;
        if (last - first <= few) {
            std::sort(first, last, ByName);
            continue;
        }
        for (auto at = first; at != last; ++at) at->key = KeyAt(at->Name(), range.offset);
        std::sort(first, last, [](Staged const& a, Staged const& b) { return a.key < b.key; });
        for (auto at = first; at != last;) {
            auto const end = std::find_if(at, last, [key = at->key](Staged const& other) { return other.key != key; });
            // Where a name ends among these, what is equal may still differ in length.
            bool const goesOn = end - at == 1 || std::all_of(at, end, [&range](Staged const& other) {
                                    return other.length >= range.offset + 8;
                                });
            if (!goesOn)
                std::sort(at, end, ByName);
            else if (end - at > 1)
                ranges.push_back({static_cast<std::size_t>(at - staged.begin()),
                                  static_cast<std::size_t>(end - staged.begin()), range.offset + 8});
            at = end;
        }
    }
}

/// The entries of a set as they are now, in the order of their names, whatever an assignment may do to the set.
class Entries {
public:
    /// Without the nodes for which `skip` says true.
    template <class Skip>
    Entries(ZOSetImpl const& impl, Skip skip) {
        std::size_t length = 0;
        std::vector<SetEntry const*> taken;
        taken.reserve(impl.entryOrder.size());
        for (SetEntry const* const entry : impl.entryOrder) {
            if (!entry || skip(*entry->node)) continue;
            taken.push_back(entry);
            length += entry->name.size();
        }
        nodes.reserve(taken.size());
        order.reserve(taken.size());
        names.reserve(length);
        for (SetEntry const* const entry : taken) {
            order.push_back({0, names.data() + names.size(), static_cast<std::uint32_t>(entry->name.size()),
                             static_cast<std::uint32_t>(nodes.size())});
            nodes.emplace_back(entry->node);
            names += entry->name;
        }
        SortByName(order);
    }
    Entries(Entries const&) = delete;
    Entries& operator=(Entries const&) = delete;

    H const& Node(Staged const& entry) const { return nodes[entry.index]; }
    auto begin() const noexcept { return order.begin(); }
    auto end() const noexcept { return order.end(); }

private:
    std::vector<H> nodes;
    std::string names; // end to end
    std::vector<Staged> order;
};

/// The unit system in the node of a name; none for an empty name, an absent node or a failed read.
math::unitsystem::Type UnitSystemOf(ZOSet& set, std::string const& name) {
    H const node = name.empty() ? H() : set.Find(name);
    htl::Int64 number = 0;
    if (!node || node->Get(number).IsError() || number < 0 || number > std::numeric_limits<std::int32_t>::max())
        return math::unitsystem::None;
    return static_cast<math::unitsystem::Type>(number);
}

/// How a staged value becomes the value of a node.
class Assignment {
public:
    Assignment(ZOSet& from, std::string const& sourceUnits, ZOSet& to, std::string const& targetUnits) {
        auto const source = UnitSystemOf(from, sourceUnits);
        auto const target = UnitSystemOf(to, targetUnits);
        if (source == math::unitsystem::None || target == math::unitsystem::None || source == target) return;
        sourceSet = hzn::units::SystemUnitSet(source);
        targetSet = hzn::units::SystemUnitSet(target);
        converts = !sourceSet.IsZero() && !targetSet.IsZero();
    }

    htl::status operator()(IZO& target, H const& source) const {
        if (converts)
            if (meta::MetaDataTraits const traits = target.GetDataTraits();
                auto const* const atomic = traits.AsAtomic())
                if (std::optional<double> const value = Converted_(*atomic, target, *source)) return target.Set(*value);
        return target.Assign(source);
    }

private:
    std::optional<double> Converted_(meta::MetaTraitsAtomic const& atomic, IZO& target, IZO& source) const {
        if (!atomic.unitKind) return {};
        hzn::units::Kind::Type const kind = atomic.unitKind(nullptr, &target);
        double value = 0, present = 0;
        if (kind == hzn::units::Kind::None || source.Get(value).IsError() || target.Get(present).IsError()) return {};
        if (value == std::numeric_limits<double>::max()) return {};
        return math::units::ConvertBetweenUnitSets(kind, value, sourceSet, targetSet);
    }

    bool converts = false;
    math::UnitSet sourceSet, targetSet;
};

/// Whether the node is a structure that has no value in the registry either. To look for its node would cost as much as
/// a value does.
bool IsStagedStructure(IZO const& node) {
    // By address: a second description of the type only costs the look.
    if (&typeid(node) != &typeid(ZOStructClone)) return false;
    ZORegistryImpl const& tables = impl::Current();
    if (!tables.HasRow(node.RegID())) return false;
    IZO const& prototype = *tables.nodes[node.RegID()];
    return &typeid(prototype) == &typeid(ZOWrapperStruct);
}

/// Assigns staged nodes one by one.
class Committer {
public:
    /// `all`, if given, receives every failure.
    Committer(ZOSet& base, Assignment const& assignment, ZOJournal* journal, std::vector<htl::status>* all = nullptr)
        : base(base), assignment(assignment), baseIsRegistry(&base == ZORegistry::Instance()), all(all) {
        if (journal) writer.emplace(*journal, base);
    }

    /// Whether nothing could come of an assignment.
    bool HasNoValue(IZO const& node) const { return baseIsRegistry && IsStagedStructure(node); }
    bool IsAlias(IZO& node) {
        ZORedirect const* const redirect = asRedirect(node);
        return redirect && redirect->IsAlias();
    }

    void CoverKeyed(std::string_view name, IZO const& node) {
        if (!writer) return;
        int levels = impl::LevelsBelowKeys(node.RegID());
        if (levels < 0) return;
        for (; levels > 0; --levels) name = path::ParentPart(name);
        if (!name.empty()) writer->CoverWhole(name);
    }

    /// Keys move their elements, so they come when everything else has found its place.
    void Add(std::string const& name, H const& node) {
        if (impl::IsKeyRow(node->RegID()))
            keys.emplace_back(name, node);
        else if (H const target = base.Find(name))
            Assign_(name, node, target);
    }

    htl::status Finish() {
        std::vector<H> targets;
        targets.reserve(keys.size());
        for (auto const& [name, node] : keys) targets.push_back(base.Find(name));
        for (std::size_t i = 0; i < keys.size(); ++i)
            if (targets[i]) Assign_(keys[i].first, keys[i].second, targets[i]);
        targets.clear();
        if (writer) writer->Finish();
        return std::move(overall);
    }

private:
    void Assign_(std::string const& name, H const& node, H const& target) {
        if (writer) writer->Before(name, *node, target);
        htl::status failure = assignment(*target, node);
        if (writer) writer->After(target);
        if (!failure.IsError() || failure.Is(21661)) return;
        if (all) all->push_back(failure);
        if (!overall.IsError()) overall = std::move(failure);
    }

    ZOSet& base;
    Assignment const& assignment;
    bool baseIsRegistry;
    std::vector<htl::status>* all;
    impl::CastCache<ZORedirect> asRedirect;
    std::optional<JournalWriter> writer;
    std::vector<std::pair<std::string, H>> keys;
    htl::status overall;
};

/// Calls `visit` for the entries at and below `origin`, in their order.
template <class Visit>
void ForEachWithin(Entries const& staged, std::string_view origin, Visit const& visit) {
    auto at = std::lower_bound(staged.begin(), staged.end(), origin,
                               [](Staged const& entry, std::string_view name) { return entry.Name() < name; });
    for (; at != staged.end() && at->Name().starts_with(origin); ++at)
        if (impl::IsWithin(at->Name(), origin)) visit(*at);
}

/// The node behind a chain of redirects, and its name; empty where the chain leads nowhere.
H FollowRedirects(H node, std::string& name) {
    for (int steps = 0; node && steps < impl::mostRedirects; ++steps) {
        auto const* const redirect = dynamic_cast<ZORedirect const*>(node.get());
        if (!redirect) return node;
        node = redirect->Redirect();
        name = node ? node->Name() : std::string();
    }
    return {};
}

} // namespace

htl::status ZOTransaction::Commit(std::string const& sourceUnits, std::string const& targetUnits, ZOJournal* journal) {
    htl::handle<ZOSet> const target(Base()); // what is assigned may drop the last other handle
    Assignment const assignment(*this, sourceUnits, *target, targetUnits);
    Committer committer(*target, assignment, journal);
    Entries const staged(*impl, [&](IZO& node) { return committer.HasNoValue(node) || committer.IsAlias(node); });
    if (journal)
        for (Staged const& entry : staged) committer.CoverKeyed(entry.Name(), *staged.Node(entry));

    std::string name;
    for (Staged const& entry : staged) {
        name = entry.Name();
        committer.Add(name, staged.Node(entry));
    }
    return committer.Finish();
}

htl::status ZOTransaction::CommitAs(std::string const& from, std::string const& to, std::string const& sourceUnits,
                                    std::string const& targetUnits, ZOJournal* journal) {
    if (journal) journal->Clear();
    std::string origin = from;
    H const first = FollowRedirects(Find(from), origin);
    if (!first || origin.empty()) return {};

    htl::handle<ZOSet> const target(Base());
    Assignment const assignment(*this, sourceUnits, *target, targetUnits);
    Entries const staged(*impl, [](IZO const&) { return false; });
    Committer committer(*target, assignment, journal);
    auto const targetName = [&](Staged const& entry) { return to + std::string(entry.Name().substr(origin.size())); };
    if (journal)
        ForEachWithin(staged, origin,
                      [&](Staged const& entry) { committer.CoverKeyed(targetName(entry), *staged.Node(entry)); });
    ForEachWithin(staged, origin, [&](Staged const& entry) { committer.Add(targetName(entry), staged.Node(entry)); });
    return committer.Finish();
}

struct impl::BranchCommit::Taken {
    explicit Taken(ZOTransaction& transaction)
        : target(transaction.Base()), assignment(transaction, {}, *target, {}),
          staged(*transaction.Impl(), [isRegistry = target.get() == ZORegistry::Instance()](IZO const& node) {
              return isRegistry && IsStagedStructure(node);
          }) {}

    htl::handle<ZOSet> target;
    Assignment assignment;
    Entries staged;
};

impl::BranchCommit::BranchCommit(ZOTransaction& transaction) : taken(std::make_unique<Taken>(transaction)) {}

impl::BranchCommit::~BranchCommit() = default;

void impl::BranchCommit::operator()(std::string_view from, std::string const& to,
                                    std::vector<htl::status>& failures) const {
    Committer committer(*taken->target, taken->assignment, nullptr, &failures);
    std::string name;
    ForEachWithin(taken->staged, from, [&](Staged const& entry) {
        name = to;
        name += entry.Name().substr(from.size());
        committer.Add(name, taken->staged.Node(entry));
    });
    (void)committer.Finish(); // the first of the failures that were appended
}

} // namespace zo
