// Clipboard text that comes from other programs: a paste that is refused leaves the project as it is.
#include "tests/clip/Valley.h"

#include <cstdint>

namespace valley {
namespace {

class RefuseTest : public ClipTest {
protected:
    /// Expects that the document is refused and nothing has changed.
    void Refused(std::wstring const& document) {
        std::wstring const saved = Save();
        ClipboardContents contents{document, L"10,12", L"1.00"};
        EXPECT_TRUE(
            FailsAs(zo::clip::Deserialize(regionGroup, contents, version, names, "", &reasons), Failure(26502)));
        EXPECT_FALSE(reasons.empty());
        EXPECT_EQ(Save(), saved);
        EXPECT_EQ(names, std::vector<std::wstring>());
    }
    /// The texts of the reasons, one to a line.
    std::wstring Reasons() const {
        std::wstring text;
        for (std::wstring const& reason : Texts(reasons)) text += reason + L"\n";
        return text;
    }
    static std::wstring WithVersion(std::wstring const& attribute) {
        return L"<HZNData" + attribute + L"><Regions Len=\"1\"><Region ID=\"1\" Name=\"Toe\"/></Regions></HZNData>";
    }
};

TEST_F(RefuseTest, EmptyText) {
    Refused(L"");
    EXPECT_EQ(reasons.size(), 1u) << "what the parser says";
}

TEST_F(RefuseTest, TextThatIsNoDocument) { Refused(L"Slope\t60\r\nBase\t90\r\n"); }

TEST_F(RefuseTest, BinaryData) {
    std::wstring text;
    std::uint32_t state = 5;
    for (int i = 0; i < 5000; ++i) {
        state = state * 1664525u + 1013904223u;
        text += static_cast<wchar_t>(state >> 16 & 0xFFFF);
    }
    Refused(text);
    Refused(std::wstring(100, L'\0'));
    Refused(std::wstring(1, static_cast<wchar_t>(0xD800)));
    Refused(std::wstring(1, static_cast<wchar_t>(0x110000)));
}

TEST_F(RefuseTest, ADocumentThatIsCutAnywhere) {
    std::wstring const whole = Copy({"Regions[0]"}).document;
    // Behind the end of the document element it is whole.
    std::size_t const end = whole.rfind(L"</HZNData>") + 10;
    for (std::size_t length = 0; length < end; length += 7) {
        SCOPED_TRACE(length);
        Refused(whole.substr(0, length));
    }
    Refused(whole.substr(0, end - 1));
}

TEST_F(RefuseTest, SomethingBehindTheDocument) { Refused(Copy({"Regions[0]"}).document + L"<More/>"); }

TEST_F(RefuseTest, AnotherVersion) {
    Refused(WithVersion(L" Version=\"2.05\""));
    EXPECT_EQ(Reasons(), L"The clipboard contents were written under version 2.05, expected 1.00.\n");
}

TEST_F(RefuseTest, AVersionThatDiffersByLittle) {
    Refused(WithVersion(L" Version=\"1.001\""));
    EXPECT_EQ(Reasons(), L"The clipboard contents were written under version 1.001, expected 1.00.\n");
    Refused(WithVersion(L" Version=\"-1\""));
    EXPECT_EQ(Reasons(), L"The clipboard contents were written under version -1, expected 1.00.\n");
    Refused(WithVersion(L" Version=\"1e300\""));
}

TEST_F(RefuseTest, ContentsWrittenUnderOneVersionAndPastedUnderAnother) {
    auto contents = Copy({"Regions[0]"});
    std::wstring const saved = Save();
    EXPECT_TRUE(FailsAs(zo::clip::Deserialize(regionGroup, contents, {1, 1}, names, "", &reasons), Failure(26502)));
    EXPECT_EQ(Reasons(), L"The clipboard contents were written under version 1.00, expected 1.01.\n");
    EXPECT_EQ(Save(), saved);
}

TEST_F(RefuseTest, NoVersion) {
    Refused(WithVersion(L""));
    EXPECT_EQ(Reasons(), L"The clipboard contents name no version, expected 1.00.\n");
}

TEST_F(RefuseTest, AVersionThatIsNoNumber) { Refused(WithVersion(L" Version=\"one\"")); }

TEST_F(RefuseTest, TheSameVersionInAnotherSpelling) {
    ClipboardContents contents{WithVersion(L" Version=\"1.0\""), L"12", L"1.00"};
    EXPECT_TRUE(Succeeds(zo::clip::Deserialize(regionGroup, contents, version, names, "", &reasons)));
    EXPECT_EQ(project->regions.size(), 3u);
}

TEST_F(RefuseTest, ADocumentOfAnotherApplication) {
    Refused(L"<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"10\"><path d=\"M0 0L5 5\"/></svg>");
    EXPECT_NE(Reasons().find(zo::ZOError::not_recognized(L"HZNData.path").AsWString()), std::wstring::npos)
        << str::as_cstring(Reasons());
}

TEST_F(RefuseTest, AnUnknownTag) {
    Refused(Document(L"<Regions Len=\"1\"><Region ID=\"1\" Name=\"Toe\"/></Regions><Loads/>"));
    EXPECT_EQ(Texts(reasons), Texts({zo::ZOError::not_recognized(L"HZNData.Loads")}));
}

TEST_F(RefuseTest, AnUnknownAttribute) {
    Refused(Document(L"<Regions Len=\"1\"><Region ID=\"1\" Color=\"red\"/></Regions>"));
    EXPECT_EQ(Texts(reasons), Texts({zo::ZOError::not_recognized(L"HZNData.Regions[1].Color")}));
}

TEST_F(RefuseTest, AValueOfTheWrongSort) {
    Refused(Document(L"<Materials Len=\"1\"><Material><ID>1</ID><Cohesion>soft</Cohesion></Material></Materials>"));
    htl::status const cause = zo::Find("Materials[0].Cohesion")->Set(L"soft");
    ASSERT_TRUE(cause.IsError());
    EXPECT_EQ(Texts(reasons), Texts({zo::ZOError::file_assign(L"Materials[1].Cohesion", L"soft", cause)}));
}

TEST_F(RefuseTest, EveryErrorIsAmongTheReasons) {
    Refused(Document(L"<Loads/><Materials Len=\"1\"><Material><ID>first</ID><Cohesion>soft</Cohesion></Material>"
                     L"</Materials>"));
    EXPECT_EQ(reasons.size(), 3u);
}

TEST_F(RefuseTest, ALinkThatItsFieldCannotHold) {
    Refused(Document(L"<Regions Len=\"1\"><Region ID=\"1\" Material=\"4294967296\"/></Regions>"));
    Refused(Document(L"<Regions Len=\"1\"><Region ID=\"1\" Material=\"rock\"/></Regions>"));
}

TEST_F(RefuseTest, ALinkThatNoRecordCanHaveIsAFailureOfItsObject) {
    auto contents = Contents(L"<Regions Len=\"1\"><Region ID=\"1\" Name=\"Toe\" Material=\"-3\"/></Regions>");
    htl::status const expected = zo::Find("Regions[0].Material")->Set(-3);
    ASSERT_TRUE(expected.IsError());
    EXPECT_TRUE(FailsAs(zo::clip::Deserialize(regionGroup, contents, version, names, "", &reasons), expected));
    EXPECT_EQ(Texts(reasons), Texts({expected}));
    Region const pasted{3, L"Toe", 0, 0, 0};
    EXPECT_EQ(project->regions.back(), pasted);
}

TEST_F(RefuseTest, ALengthThatTheDocumentCannotHold) {
    Refused(Document(L"<Regions Len=\"2000000000\"><Region ID=\"1\"/></Regions>"));
    Refused(Document(L"<Regions Len=\"-1\"><Region ID=\"1\"/></Regions>"));
}

TEST_F(RefuseTest, ADocumentTypeDeclaration) {
    Refused(L"<!DOCTYPE HZNData [<!ENTITY a \"aaaaaaaaaa\">]>" + WithVersion(L" Version=\"1.00\""));
    EXPECT_NE(Reasons().find(L"document type declaration"), std::wstring::npos);
}

TEST_F(RefuseTest, ElementsNestedWithoutEnd) {
    std::wstring text;
    for (int i = 0; i < 100000; ++i) text += L"<Regions>";
    Refused(Document(text));
}

TEST_F(RefuseTest, ABranchThatIsNotThere) {
    struct Water {
        double level = 0;
    };
    ASSERT_TRUE(zo::kit::Register({[](zo::kit::Kit& kit) {
                    kit.Record<Water>("Water").Field<&Water::level>("Level", L"Level");
                    kit.Branch<Water>("Water", L"Water", []() -> Water* { return nullptr; });
                }}).IsClean());
    Refused(Document(L"<Water><Level>3</Level></Water>"));
}

TEST_F(RefuseTest, ASecondPasteAfterARefusedOneWorks) {
    auto const contents = Copy({"Materials[2]"});
    Refused(Document(L"<Loads/>"));
    Paste(materialGroup, contents);
    EXPECT_EQ(project->materials.size(), 4u);
}

TEST_F(RefuseTest, DamagedDocumentsNeverDoMoreThanFailOrPaste) {
    project->profiles = {{1, L"West", 3, {{1, L"W1", 12, 2}, {2, L"W2", 15, 1}}}};
    std::wstring const whole = Copy({"Regions[0]", "Profiles[0]"}).document;
    std::vector<std::wstring> const pieces{L"<",          L">", L"\"", L"1", L"0",   L"-",
                                           L"4294967295", L"3", L"/",  L" ", L"&#0;"};
    std::uint32_t state = 11;
    auto const pick = [&state](std::size_t count) {
        state = state * 1664525u + 1013904223u;
        return (state >> 8) % count;
    };
    for (int round = 0; round < 400; ++round) {
        SCOPED_TRACE(round);
        std::wstring text = whole;
        for (std::size_t left = 1 + pick(3); left > 0; --left) {
            std::size_t const at = pick(text.size());
            // Digits are what is read as numbers and links.
            std::size_t const place =
                pick(2) == 0 ? at : std::min(text.find_first_of(L"0123456789", at), text.size() - 1);
            text.replace(place, pick(2), pieces[pick(pieces.size())]);
        }
        std::wstring const saved = Save();
        ClipboardContents contents{text, L"", L"1.00"};
        for (GID const id : {regionGroup, profileGroup}) {
            htl::status const result = zo::clip::Deserialize(id, contents, version, names, "", &reasons);
            if (result.Is(26502)) {
                EXPECT_EQ(Save(), saved);
            } else {
                *project = Ground();
                project->profiles = {{1, L"West", 3, {{1, L"W1", 12, 2}, {2, L"W2", 15, 1}}}};
            }
        }
    }
}

} // namespace
} // namespace valley
