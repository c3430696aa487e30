#include "Common/model/ZOArray.h"
#include "Common/registry/Find.h"
#include "Common/registry/RegistryImpl.h"
#include "tests/fixtures/Embankment.h"

#include "support/describe.h"

#include <string>
#include <vector>

namespace {

using namespace embankment;
using meta::MetaDataTraits;
using meta::MetaPersistTraits;
using zo::Find;
using zo::H;
using zo::IZO;
using zo::impl::AssocKey;
using zo::impl::NodeAccess;

struct Piezometer {
    std::uint32_t number = 0;
    std::string place;
    double level = 0;
};

MetaDataTraits LevelTraits() { return meta::AtomicTraits<double>(); }
MetaDataTraits PiezometerTraits() {
    static MetaDataTraits const traits =
        meta::StructureBuilder<Piezometer>().Member(&Piezometer::level, LevelTraits).Build();
    return traits;
}

/// Piezometers by their number and by the place they stand at.
class Piezometers : public zo::ZOAssocArrayWrapperBase {
public:
    using ZOAssocArrayWrapperBase::ZOAssocArrayWrapperBase;

    IZO* RemapClone(void* memory, htl::handle<zo::ZOMemMgr> const& manager) override {
        htl::handle<zo::ZOMemMgr> const child(ChildMemMgr()->RemapClone(memory));
        child->SetOuter(manager);
        return new Piezometers(RegID(), Owner(), manager, child);
    }
    std::uint32_t IndexFromKey(std::uint32_t key) const override {
        return IndexOf_([&](Piezometer const& item) { return item.number == key; });
    }
    std::uint32_t IndexFromKey(std::string const& key) const override {
        return IndexOf_([&](Piezometer const& item) { return item.place == key; });
    }

private:
    template <class Test>
    std::uint32_t IndexOf_(Test const& test) const {
        auto const& items = *static_cast<std::vector<Piezometer> const*>(Memory());
        for (std::size_t i = 0; i < items.size(); ++i)
            if (test(items[i])) return static_cast<std::uint32_t>(i);
        return 0xFFFFFFFFu;
    }
};

class AssocTest : public testing::Test {
protected:
    static MetaPersistTraits Tag(wchar_t const* tag) { return {MetaPersistTraits::No, tag}; }
    H Child(char const* name) { return NodeAccess::GetSubZO(*Find("Piezometers"), name); }

    std::vector<Piezometer> items{{101, "crest", 12.5}, {7, "toe", 3.25}, {4294967295u, "7", 1}, {8, " a ", 2}};
    Embankment embankment{[this](Embankment& rows) {
        auto const array = meta::ArrayTraits<std::vector<Piezometer>>(PiezometerTraits);
        htl::handle<zo::ZOMemMgr> const manager(new zo::ZOArrayMemMgr(nullptr, array));
        rows.Row("Piezometers", H(new Piezometers(IZO::npos, nullptr, {}, manager)), Tag(L"Piezometers"), array,
                 &items);
        rows.Row("Piezometers.[]", StructPrototype(PiezometerTraits()), Tag(L""), PiezometerTraits());
        rows.Row("Piezometers.[].Level", ValuePrototype<double>(LevelTraits(), meta::OffsetOf(&Piezometer::level)),
                 Tag(L"Level"), LevelTraits());
    }};
};

TEST_F(AssocTest, RegistrationMarksTheRow) {
    std::size_t const row = Find("Piezometers")->RegID();
    EXPECT_TRUE(embankment.registry->Tables()->assocBits[row]);
    EXPECT_FALSE(embankment.registry->Tables()->assocBits[Find("Soils")->RegID()]);
}

TEST_F(AssocTest, AnIntegerKeyFindsItsElement) {
    EXPECT_EQ(Child("At(101)")->Name(), "Piezometers[0]");
    EXPECT_EQ(Child("At( 7 )")->Name(), "Piezometers[1]");
    EXPECT_EQ(Child("At(4294967295)")->Name(), "Piezometers[2]");
}

TEST_F(AssocTest, ATextKeyFindsItsElement) {
    EXPECT_EQ(Child("At(toe)")->Name(), "Piezometers[1]");
    EXPECT_EQ(Child("At(\"crest\")")->Name(), "Piezometers[0]");
    EXPECT_EQ(Child("At('toe')")->Name(), "Piezometers[1]");
    EXPECT_EQ(Child("At(\"7\")")->Name(), "Piezometers[2]") << "in quotes a number is a text";
    EXPECT_EQ(Child("At(' a ')")->Name(), "Piezometers[3]") << "blanks count in quotes alone";
}

TEST_F(AssocTest, PlainNumbersStayIndices) {
    EXPECT_EQ(TextOf(NodeAccess::GetSubZO(*Child("1"), "Level")), L"3.25");
    EXPECT_FALSE(Child("101"));
    EXPECT_EQ(TextOf(Find("Piezometers[0].Level")), L"12.5");
    EXPECT_EQ(TextOf(Find("Piezometers.Len")), L"4");
}

TEST_F(AssocTest, AKeyWithoutAnElementIsEmpty) {
    for (char const* name : {"At(9)", "At(heel)", "At()", "At( )", "At(", "At(7", "At(4294967296)", "At(4294967398)",
                             "At(99999999999999999999999)", "At(a )", "toe", ""})
        EXPECT_FALSE(Child(name)) << name;
}

TEST_F(AssocTest, APrototypeHasNoKeys) {
    EXPECT_FALSE(NodeAccess::GetSubZO(*H(zo::GetTemplate("Piezometers")), "At(101)"));
}

TEST(AssocKeys, TellIntegersFromTexts) {
    bool isKey = false;
    AssocKey key = zo::impl::ParseAssocKey("At( 42 )", isKey);
    EXPECT_TRUE(isKey);
    EXPECT_EQ(key.kind, AssocKey::Integer);
    EXPECT_EQ(key.integer, 42u);
    key = zo::impl::ParseAssocKey("At(-42)", isKey);
    EXPECT_EQ(key.kind, AssocKey::Text);
    EXPECT_EQ(key.text, "-42");
    key = zo::impl::ParseAssocKey("At(\"\")", isKey);
    EXPECT_EQ(key.kind, AssocKey::Text);
    EXPECT_EQ(key.text, "");
    key = zo::impl::ParseAssocKey("At(\")", isKey);
    EXPECT_EQ(key.text, "\"") << "a lone quotation mark is a text";
    key = zo::impl::ParseAssocKey("At('\"x\"')", isKey);
    EXPECT_EQ(key.text, "\"x\"") << "one pair alone is taken off";
    key = zo::impl::ParseAssocKey("At(4294967296)", isKey);
    EXPECT_TRUE(isKey);
    EXPECT_EQ(key.kind, AssocKey::None);
    key = zo::impl::ParseAssocKey("42", isKey);
    EXPECT_FALSE(isKey);
    EXPECT_EQ(key.kind, AssocKey::None);
}

} // namespace
