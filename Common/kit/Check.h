// Finds the mistakes of a plan, all of them, before anything is registered.
#pragma once

#include "Common/kit/Groups.h"
#include "Common/kit/Plan.h"
#include "Common/kit/RecordTable.h"
#include "Common/redirect/Placeholders.h"
#include "Common/registry/Find.h"
#include "Common/registry/ZORegistry.h"

#include "support/text.h"
#include "support/typename.h"
#include "support/xml/XmlFile.h"

#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace zo::kit::impl {

/// A tag without the name of its elements, and that name: "Soils[Soil]".
inline std::pair<std::wstring_view, std::wstring_view> SplitTag(std::wstring_view tag) {
    std::size_t const open = tag.find(L'[');
    if (open == tag.npos || !tag.ends_with(L']')) return {tag, {}};
    return {tag.substr(0, open), tag.substr(open + 1, tag.size() - open - 2)};
}

/// The parent in a name, "" without one.
inline std::string_view ParentOf(std::string_view name) {
    std::size_t const dot = name.rfind('.');
    return dot == name.npos ? std::string_view() : name.substr(0, dot);
}

class Checker {
public:
    explicit Checker(Plan& plan) : plan(plan) {}

    void Run() {
        for (EnumPlan const& declared : plan.enums)
            declared.words->Check([&](std::wstring const& text) {
                plan.Complain(declared.place, Quoted_(meta::TypeName(*declared.type)) + L": " + text);
            });
        for (RecordPlan const& record : plan.records) CheckRecord_(record);
        CheckBranches_();
        for (RecordPlan const& record : plan.records) CheckCycle_(record);
        for (RecordPlan const& record : plan.records)
            for (Line const& line : record.lines) CheckElements_(line);
        for (BranchPlan const& branch : plan.branches)
            if (branch.object) CheckElements_(branch.line);
        if (!endless) CheckGroups_();
    }

private:
    enum class State { Unseen, Open, Done };

    static std::wstring Quoted_(std::string const& text) { return L"{" + str::as_wstring(text) + L"}"; }
    static std::wstring Quoted_(std::wstring_view text) { return L"{" + std::wstring(text) + L"}"; }
    void Complain_(Line const& line, std::wstring const& text) {
        plan.Complain(line.place, Quoted_(line.name) + L": " + text);
    }

    void CheckName_(Line const& line, std::string_view name) {
        if (name.empty()) return Complain_(line, L"a name is needed.");
        if (name.find_first_of(".[]()@$") != name.npos)
            Complain_(line, L"a name can hold none of . [ ] ( ) @ $.");
        else if (name.front() >= '0' && name.front() <= '9')
            Complain_(line, L"a name that begins with a digit is an index.");
        else if (name.front() == ':')
            Complain_(line, L"a name that begins with \":\" is no child in documents.");
    }

    void CheckTagPart_(Line const& line, std::wstring_view tag) {
        if (tag.empty()) return Complain_(line, L"a tag is needed.");
        if (tag == L"Len" || tag == L"Missing") return Complain_(line, L"the tag " + Quoted_(tag) + L" is reserved.");
        if (str::IsDigit(tag.front()))
            return Complain_(line, L"the tag " + Quoted_(tag) + L" begins with a digit, so it would be an index.");
        if (tag.find_first_of(L".[]") != tag.npos)
            return Complain_(line, L"the tag " + Quoted_(tag) + L" holds a \".\" or a bracket.");
        if (!sys::file::IsXmlName(tag)) Complain_(line, L"the tag " + Quoted_(tag) + L" is no name in XML.");
    }

    void CheckTag_(Line const& line) {
        auto const [tag, element] = SplitTag(line.tag);
        bool const hasElements = line.shape.kind == Shape::Array || line.shape.kind == Shape::Map;
        CheckTagPart_(line, hasElements ? tag : std::wstring_view(line.tag));
        if (hasElements && tag.size() != line.tag.size()) CheckTagPart_(line, element);
    }

    void CheckGroup_(Place const& place, std::wstring const& name, GID group) {
        if (group != 0 && !hzn::gid::IsPlainGroup(group) && !IsInnerGroup(group))
            plan.Complain(place, Quoted_(name) + L": the group " + std::to_wstring(group) +
                                     L" is none of 4 to 125, nor of 126 to 255 for records inside others.");
    }

