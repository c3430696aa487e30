#include "examples/slope/SetValues.h"

#include "examples/slope/Text.h"
#include "examples/slope/Tree.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <string_view>
#include <utility>

namespace slope {

namespace {

/// The components of a name: "Lines[1].Points" is Lines, 1, Points.
using Components = std::vector<std::string>;

constexpr std::string_view separators = ".[]";
constexpr std::size_t mostRedirects = 100; // on the way to one value

/// Whether a name is that of an array's length.
bool IsLength(std::string_view name) { return name.ends_with(".Len"); }

/// An index counts, however it is written: "[01]" is "[1]".
std::string_view WithoutZeros(std::string_view component) {
    if (component.find_first_not_of("0123456789") != component.npos) return component;
    return component.substr(std::min(component.find_first_not_of('0'), component.size() - 1));
}

/// A length stands for its array, since it decides about all that is in there.
Components Split(std::string_view name) {
    Components components;
    for (std::size_t at = 0; at < name.size();) {
        std::size_t const end = std::min(name.find_first_of(separators, at), name.size());
        if (end > at) components.emplace_back(WithoutZeros(name.substr(at, end - at)));
        at = end + 1;
    }
    if (!components.empty() && components.back() == "Len") components.pop_back();
    return components;
}

bool IsBelow(Components const& name, Components const& top) {
    return top.size() < name.size() && std::equal(top.begin(), top.end(), name.begin());
}

/// A wanted value whose node is there.
struct Found {
    std::size_t index;            // among the wanted ones
    std::string name;             // of the node itself
    Components place;             // the same
    std::vector<Components> ways; // what the name given leads through, and the place
};

class Setter {
public:
    Setter(Document& document, std::vector<WantedValue> const& wanted, bool tags, std::vector<ChangedValue>& changed)
        : document(document), wanted(wanted), changed(changed), tags(tags), wasThere(wanted.size()) {
        for (std::size_t i = 0; i < wanted.size(); ++i) waiting.push_back(i);
    }

    std::vector<std::string> Run() {
        while (!waiting.empty()) {
            std::vector<Found> const ready = TakeReady_();
            if (ready.empty()) break;
            Commit_(ready);
        }
        for (std::size_t const index : waiting) {
            std::string const& name = wanted[index].name;
            problems.emplace(index, wasThere[index]
                                        ? Gone_(name)
                                        : std::string("There is no ") + (tags ? "tag " : "name ") + name + ".");
        }
        for (std::size_t i = 0; i < changed.size(); ++i) {
            if (zo::H const node = document.Find(changed[i].name))
                changed[i].after = ValueText(node);
            else
                problems.emplace(changedBy[i], Gone_(wanted[changedBy[i]].name));
        }
        std::vector<std::string> sentences;
        for (auto& [index, problem] : problems) sentences.push_back(std::move(problem));
        return sentences;
    }

private:
    static std::string Gone_(std::string const& name) {
        return name + " isn't there any more once the other values are set.";
    }

    zo::H Lookup_(std::string const& name, bool byTag) { return byTag ? document.FindTag(name) : document.Find(name); }

    /// All that a name leads through: the links and aliases on its way, and on theirs.
    void FollowWays_(std::string const& asked, std::vector<Components>& ways) {
        std::vector<std::pair<std::string, bool>> names{{asked, tags}};
        std::set<std::string> seen;
        for (std::size_t i = 0; i < names.size() && i < mostRedirects; ++i) {
            auto const [name, byTag] = names[i];
            for (std::size_t end = 0; end < name.size();) {
                end = std::min(name.find_first_of(separators, end + 1), name.size());
                zo::H const node = Lookup_(name.substr(0, end), byTag);
                auto const* const redirect = dynamic_cast<zo::ZORedirect const*>(node.get());
                // A link at the end is the value that was asked for.
                if (!redirect || (end == name.size() && !redirect->IsAlias())) continue;
                ways.push_back(Split(node->Name()));
                ways.back().emplace_back("@");
                std::string const target = redirect->RedirectName();
                if (target.empty() || !seen.insert(target).second) continue;
                ways.push_back(Split(target));
                names.emplace_back(target, false);
            }
        }
    }

