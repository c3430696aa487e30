#include "tests/fixtures/Embankment.h"

#include "support/describe.h"
#include "support/meta.h"

#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace embankment;
using meta::MetaDataTraits;
using meta::MetaPersistTraits;

TEST(Traits, WithoutADescriptorAreEmptyAndVoid) {
    MetaDataTraits const none;
    EXPECT_FALSE(none);
    EXPECT_EQ(none.Descriptor(), nullptr);
    EXPECT_EQ(none.TypeName(), "void");
    EXPECT_FALSE(none.AsAtomic() || none.AsArray() || none.AsStructure());
}

TEST(Traits, CopiesWithAnEmptyHolderTouchNoCounter) {
    auto const record = std::make_shared<meta::MetaTraits>();
    {
        MetaDataTraits const borrowed(*record);
        MetaDataTraits const copy = borrowed;
        EXPECT_EQ(copy.Descriptor(), record.get());
        EXPECT_EQ(record.use_count(), 1);
    }
    MetaDataTraits const holding{std::shared_ptr<meta::MetaTraits const>(record)};
    MetaDataTraits const copy = holding;
    EXPECT_EQ(copy.Descriptor(), record.get());
    EXPECT_EQ(record.use_count(), 3) << "the record, and a share in each of the two";
}

TEST(Traits, OfARecordThatNobodyFilledAreOfNoKind) {
    static meta::MetaTraits const record;
    MetaDataTraits const traits(record);
    EXPECT_EQ(static_cast<std::uint32_t>(record.kind), 0xFFFFFFFFu);
    EXPECT_FALSE(traits.AsAtomic() || traits.AsArray() || traits.AsStructure());
    EXPECT_EQ(traits.TypeName(), "void");
}

TEST(Traits, NameTheirType) {
    EXPECT_EQ(meta::AtomicTraits<htl::UInt64>().TypeName(), "unsigned __int64");
    EXPECT_EQ(meta::AtomicTraits<std::wstring>().TypeName(), "std::wstring");
    EXPECT_EQ(SoilTraits().TypeName(), "embankment::Soil");
    EXPECT_EQ(DrainageTraits().TypeName(), "embankment::Drainage");
}

TEST(Traits, GiveTheRecordAsItsKindAlone) {
    EXPECT_TRUE(meta::AtomicTraits<int>().AsAtomic());
    EXPECT_FALSE(meta::AtomicTraits<int>().AsArray());
    EXPECT_FALSE(meta::AtomicTraits<int>().AsStructure());
    EXPECT_TRUE(SoilTraits().AsStructure());
    EXPECT_FALSE(SoilTraits().AsAtomic());
}

TEST(Traits, ShareARecordThatWasMadeAtRunTime) {
    auto record = std::make_shared<meta::MetaTraits>();
    std::weak_ptr<meta::MetaTraits> const watch = record;
    {
        MetaDataTraits const traits{std::shared_ptr<meta::MetaTraits const>(std::move(record))};
        MetaDataTraits copy = traits;
        EXPECT_EQ(copy.Descriptor(), traits.Descriptor());
        EXPECT_EQ(watch.use_count(), 2);
        MetaDataTraits const moved = std::move(copy);
        EXPECT_EQ(watch.use_count(), 2);
    }
    EXPECT_TRUE(watch.expired());
}

TEST(Rules, AreCalledWithTheNode) {
    Embankment const project;
    zo::H const node = project.registry->Root();
    void const* seen = nullptr;
    std::function<bool(void const*)> const rule = [&seen](void const* given) {
        seen = given;
        return false;
    };
    EXPECT_FALSE(meta::CallRule(rule, node.get()));
    EXPECT_EQ(static_cast<zo::IZO const*>(seen), node.get());
}

TEST(Rules, ThatAreAbsentSayTrue) {
    EXPECT_TRUE(meta::CallRule({}, nullptr));
    EXPECT_TRUE(meta::MetaTraitsTypes::RuleTrue(nullptr));
}

