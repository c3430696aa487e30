// How an application declares its structures to the library.
//
// A module is a function that says, one line for each part, which structures there are and where their objects come
// from. The application hands over its list of modules; nothing runs before main, and nothing is registered unless
// all lines are in order. The guide is docs/guide.md; docs/kit.md has all that a line can say.
//
//     void SoilModule(zo::kit::Kit& kit) {
//         kit.Enum<Drainage>(drainageWords);
//         kit.Record<Soil>("Soil")
//             .Field<&Soil::name>("Name", L"Name")
//             .Field<&Soil::friction>("Friction", L"Phi", {.dflt = 30.0, .unit = Kind::Angle, .min = 0.0, .max = 60.0})
//             .Field<&Soil::drainage>("Drainage", L"Drainage");
//         kit.Record<Project>("Project").Array<&Project::soils>("Soils", L"Soils[Soil]");
//         kit.Branch<Project>("Project", L"Project", [] { return &TheProject(); });
//     }
//
//     zo::kit::Report const report = zo::kit::Register({&SoilModule});
//     if (!report.IsClean()) std::wcerr << report.Text();
//
// What a document gives back. All declared values but these: a number that is not finite comes back as the missing
// value of its type; the sign of a zero and the values of what is declared with `Persist::Never` are not kept.
// - Numbers, truth values and enumerations in a sequence are one text with commas. Their elements have no missing value
//   unless the line names one, for a place without text would be lost: then each value gets an element of its own, as
//   texts do.
// - In an array of containers, each inner container whose length can be 0 lies in a structure as its one part "Items"
//   (`Rows[2].Items[0]`), since a document leaves out an empty array and the rows behind it would move up.
// - A key that a map has already is refused; its element is kept under a key behind all others.
#pragma once

#include "Common/kit/Check.h"
#include "Common/kit/Expand.h"
#include "Common/kit/Options.h"
#include "Common/kit/Plan.h"
#include "Common/kit/Prototype.h"
#include "Common/kit/Record.h"
#include "Common/zo/zo.h"

#include <concepts>
#include <functional>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace zo::kit {

/// Takes the declarations of the modules. Made by `Register`; a module uses it while its function runs.
class Kit {
public:
    Kit(Kit const&) = delete;
    Kit& operator=(Kit const&) = delete;

    /// Declares a structure, once for all places where it is used. `name` is for people, in mistakes.
    ///
    /// An aggregate is made once, to learn the defaults of its members.
    template <class S>
    requires std::is_class_v<S> kit::Record<S> Record(std::string name, RecordOptions options = {},
                                                      Place place = Place::Here()) {
        impl::RecordPlan& record = plan.records.emplace_back();
        record.name = str::as_wstring(name);
        record.type = &typeid(S);
        record.byteSize = sizeof(S);
        record.slot = impl::SlotOf<impl::RecordKey<S>>::Ref().slot;
        record.place = place;
        record.options = std::move(options);
        if (!plan.recordOf.emplace(typeid(S), &record).second)
            plan.Complain(place, L"{" + record.name + L"}: the type {" + str::as_wstring(meta::TypeName(typeid(S))) +
                                     L"} is declared already.");
        std::shared_ptr<S const> fresh;
        if constexpr (std::is_aggregate_v<S> && std::is_default_constructible_v<S>) fresh = std::make_shared<S>();
        return kit::Record<S>(record, std::move(fresh));
    }

    /// Declares an enumeration by its words: value, text in documents, abbreviated text, text for people. The table is
    /// copied.
    template <meta::EnumType E>
    void Enum(std::span<meta::EnumWord const> words, Place place = Place::Here()) {
        for (impl::EnumPlan const& other : plan.enums)
            if (*other.type == typeid(E)) {
                plan.Complain(place, L"the enumeration {" + str::as_wstring(meta::TypeName(typeid(E))) +
                                         L"} is declared already.");
                break;
            }
        plan.enums.push_back({&typeid(E), std::make_shared<impl::WordTable>(words), place});
    }