    void CheckRecord_(RecordPlan const& record) {
        CheckGroup_(record.place, record.name, record.options.recordGroup);
        std::set<std::string_view> names;
        std::set<std::wstring_view> tags;
        for (Line const& line : record.lines) {
            CheckName_(line, line.name);
            CheckTag_(line);
            if (!line.name.empty() && !names.insert(line.name).second)
                Complain_(line, L"the name is taken in " + Quoted_(record.name) + L".");
            if (std::wstring_view const tag = SplitTag(line.tag).first; !tag.empty() && !tags.insert(tag).second)
                Complain_(line, L"the tag " + Quoted_(tag) + L" is taken in " + Quoted_(record.name) + L".");
            // The description of a structure is its type's, wherever it is used.
            CheckGroup_(line.place, str::as_wstring(line.name), line.shape.recordGroup);
            if (line.shape.slot && line.shape.kind != Shape::Record && !slots.insert(line.shape.slot).second)
                Complain_(line, L"this part of " + Quoted_(record.name) + L" is declared already.");
            CheckShape_(line, line.shape);
            if (record.options.attributes && line.persist != Persist::Never) CheckAttribute_(record, line);
        }
    }

    void CheckAttribute_(RecordPlan const& record, Line const& line) {
        switch (line.shape.kind) {
        case Shape::Value: return;
        case Shape::Array:
            if (!IsOneText(plan, line.shape))
                Complain_(line, L"this array is no single text, so it can't be an attribute of " +
                                    Quoted_(record.name) + L".");
            return;
        case Shape::Map: return Complain_(line, L"a map can't be an attribute of " + Quoted_(record.name) + L".");
        default: return Complain_(line, L"a structure can't be an attribute of " + Quoted_(record.name) + L".");
        }
    }

    void CheckShape_(Line const& line, Shape const& shape) {
        switch (shape.kind) {
        case Shape::Value: {
            Words const words = plan.WordsOf(*shape.value);
            if (shape.value->EnumType() && !words)
                Complain_(line, L"the enumeration " + Quoted_(meta::TypeName(*shape.value->EnumType())) +
                                    L" is not declared.");
            shape.value->Check(words, [&](std::wstring const& text) { Complain_(line, text); });
            return;
        }
        case Shape::Record:
            if (!plan.Find(*shape.type))
                Complain_(line, L"the type " + Quoted_(meta::TypeName(*shape.type)) + L" is not declared.");
            return;
        case Shape::Pair: {
            Line key = line, value = line; // for the tags
            key.tag = shape.keyTag;
            key.shape = *shape.first;
            value.tag = shape.valueTag;
            value.shape = *shape.second;
            CheckTag_(key);
            CheckTag_(value);
            if (SplitTag(shape.keyTag).first == SplitTag(shape.valueTag).first)
                Complain_(line, L"key and value have the same tag.");
            CheckShape_(line, *shape.second);
            return;
        }
        case Shape::Alias: return CheckAlias_(line, *shape.alias);
        default: return CheckShape_(line, *shape.element);
        }
    }

    void CheckAlias_(Line const& line, AliasRules const& alias) {
        if (alias.kind != AliasRules::Set) {
            if (alias.name.empty() && alias.tag.empty()) Complain_(line, L"an alias needs a source.");
            return;
        }
        std::set<std::string_view> fields;
        for (auto const& [field, source] : alias.pairs) {
            CheckName_(line, field);
            if (source.empty()) Complain_(line, L"the field " + Quoted_(field) + L" needs a source.");
            if (!fields.insert(field).second) Complain_(line, L"the field " + Quoted_(field) + L" comes twice.");
        }
    }

    void CheckBranches_() {
        std::set<std::string_view> names;
        std::set<std::pair<std::string_view, std::wstring_view>> tags; // with the parent's name
        std::set<std::string_view> groups;
        for (BranchPlan const& branch : plan.branches)
            if (branch.IsGroup()) groups.insert(branch.line.name);

        for (BranchPlan const& branch : plan.branches) {
            Line const& line = branch.line;
            std::string_view const parent = ParentOf(line.name);
            CheckName_(line, parent.empty() ? std::string_view(line.name)
                                            : std::string_view(line.name).substr(parent.size() + 1));
            CheckTag_(line);
            if (!branch.IsGroup()) CheckShape_(line, line.shape);
            CheckGroup_(line.place, str::as_wstring(line.name), line.shape.recordGroup);
            if (line.name.empty()) continue;

            if (!names.insert(line.name).second || RegisteredNode(line.name)) Complain_(line, L"the name is taken.");
            IZO* parentNode = parent.empty() ? ZORegistry::Instance()->Root().get() : nullptr;
            if (!parent.empty()) {
                parentNode = RegisteredNode(std::string(parent));
                bool const isGroup = groups.contains(parent) || dynamic_cast<ZOParentPlaceholder*>(parentNode);
                if (!isGroup && (parentNode || names.contains(parent)))
                    Complain_(line, L"the parent " + Quoted_(std::string(parent)) +
                                        L" is no group: what lies in an object is declared with its type.");
                else if (!isGroup)
                    Complain_(line, L"the parent " + Quoted_(std::string(parent)) + L" is missing.");
            }
            std::wstring_view const tag = SplitTag(line.tag).first;
            bool const registered = (parent.empty() && tag == str::as_wstring(ZORegistry::RootName())) ||
                                    (parentNode && SubRegIDByTag(parentNode->RegID(), std::wstring(tag)) != IZO::npos);
            if (!tag.empty() && (!tags.insert({parent, tag}).second || registered))
                Complain_(line, L"the tag " + Quoted_(tag) + L" is taken.");
        }
    }