TEST(Markers, SayThatNothingIsMissingOrDefault) {
    EXPECT_FALSE(meta::MetaIsMissingValueNotSupported::IsMissing());
    EXPECT_FALSE(meta::MetaIsDefaultNever::IsDefault());
}

TEST(Validation, OfTheRegistryIsOffAtFirst) { EXPECT_FALSE(meta::bValidateRegistry); }

TEST(PersistTraits, TakeTheTagFromTheTagPath) {
    MetaPersistTraits const traits(MetaPersistTraits::Always, L"Model.Points[Point]", true, true);
    EXPECT_EQ(traits.Type, 1u);
    EXPECT_EQ(traits.TagName, L"Model.Points[Point]");
    EXPECT_EQ(traits.Tag, L"Points[Point]");
    EXPECT_TRUE(traits.IsPersistedAsValue && traits.IsAllChildrenValue);
}

TEST(PersistTraits, TagIsTheTextBehindTheLastPoint) {
    EXPECT_EQ(MetaPersistTraits::TagFromTagName(L"Soils"), L"Soils");
    EXPECT_EQ(MetaPersistTraits::TagFromTagName(L"a.b.c"), L"c");
    EXPECT_EQ(MetaPersistTraits::TagFromTagName(L"a."), L"");
    EXPECT_EQ(MetaPersistTraits::TagFromTagName(L""), L"");
}

TEST(PersistTraits, AreEmptyAtFirst) {
    MetaPersistTraits const traits;
    EXPECT_EQ(traits.Type, static_cast<std::uint32_t>(MetaPersistTraits::No));
    EXPECT_TRUE(traits.TagName.empty() && traits.Tag.empty());
    EXPECT_FALSE(traits.IsPersistedAsValue || traits.IsAllChildrenValue);
}

class TraversalTest : public testing::Test {
protected:
    void Reset(MetaDataTraits const& traits, void* memory) {
        traits.DepthFirstTraversal_(meta::resetToDefault, memory, nullptr);
    }
    Model model = Example();
};

TEST_F(TraversalTest, ResetsEveryPartOfAStructure) {
    Reset(SoilTraits(), &model.soils[0]);
    Soil const& soil = model.soils[0];
    EXPECT_EQ(soil.name, L"");
    EXPECT_EQ(soil.cohesion, 0);
    EXPECT_EQ(soil.friction, 0);
    EXPECT_EQ(soil.unitWeight, 0);
    EXPECT_EQ(soil.drainage, Drainage::Drained);
    EXPECT_EQ(soil.color, 0u);
    EXPECT_EQ(soil.anisotropy[0], 0);
    EXPECT_EQ(soil.anisotropy[2], 0);
    EXPECT_EQ(model.soils[1].friction, 34) << "the neighbour stays";
}

TEST_F(TraversalTest, KeepsTheShapeOfContainers) {
    auto const traits = meta::ArrayTraits<std::deque<Point>>(PointTraits);
    Reset(traits, &model.points);
    ASSERT_EQ(model.points.size(), 4u);
    for (Point const& point : model.points) EXPECT_EQ(point.x + point.y, 0);
}

TEST_F(TraversalTest, WritesDefaultsThatDifferFromZero) {
    auto const traits = meta::AtomicBuilder<double>().Default(9.81).Build();
    double value = 3;
    Reset(traits, &value);
    EXPECT_EQ(value, 9.81);
}

TEST_F(TraversalTest, WritesDefaultTexts) {
    auto const wide = meta::AtomicBuilder<std::wstring>().Default(L"a name longer than a short one").Build();
    std::wstring text = L"clay";
    Reset(wide, &text);
    EXPECT_EQ(text, L"a name longer than a short one");
    auto const narrow = meta::AtomicBuilder<std::string>().Default("sand").Build();
    std::string bytes = "clay";
    Reset(narrow, &bytes);
    EXPECT_EQ(bytes, "sand");
}