    /// Declares a top-level object: a structure, a container or a single value. `object` gives a T*, null while there
    /// is none: the branch then comes and goes with it.
    ///
    /// `name` may lie below a group, "Results.Slips". Lifetime: `object` and what it gives are asked for as long as the
    /// registry is in use.
    template <class T, class F>
    requires std::convertible_to<std::invoke_result_t<F&>, T*> void
    Branch(std::string name, std::wstring tag, F object, BranchOptions options = {}, Place place = Place::Here()) {
        impl::RulesPointer rules;
        if constexpr (Value<impl::Innermost<T>>)
            rules = std::make_shared<impl::ValueRulesOf<impl::Innermost<T>>>(Options<impl::Innermost<T>>{},
                                                                             impl::Innermost<T>());
        impl::BranchPlan branch;
        branch.line.name = std::move(name);
        branch.line.tag = std::move(tag);
        branch.line.place = place;
        impl::SlotRef const* slots = impl::SlotsOf<T, impl::BranchKey<T>>();
        branch.line.shape = impl::ShapeOf<T>(slots, rules);
        branch.line.persist = options.persist;
        branch.line.shape.recordGroup = options.recordGroup;
        branch.object = [object = std::move(object)]() mutable -> void* { return static_cast<T*>(object()); };
        plan.branches.push_back(std::move(branch));
    }

    /// Declares another name for a node: `kit.Alias("Cover", L"Cover", "Project.Soils[0]")`. `name` may lie below a
    /// group. Never in documents. The source is found by its full name, and need not be there.
    void Alias(std::string name, std::wstring tag, std::string source, AliasOptions options = {},
               Place place = Place::Here()) {
        Add_(std::move(name), std::move(tag), place,
             {.kind = options.kept ? impl::AliasRules::Kept : impl::AliasRules::ByName, .name = std::move(source)});
    }

    /// The same with a source that is found by its full tag, "Project.Soils[1]", and kept. A name is found faster.
    void AliasByTag(std::string name, std::wstring tag, std::wstring source, Place place = Place::Here()) {
        Add_(std::move(name), std::move(tag), place, {.kind = impl::AliasRules::ByTag, .tag = std::move(source)});
    }

    /// Declares a structure whose fields stand elsewhere, each with its own name and the full name of its source:
    /// `kit.AliasSet("Cover", L"Cover", {{"Cohesion", "Project.Soils[0].Cohesion"}})`. Never in documents.
    void AliasSet(std::string name, std::wstring tag, ZOAliasSet::Pairs fields, Place place = Place::Here()) {
        Add_(std::move(name), std::move(tag), place, {.kind = impl::AliasRules::Set, .pairs = std::move(fields)});
    }

    /// Declares a level that has no object of its own, for branches below it.
    void Group(std::string name, std::wstring tag, Place place = Place::Here()) {
        impl::BranchPlan group;
        group.line.name = std::move(name);
        group.line.tag = std::move(tag);
        group.line.place = place;
        group.line.shape.kind = impl::Shape::Wrap; // a structure
        plan.branches.push_back(std::move(group));
    }

private:
    friend class Registration;
    Kit() = default;

    void Add_(std::string name, std::wstring tag, Place place, impl::AliasRules rules) {
        plan.branches.push_back({impl::AliasLine(name, tag, place, std::move(rules)), {}});
    }

    impl::Plan plan;
};

/// A part of an application that declares structures.
struct Module {
    std::string name;                  ///< may be empty
    std::function<void(Kit&)> declare; ///< called once, by `Register`

    /// A function, or anything that is called like one. The name is for mistakes in the list itself.
    template <class F>
    requires std::invocable<F&, Kit&> Module(F function, Place place = Place::Here())
        : declare(std::move(function)), place(place) {}
    Module(std::string name, std::function<void(Kit&)> declare, Place place = Place::Here())
        : name(std::move(name)), declare(std::move(declare)), place(place) {}

    Place place; ///< of the module in the list
};

/// The work of `Register`.
class Registration {
public:
    /// As `Register`.
    static Report Run(std::vector<Module> const& modules) {
        Kit kit;
        std::set<std::string_view> names;
        for (Module const& module : modules) {
            if (!module.declare) {
                kit.plan.Complain(module.place, L"a module has no function.");
                continue;
            }
            if (!module.name.empty() && !names.insert(module.name).second)
                kit.plan.Complain(module.place,
                                  L"the module {" + str::as_wstring(module.name) + L"} is in the list twice.");
            module.declare(kit);
        }
        impl::Checker(kit.plan).Run();
        Report report{std::move(kit.plan.mistakes)};
        if (report.IsClean()) {
            impl::Expansion(kit.plan).Run();
            ZORegistry::Instance()->OnPostRegistration();
        }
        return report;
    }
};

/// Registers what the modules declare in the calling thread's current registry, and ends its registration.
///
/// All or nothing: with a mistake anywhere the registry stays as it was, and the report says what is wrong and where.
/// It may be called again with other modules; each call knows only the types that its own modules declare. The modules
/// and what they are made of may go afterwards.
inline Report Register(std::vector<Module> const& modules) { return Registration::Run(modules); }

} // namespace zo::kit