    /// The type of a shape's records, null for values.
    static std::type_info const* RecordType_(Shape const& shape) {
        switch (shape.kind) {
        case Shape::Value:
        case Shape::Alias: return nullptr;
        case Shape::Record: return shape.type;
        case Shape::Pair: return RecordType_(*shape.second);
        default: return RecordType_(*shape.element);
        }
    }

    /// A load makes elements and leaves their containers as they come, since a document leaves out an empty one.
    void CheckElements_(Line const& line) {
        if (line.shape.kind != Shape::Array && line.shape.kind != Shape::Map) return;
        if (line.persist == Persist::Never) return;
        if (std::type_info const* const type = RecordType_(line.shape)) CheckElement_(plan.Find(*type));
    }
    void CheckElement_(RecordPlan const* record) {
        if (!record || !elements.insert(record).second) return;
        for (Line const& line : record->lines) {
            if (line.persist == Persist::Never) continue;
            if (line.filled)
                Complain_(line, L"a new " + Quoted_(record->name) +
                                    L" is an element that has something in it, so an empty one would be lost.");
            if (std::type_info const* const type = RecordType_(line.shape)) CheckElement_(plan.Find(*type));
        }
    }

    void CheckCycle_(RecordPlan const& record) {
        State& state = states[&record];
        if (state != State::Unseen) return;
        state = State::Open;
        for (Line const& line : record.lines) {
            std::type_info const* const type = RecordType_(line.shape);
            RecordPlan const* const below = type ? plan.Find(*type) : nullptr;
            if (!below) continue;
            if (states[below] == State::Open) {
                endless = true;
                Complain_(line,
                          L"the type " + Quoted_(below->name) + L" contains itself: its parts would have no end.");
            } else {
                CheckCycle_(*below);
            }
        }
        states[&record] = State::Done;
    }

    void CheckGroups_() {
        for (BranchPlan const& branch : plan.branches)
            if (branch.line.shape.recordGroup && branch.line.shape.kind != Shape::Array &&
                branch.line.shape.kind != Shape::Map)
                Complain_(branch.line, L"only a container holds records: a structure has the group of its type.");

        htl::handle<RecordTable> const earlier = TableOfRegistry();
        RecordTable own;
        std::set<std::pair<std::string, unsigned>> told; // a line may stand in many places
        for (GroupPlace const& group : GroupWalk::Run(plan)) {
            std::wstring const mistake = MistakeOf_(group, own, earlier.get());
            own.Add(group);
            if (!mistake.empty() &&
                told.insert({group.place.file + str::as_cstring(group.line), group.place.line}).second)
                plan.Complain(group.place, Quoted_(group.line) + L": " + mistake);
        }
        for (RecordPlan const& record : plan.records)
            for (Line const& line : record.lines) {
                GID const group = line.shape.linkGroup;
                if (!line.shape.link || own.Has(group) || (earlier && earlier->Has(group))) continue;
                Complain_(line, IsInnerGroup(group)
                                    ? L"the records of group " + std::to_wstring(group) +
                                          L" lie inside others, so no number alone leads to one."
                                    : L"no records of group " + std::to_wstring(group) + L" are declared.");
            }
    }

    /// What keeps the records of a place from being told by group and number; "" if nothing does.
    static std::wstring MistakeOf_(GroupPlace const& group, RecordTable const& own, RecordTable const* earlier) {
        std::wstring const subject = L"the group " + std::to_wstring(group.group);
        std::string const below = group.Below();
        if (!hzn::gid::IsPlainGroup(group.group) && !IsInnerGroup(group.group)) return {}; // said with its line
        if (below.empty()) return L"each element would be record 1 of group " + std::to_wstring(group.group) + L".";
        if (hzn::gid::IsPlainGroup(group.group)) {
            if (group.name.find("[]") != std::string::npos)
                return subject + L" lies in elements: inside other records it has to be one of 126 to 255.";
        } else {
            if (group.around == 0) return subject + L" lies in no other record: it has to be one of 4 to 125.";
            if (!hzn::gid::IsPlainGroup(group.around))
                return subject + L" lies in a record that is inside another one itself.";
            if (below.find("[]") != std::string::npos) return subject + L" lies in elements that are no records.";
        }
        std::string taken = own.Taken(group);
        if (taken.empty() && earlier) taken = earlier->Taken(group);
        if (!taken.empty()) return subject + L" is taken by " + Quoted_(taken) + L".";
        return {};
    }

    Plan& plan;
    bool endless = false; // a type contains itself
    std::set<Slot const*> slots;
    std::set<RecordPlan const*> elements; // that were looked at
    std::unordered_map<RecordPlan const*, State> states;
};

} // namespace zo::kit::impl