TEST_F(TraversalTest, LeavesTheBytesBesideANarrowEnumeration) {
    unsigned char bytes[3] = {9, 7, 9};
    Reset(DrainageTraits(), &bytes[1]);
    EXPECT_EQ(bytes[0], 9);
    EXPECT_EQ(bytes[1], 0);
    EXPECT_EQ(bytes[2], 9);
}

TEST_F(TraversalTest, DoesNothingWithoutMemoryTraitsOrKnownOperation) {
    Reset(SoilTraits(), nullptr);
    Reset({}, &model.soils[0]);
    SoilTraits().DepthFirstTraversal_({1, 0}, &model.soils[0], nullptr);
    SoilTraits().DepthFirstTraversal_({0, 32}, &model.soils[0], nullptr);
    EXPECT_EQ(model.soils[0].cohesion, 25);
}

struct Layer {
    double thickness = 0;
    std::vector<Layer> parts;
    static MetaDataTraits Traits();
    static MetaDataTraits PartsTraits();
};
MetaDataTraits Layer::PartsTraits() {
    static MetaDataTraits const traits = meta::ArrayTraits<std::vector<Layer>>(&Layer::Traits);
    return traits;
}
MetaDataTraits Layer::Traits() {
    static MetaDataTraits const traits =
        meta::StructureBuilder<Layer>()
            .Member(&Layer::thickness, [] { return MetaDataTraits(meta::AtomicTraits<double>()); })
            .Member(&Layer::parts, &Layer::PartsTraits)
            .Build();
    return traits;
}

TEST_F(TraversalTest, WalksATypeThatHoldsItself) {
    Layer top{1, {{2, {{3, {}}, {4, {}}}}, {5, {}}}};
    Reset(Layer::Traits(), &top);
    EXPECT_EQ(top.thickness, 0);
    ASSERT_EQ(top.parts.size(), 2u);
    EXPECT_EQ(top.parts[0].thickness, 0);
    ASSERT_EQ(top.parts[0].parts.size(), 2u);
    EXPECT_EQ(top.parts[0].parts[1].thickness, 0);
    EXPECT_EQ(top.parts[1].thickness, 0);
}

TEST_F(TraversalTest, PassesByHolesAndPlacesWithoutAnElement) {
    meta::MetaTraitsArray record;
    record.kind = meta::Kind::Array;
    record.length = [](void const*) -> std::size_t { return 3; };
    record.elementAt = [](void* memory, std::size_t i) -> void* {
        return i == 2 ? nullptr : static_cast<double*>(memory) + i;
    };
    record.isHole = [](void const*, std::size_t i) { return i == 0; };
    record.elementTraits = [] { return MetaDataTraits(meta::AtomicTraits<double>()); };
    double memory[3] = {1, 2, 3};
    Reset(MetaDataTraits(record), memory);
    EXPECT_EQ(memory[0], 1);
    EXPECT_EQ(memory[1], 0);
    EXPECT_EQ(memory[2], 3);
}

TEST_F(TraversalTest, WalksNothingInAStructureWithoutMembers) {
    auto const traits = meta::StructureBuilder<Soil>().Build();
    Reset(traits, &model.soils[0]);
    EXPECT_EQ(model.soils[0].cohesion, 25);
}

TEST(OffsetOf, GivesTheOffsetOfAMemberAlsoInPolymorphicTypes) {
    struct Polymorphic {
        virtual ~Polymorphic() = default;
        double first = 0;
        double second = 0;
    };
    EXPECT_EQ(meta::OffsetOf(&Point::x), 0u);
    EXPECT_EQ(meta::OffsetOf(&Point::y), sizeof(double));
    EXPECT_EQ(meta::OffsetOf(&Polymorphic::second) - meta::OffsetOf(&Polymorphic::first), sizeof(double));
}

} // namespace
