#include "Common/clip/Merge.h"

#include "Common/clip/Rows.h"
#include "Common/clip/ZOClipImportTransaction.h"
#include "Common/model/ZOArray.h"
#include "Common/redirect/Identity.h"
#include "Common/registry/Find.h"
#include "Common/registry/ZORedirect.h"
#include "Common/xml/Write.h"

#include "support/unique.h"

#include <typeinfo>
#include <unordered_set>
#include <utility>

namespace zo::clip::impl {
namespace {

using hzn::gid::ContainerRef;

constexpr GID innerMask = 0xFFFF; // the group inside a record, of a packed container number

/// The group word of the records in the container `id` inside `around`, or in one that stands by itself.
GID GroupOf(GGID const& around, GID id) {
    return hzn::gid::IsValid(around) ? hzn::gid::PackedContainerGID(around, id) : id;
}

ContainerRef ReferenceTo(GGID const& around, GID id) {
    return hzn::gid::IsValid(around) ? ContainerRef(around, id) : ContainerRef({}, id);
}

ZORedirect const* AsRedirect(H const& node) { return dynamic_cast<ZORedirect const*>(node.get()); }

/// Calls `visit` for each child; of an array also for those behind an element that the set doesn't have.
template <class Visit>
void ForEachChild(H const& node, Visit const& visit) {
    auto* const array = dynamic_cast<ZOArray*>(node.get());
    if (!array) {
        for (ZOFwrdIterator at = node->begin(); at.current; ++at) visit(at.current);
        return;
    }
    std::size_t const length = array->Length();
    for (std::size_t i = 0; i < length; ++i)
        if (H const element = Find(array, i)) visit(element);
}

/// Sets the length of the arrays below to 0, as reading a document does: it leaves out arrays without elements.
/// The names of those whose elements are in use, and which keep their length.
std::vector<std::string> EmptyArrays(H const& object) {
    std::vector<std::string> inUse;
    std::vector<H> pending{object};
    while (!pending.empty()) {
        H const node = std::move(pending.back());
        pending.pop_back();
        ForEachChild(node, [&](H const& child) {
            if (AsRedirect(child) || child->GetPersistTraits().Type == meta::MetaPersistTraits::No) return;
            if (dynamic_cast<ZOArray*>(child.get())) {
                htl::status const failure = child->SetLength(0);
                if (failure.Is(21654)) inUse.push_back(child->Name());
                if (!failure.IsError() || failure.Is(21654)) return;
            }
            // An array of fixed length refuses, and its elements may hold others.
            if (!child->IsValueType()) pending.push_back(child);
        });
    }
    return inUse;
}

} // namespace

htl::status CannotPaste() { return htl::status(26502); }

Merge::Merge(ZOTransaction& transaction, std::vector<std::wstring>& names, std::vector<htl::status>& failures)
    : transaction(transaction), base(*transaction.Base()), names(names), failures(failures) {}

Merge::~Merge() = default;

void Merge::Keep_(htl::status failure) {
    if (failure.IsError()) failures.push_back(std::move(failure));
}

void Merge::Run(GID id, GGID const& from, GGID const& to) {
    source = from;
    target = to;
    sourceGroup = GroupOf(source, id);
    H container = GetSource(&transaction, ReferenceTo(source, id));
    if (!container) return;
    ListChildren_(container);
    container.release();

    Container* const destination = OpenContainer_(ReferenceTo(target, id), GroupOf(target, id), sourceGroup);
    if (!destination) return Keep_(CannotPaste());
    MakeNamesUnique_(*destination);
    for (Object* const child : children)
        if (!child->isBegun) Merge_(*child);
}

void Merge::ListChildren_(H const& container) {
    std::unordered_set<GID> numbers;
    ForEachChild(container, [&](H const& child) {
        GID const number = GetObjectIDByTag(child);
        if (number == 0) return;
        Object& object = ObjectAt_(child, sourceGroup);
        named.push_back(&object);
        if (numbers.insert(number).second) children.push_back(&object);
    });
}

void Merge::MakeNamesUnique_(Container& destination) {
    str::UniqueTexts taken;
    if (H const container = base.Find(destination.name))
        ForEachChild(container, [&taken](H const& object) { taken.Add(GetObjectName(object)); });
    for (Object* const child : named) {
        if (child->name.empty()) continue;
        std::wstring unique = taken.Make(child->name);
        if (unique != child->name) {
            if (htl::status failure = SetObjectName(child->node, unique); failure.IsError()) {
                // Under its old name it would replace the object that has it.
                Keep_(std::move(failure));
                child->isRefused = true;
                continue;
            }
            child->name = std::move(unique);
        }
        taken.Add(child->name);
    }
}

void Merge::Merge_(Object& first) {
    // Links lead in chains of any length, so objects wait in a list of their own and not on the stack.
    std::vector<Object*> waiting{&first};
    Begin_(first);
    while (!waiting.empty()) {
        Object& object = *waiting.back();
        if (object.next == object.links.size()) {
            Finish_(object);
            waiting.pop_back();
            continue;
        }
        LinkField const& field = object.links[object.next];
        Goal const goal = GoalOf_(field.link);
        if (goal.object && !goal.object->isBegun) {
            Begin_(*goal.object);
            waiting.push_back(goal.object);
            continue;
        }
        Keep_(Rewrite_(field, goal));
        ++object.next;
    }
}

void Merge::Begin_(Object& object) {
    object.isBegun = true;
    object.container = ContainerOf_(object.group);
    if (!object.container) Keep_(CannotPaste());
    if (!object.container || object.isRefused) {
        object.isRefused = object.isChosen = true;
        return;
    }
    // The one record of its group: there is no other that it could become, and nothing to replace it by.
    if (!object.container->isArray) return;
    FindLinks_(object);
}

void Merge::FindLinks_(Object& object) {
    std::vector<H> pending{object.node};
    std::vector<H> below;
    auto const add = [&below](H const& child) {
        ZORedirect const* const redirect = AsRedirect(child);
        if (!redirect || !redirect->IsAlias()) below.push_back(child);
    };
    while (!pending.empty()) {
        H const node = std::move(pending.back());
        pending.pop_back();
        if (IsLinkField(node)) {
            AddLink_(object, node);
            continue;
        }
        below.clear();
        if (!dynamic_cast<ZOArray const*>(node.get()))
            ForEachReference(node, add);
        else if (!HasPlainElements(*node))
            ForEachChild(node, add);
        // In the order of the document.
        pending.insert(pending.end(), below.rbegin(), below.rend());
    }
}

void Merge::AddLink_(Object& object, H const& field) {
    GGID link = GetLink(field, Link::AsStored);
    if (!hzn::gid::IsValid(link)) return;
    if (!hzn::gid::IsFullyQualified(link)) {
        GGID const around = ContainerRef({}, object.group).EnclosingRecordId();
        if (hzn::gid::IsValid(around))
            link.group = hzn::gid::PackedContainerGID(around, link.group);
        else if (!GetSource(&transaction, link))
            return; // inside the object itself, where numbers stay
    }
    object.links.push_back({field, link});
}

Merge::Goal Merge::GoalOf_(GGID const& link) {
    auto const [place, isNew] = goals.try_emplace(hzn::gid::Value(link));
    if (!isNew) return place->second;
    // What lies inside a record that is merged itself goes along with it. One without a number was copied in part.
    GGID const around = ContainerRef({}, link.group).EnclosingRecordId();
    if (hzn::gid::IsValid(around) && !(around == source))
        if (H const record = GetSource(&transaction, around);
            record && (objects.contains(record.get()) || GetObjectIDByTag(record) != 0))
            return place->second = {&ObjectAt_(record, around.group), true};
    H const node = GetSource(&transaction, link);
    // A record of which the document says nothing only keeps the place of others.
    if (!node || (!objects.contains(node.get()) && !node->begin().current)) return {};
    return place->second = {&ObjectAt_(node, link.group), false};
}

Merge::Object& Merge::ObjectAt_(H const& node, GID group) {
    std::unique_ptr<Object>& object = objects[node.get()];
    if (!object) {
        object = std::make_unique<Object>();
        object->node = node;
        object->name = GetObjectName(node);
        object->group = group;
    }
    return *object;
}

htl::status Merge::Rewrite_(LinkField const& field, Goal const& goal) {
    GGID record; // none
    if (Object* const object = goal.object) {
        if (!object->isChosen) Choose_(*object);
        GID const group = object->container ? object->container->group : 0;
        if (goal.isInside)
            record = {hzn::gid::PackedContainerGID({group, object->number}, field.link.group & innerMask),
                      field.link.id};
        else if (object->container && !object->container->isArray)
            record = {group, field.link.id};
        else
            record = {group, object->number};
    }
    if (!hzn::gid::IsValid(record)) record = {};
    // A field that holds a number alone knows its group.
    meta::MetaDataTraits const traits = field.node->GetDataTraits();
    auto const* const atomic = traits.AsAtomic();
    if (atomic && *atomic->type != typeid(GGID) && record.group != 0) record.group = atomic->linkGroup;
    return SetLink(field.node, record);
}

void Merge::Choose_(Object& object) {
    object.isChosen = true;
    if (object.isRefused || !object.container || !object.container->isArray) return;
    Container& container = *object.container;
    if (!object.name.empty()) object.place = FindByName_(container, object.name);
    if (!object.place.empty()) {
        object.exists = true;
        object.number = NumberOf_(container, object.place);
        return;
    }
    H existing = base.Find(container.name);
    std::size_t const length = existing ? existing->Length() : 0;
    existing.release();
    if (htl::status failure = Resize_(container.name, length + 1); failure.IsError()) {
        Keep_(std::move(failure));
        object.isRefused = true;
        return;
    }
    object.place = container.name + '[' + std::to_string(length) + ']';
    object.number = static_cast<GID>(length + 1);
}

htl::status Merge::Resize_(std::string const& name, std::size_t length) {
    H container = base.Find(name);
    if (!container) return ZOError::not_found(name);
    htl::status failure = container->SetLength(length);
    if (!failure.Is(21654)) return failure;
    // Aliases may hold views of elements only to find them sooner.
    container.release();
    ZORegistry::Instance()->InvalidateMemory("");
    container = base.Find(name);
    return container ? container->SetLength(length) : ZOError::not_found(name);
}

void Merge::Finish_(Object& object) {
    if (!object.isChosen) Choose_(object);
    object.links = {};
    if (object.place.empty()) return;
    Keep_(SetObjectIDByTag(object.node, object.number));
    if (object.exists)
        if (H const present = base.Find(object.place); !AreZOsIdenticalUsingPersistance(object.node, present)) {
            names.push_back(object.name);
            if (present) ClearPresent_(present);
        }
    std::size_t const failuresBefore = failures.size();
    Commit_(object);
    H const placed = base.Find(object.place);
    if (!placed) return;
    Keep_(placed->Verify());
    if (!object.container->isIndexed) return;
    // A rule of the target may have refused the name.
    std::wstring const name = failures.size() == failuresBefore ? object.name : GetObjectName(placed);
    if (!name.empty()) object.container->byName.try_emplace(str::FoldCase(name), object.place);
}

void Merge::ClearPresent_(H const& present) {
    present->Clear();
    // Elements that stayed would be taken for those of the new object.
    for (std::string const& array : EmptyArrays(present)) Keep_(Resize_(array, 0));
}

void Merge::Commit_(Object const& object) {
    // What is locked stages nothing more, so its entries need to be sorted only once.
    auto const* const lockable = dynamic_cast<ZOTransactionLockable const*>(&transaction);
    if (!lockable || !lockable->locked) return Keep_(transaction.CommitAs(object.node->Name(), object.place, {}, {}));
    if (!commit) commit.emplace(transaction);
    (*commit)(object.node->Name(), object.place, failures);
}

Merge::Container* Merge::ContainerOf_(GID group) {
    if (auto const found = containers.find(group); found != containers.end()) return found->second.get();
    GGID const around = ContainerRef({}, group).EnclosingRecordId();
    // Beside the pasted container stand others of the same record.
    if (hzn::gid::IsValid(around) && around == source)
        return OpenContainer_(ReferenceTo(target, group & innerMask), GroupOf(target, group & innerMask), group);
    return OpenContainer_(ContainerRef({}, group), group, group);
}

Merge::Container* Merge::OpenContainer_(ContainerRef const& reference, GID group, GID groupInDocument) {
    std::unique_ptr<Container>& container = containers[groupInDocument];
    H const node = GetSource(&base, reference);
    if (!node) return nullptr;
    container = std::make_unique<Container>();
    container->name = node->Name();
    container->group = group;
    container->isArray = dynamic_cast<ZOArray*>(node.get()) != nullptr;
    return container.get();
}

void Merge::Index_(Container& container) {
    container.isIndexed = true;
    container.byName.clear();
    if (H const node = base.Find(container.name))
        ForEachChild(node, [&container](H const& object) {
            if (std::wstring const name = GetObjectName(object); !name.empty())
                container.byName.try_emplace(str::FoldCase(name), object->Name());
        });
}

std::string Merge::FindByName_(Container& container, std::wstring const& name) {
    std::wstring const folded = str::FoldCase(name);
    if (!container.isIndexed) Index_(container);
    auto found = container.byName.find(folded);
    if (found == container.byName.end()) return {};
    // In a container that sorts its objects they may have moved.
    if (str::FoldCase(GetObjectName(base.Find(found->second))) != folded) {
        Index_(container);
        found = container.byName.find(folded);
    }
    return found == container.byName.end() ? std::string() : found->second;
}

GID Merge::NumberOf_(Container const& container, std::string const& place) {
    H const object = base.Find(place);
    GID const number = GetObjectIDByTag(object);
    if (H const found = GetSource(&base, {container.group, number}); found && found->Name() == place) return number;
    // The number that it says leads elsewhere, and so would a link.
    return GetRecordID(object, Link::AsStored).id;
}

} // namespace zo::clip::impl
