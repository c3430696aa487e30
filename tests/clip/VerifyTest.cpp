// Objects that check themselves, in a registry that an application has filled by hand.
#include "tests/clip/Valley.h"
#include "tests/registry/Rows.h"

#include <cstddef>
#include <memory>

namespace valley {
namespace {

using meta::MetaDataTraits;
using meta::MetaPersistTraits;
using zo::H;
using zo::IZO;

constexpr GID tankGroup = 40;

struct Tank {
    int id = 0;
    std::wstring name;
    double height = 0; // m
    double level = 0;  // m

    bool operator==(Tank const&) const = default;
};

MetaDataTraits TankTraits() {
    static MetaDataTraits const traits = meta::StructureBuilder<Tank>().Build();
    return traits;
}

/// A tank is right if it doesn't overflow, which no single value tells.
class TankNode final : public zo::ZOWrapperStruct {
public:
    using ZOWrapperStruct::ZOWrapperStruct;
    static htl::status Overflow() { return htl::status::FromText(L"The tank overflows."); }

    htl::status Verify() const override {
        Tank const& tank = *static_cast<Tank const*>(Memory());
        return tank.level > tank.height ? Overflow() : htl::status();
    }
    IZO* RemapClone(void* memory, htl::handle<zo::ZOMemMgr> const& manager) override {
        return new TankNode(RegID(), Owner(), AccessTraits(), memory, manager);
    }
};

/// Leads from an identifier, or from a reference to a container, to its node.
template <class Value>
class TankView final : public zo::ZOWrapperLinkBase {
public:
    TankView() : TankView(npos, nullptr, nullptr) {}
    TankView(std::size_t regID, zo::ZOSet* owner, void* memory)
        : ZOWrapperLinkBase(regID, owner, rows::StructureTraits(), memory, {}) {}

    std::string RedirectName() const override { return IsPrototype() ? "" : NameOf_(*static_cast<Value*>(Memory())); }
    IZO* Clone() override { return new TankView(RegID(), Owner(), Memory()); }
    IZO* RemapClone(void* memory, htl::handle<zo::ZOMemMgr> const&) override {
        return new TankView(RegID(), Owner(), memory);
    }

private:
    static std::string NameOf_(GGID const& record) {
        return record.group == tankGroup ? "Tanks[" + std::to_string(record.id - 1) + "]" : "";
    }
    static std::string NameOf_(hzn::gid::ContainerRef const& reference) {
        return reference.Object() == tankGroup ? "Tanks" : "";
    }
};

class VerifyTest : public testing::Test {
protected:
    VerifyTest() {
        MetaDataTraits const array =
            meta::ArrayTraits<std::vector<Tank>>(TankTraits, [](void const*) -> GID { return tankGroup; });
        Add("Tanks", embankment::ArrayPrototype(array), L"Tanks[Tank]", array, &tanks);
        Add("Tanks.[]", H(new TankNode(IZO::npos, nullptr, TankTraits(), nullptr, {})), L"Tank", TankTraits());
        AddValue<int>("ID", offsetof(Tank, id));
        AddValue<std::wstring>("Name", offsetof(Tank, name));
        AddValue<double>("Height", offsetof(Tank, height));
        AddValue<double>("Level", offsetof(Tank, level));
        AddTemplate<GGID>("Record");
        AddTemplate<hzn::gid::ContainerRef>("Container");
        registry->OnPostRegistration();
    }

    void Add(std::string const& name, H const& node, std::wstring const& tag, MetaDataTraits const& traits,
             void* object = nullptr) {
        htl::handle<zo::IODS> const store(new zo::ODS(name, true, true, object));
        bool const isValue = traits.AsAtomic() != nullptr;
        registry->RegisterZO(store, node, {MetaPersistTraits::Always, tag, isValue}, traits);
    }
    template <class T>
    void AddValue(std::string const& name, std::size_t offset) {
        Add("Tanks.[]." + name, embankment::ValuePrototype<T>(meta::AtomicTraits<T>(), offset), str::as_wstring(name),
            meta::AtomicTraits<T>());
    }
    template <class Value>
    void AddTemplate(std::string const& name) {
        H const view(new TankView<Value>);
        htl::handle<zo::IODS> const store(new zo::ODS(name, false, false, nullptr));
        registry->RegisterZO(store, view, {MetaPersistTraits::No, L""}, rows::StructureTraits());
        zo::ZOTypeTemplate::Register(typeid(Value), view);
    }

    rows::OwnRegistry registry;
    std::vector<Tank> tanks{{1, L"North", 4, 3}, {2, L"South", 4, 5}, {3, L"East", 4, 1}};
    std::vector<std::wstring> names;
    std::vector<htl::status> reasons;
};

TEST_F(VerifyTest, AnObjectIsVerifiedInItsNewPlaceAndItsFailureKept) {
    ClipboardContents contents;
    ASSERT_TRUE(Succeeds(zo::clip::Serialize(contents, {zo::Find("Tanks")}, version, "")));
    EXPECT_EQ(contents.objects, L"40");
    EXPECT_TRUE(
        FailsAs(zo::clip::Deserialize(tankGroup, contents, version, names, "", &reasons), TankNode::Overflow()));
    EXPECT_EQ(Texts(reasons), Texts({TankNode::Overflow()}));
    ASSERT_EQ(tanks.size(), 6u);
    Tank const south{5, L"South (2)", 4, 5}, east{6, L"East (2)", 4, 1};
    EXPECT_EQ(tanks[4], south) << "it stays as it was pasted";
    EXPECT_EQ(tanks[5], east) << "the others are merged all the same";
}

TEST_F(VerifyTest, ObjectsThatAreRightArePasted) {
    ClipboardContents contents;
    ASSERT_TRUE(Succeeds(zo::clip::Serialize(contents, {zo::Find("Tanks[2]")}, version, "")));
    EXPECT_TRUE(Succeeds(zo::clip::Deserialize(tankGroup, contents, version, names, "", &reasons)));
    ASSERT_EQ(tanks.size(), 4u);
    EXPECT_EQ(tanks[3].name, L"East (2)");
}

} // namespace
} // namespace valley
