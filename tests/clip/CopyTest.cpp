// What is put on a clipboard.
#include "tests/clip/Valley.h"

#include <limits>

namespace valley {
namespace {

using hzn::gid::PackedContainerGID;

class CopyTest : public ClipTest {
protected:
    /// The document without its declaration, its document element and the white space between tags.
    static std::wstring Body(ClipboardContents const& contents) {
        std::wstring const& text = contents.document;
        std::size_t const open = text.find(L'>', text.find(L"<HZNData "));
        std::size_t const close = text.rfind(L"</HZNData>");
        std::wstring body;
        for (std::size_t i = open + 1; i < close; ++i)
            if (text[i] != L'\n' && !(text[i] == L' ' && (body.empty() || body.back() == L'>' || body.back() == L' ')))
                body += text[i];
        return body;
    }
};

TEST_F(CopyTest, ARecordIsWrittenWithItsArrayAndEmptyElementsBesideIt) {
    auto const contents = Copy({"Materials[2]"});
    EXPECT_EQ(Body(contents), L"<Materials Len=\"3\"><Material/><Material/><Material><ID>3</ID><Name>Rock</Name>"
                              L"<Cohesion>400</Cohesion></Material></Materials>");
    EXPECT_EQ(contents.objects, L"10");
    EXPECT_EQ(contents.version, L"1.00");
}

TEST_F(CopyTest, TheDocumentIsAWideStringWithTheVersion) {
    auto const contents = Copy({"Materials[2]"});
    EXPECT_EQ(contents.document.substr(0, contents.document.find(L'\n')),
              L"<?xml version=\"1.0\" encoding=\"UTF-16\"?>");
    EXPECT_NE(contents.document.find(L"<HZNData Version=\"1.00\""), std::wstring::npos);
}

TEST_F(CopyTest, WhatACopiedObjectLinksToComesAlong) {
    EXPECT_EQ(
        Body(Copy({"Regions[1]"})),
        L"<Materials Len=\"3\"><Material/><Material/><Material><ID>3</ID><Name>Rock</Name>"
        L"<Cohesion>400</Cohesion></Material></Materials>"
        L"<Regions Len=\"2\"><Region/><Region ID=\"2\" Name=\"Base\" Area=\"90\" Material=\"3\" Next=\"\" Layers=\"\"/>"
        L"</Regions>");
}

TEST_F(CopyTest, LinksAreFollowedOverManyStepsAndInCircles) {
    // The slope leads to the base, the base to rock; clay and fill lead to each other.
    auto const contents = Copy({"Regions[0]"});
    for (std::wstring const name : {L">Fill<", L">Clay<", L">Rock<", L"\"Slope\"", L"\"Base\""})
        EXPECT_NE(contents.document.find(name), std::wstring::npos) << str::as_cstring(name);
    EXPECT_EQ(contents.objects, L"10,12");
}

TEST_F(CopyTest, AnObjectMayLinkToItself) {
    project->regions[1].next = 2;
    auto const contents = Copy({"Regions[1]"});
    EXPECT_NE(contents.document.find(L"Next=\"2\""), std::wstring::npos);
}

TEST_F(CopyTest, LinksInAnArrayAreFollowed) {
    project->regions[1].layers = {0, 1};
    EXPECT_NE(Copy({"Regions[1]"}).document.find(L">Fill<"), std::wstring::npos);
}

TEST_F(CopyTest, AContainerBringsAllItsObjects) {
    project->materials[0].strengths = {1};
    auto const contents = Copy({"Materials"});
    EXPECT_EQ(Body(contents), L"<Materials Len=\"3\"><Material><ID>1</ID><Name>Fill</Name><Cohesion>5</Cohesion>"
                              L"<Substitute>2</Substitute><Strengths Len=\"1\"><Strength>1</Strength></Strengths>"
                              L"</Material><Material><ID>2</ID><Name>Clay</Name><Cohesion>25</Cohesion><Substitute>1"
                              L"</Substitute><Strengths Len=\"2\"><Strength>20</Strength><Strength>30</Strength>"
                              L"</Strengths></Material><Material><ID>3</ID><Name>Rock</Name><Cohesion>400</Cohesion>"
                              L"</Material></Materials>");
    EXPECT_EQ(contents.objects, L"10");
}

TEST_F(CopyTest, AFieldStandsForItsWholeRecord) {
    EXPECT_EQ(Copy({"Materials[2].Cohesion"}).document, Copy({"Materials[2]"}).document);
}

TEST_F(CopyTest, ALinkFieldBringsWhatItLeadsTo) {
    auto const contents = Copy({"Regions[1].Material"});
    EXPECT_EQ(contents.document, Copy({"Regions[1]"}).document);
}

TEST_F(CopyTest, ALinkToARecordOfWhichAFieldWasCopiedBringsAllThatItLinksTo) {
    project->regions[1].material = 1;
    // The field alone says nothing of the substitute; the region's link leads to the whole material.
    auto const contents = Copy({"Materials[0].Cohesion", "Regions[1]"});
    EXPECT_NE(contents.document.find(L">Clay<"), std::wstring::npos);
}

TEST_F(CopyTest, ALinkToNoRecordAddsNothing) {
    project->regions[1].material = 7;
    EXPECT_EQ(
        Body(Copy({"Regions[1]"})),
        L"<Regions Len=\"2\"><Region/><Region ID=\"2\" Name=\"Base\" Area=\"90\" Material=\"7\" Next=\"\" Layers=\"\"/>"
        L"</Regions>");
}

TEST_F(CopyTest, ThePathIsAlwaysIncluded) {
    project->settings = {0.5, 0};
    EXPECT_EQ(Body(Copy({"Materials[2]"}, "Settings")),
              L"<Materials Len=\"3\"><Material/><Material/><Material><ID>3</ID><Name>Rock</Name>"
              L"<Cohesion>400</Cohesion></Material></Materials>"
              L"<Settings><Tolerance>0.5</Tolerance><Cover Missing=\"true\"/></Settings>");
}

TEST_F(CopyTest, APathToNothingAddsNothing) {
    EXPECT_EQ(Copy({"Materials[2]"}, "Loads").document, Copy({"Materials[2]"}).document);
}

TEST_F(CopyTest, ARecordByItselfIsCopiedWithWhatItLinksTo) {
    project->settings.cover = 3;
    auto const contents = Copy({"Settings"});
    EXPECT_EQ(contents.objects, L"10,7") << "sorted as texts";
    EXPECT_NE(contents.document.find(L">Rock<"), std::wstring::npos);
}

TEST_F(CopyTest, RecordsInsideARecordAreToldWithIt) {
    project->profiles = {{1, L"West", 0, {{1, L"W1", 12, 2}, {2, L"W2", 15, 0}, {3, L"W3", 9, 0}}}};
    auto const contents = Copy({"Profiles[0].Wells[0]"});
    EXPECT_EQ(contents.objects, std::to_wstring(PackedContainerGID({profileGroup, 1}, wellGroup)));
    EXPECT_EQ(Body(contents), L"<Profiles Len=\"1\"><Profile><Wells Len=\"3\"><Well><ID>1</ID><Name>W1</Name><Depth>12"
                              L"</Depth><Next>2</Next></Well><Well><ID>2</ID><Name>W2</Name><Depth>15</Depth>"
                              L"<Next Missing=\"true\"/></Well><Well/></Wells></Profile></Profiles>");
}

TEST_F(CopyTest, ARecordBringsItsContainersEmptyOnesToo) {
    project->profiles = {{1, L"West", 0, {{1, L"W1", 12, 0}}}};
    EXPECT_EQ(Copy({"Profiles[0]"}).objects,
              L"20," + std::to_wstring(PackedContainerGID({profileGroup, 1}, wellGroup)) + L"," +
                  std::to_wstring(PackedContainerGID({profileGroup, 1}, probeGroup)));
}

TEST_F(CopyTest, EmptyHandlesArePassedOver) {
    ClipboardContents contents;
    ASSERT_TRUE(Succeeds(zo::clip::Serialize(contents, {{}, zo::Find("Materials[2]"), {}}, version, "")));
    EXPECT_EQ(contents.objects, L"10");
}

TEST_F(CopyTest, NothingToCopyIsTheFailureOfAnEmptyDocument) {
    std::wstring text;
    std::vector<std::wstring> const nothing;
    htl::status const expected = zo::xml::StringWrite(text, version, 0, &nothing);
    ASSERT_TRUE(expected.IsError());
    ClipboardContents contents{L"old", L"old", L"old"};
    EXPECT_TRUE(FailsAs(zo::clip::Serialize(contents, {}, version, ""), expected));
    EXPECT_EQ(contents.document, L"");
    EXPECT_EQ(contents.objects, L"");
    EXPECT_EQ(contents.version, L"1.00");
}

TEST_F(CopyTest, CopyingChangesNothing) {
    std::wstring const saved = Save();
    (void)Copy({"Regions[0]"}, "Settings");
    EXPECT_EQ(Save(), saved);
}

TEST_F(CopyTest, ANodeThatIsNeverSavedBringsNothing) {
    struct Draft {
        int material = 3;
    };
    static Draft draft;
    ASSERT_TRUE(zo::kit::Register({[](zo::kit::Kit& kit) {
                    kit.Record<Draft>("Draft").Link<&Draft::material>("Material", L"Material", materialGroup,
                                                                      {.persist = zo::kit::Persist::Never});
                    kit.Branch<Draft>("Draft", L"Draft", [] { return &draft; });
                }}).IsClean());
    EXPECT_EQ(Copy({"Materials[0]", "Draft.Material"}).document, Copy({"Materials[0]"}).document);
}

// ---- Whether the contents fit

class ContainsTest : public ClipTest {
protected:
    ClipboardContents contents{L"", L"10,12,130", L"1.00"};
};

TEST_F(ContainsTest, AContainerIsFoundAmongTheObjects) {
    EXPECT_TRUE(zo::clip::Contains(10, contents, version));
    EXPECT_TRUE(zo::clip::Contains(130, contents, version));
    EXPECT_FALSE(zo::clip::Contains(11, contents, version));
}

TEST_F(ContainsTest, AnotherVersionContainsNothing) {
    EXPECT_FALSE(zo::clip::Contains(10, contents, {1, 1}));
    EXPECT_FALSE(zo::clip::Contains(10, contents, {10, 0}));
}

TEST_F(ContainsTest, TheBeginningOfANumberIsNotTheNumber) {
    EXPECT_FALSE(zo::clip::Contains(1, contents, version));
    EXPECT_FALSE(zo::clip::Contains(13, contents, version));
    EXPECT_FALSE(zo::clip::Contains(30, contents, version));
    EXPECT_FALSE(zo::clip::Contains(0, contents, version));
}

TEST_F(ContainsTest, EmptyContentsContainNothing) {
    ClipboardContents nothing;
    EXPECT_FALSE(zo::clip::Contains(0, nothing, version));
    nothing.version = L"1.00";
    EXPECT_FALSE(zo::clip::Contains(0, nothing, version));
    EXPECT_FALSE(zo::clip::Contains(10, nothing, version));
}

TEST_F(ContainsTest, TheLargestNumberIsWritten) {
    contents.objects = L"4294967295";
    EXPECT_TRUE(zo::clip::Contains(std::numeric_limits<GID>::max(), contents, version));
}

TEST_F(ContainsTest, WhatWasCopiedIsContained) {
    auto copied = Copy({"Regions[0]"});
    EXPECT_TRUE(zo::clip::Contains(regionGroup, copied, version));
    EXPECT_TRUE(zo::clip::Contains(materialGroup, copied, version));
    EXPECT_FALSE(zo::clip::Contains(profileGroup, copied, version));
}

} // namespace
} // namespace valley
