// Nodes of an application's own: references that hold a whole identifier, and nodes that show others.
#include "tests/clip/Valley.h"

#include <cstddef>
#include <cstdint>
#include <limits>

namespace valley {
namespace {

using hzn::gid::PackedContainerGID;

/// A view of a field that refers to a record of any group.
class ReferenceField : public zo::ZOWrapperLinkBase, public zo::IZOKind<GGID> {
public:
    explicit ReferenceField(std::size_t offset) : ReferenceField(npos, nullptr, reinterpret_cast<void*>(offset), {}) {}

    static meta::MetaDataTraits Traits() {
        static meta::MetaTraitsAtomic const record = [] {
            meta::MetaTraitsAtomic atomic;
            atomic.kind = meta::Kind::Atomic;
            atomic.byteSize = sizeof(GGID);
            atomic.type = &typeid(GGID);
            return atomic;
        }();
        return meta::MetaDataTraits(record);
    }

    using IZO::Get;
    using IZO::Set;
    GGID GetData() const override { return IsPrototype() ? GGID() : *static_cast<GGID const*>(Memory()); }
    htl::status Get(std::wstring& value) override {
        value = std::to_wstring(hzn::gid::Value(GetData()));
        return {};
    }
    htl::status Set(std::wstring const& value) override { return Set(static_cast<htl::Int64>(std::stoll(value))); }
    htl::status Set(htl::Int64 const& value) override {
        bool const isNone = value == std::numeric_limits<htl::Int64>::max();
        *static_cast<GGID*>(Memory()) = isNone ? GGID() : hzn::gid::FromValue(static_cast<std::uint64_t>(value));
        return {};
    }
    void Clear() override { *static_cast<GGID*>(Memory()) = {}; }
    htl::status Assign(zo::H const& source) override {
        *static_cast<GGID*>(Memory()) = dynamic_cast<zo::IZOKind<GGID> const&>(*source).GetData();
        return {};
    }
    IZO* Clone() override;
    IZO* RemapClone(void* memory, htl::handle<zo::ZOMemMgr> const& manager) override {
        return new ReferenceField(RegID(), Owner(), memory, manager);
    }
    std::string RedirectName() const override { return {}; }

protected:
    ReferenceField(std::size_t regID, zo::ZOSet* owner, void* memory, htl::handle<zo::ZOMemMgr> const& manager)
        : ZOWrapperLinkBase(regID, owner, Traits(), memory, manager) {}
};

struct Held {
    GGID own;
};
/// The detached form, with memory of its own.
class HeldReference final : private Held, public ReferenceField {
public:
    HeldReference(std::size_t regID, zo::ZOSet* owner, GGID const& value)
        : Held{value}, ReferenceField(regID, owner, &own, {}) {}
};

zo::IZO* ReferenceField::Clone() { return new HeldReference(RegID(), Owner(), GetData()); }

/// Each profile refers to what can be seen from it, each material to where it was sampled.
class ReferenceTest : public ClipTest {
protected:
    ReferenceTest() {
        AddReferences(other);
        AddReferences(project);
        project->profiles = {{1, L"West", 0, {{1, L"W1", 12, 0}}},
                             {2, L"East", 0, {{1, L"E1", 8, 0}, {2, L"E2", 9, 1}}}};
    }
    static void AddReferences(Project const& to) {
        to.Use();
        AddReference(to, "Profiles.[].Seen", L"Seen", offsetof(Profile, seen));
        AddReference(to, "Materials.[].Sampled", L"Sampled", offsetof(Material, sampled));
        to.registry->OnPostRegistration();
    }
    static void AddReference(Project const& to, std::string const& name, std::wstring const& tag, std::size_t offset) {
        htl::handle<zo::IODS> const store(new zo::ODS(name, true, true, nullptr));
        to.registry->RegisterZO(store, zo::H(new ReferenceField(offset)), {meta::MetaPersistTraits::Always, tag, true},
                                ReferenceField::Traits());
    }
    static GID WellsOf(GID profile) { return PackedContainerGID({profileGroup, profile}, wellGroup); }
};

TEST_F(ReferenceTest, AReferenceToARecordOfAnyGroupIsFollowedAndRewritten) {
    project->profiles[0].seen = {materialGroup, 3};
    auto const contents = Copy({"Profiles[0]"});
    other.Use();
    Paste(profileGroup, contents);
    EXPECT_EQ(other->profiles.at(0).seen, (GGID{materialGroup, 1}));
    EXPECT_EQ(other->materials.at(0).name, L"Rock");
}

TEST_F(ReferenceTest, AReferenceIntoARecordThatIsPastedGoesAlong) {
    project->profiles[0].seen = {WellsOf(2), 2};
    project->profiles[1].seen = {WellsOf(1), 1};
    auto const contents = Copy({"Profiles"});
    other.Use();
    other->profiles = {{1, L"North", 0, {}}};
    Paste(profileGroup, contents);
    ASSERT_EQ(other->profiles.size(), 3u);
    for (std::size_t i : {1u, 2u}) {
        Profile const& from = other->profiles[i];
        Profile const& to = other->profiles[3 - i];
        EXPECT_EQ(from.seen.group, WellsOf(static_cast<GID>(to.id))) << str::as_cstring(from.name);
        EXPECT_EQ(from.seen.id, to.wells.size()) << "the last well of each";
    }
}

TEST_F(ReferenceTest, AReferenceIntoTheRecordItselfGoesAlong) {
    project->profiles[1].seen = {WellsOf(2), 2};
    auto const contents = Copy({"Profiles[1]"});
    other.Use();
    Paste(profileGroup, contents);
    EXPECT_EQ(other->profiles.at(0).seen, (GGID{WellsOf(1), 2}));
}

TEST_F(ReferenceTest, AReferenceIntoAnotherRecordFindsWhatHasTheSameNameThere) {
    project->profiles[0].seen = {WellsOf(2), 2};
    auto const contents = Copy({"Profiles[0]"});
    Paste(profileGroup, contents);
    ASSERT_EQ(project->profiles.size(), 3u);
    EXPECT_EQ(project->profiles[2].seen, (GGID{WellsOf(2), 2}));
    EXPECT_EQ(project->profiles[1].wells.size(), 2u);
}

TEST_F(ReferenceTest, AReferenceIntoARecordThatComesAlongLaterGoesAlongToo) {
    // Clay was sampled from a well of the profile from which rock was.
    project->materials[1].sampled = {WellsOf(2), 2};
    project->materials[2].sampled = {profileGroup, 2};
    project->regions = {{1, L"Slope", 60, 2, 0, 0, {3}}};
    auto const contents = Copy({"Regions[0]"});
    other.Use();
    other->profiles = {{1, L"North", 0, {}}, {2, L"South", 0, {{1, L"S1", 3, 0}}}};
    Paste(regionGroup, contents);
    ASSERT_EQ(other->profiles.size(), 3u);
    EXPECT_EQ(other->profiles[1].wells.size(), 1u) << "the south was not sampled";
    EXPECT_EQ(other->profiles[2], (Profile{3, L"East", 0, project->profiles[1].wells}));
    for (Material const& material : other->materials) {
        if (material.name == L"Clay") {
            EXPECT_EQ(material.sampled, (GGID{WellsOf(3), 2}));
        }
        if (material.name == L"Rock") {
            EXPECT_EQ(material.sampled, (GGID{profileGroup, 3}));
        }
    }
    EXPECT_EQ(TextOf("Regions[0].Material.Name"), L"Clay");
}

TEST_F(ReferenceTest, AReferenceIntoARecordThatIsNotThereLeadsNowhere) {
    project->profiles[0].seen = {WellsOf(2), 2};
    auto contents = Copy({"Profiles[0]"});
    other.Use();
    EXPECT_TRUE(FailsAs(zo::clip::Deserialize(profileGroup, contents, version, names, "", &reasons), Failure(26502)));
    EXPECT_EQ(other->profiles.at(0).name, L"West");
    EXPECT_EQ(other->profiles[0].seen, GGID());
}

// ---- Nodes that show others

/// Shows the materials below each material.
class Door final : public zo::IZO, public zo::ZORedirect {
public:
    explicit Door(std::size_t regID = npos, zo::ZOSet* owner = nullptr) : IZO(regID, owner, npos) {
        SetRedirector(this);
    }
    IZO* Clone() override { return new Door(RegID(), Owner()); }
    std::string RedirectName() const override { return "Materials"; }
    zo::ZOFwrdIterator begin() override { return Redirect()->begin(); }
};

TEST_F(ReferenceTest, NodesThatLeadBackEndTheWalk) {
    htl::handle<zo::IODS> const store(new zo::ODS("Materials.[].Others", true, true, nullptr));
    project.registry->RegisterZO(store, zo::H(new Door), {meta::MetaPersistTraits::Always, L"Others"}, {});
    project.registry->OnPostRegistration();
    project->materials = {{1, L"Fill", 5, 0}, {2, L"Clay", 25, 0}, {3, L"Rock", 400, 0}};
    auto const contents = Copy({"Materials[0]"});
    EXPECT_EQ(contents.objects, L"10");
    EXPECT_NE(contents.document.find(L">Rock<"), std::wstring::npos) << "it is shown below the fill";
}

TEST_F(ReferenceTest, AnAliasIsPassedOver) {
    ASSERT_TRUE(zo::kit::Register({[](zo::kit::Kit& kit) { kit.Alias("Cover", L"Cover", "Materials[0]"); }}).IsClean());
    EXPECT_EQ(Copy({"Materials[2]", "Cover"}).document, Copy({"Materials[2]"}).document);
    EXPECT_NE(Copy({"Materials[2]", "Cover.Cohesion"}).document.find(L">Fill<"), std::wstring::npos)
        << "what stands below it does not";
}

} // namespace
} // namespace valley
