// Groups of records: which numbers they have, and where a plan puts their records.
#pragma once

#include "Common/kit/Plan.h"

#include "support/gid.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace zo::kit::impl {

/// Groups of records inside other records: those above the plain ones, since only what is no plain group is told
/// together with the record around it.
inline constexpr GID lastGroup = 255;
constexpr bool IsInnerGroup(GID group) noexcept { return group > 125 && group <= lastGroup; }

/// What a container's description asks for the group of its records.
using GroupFunction = std::uint32_t (*)(void const* container);

template <std::uint32_t Group>
std::uint32_t ThisGroup(void const*) {
    return Group;
}

/// A container's description has room for a plain function only, so each group has one.
inline constexpr auto groupFunctions = []<std::size_t... Group>(std::index_sequence<Group...>) {
    return std::array<GroupFunction, sizeof...(Group)>{&ThisGroup<Group>...};
}
(std::make_index_sequence<lastGroup + 1>());

/// Null for no group. The group was checked.
inline GroupFunction FunctionOfGroup(std::uint32_t group) { return group ? groupFunctions.at(group) : nullptr; }

/// A place in the tree where records of a group stand.
struct GroupPlace {
    GID group = 0;
    bool elements = false;  ///< the elements of a container; else one structure, number 1
    std::string name;       ///< of the container or the structure, in normal form
    GID around = 0;         ///< the group of the nearest record around it, 0 for none
    std::string aroundName; ///< that record's name, in normal form
    Place place;            ///< of the declaration
    std::wstring line;      ///< its name, for people

    /// The name from the record around it on, "" for that record itself.
    std::string Below() const {
        if (around == 0) return name;
        return name.size() > aroundName.size() ? name.substr(aroundName.size() + 1) : std::string();
    }
};

/// Finds all places of a plan's records. The plan has no type that contains itself.
class GroupWalk {
public:
    static std::vector<GroupPlace> Run(Plan const& plan) {
        GroupWalk walk(plan);
        for (BranchPlan const& branch : plan.branches)
            if (branch.object) walk.Visit_(branch.line.name, branch.line.shape, branch.line, {});
        return std::move(walk.places);
    }

private:
    /// The nearest record above.
    struct Around {
        GID group = 0;
        std::string name;
    };

    explicit GroupWalk(Plan const& plan) : plan(plan) {}

    void Add_(GID group, bool elements, std::string const& name, Around const& around, Place place,
              std::wstring const& line) {
        places.push_back({group, elements, name, around.group, around.name, place, line});
    }

    void Visit_(std::string const& name, Shape const& shape, Line const& line, Around const& above) {
        Around around = above;
        switch (shape.kind) {
        case Shape::Value:
        case Shape::Alias: return;
        case Shape::Record: {
            RecordPlan const* const record = plan.Find(*shape.type);
            if (!record) return;
            if (GID const group = record->options.recordGroup) {
                Add_(group, false, name, above, record->place, record->name);
                around = {group, name};
            }
            for (Line const& part : record->lines) Visit_(name + "." + part.name, part.shape, part, around);
            return;
        }
        case Shape::Array:
        case Shape::Map:
            if (GID const group = shape.recordGroup) {
                Add_(group, true, name, above, line.place, str::as_wstring(line.name));
                around = {group, name + ".[]"};
            }
            return Visit_(name + ".[]", *shape.element, line, around);
        case Shape::Pair: return Visit_(name + ".second", *shape.second, line, around);
        case Shape::Wrap: return Visit_(name + ".Items", *shape.element, line, around);
        }
    }

    Plan const& plan;
    std::vector<GroupPlace> places;
};

} // namespace zo::kit::impl
