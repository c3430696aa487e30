// Mistakes: each is found, with its text and place, and nothing is registered.
#include "tests/kit/Site.h"

#include "Common/registry/RegistryImpl.h"

namespace site {
namespace {

using zo::kit::Kit;
using zo::kit::Mistake;
using zo::kit::Module;
using zo::kit::Report;

struct Inner {
    double value = 0;
};

struct Outer {
    double a = 0;
    double b = 0;
    std::wstring text;
    Method method = Method::Rotary;
    Inner inner;
    std::vector<Inner> list;
    std::vector<double> numbers;
    std::vector<std::wstring> texts;
    std::map<int, double> map;
    std::vector<std::vector<int>> rows;
    std::vector<Outer> outers;

    double Sum() const { return a + b; }
};

Outer outer;

class MistakeTest : public KitTest {
protected:
    ~MistakeTest() override { EXPECT_EQ(Rows(), 1u) << "nothing but the root is registered"; }

    std::size_t Rows() const { return registry->Tables()->RowCount(); }

    static Report Run(std::function<void(Kit&)> const& declare) {
        return zo::kit::Register({Module("Tested", declare)});
    }
    /// The texts of the report.
    static std::vector<std::wstring> Texts(Report const& report) {
        std::vector<std::wstring> texts;
        for (Mistake const& mistake : report.mistakes) texts.push_back(mistake.text);
        return texts;
    }
    using List = std::vector<std::wstring>;
};

TEST_F(MistakeTest, EachHasItsPlaceAndAllAreReportedAtOnce) {
    unsigned line = 0;
    Report const report = Run([&line](Kit& kit) {
        line = __LINE__ + 1;
        kit.Record<Outer>("Outer")
            .Field<&Outer::a>("A", L"Len")
            .Field<&Outer::b>("A", L"B")
            .Struct<&Outer::inner>("Inner", L"Inner");
        kit.Branch<Outer>("Outer", L"1st", [] { return &outer; });
    });
    EXPECT_EQ(Texts(report), (List{L"{A}: the tag {Len} is reserved.", L"{A}: the name is taken in {Outer}.",
                                   L"{Inner}: the type {site::(anonymous namespace)::Inner} is not declared.",
                                   L"{Outer}: the tag {1st} begins with a digit, so it would be an index."}));
    ASSERT_EQ(report.mistakes.size(), 4u);
    for (Mistake const& mistake : report.mistakes) EXPECT_TRUE(mistake.file.ends_with("MistakeTest.cpp"));
    EXPECT_EQ(report.mistakes[3].line, line + 4);
    for (unsigned i = 0; i < 3; ++i) {
#ifdef __clang__
        EXPECT_EQ(report.mistakes[i].line, line) << "this compiler gives the beginning of a chain of calls";
#else
        EXPECT_EQ(report.mistakes[i].line, line + 1 + i);
#endif
    }
}

TEST_F(MistakeTest, Tags) {
    Report const report = Run([](Kit& kit) {
        kit.Record<Outer>("Outer")
            .Field<&Outer::a>("A", L"Missing")
            .Field<&Outer::b>("B", L"two words")
            .Field<&Outer::text>("Text", L"")
            .Field<&Outer::method>("Method", L"A.B")
            .Array<&Outer::numbers>("Numbers", L"Numbers[2nd]")
            .Array<&Outer::texts>("Texts", L"Texts[Len]")
            .Computed<&Outer::Sum>("Sum", L"Sum[Part]");
        kit.Enum<Method>(methods);
    });
    EXPECT_EQ(
        Texts(report),
        (List{L"{A}: the tag {Missing} is reserved.", L"{B}: the tag {two words} is no name in XML.",
              L"{Text}: a tag is needed.", L"{Method}: the tag {A.B} holds a \".\" or a bracket.",
              L"{Numbers}: the tag {2nd} begins with a digit, so it would be an index.",
              L"{Texts}: the tag {Len} is reserved.", L"{Sum}: the tag {Sum[Part]} holds a \".\" or a bracket."}));
}

TEST_F(MistakeTest, TagTwice) {
    Report const report = Run([](Kit& kit) {
        kit.Record<Outer>("Outer").Field<&Outer::a>("A", L"X").Array<&Outer::numbers>("Numbers", L"X[Item]");
    });
    EXPECT_EQ(Texts(report), (List{L"{Numbers}: the tag {X} is taken in {Outer}."}));
}

TEST_F(MistakeTest, Names) {
    Report const report = Run([](Kit& kit) {
        kit.Record<Outer>("Outer")
            .Field<&Outer::a>("", L"A")
            .Field<&Outer::b>("a.b", L"B")
            .Field<&Outer::text>("2nd", L"C")
            .Array<&Outer::numbers>(":N", L"D");
    });
    EXPECT_EQ(Texts(report), (List{L"{}: a name is needed.", L"{a.b}: a name can hold none of . [ ] ( ) @ $.",
                                   L"{2nd}: a name that begins with a digit is an index.",
                                   L"{:N}: a name that begins with \":\" is no child in documents."}));
}

TEST_F(MistakeTest, MemberTwice) {
    Report const report = Run(
        [](Kit& kit) { kit.Record<Outer>("Outer").Field<&Outer::a>("A", L"A").Field<&Outer::a>("Again", L"Again"); });
    EXPECT_EQ(Texts(report), (List{L"{Again}: this part of {Outer} is declared already."}));
}

TEST_F(MistakeTest, TypeTwice) {
    Report const report = Run([](Kit& kit) {
        kit.Record<Inner>("Inner");
        kit.Record<Inner>("Second");
        kit.Enum<Method>(methods);
        kit.Enum<Method>(methods);
    });
    EXPECT_EQ(Texts(report), (List{L"{Second}: the type {site::(anonymous namespace)::Inner} is declared already.",
                                   L"the enumeration {site::Method} is declared already."}));
}

TEST_F(MistakeTest, TypesThatAreNotDeclared) {
    Report const report = Run([](Kit& kit) {
        kit.Record<Outer>("Outer")
            .Struct<&Outer::inner>("Inner", L"Inner")
            .Array<&Outer::list>("List", L"List")
            .Field<&Outer::method>("Method", L"Method");
        kit.Branch<std::vector<Inner>>("Inners", L"Inners", [] { return &outer.list; });
    });
    std::wstring const inner = L"the type {site::(anonymous namespace)::Inner} is not declared.";
    EXPECT_EQ(Texts(report),
              (List{L"{Inner}: " + inner, L"{List}: " + inner,
                    L"{Method}: the enumeration {site::Method} is not declared.", L"{Inners}: " + inner}));
}

TEST_F(MistakeTest, TypeThatContainsItself) {
    Report const report =
        Run([](Kit& kit) { kit.Record<Outer>("Outer").Array<&Outer::outers>("Outers", L"Outers[Outer]"); });
    EXPECT_EQ(Texts(report), (List{L"{Outers}: the type {Outer} contains itself: its parts would have no end."}));
}

struct Second;
struct First {
    std::vector<Second> seconds;
};
struct Second {
    std::map<int, First> firsts;
};

TEST_F(MistakeTest, TypesThatContainEachOther) {
    Report const report = Run([](Kit& kit) {
        kit.Record<First>("First").Array<&First::seconds>("Seconds", L"Seconds");
        kit.Record<Second>("Second").Map<&Second::firsts>("Firsts", L"Firsts");
    });
    EXPECT_EQ(Texts(report), (List{L"{Firsts}: the type {First} contains itself: its parts would have no end."}));
}

TEST_F(MistakeTest, WhatCanNotBeAnAttribute) {
    Report const report = Run([](Kit& kit) {
        kit.Record<Inner>("Inner").Field<&Inner::value>("Value", L"Value");
        kit.Record<Outer>("Outer", {.attributes = true})
            .Field<&Outer::a>("A", L"A")
            .Struct<&Outer::inner>("Inner", L"Inner")
            .Array<&Outer::list>("List", L"List")
            .Array<&Outer::numbers>("Numbers", L"Numbers", {.elements = true})
            .Array<&Outer::texts>("Texts", L"Texts")
            .Map<&Outer::map>("Map", L"Map")
            .Array<&Outer::rows>("Rows", L"Rows");
    });
    EXPECT_EQ(Texts(report), (List{L"{Inner}: a structure can't be an attribute of {Outer}.",
                                   L"{List}: this array is no single text, so it can't be an attribute of {Outer}.",
                                   L"{Numbers}: this array is no single text, so it can't be an attribute of {Outer}.",
                                   L"{Texts}: this array is no single text, so it can't be an attribute of {Outer}.",
                                   L"{Map}: a map can't be an attribute of {Outer}.",
                                   L"{Rows}: this array is no single text, so it can't be an attribute of {Outer}."}));
}

TEST_F(MistakeTest, RangesAndDefaults) {
    Report const report = Run([](Kit& kit) {
        kit.Record<Outer>("Outer")
            .Field<&Outer::a>("A", L"A", {.min = 5.0, .max = 2.0})
            .Field<&Outer::b>("B", L"B", {.dflt = 70.0, .min = 0.0, .max = 60.0})
            .Array<&Outer::numbers>("Numbers", L"Numbers", {.min = 1.0})
            .Map<&Outer::map>("Map", L"Map", {.value = {.dflt = 3.0, .max = 2.0}})
            .Field<&Outer::text>("Text", L"Text", {.valid = [](std::wstring const& text, zo::IZO const*) {
                                     return text.empty() ? htl::status::FromText(L"Empty.") : htl::status();
                                 }});
    });
    std::wstring const refused = L"the default is refused by the line's own rule: ";
    EXPECT_EQ(
        Texts(report),
        (List{L"{A}: the range from 5 to 2 is empty.", L"{A}: " + refused + L"0 is not between 5 and 2.",
              L"{B}: " + refused + L"70 is not between 0 and 60.", L"{Numbers}: " + refused + L"0 is less than 1.",
              L"{Map}: " + refused + L"3 is more than 2.", L"{Text}: " + refused + L"Empty."}));
}

TEST_F(MistakeTest, MissingValues) {
    Report const report = Run([](Kit& kit) {
        kit.Enum<Method>(methods);
        kit.Record<Outer>("Outer")
            .Field<&Outer::text>("Text", L"Text", {.missing = L"n/a"})
            .Field<&Outer::method>("Method", L"Method", {.missing = Method::Auger})
            .Field<&Outer::a>("A", L"A", {.missing = 1.0, .noMissing = true});
    });
    EXPECT_EQ(Texts(report),
              (List{L"{Text}: only the empty text can stand for a missing one.",
                    L"{Method}: an enumeration has no missing value.", L"{A}: a missing value is named and refused."}));
}

TEST_F(MistakeTest, WordsOfAnEnumeration) {
    enum class Kind { A, B };
    enum class Empty { None };
    Report const report = Run([](Kit& kit) {
        std::array const words{meta::EnumWord{0, L"One", L"1", L"One"}, meta::EnumWord{0, L"One", L"1", L"Two"},
                               meta::EnumWord{3, L"4", L"", L""}, meta::EnumWord{5'000'000'000, L"", L"", L"Two"}};
        kit.Enum<Kind>(words);
        kit.Enum<Empty>({});
    });
    std::wstring const kind = L"{" + str::as_wstring(meta::TypeName(typeid(Kind))) + L"}: ";
    std::wstring const empty = L"{" + str::as_wstring(meta::TypeName(typeid(Empty))) + L"}: ";
    EXPECT_EQ(Texts(report),
              (List{kind + L"two words have the value 0.", kind + L"two words have the text {One}.",
                    kind + L"two words have the text {1}.", kind + L"the text {4} is the number of another value.",
                    kind + L"the value 5000000000 is no int.", kind + L"a word needs a text.",
                    kind + L"two words have the text {Two}.", empty + L"an enumeration needs words."}));
}

TEST_F(MistakeTest, DefaultThatIsNoWord) {
    Report const report = Run([](Kit& kit) {
        kit.Enum<Method>(methods);
        kit.Record<Outer>("Outer").Field<&Outer::method>("Method", L"Method", {.dflt = static_cast<Method>(4)});
    });
    EXPECT_EQ(Texts(report), (List{L"{Method}: the default 4 is none of the enumeration's words."}));
}

TEST_F(MistakeTest, TagsOfAMap) {
    Report const report = Run([](Kit& kit) {
        kit.Record<Outer>("Outer").Map<&Outer::map>("Map", L"Map", {.keyTag = L"Len", .valueTag = L"Len"});
    });
    EXPECT_EQ(Texts(report), (List{L"{Map}: the tag {Len} is reserved.", L"{Map}: the tag {Len} is reserved.",
                                   L"{Map}: key and value have the same tag."}));
}

TEST_F(MistakeTest, ParentsOfBranches) {
    Report const report = Run([](Kit& kit) {
        kit.Record<Inner>("Inner");
        kit.Branch<Inner>("Inner", L"Inner", [] { return &outer.inner; });
        kit.Branch<double>("Inner.A", L"A", [] { return &outer.a; });
        kit.Branch<double>("Results.B", L"B", [] { return &outer.b; });
    });
    EXPECT_EQ(Texts(report), (List{L"{Inner.A}: the parent {Inner} is no group: what lies in an object is declared "
                                   L"with its type.",
                                   L"{Results.B}: the parent {Results} is missing."}));
}

TEST_F(MistakeTest, BranchesThatAreTaken) {
    Report const report = Run([](Kit& kit) {
        kit.Branch<double>("A", L"A", [] { return &outer.a; });
        kit.Branch<double>("A", L"B", [] { return &outer.b; });
        kit.Branch<double>("C", L"A", [] { return &outer.b; });
        kit.Branch<double>("HZNData", L"D", [] { return &outer.b; });
        kit.Branch<double>("E", L"HZNData", [] { return &outer.b; });
    });
    EXPECT_EQ(Texts(report), (List{L"{A}: the name is taken.", L"{C}: the tag {A} is taken.",
                                   L"{HZNData}: the name is taken.", L"{E}: the tag {HZNData} is taken."}));
}

struct Borehole {
    std::vector<int> blows{4, 7};
    std::map<int, double> tests{{1, 2.5}};
    std::vector<int> shown{1};
    std::vector<int> depths;
};
struct Survey {
    std::vector<Borehole> holes{{}};
};
Survey survey;

TEST_F(MistakeTest, ElementsThatComeWithFilledContainers) {
    Report const report = Run([](Kit& kit) {
        kit.Record<Borehole>("Borehole")
            .Array<&Borehole::blows>("Blows", L"Blows")
            .Map<&Borehole::tests>("Tests", L"Tests[Test]")
            .Array<&Borehole::shown>("Shown", L"Shown", {.persist = zo::kit::Persist::Never})
            .Array<&Borehole::depths>("Depths", L"Depths");
        // A single object may come filled: a load empties it first.
        kit.Record<Survey>("Survey").Array<&Survey::holes>("Holes", L"Holes[Hole]");
        kit.Branch<Survey>("Survey", L"Survey", [] { return &survey; });
    });
    EXPECT_EQ(Texts(report),
              (List{L"{Blows}: a new {Borehole} is an element that has something in it, so an empty one would be lost.",
                    L"{Tests}: a new {Borehole} is an element that has something in it, so an empty one would be "
                    L"lost."}));
}

struct Layer {
    double thickness = 0;
    int soil = 0;
    unsigned below = 0;
};
struct Boring {
    std::vector<Layer> layers;
    std::vector<Layer> samples;
};
struct Field {
    Boring boring;
    std::vector<Boring> borings;
    std::vector<Boring> pits;
    std::vector<std::vector<Layer>> rows;
};
Field field;

void LayerModule(Kit& kit) { kit.Record<Layer>("Layer").Field<&Layer::thickness>("Thickness", L"Thickness"); }

TEST_F(MistakeTest, NumbersThatAreNoGroup) {
    Report const report = Run([](Kit& kit) {
        LayerModule(kit);
        kit.Record<Boring>("Boring", {.recordGroup = 3})
            .Array<&Boring::layers>("Layers", L"Layers", {.recordGroup = 256})
            .Array<&Boring::samples>("Samples", L"Samples", {.recordGroup = 0xFFFFFFFF});
        kit.Branch<std::vector<Layer>>("Layers", L"Layers", [] { return &field.boring.layers; }, {.recordGroup = 1});
    });
    EXPECT_EQ(
        Texts(report),
        (List{L"{Boring}: the group 3 is none of 4 to 125, nor of 126 to 255 for records inside others.",
              L"{Layers}: the group 256 is none of 4 to 125, nor of 126 to 255 for records inside others.",
              L"{Samples}: the group 4294967295 is none of 4 to 125, nor of 126 to 255 for records inside others.",
              L"{Layers}: the group 1 is none of 4 to 125, nor of 126 to 255 for records inside others."}));
}

TEST_F(MistakeTest, GroupThatStandsInTwoPlaces) {
    unsigned line = 0;
    Report const report = Run([&line](Kit& kit) {
        LayerModule(kit);
        kit.Branch<std::vector<Layer>>("Left", L"Left", [] { return &field.boring.layers; }, {.recordGroup = 4});
        line = __LINE__ + 1;
        kit.Branch<std::vector<Layer>>("Right", L"Right", [] { return &field.boring.samples; }, {.recordGroup = 4});
    });
    EXPECT_EQ(Texts(report), (List{L"{Right}: the group 4 is taken by {Left}."}));
    EXPECT_EQ(report.mistakes.at(0).line, line);
}

TEST_F(MistakeTest, TypeWithAGroupInTwoPlaces) {
    Report const report = Run([](Kit& kit) {
        LayerModule(kit);
        kit.Record<Boring>("Boring", {.recordGroup = 8})
            .Array<&Boring::layers>("Layers", L"Layers", {.recordGroup = 9});
        kit.Branch<Boring>("Left", L"Left", [] { return &field.boring; });
        kit.Branch<Boring>("Right", L"Right", [] { return &field.boring; });
        kit.Branch<Boring>("Middle", L"Middle", [] { return &field.boring; });
    });
    EXPECT_EQ(Texts(report),
              (List{L"{Boring}: the group 8 is taken by {Left}.", L"{Layers}: the group 9 is taken by {Left.Layers}."}))
        << "each once";
}

TEST_F(MistakeTest, GroupsInsideOtherRecords) {
    Report const report = Run([](Kit& kit) {
        LayerModule(kit);
        kit.Record<Boring>("Boring")
            .Array<&Boring::layers>("Layers", L"Layers", {.recordGroup = 130})
            .Array<&Boring::samples>("Samples", L"Samples", {.recordGroup = 130});
        kit.Record<Field>("Field")
            .Array<&Field::borings>("Borings", L"Borings", {.recordGroup = 20})
            .Array<&Field::pits>("Pits", L"Pits");
        kit.Branch<Field>("Field", L"Field", [] { return &field; });
    });
    EXPECT_EQ(Texts(report), (List{L"{Samples}: the group 130 is taken by {Layers}.",
                                   L"{Layers}: the group 130 lies in no other record: it has to be one of 4 to 125."}));
}

TEST_F(MistakeTest, GroupsThatStandByThemselvesInsideElements) {
    Report const report = Run([](Kit& kit) {
        LayerModule(kit);
        kit.Record<Boring>("Boring").Array<&Boring::layers>("Layers", L"Layers", {.recordGroup = 30});
        kit.Record<Field>("Field").Array<&Field::borings>("Borings", L"Borings", {.recordGroup = 20});
        kit.Branch<Field>("Field", L"Field", [] { return &field; });
    });
    EXPECT_EQ(Texts(report),
              (List{L"{Layers}: the group 30 lies in elements: inside other records it has to be one of 126 to 255."}));
}

TEST_F(MistakeTest, TypeOfElementsWithAGroup) {
    Report const report = Run([](Kit& kit) {
        kit.Record<Layer>("Layer", {.recordGroup = 130}).Field<&Layer::thickness>("Thickness", L"Thickness");
        kit.Branch<std::vector<Layer>>("Layers", L"Layers", [] { return &field.boring.layers; }, {.recordGroup = 10});
    });
    EXPECT_EQ(Texts(report), (List{L"{Layer}: each element would be record 1 of group 130."}));
}

TEST_F(MistakeTest, GroupsTwoRecordsDeepOrBehindElementsWithoutGroup) {
    Report const report = Run([](Kit& kit) {
        LayerModule(kit);
        kit.Record<Boring>("Boring", {.recordGroup = 140})
            .Array<&Boring::layers>("Layers", L"Layers", {.recordGroup = 141});
        kit.Record<Field>("Field", {.recordGroup = 60})
            .Struct<&Field::boring>("Boring", L"Boring")
            .Array<&Field::borings>("Borings", L"Borings");
        kit.Branch<Field>("Field", L"Field", [] { return &field; });
    });
    EXPECT_EQ(Texts(report), (List{L"{Layers}: the group 141 lies in a record that is inside another one itself.",
                                   L"{Boring}: the group 140 lies in elements that are no records."}));
}

TEST_F(MistakeTest, GroupOfWhatIsNoContainer) {
    Report const report = Run([](Kit& kit) {
        LayerModule(kit);
        kit.Branch<Layer>("Layer", L"Layer", [] { return field.boring.layers.data(); }, {.recordGroup = 10});
    });
    EXPECT_EQ(Texts(report),
              (List{L"{Layer}: only a container holds records: a structure has the group of its type."}));
}

TEST_F(MistakeTest, LinksToWhatIsNoGroup) {
    Report const report = Run([](Kit& kit) {
        LayerModule(kit);
        kit.Record<Boring>("Boring").Array<&Boring::layers>("Layers", L"Layers", {.recordGroup = 130});
        kit.Record<Field>("Field").Array<&Field::borings>("Borings", L"Borings", {.recordGroup = 20});
        kit.Branch<Field>("Field", L"Field", [] { return &field; });
        struct Marker {
            int layer = 0, boring = 0, soil = 0;
        };
        kit.Record<Marker>("Marker")
            .Link<&Marker::layer>("Layer", L"Layer", 130)
            .Link<&Marker::boring>("Boring", L"Boring", 20)
            .Link<&Marker::soil>("Soil", L"Soil", 5);
    });
    EXPECT_EQ(Texts(report),
              (List{L"{Layer}: the records of group 130 lie inside others, so no number alone leads to one.",
                    L"{Soil}: no records of group 5 are declared."}));
}

TEST_F(MistakeTest, LinkToAMemberThatIsDeclaredAlready) {
    Report const report = Run([](Kit& kit) {
        kit.Record<Layer>("Layer").Field<&Layer::soil>("Number", L"Number").Link<&Layer::soil>("Soil", L"Soil", 10);
        kit.Branch<std::vector<Layer>>("Soils", L"Soils", [] { return &field.boring.layers; }, {.recordGroup = 10});
    });
    EXPECT_EQ(Texts(report), (List{L"{Soil}: this part of {Layer} is declared already."}));
}

TEST_F(MistakeTest, Aliases) {
    Report const report = Run([](Kit& kit) {
        kit.Record<Layer>("Layer")
            .Field<&Layer::thickness>("Thickness", L"Thickness")
            .Alias("Thickness", L"Owner", L"@Parent.Name")
            .Alias("Other", L"Thickness", L"");
        kit.Alias("A", L"Len", "Soils[0]");
        kit.Alias("B[0]", L"B", "Soils[0]");
        kit.Alias("C", L"C", "");
        kit.Alias("D.E", L"E", "Soils[0]");
        kit.AliasByTag("F", L"C", L"Soils[1]");
        kit.AliasByTag("C", L"G", L"");
        kit.Alias("C.H", L"H", "Soils[0]");
        kit.Alias("I", L"I[J]", "Soils");
    });
    EXPECT_EQ(Texts(report),
              (List{L"{Thickness}: the name is taken in {Layer}.", L"{Other}: the tag {Thickness} is taken in {Layer}.",
                    L"{Other}: an alias needs a source.", L"{A}: the tag {Len} is reserved.",
                    L"{B[0]}: a name can hold none of . [ ] ( ) @ $.", L"{C}: an alias needs a source.",
                    L"{D.E}: the parent {D} is missing.", L"{F}: the tag {C} is taken.",
                    L"{C}: an alias needs a source.", L"{C}: the name is taken.",
                    L"{C.H}: the parent {C} is no group: what lies in an object is declared with its type.",
                    L"{I}: the tag {I[J]} holds a \".\" or a bracket."}));
}

TEST_F(MistakeTest, FieldsOfAnAliasSet) {
    Report const report = Run([](Kit& kit) {
        kit.AliasSet(
            "Cover", L"Cover",
            {{"Strength", "Soils[0].Cohesion"}, {"Strength", "Soils[1].Cohesion"}, {"Area", ""}, {"A.B", "C"}});
    });
    EXPECT_EQ(Texts(report),
              (List{L"{Cover}: the field {Strength} comes twice.", L"{Cover}: the field {Area} needs a source.",
                    L"{Cover}: a name can hold none of . [ ] ( ) @ $."}));
}

TEST_F(MistakeTest, Modules) {
    Report const report = zo::kit::Register(
        {{"Soils", &PointModule}, {"Soils", [](Kit&) {}}, Module(static_cast<void (*)(Kit&)>(nullptr))});
    EXPECT_EQ(Texts(report), (List{L"the module {Soils} is in the list twice.", L"a module has no function."}));
    EXPECT_TRUE(report.mistakes[0].file.ends_with("MistakeTest.cpp"));
}

class TakenTest : public KitTest {};

TEST_F(TakenTest, RowsThatAreThereAlreadyKeepTheirNamesAndTags) {
    static double a = 1, b = 2;
    Register({[](Kit& kit) {
        kit.Group("Group", L"Group");
        kit.Branch<double>("Group.A", L"InGroup", [] { return &a; });
        kit.Branch<double>("A", L"TagOfA", [] { return &a; });
    }});
    Report const report = zo::kit::Register({[](Kit& kit) {
        kit.Branch<double>("A", L"New", [] { return &b; });
        kit.Branch<double>("B", L"TagOfA", [] { return &b; });
        kit.Branch<double>("Group.A", L"Other", [] { return &b; });
        kit.Branch<double>("Group.B", L"InGroup", [] { return &b; });
        kit.Branch<double>("Group.C", L"C", [] { return &b; });
        kit.Branch<double>("A.D", L"D", [] { return &b; });
    }});
    std::vector<std::wstring> texts;
    for (Mistake const& mistake : report.mistakes) texts.push_back(mistake.text);
    EXPECT_EQ(texts, (std::vector<std::wstring>{
                         L"{A}: the name is taken.", L"{B}: the tag {TagOfA} is taken.",
                         L"{Group.A}: the name is taken.", L"{Group.B}: the tag {InGroup} is taken.",
                         L"{A.D}: the parent {A} is no group: what lies in an object is declared with its type."}));
    EXPECT_FALSE(zo::Find("Group.C")) << "nothing of the second list";
    EXPECT_EQ(TextOf("A"), L"1");

    Register({[](Kit& kit) { kit.Branch<double>("Group.C", L"C", [] { return &b; }); }});
    EXPECT_EQ(TextOf("Group.C"), L"2");
    EXPECT_EQ(Body(), L"<Group><C>2</C><InGroup>1</InGroup></Group><TagOfA>1</TagOfA>");
}

TEST_F(TakenTest, GroupsOfAnEarlierRegistrationAreTaken) {
    static std::vector<Point> pins, nails;
    Register({&PointModule, [](Kit& kit) {
                  kit.Branch<std::vector<Point>>("Pins", L"Pins", [] { return &pins; }, {.recordGroup = 40});
              }});
    Report const report = zo::kit::Register({&PointModule, [](Kit& kit) {
                                                 kit.Branch<std::vector<Point>>(
                                                     "Nails", L"Nails", [] { return &nails; }, {.recordGroup = 40});
                                             }});
    ASSERT_EQ(report.mistakes.size(), 1u);
    EXPECT_EQ(report.mistakes[0].text, L"{Nails}: the group 40 is taken by {Pins}.");
    EXPECT_EQ(zo::kit::impl::TableOfRegistry()->NameOf(GGID{40, 1}), "Pins[0]");
}

} // namespace
} // namespace site
