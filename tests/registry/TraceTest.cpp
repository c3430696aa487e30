// Lookups step by step: which node a spelling leads to, and which entries are left while it is held.
#include "Common/registry/RegistryImpl.h"
#include "tests/registry/Grid.h"

namespace {

using grid::DoubleTraits;
using grid::LayersTraits;
using grid::LayerTraits;
using grid::Texts;
using rows::H;
using rows::IZO;
using rows::NameOf;

class TraceTest : public grid::GridTest {
protected:
    /// The entries that a lookup left, without the root's.
    std::vector<std::string> Entries() const {
        std::vector<std::string> names;
        for (zo::SetEntry const* const entry : registry->Impl()->entryOrder)
            if (entry && entry->name != "HZNData") {
                EXPECT_FALSE(entry->visible) << entry->name;
                EXPECT_FALSE(entry->counted) << entry->name;
                names.push_back(entry->name);
            }
        return names;
    }
};

TEST_F(TraceTest, AMemberLeavesAnEntryOfItsOwnOnly) {
    H const node = zo::Find("s.b");
    EXPECT_EQ(NameOf(node), "s.b");
    EXPECT_EQ(ValueOf(node), 7);
    EXPECT_EQ(node->RefCount(), 1);
    EXPECT_EQ(Entries(), Texts{"s.b"});
}

TEST_F(TraceTest, AnElementLeavesAnEntryOfItsOwnOnly) {
    H const node = zo::Find("a[3]");
    EXPECT_EQ(NameOf(node), "a[3]");
    EXPECT_EQ(Entries(), Texts{"a[3]"});
}

struct Spelling {
    char const* text;
    char const* name;
};
class SpellingTest : public TraceTest, public testing::WithParamInterface<Spelling> {};

TEST_P(SpellingTest, LeadsToTheElementUnderItsCanonicalName) {
    H const node = zo::Find(GetParam().text);
    ASSERT_TRUE(node);
    EXPECT_EQ(NameOf(node), GetParam().name);
    EXPECT_EQ(Entries(), Texts{GetParam().name});
}

INSTANTIATE_TEST_SUITE_P(
    Indices, SpellingTest,
    testing::Values(Spelling{"a", "a"}, Spelling{"a.", "a"}, Spelling{"a[3]", "a[3]"}, Spelling{"a.[3]", "a[3]"},
                    Spelling{"a.3", "a[3]"}, Spelling{"a[3", "a[3]"}, Spelling{"a[3].b", "a[3].b"},
                    Spelling{"a.[3].b", "a[3].b"}, Spelling{"a.3.b", "a[3].b"}, Spelling{"a[3]b", "a[3].b"},
                    Spelling{"a.At(2)", "a[1]"}, Spelling{"a.At( 2 ).b", "a[1].b"}, Spelling{"a.Len", "a.Len"},
                    Spelling{"g[1][2]", "g[1][2]"}, Spelling{"g.[1].[2]", "g[1][2]"}, Spelling{"g.1.2", "g[1][2]"},
                    Spelling{"g[1].[2]", "g[1][2]"}, Spelling{"g.At(2).At(3)", "g[1][2]"}, Spelling{"a]3", "a[3]"},
                    Spelling{"s]b", "s.b"}, Spelling{"s..b", "s.b"}, Spelling{"s.b.", "s.b"}, Spelling{"s.b]", "s.b"}));

TEST_F(TraceTest, EverySpellingReadsTheSameElement) {
    for (char const* const text : {"a[3].b", "a.[3].b", "a.3.b", "a.At(4).b", "a[3]b"})
        EXPECT_EQ(ValueOf(zo::Find(text)), 30) << text;
    for (char const* const text : {"g[1][2]", "g.[1].[2]", "g.1.2", "g.At(2).At(3)"})
        EXPECT_EQ(ValueOf(zo::Find(text)), 6) << text;
}

TEST_F(TraceTest, TheLengthIsReadThroughTheArraysName) {
    H const length = zo::Find("a.Len");
    htl::Int64 value = 0;
    ASSERT_TRUE(embankment::Succeeds(length->Get(value)));
    EXPECT_EQ(value, 5);
    EXPECT_EQ(length->RegID(), IZO::npos);
}

class NowhereTest : public TraceTest, public testing::WithParamInterface<char const*> {};

TEST_P(NowhereTest, LeadsToNothingAndLeavesNoEntry) {
    EXPECT_FALSE(zo::Find(GetParam()));
    EXPECT_TRUE(Entries().empty());
}

INSTANTIATE_TEST_SUITE_P(Texts, NowhereTest,
                         testing::Values("", ".", "[", "]", "a[]", "a.[]", "a.[].b", "a[].b", "a[9]", "a[9].b", "a[-1]",
                                         "a[18446744073709551616]", "a[18446744073709551615]", "a[x]", "a[1.5]",
                                         "a.At(0)", "a.At()", "a.At(x)", "a.At(6)", "s.At(2)", "s[0]", "s.c", "s.bb",
                                         "s...b", "a[[3]]", "b", "aa", ".a", "[a]", "s.b.c"));

TEST_F(TraceTest, AnEmptyComponentInTheMiddleIsNoTemplateEither) {
    // So that asking for the live node and then for the template reaches the template.
    EXPECT_FALSE(zo::Find("a.[].b"));
    ASSERT_NE(zo::GetTemplate("a.[].b"), nullptr);
    EXPECT_EQ(zo::FullTag(std::string("a.[].b")), zo::GetTemplate("a.[].b")->GetPersistTraits().TagName);
}

TEST_F(TraceTest, EntriesEndWithTheirNodes) {
    {
        H const member = zo::Find("a[1].b"), element = zo::Find("a[1]");
        EXPECT_EQ(Entries(), (Texts{"a[1].b", "a[1]"}));
    }
    EXPECT_TRUE(Entries().empty());
}

TEST_F(TraceTest, TwoLookupsOfAViewGiveTwoNodes) {
    H const first = zo::Find("s.b"), second = zo::Find("s.b");
    EXPECT_NE(first, second);
    EXPECT_EQ(Entries(), (Texts{"s.b", "s.b"}));
}

TEST_F(TraceTest, AnIndexKeepsItsDigitsInTheName) {
    H const node = zo::Find("a[03]");
    EXPECT_EQ(NameOf(node), "a[03]");
    EXPECT_EQ(ValueOf(zo::Find(node, "b")), 30);
}

TEST_F(TraceTest, BehindAnAliasTheNameIsTheTargets) {
    H const node = zo::Find("al.b");
    EXPECT_EQ(NameOf(node), "s.b");
    EXPECT_EQ(ValueOf(node), 7);
    EXPECT_EQ(Entries(), Texts{"s.b"});
}

TEST_F(TraceTest, ThroughTheRootTheNameIsTheShortOne) {
    H const node = zo::Find("HZNData.s");
    EXPECT_EQ(NameOf(node), "s");
    EXPECT_EQ(Entries(), Texts{"s"});
    H const deeper = zo::Find("HZNData.a[1].b");
    EXPECT_EQ(NameOf(deeper), "a[1].b");
}

TEST_F(TraceTest, AnEntryThatCannotBeReachedAddsNothing) {
    H const inserted(new rows::Plain);
    (void)registry->Insert("x.y", inserted);
    EXPECT_FALSE(zo::Find("x.y")) << "nothing answers to x";
}

TEST_F(TraceTest, AnEntryAnswersBelowANodeThatLacksTheChild) {
    H const extra(new rows::Plain);
    (void)registry->Insert("s.extra", extra);
    EXPECT_EQ(zo::Find("s.extra"), extra);
    EXPECT_EQ(zo::Find(zo::Find("s"), "extra"), extra);
    H const outside(new rows::Plain);
    (void)registry->Insert("a[9]", outside);
    EXPECT_EQ(zo::Find("a[9]"), outside) << "the closing bracket is part of the entry's name";
}

TEST_F(TraceTest, ARegisteredChildAnswersBeforeAnEntry) {
    H const extra(new rows::Plain);
    (void)registry->InsertTemporary("s.b", extra);
    EXPECT_NE(zo::Find("s.b"), extra);
    H const top(new rows::Plain);
    (void)registry->InsertTemporary("s", top);
    EXPECT_NE(zo::Find("s"), top);
}

TEST_F(TraceTest, WithoutTrackingEntriesBelowTheTopAreNotSeen) {
    H const extra(new rows::Plain), top(new rows::Plain);
    (void)registry->Insert("s.extra", extra);
    (void)registry->Insert("t", top);
    zo::TrackingSuspension const suspension(*registry->Impl());
    EXPECT_FALSE(zo::Find("s.extra"));
    EXPECT_EQ(zo::Find("t"), top);
}

TEST_F(TraceTest, WithoutTrackingNodesAreNameless) {
    zo::TrackingSuspension const suspension(*registry->Impl());
    H const node = zo::Find("a[3].b");
    ASSERT_TRUE(node);
    EXPECT_EQ(node->Name(), "");
    EXPECT_EQ(node->OwnerID(), IZO::npos);
    EXPECT_EQ(ValueOf(node), 30);
    H const length = zo::Find("a.Len");
    htl::Int64 value = -1;
    ASSERT_TRUE(embankment::Succeeds(length->Get(value)));
    EXPECT_EQ(value, 0) << "it finds its array by its own name";
    EXPECT_TRUE(Entries().empty());
}

TEST_F(TraceTest, AChildOfANodeIsOneComponent) {
    H const array = zo::Find("a");
    EXPECT_FALSE(zo::Find(array, "[3].b"));
    EXPECT_FALSE(zo::Find(array, "3.b"));
    H const element = zo::Find(array, "3");
    EXPECT_EQ(NameOf(element), "a[3]");
    EXPECT_EQ(NameOf(zo::Find(element, "b")), "a[3].b");
    H const root = registry->Root();
    EXPECT_EQ(NameOf(zo::Find(root, "a[3].b")), "a[3].b") << "the root walks";
}

TEST_F(TraceTest, AnElementOfAnArrayIsNamedByItsIndex) {
    H const array = zo::Find("a");
    H const element = zo::Find(dynamic_cast<zo::ZOArray*>(array.get()), 4);
    EXPECT_EQ(NameOf(element), "a[4]");
    EXPECT_EQ(Entries(), (Texts{"a", "a[4]"}));
    EXPECT_FALSE(zo::Find(dynamic_cast<zo::ZOArray*>(array.get()), 5));
    EXPECT_FALSE(zo::Find(static_cast<zo::ZOArray*>(nullptr), 0));
}

TEST_F(TraceTest, ChildrenOfAnUnownedNodeAreUnowned) {
    H const view = zo::GetWrapper(rows::RowOf("s"), &single);
    ASSERT_EQ(view->Owner(), nullptr);
    H const member = registry->Find(view, "b");
    ASSERT_TRUE(member);
    EXPECT_EQ(member->Owner(), nullptr);
    EXPECT_EQ(member->OwnerID(), IZO::npos);
    EXPECT_EQ(ValueOf(member), 7);
    EXPECT_TRUE(Entries().empty());

    H const array = zo::GetWrapper(rows::RowOf("a"), &grid.a);
    H const element = registry->Find(dynamic_cast<zo::ZOArray*>(array.get()), 2);
    ASSERT_TRUE(element);
    EXPECT_EQ(element->Owner(), nullptr);
}

TEST_F(TraceTest, ChildrenOfANamelessNodeKeepItsOwner) {
    H const view = registry->Wrap(rows::RowOf("s"), &single);
    ASSERT_EQ(view->Owner(), &*registry);
    ASSERT_EQ(view->OwnerID(), IZO::npos);
    H const member = registry->Find(view, "b");
    EXPECT_EQ(member->Owner(), &*registry);
    EXPECT_EQ(member->OwnerID(), IZO::npos);
    EXPECT_TRUE(Entries().empty());
}

/// An array whose elements have keys: each element's key is a hundred times its index.
class KeyedArray final : public zo::ZOAssocArrayWrapperBase {
public:
    using ZOAssocArrayWrapperBase::ZOAssocArrayWrapperBase;
    std::uint32_t IndexFromKey(std::uint32_t key) const override {
        return key % 100 == 0 && key / 100 < Length() ? key / 100 : 0xFFFFFFFFu;
    }
    std::uint32_t IndexFromKey(std::string const&) const override { return 0xFFFFFFFFu; }
    IZO* RemapClone(void* memory, htl::handle<zo::ZOMemMgr> const& manager) override {
        htl::handle<zo::ZOMemMgr> const child(ChildMemMgr()->RemapClone(memory));
        return new KeyedArray(RegID(), Owner(), manager, child);
    }
};

TEST_F(TraceTest, AnAssociativeArrayHasItsNameWhileItIsWalkedThrough) {
    htl::handle<zo::ZOMemMgr> const manager(new zo::ZOArrayMemMgr(nullptr, LayersTraits()));
    registry.Add("k", H(new KeyedArray(IZO::npos, nullptr, {}, manager)), L"K", LayersTraits(), &grid.a);
    registry.Add("k.[]", embankment::StructPrototype(LayerTraits()), L"", LayerTraits());
    registry.Add("k.[].b", embankment::ValuePrototype<double>(DoubleTraits()), L"B", DoubleTraits());
    EXPECT_TRUE(registry->Tables()->assocBits[rows::RowOf("k")]);
    EXPECT_FALSE(registry->Tables()->assocBits[rows::RowOf("a")]);
    H const member = zo::Find("k.At(200).b");
    ASSERT_TRUE(member);
    EXPECT_EQ(ValueOf(member), 20);
    EXPECT_EQ(NameOf(member), "k[2].b") << "the key's element is named by its index";
    EXPECT_EQ(Entries(), Texts{"k[2].b"});
    EXPECT_FALSE(zo::Find("k.At(201).b"));
}

} // namespace