    /// Those of the waiting values that none of the others can make, remove or lead elsewhere; they wait no longer.
    std::vector<Found> TakeReady_() {
        std::vector<Found> found;
        for (std::size_t const index : waiting) {
            zo::H node = Lookup_(wanted[index].name, tags);
            for (std::size_t i = 0; node && IsAlias(node) && i < mostRedirects; ++i)
                node = dynamic_cast<zo::ZORedirect const&>(*node).Redirect();
            if (!node) continue;
            wasThere[index] = true;
            Found& one = found.emplace_back(Found{index, node->Name(), {}, {}});
            one.place = Split(one.name);
            FollowWays_(wanted[index].name, one.ways);
            one.ways.push_back(one.place);
        }
        std::vector<Found> ready;
        for (Found const& one : found) {
            auto const decides = [&one](Found const& other) {
                return std::any_of(one.ways.begin(), one.ways.end(), [&](Components const& way) {
                    return other.index != one.index && IsBelow(way, other.place);
                });
            };
            if (std::none_of(found.begin(), found.end(), decides)) ready.push_back(one);
        }
        if (ready.empty() && !found.empty()) ready.push_back(found.front()); // they lead through each other
        for (Found const& one : ready) std::erase(waiting, one.index);
        return ready;
    }

    void Commit_(std::vector<Found> const& ready) {
        auto const transaction = document.Begin();
        std::size_t const first = changed.size();
        for (Found const& one : ready)
            if (std::string problem = Stage_(*transaction, one); !problem.empty())
                problems.emplace(one.index, std::move(problem));
        document.MakeCurrent();
        if (htl::status const failure = transaction->Commit("", ""); failure.IsError())
            problems.emplace(wanted.size(), Message(failure));
        document.UpdateCalculated();
        // What can't be written at all is no failure of a commit, such as the length of a list that has a fixed one.
        for (std::size_t i = first; i < changed.size(); ++i)
            if (zo::H const node = document.Find(changed[i].name); node && ValueText(node) != changed[i].after)
                problems.emplace(changedBy[i],
                                 wanted[changedBy[i]].name + " can't be set to " + wanted[changedBy[i]].text + ".");
    }

    /// The problem, "" for none.
    std::string Stage_(zo::ZOTransaction& transaction, Found const& one) {
        WantedValue const& value = wanted[one.index];
        if (!given.insert(one.place).second) return value.name + " is given twice.";
        zo::H const node = document.Find(one.name);
        if (!node->IsValueType()) return NoValue(node);
        meta::MetaDataTraits const traits = node->GetDataTraits();
        if (traits && !meta::CallRule(traits.Descriptor()->editable, node.get())) return one.name + " can't be edited.";
        zo::H const staged = transaction.Find(one.name);
        if (!staged) return value.name + " can't be edited.";
        if (htl::status const refusal = staged->Set(Wide(value.text)); refusal.IsError())
            return value.name + ": " + Message(refusal);
        if (IsLength(one.name)) {
            __int64 length = 0;
            if (staged->IsUndefined() || staged->Get(length).IsError() || length > static_cast<__int64>(mostElements))
                return value.name + ": a list has a length from 0 to " + Count(mostElements) + ".";
        }
        changedBy.push_back(one.index);
        changed.push_back(
            {one.name, ValueText(node), ValueText(staged), one.ways.size() > 1 ? value.name : std::string()});
        return {};
    }

    Document& document;
    std::vector<WantedValue> const& wanted;
    std::vector<ChangedValue>& changed;
    bool tags;
    std::vector<bool> wasThere;
    std::vector<std::size_t> waiting;
    std::set<Components> given;
    std::vector<std::size_t> changedBy;          // beside `changed`: the index of the wanted value
    std::map<std::size_t, std::string> problems; // by the index of the wanted value, one each
};

} // namespace

std::vector<std::string> SetValues(Document& document, std::vector<WantedValue> const& wanted, bool tags,
                                   std::vector<ChangedValue>& changed) {
    changed.clear();
    return Setter(document, wanted, tags, changed).Run();
}

} // namespace slope
