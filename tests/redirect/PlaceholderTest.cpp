// Branches that are computed from indices: what is handed down, and what they refuse.
#include "tests/registry/Rows.h"

#include <algorithm>

namespace {

using embankment::FailsAs;
using rows::H;
using rows::IZO;

constexpr int none[6] = {};

/// Notes when its integers were in place.
class Leaf : public zo::ZOPlaceholder {
public:
    explicit Leaf(unsigned count, int const (&values)[6] = none, int own = 0, std::size_t regID = npos,
                  zo::ZOSet* owner = nullptr)
        : ZOPlaceholder(regID, owner, count, values, own) {}
    IZO* Clone() override {
        int inherited[6];
        std::copy_n(values, 6, inherited);
        return new Leaf(count, inherited, values[count], RegID(), Owner());
    }
    void InitializeContext() override {
        ++timesInitialized;
        std::copy_n(values, 7, seen);
    }

    int timesInitialized = 0;
    int seen[7] = {};
};

Leaf& AsLeaf(H const& node) { return dynamic_cast<Leaf&>(*node); }
zo::ZOPlaceholderArray& AsArray(H const& node) { return dynamic_cast<zo::ZOPlaceholderArray&>(*node); }
zo::PlaceholderContext& ContextOf(H const& node) { return dynamic_cast<zo::PlaceholderContext&>(*node); }

std::size_t Three(zo::ZOPlaceholderArray const*) { return 3; }
/// As long as the integer that the array inherited.
std::size_t AsInherited(zo::ZOPlaceholderArray const* array) { return static_cast<std::size_t>(array->values[0]); }

/// Stages [3] of { Share, Rows [n-th stage has n] of { Load } }, and a branch of its own with the number 42.
class PlaceholderTest : public rows::RegistryTest {
protected:
    PlaceholderTest() {
        auto const add = [this](std::string const& name, IZO* node, wchar_t const* tag) {
            registry.Add(name, H(node), tag, {});
        };
        registry.Add("Stages", H(new zo::ZOPlaceholderArray(IZO::npos, nullptr, &Three, 0, none, 0)), L"Stages[Stage]",
                     rows::ArrayKindTraits());
        registry.Add("Stages.[]", H(new zo::ZOPlaceholder(IZO::npos, nullptr, 0, none, 0)), L"",
                     rows::StructureTraits());
        add("Stages.[].Share", new Leaf(1), L"Share");
        registry.Add("Stages.[].Rows", H(new zo::ZOPlaceholderArray(IZO::npos, nullptr, &AsInherited, 1, none, 0)),
                     L"Rows[Row]", rows::ArrayKindTraits());
        registry.Add("Stages.[].Rows.[]", H(new zo::ZOPlaceholder(IZO::npos, nullptr, 1, none, 0)), L"",
                     rows::StructureTraits());
        add("Stages.[].Rows.[].Load", new Leaf(2), L"Load");
        add("Stages.[].Rows.[].Alone", new Leaf(0), L"Alone");
        registry.Add("Fixed", H(new zo::ZOPlaceholder(IZO::npos, nullptr, 0, none, 42)), L"Fixed",
                     rows::StructureTraits());
        add("Fixed.Share", new Leaf(1), L"Share");
        registry->OnPostRegistration();
    }
};

TEST_F(PlaceholderTest, AnElementsIndexCountsFromOneInItsOwnPlace) {
    for (int i = 0; i < 3; ++i) {
        H const stage = zo::Find("Stages[$1]", i);
        ASSERT_TRUE(stage) << i;
        EXPECT_EQ(ContextOf(stage).count, 0u);
        EXPECT_EQ(ContextOf(stage).values[0], i + 1);
    }
}

TEST_F(PlaceholderTest, AnIndexPastTheLengthGivesNothing) {
    EXPECT_FALSE(zo::Find("Stages[3]"));
    H const stages = zo::Find("Stages");
    EXPECT_EQ(stages->Length(), 3u);
    EXPECT_FALSE(AsArray(stages).GetSubZO(std::size_t(3)));
    EXPECT_FALSE(AsArray(stages).GetSubZO(std::size_t(-1)));
    EXPECT_FALSE(zo::Find("Stages[18446744073709551615]"));
}

TEST_F(PlaceholderTest, ALeafKnowsTheElementsThatTheWalkCameThrough) {
    H const share = zo::Find("Stages[1].Share");
    ASSERT_TRUE(share);
    EXPECT_EQ(AsLeaf(share).values[0], 2);
    H const load = zo::Find("Stages[2].Rows[1].Load");
    ASSERT_TRUE(load);
    EXPECT_EQ(AsLeaf(load).values[0], 3);
    EXPECT_EQ(AsLeaf(load).values[1], 2);
    EXPECT_EQ(load->Name(), "Stages[2].Rows[1].Load");
    EXPECT_EQ(load->TagName(zo::FullTagType), L"Stages[3].Rows[2].Load");
}

TEST_F(PlaceholderTest, ALengthMayDependOnWhatWasHandedDown) {
    EXPECT_EQ(zo::Find("Stages[0].Rows")->Length(), 1u);
    EXPECT_EQ(zo::Find("Stages[2].Rows")->Length(), 3u);
    EXPECT_FALSE(zo::Find("Stages[0].Rows[1]"));
    EXPECT_TRUE(zo::Find("Stages[2].Rows[2]"));
}

TEST_F(PlaceholderTest, TheIntegersAreInPlaceWhenTheNodeIsTold) {
    H const load = zo::Find("Stages[2].Rows[1].Load");
    EXPECT_EQ(AsLeaf(load).timesInitialized, 1);
    EXPECT_EQ(AsLeaf(load).seen[0], 3);
    EXPECT_EQ(AsLeaf(load).seen[1], 2);
}

TEST_F(PlaceholderTest, ANodeThatInheritsNothingIsToldAllTheSame) {
    H const alone = zo::Find("Stages[2].Rows[1].Alone");
    ASSERT_TRUE(alone);
    EXPECT_EQ(AsLeaf(alone).timesInitialized, 1);
    EXPECT_EQ(AsLeaf(alone).values[0], 0);
}

TEST_F(PlaceholderTest, AnOwnIntegerIsHandedDown) { EXPECT_EQ(AsLeaf(zo::Find("Fixed.Share")).values[0], 42); }

TEST_F(PlaceholderTest, ThePrototypesAreNeverChanged) {
    H const load = zo::Find("Stages[2].Rows[1].Load");
    IZO* const prototype = zo::GetTemplate("Stages.[].Rows.[].Load");
    EXPECT_NE(load.get(), prototype);
    EXPECT_EQ(dynamic_cast<Leaf&>(*prototype).timesInitialized, 0);
    EXPECT_EQ(dynamic_cast<Leaf&>(*prototype).values[0], 0);
}

TEST_F(PlaceholderTest, AnUnknownNameGivesNothing) {
    EXPECT_FALSE(zo::Find("Fixed.Nobody"));
    EXPECT_FALSE(zo::Find("Fixed.Shar"));
    H const loose(new zo::ZOPlaceholder(IZO::npos, nullptr, 0, none, 0));
    EXPECT_FALSE(rows::NodeAccess::GetSubZO(*loose, "Share"));
    H const looseArray(new zo::ZOPlaceholderArray(IZO::npos, nullptr, &Three, 0, none, 0));
    EXPECT_FALSE(AsArray(looseArray).GetSubZO(std::size_t(0)));
}

TEST_F(PlaceholderTest, KindsAreThoseOfAStructureAndOfAnArray) {
    H const stage = zo::Find("Stages[0]"), stages = zo::Find("Stages");
    meta::MetaDataTraits const structure = stage->GetDataTraits(), array = stages->GetDataTraits();
    ASSERT_NE(structure.AsStructure(), nullptr);
    ASSERT_NE(array.AsArray(), nullptr);
    EXPECT_TRUE(structure.Descriptor()->visible(nullptr));
    EXPECT_TRUE(structure.Descriptor()->editable(nullptr));
    EXPECT_TRUE(array.Descriptor()->visible(nullptr));
    EXPECT_TRUE(array.Descriptor()->editable(nullptr));
    H const another = zo::Find("Stages[1]");
    EXPECT_EQ(structure.Descriptor(), another->GetDataTraits().Descriptor()) << "one record for all";
}

TEST_F(PlaceholderTest, ACloneKeepsItsIntegers) {
    H const stage = zo::Find("Stages[1]");
    H const clone(stage->Clone());
    EXPECT_EQ(ContextOf(clone).values[0], 2);
    EXPECT_EQ(clone->RegID(), stage->RegID());
    EXPECT_EQ(clone->Owner(), stage->Owner());
    EXPECT_EQ(clone->OwnerID(), IZO::npos);
    int const six[6] = {1, 2, 3, 4, 5, 6};
    H const full(new zo::ZOPlaceholder(IZO::npos, nullptr, 6, six, 7));
    H const copy(full->Clone());
    for (int i = 0; i < 7; ++i) EXPECT_EQ(ContextOf(copy).values[i], i + 1);
    H const arrays(new zo::ZOPlaceholderArray(IZO::npos, nullptr, &Three, 2, six, 9));
    H const arrayCopy(arrays->Clone());
    EXPECT_EQ(arrayCopy->Length(), 3u);
    EXPECT_EQ(ContextOf(arrayCopy).count, 2u);
    EXPECT_EQ(ContextOf(arrayCopy).values[1], 2);
    EXPECT_EQ(ContextOf(arrayCopy).values[2], 9);
}

TEST_F(PlaceholderTest, AsManyIntegersAreCopiedAsTheCloneInherits) {
    int const six[6] = {11, 12, 13, 14, 15, 16};
    registry.Add("Deep", H(new zo::ZOPlaceholder(IZO::npos, nullptr, 6, six, 17)), L"Deep", rows::StructureTraits());
    registry.Add("Deep.Two", H(new Leaf(2, none, 99)), L"Two", rows::StructureTraits());
    registry.Add("Deep.Six", H(new Leaf(6, none, 99)), L"Six", rows::StructureTraits());
    H const two = zo::Find("Deep.Two"), six6 = zo::Find("Deep.Six");
    EXPECT_EQ(AsLeaf(two).values[0], 11);
    EXPECT_EQ(AsLeaf(two).values[1], 12);
    EXPECT_EQ(AsLeaf(two).values[2], 99) << "its own";
    EXPECT_EQ(AsLeaf(six6).values[5], 16);
    EXPECT_EQ(AsLeaf(six6).values[6], 99);
}

TEST_F(PlaceholderTest, ANodeWithoutContextIsHandedOutAsItIs) {
    registry.AddPlain("Fixed.Plain", L"Plain");
    H const plain = zo::Find("Fixed.Plain");
    EXPECT_NE(dynamic_cast<rows::Plain*>(plain.get()), nullptr);
}

TEST_F(PlaceholderTest, AValueWithAStoreOfItsOwnIsBoundToIt) {
    double level = 3.5;
    auto const traits = meta::AtomicTraits<double>();
    registry.Add("Fixed.Level", embankment::ValuePrototype<double>(traits), L"Level", traits, &level);
    H const node = zo::Find("Fixed.Level");
    ASSERT_TRUE(node);
    EXPECT_EQ(embankment::TextOf(node), L"3.5");
    ASSERT_TRUE(embankment::Succeeds(node->Set(4.25)));
    EXPECT_EQ(level, 4.25);
}

TEST_F(PlaceholderTest, TheLengthIsNotTheNodesToChange) {
    H const stages = zo::Find("Stages");
    zo::ZOPlaceholderArray& array = AsArray(stages);
    EXPECT_TRUE(FailsAs(array.RemoveAt(0), zo::ZOError::not_supported("")));
    EXPECT_TRUE(FailsAs(stages->SetLength(4), zo::ZOError::not_supported("")));
    EXPECT_TRUE(embankment::Succeeds(stages->SetLength(3)));
    EXPECT_FALSE(array.AddNew().current);
    stages->Clear();
    EXPECT_EQ(stages->Length(), 3u);
}

TEST_F(PlaceholderTest, AWalkVisitsEveryElement) {
    H const stages = zo::Find("Stages");
    std::vector<std::string> names;
    for (zo::ZOFwrdIterator at = stages->begin(); at.current; ++at) names.push_back(at.current->Name());
    EXPECT_EQ(names, (std::vector<std::string>{"Stages[0]", "Stages[1]", "Stages[2]"}));
}

TEST_F(PlaceholderTest, WithoutAnElementTemplateTheFirstChildIsTheElement) {
    registry.Add("Odd", H(new zo::ZOPlaceholderArray(IZO::npos, nullptr, &Three, 0, none, 0)), L"Odd",
                 rows::ArrayKindTraits());
    registry.Add("Odd.Only", H(new Leaf(0)), L"", rows::StructureTraits());
    EXPECT_FALSE(AsArray(zo::Find("Odd")).GetSubZO(std::size_t(1))) << "the tree doesn't hold it yet";
    registry->OnPostRegistration();
    H const element = AsArray(zo::Find("Odd")).GetSubZO(std::size_t(1));
    ASSERT_TRUE(element);
    EXPECT_EQ(AsLeaf(element).values[0], 2);
}

TEST_F(PlaceholderTest, AnArrayWithoutChildrenHasNoElements) {
    registry.Add("Bare", H(new zo::ZOPlaceholderArray(IZO::npos, nullptr, &Three, 0, none, 0)), L"Bare",
                 rows::ArrayKindTraits());
    registry->OnPostRegistration();
    EXPECT_FALSE(zo::Find("Bare[0]"));
}

} // namespace
