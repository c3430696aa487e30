// The helpers for modules that register rows by hand.
#include "tests/kit/Site.h"

namespace site {
namespace {

struct Trench {
    double depth = 0;
    Method method = Method::Rotary;
    Point start;
    std::vector<double> widths;
};

meta::MetaDataTraits Double() { return meta::AtomicTraits<double>(); }
meta::MetaDataTraits MethodTraits() {
    static meta::MetaDataTraits const traits = meta::EnumTraits<Method>(methods, Method::Rotary);
    return traits;
}
meta::MetaDataTraits PointTraits() {
    static meta::MetaDataTraits const traits =
        meta::StructureBuilder<Point>().Member(&Point::x, Double).Member(&Point::y, Double).Build();
    return traits;
}
meta::MetaDataTraits WidthsTraits() {
    static meta::MetaDataTraits const traits = meta::ArrayTraits<std::vector<double>>(Double);
    return traits;
}
meta::MetaDataTraits TrenchTraits() {
    static meta::MetaDataTraits const traits = meta::StructureBuilder<Trench>()
                                                   .Member(&Trench::depth, Double)
                                                   .Member(&Trench::method, MethodTraits)
                                                   .Member(&Trench::start, PointTraits)
                                                   .Member(&Trench::widths, WidthsTraits)
                                                   .Build();
    return traits;
}

class PrototypeTest : public KitTest {
protected:
    PrototypeTest() {
        namespace prototype = zo::kit::prototype;
        auto const row = [this](char const* name, zo::H const& node, wchar_t const* tag,
                                meta::MetaDataTraits const& traits, void* object = nullptr) {
            htl::handle<zo::IODS> const store(new zo::ODS(name, true, true, object));
            registry->RegisterZO(store, node, {meta::MetaPersistTraits::No, tag}, traits);
        };
        row("Trench", prototype::Object<Trench>(TrenchTraits()), L"Trench", TrenchTraits(), &trench);
        row("Trench.Depth", prototype::Member(&Trench::depth, Double()), L"Depth", Double());
        row("Trench.Method", prototype::Member(&Trench::method, MethodTraits()), L"Method", MethodTraits());
        row("Trench.Start", prototype::Member(&Trench::start, PointTraits()), L"Start", PointTraits());
        row("Trench.Start.Y", prototype::Member(&Point::y, Double()), L"Y", Double());
        row("Trench.Widths", prototype::Member(&Trench::widths, WidthsTraits()), L"Widths", WidthsTraits());
        row("Trench.Widths.[]", prototype::Element<double>(Double()), L"", Double());
        registry->OnPostRegistration();
    }

    Trench trench{2.5, Method::Auger, {3, 4}, {5, 6}};
};

TEST_F(PrototypeTest, MembersAreViewsAtTheirOffsets) {
    EXPECT_EQ(TextOf("Trench.Depth"), L"2.5");
    EXPECT_EQ(TextOf("Trench.Method"), L"Auger");
    EXPECT_EQ(TextOf("Trench.Start.Y"), L"4");
    ASSERT_TRUE(Succeeds(zo::Find("Trench.Start.Y")->Set(8)));
    EXPECT_EQ(trench.start.y, 8);
}

TEST_F(PrototypeTest, ElementsAreViewsOfTheContainer) {
    EXPECT_EQ(TextOf("Trench.Widths[1]"), L"6");
    ASSERT_TRUE(Succeeds(zo::Find("Trench.Widths")->SetLength(3)));
    EXPECT_EQ(trench.widths, (std::vector<double>{5, 6, 0}));
}

TEST_F(PrototypeTest, EachKindHasItsClass) {
    EXPECT_TRUE(dynamic_cast<zo::ZOWrapperStruct*>(zo::GetTemplate("Trench")));
    EXPECT_TRUE(dynamic_cast<zo::ZOWrapperAtomic<double>*>(zo::GetTemplate("Trench.Depth")));
    EXPECT_TRUE(dynamic_cast<zo::ZOWrapperAtomic<int>*>(zo::GetTemplate("Trench.Method")));
    EXPECT_TRUE(dynamic_cast<zo::ZOArrayWrapper*>(zo::GetTemplate("Trench.Widths")));
}

} // namespace
} // namespace site
