#include "Documents.h"

#include "support/text.h"

#include <stdexcept>

using namespace documents;

namespace {

htl::status WriteText(std::wstring& document, Node const& root) {
    return sys::file::XmlTextWrite(document, WriterOf(root));
}

htl::status ReadText(std::wstring_view document, Node& root) {
    return sys::file::XmlTextRead(document, htl::handle<XmlElemReader>(new TreeReader(root)));
}

// A survey of boreholes, several pages of a document long. Names and values have characters of one to four bytes, in
// lengths that let every block of the document end elsewhere in a character.
Node Survey() {
    Node survey = {L"Survey", {}, L"", {}};
    std::wstring const remarks[] = {L"gravel \u00FC ", L"\u7C98\u571F ", L"\U0001D400 ", L"clay "};
    for (std::size_t i = 0; i < 6000; ++i) {
        Node hole = {L"B\u00F6hrung", {{L"Tiefe", std::to_wstring(i)}}, L"", {}};
        std::wstring text;
        for (std::size_t word = 0; word < 60 + i % 7; ++word) text += remarks[(i + word) % 4];
        hole.children.push_back({L"\u571F", {}, text, {}});
        survey.children.push_back(hole);
    }
    return survey;
}

} // namespace

TEST(XmlTextTest, IsTheDocumentOfBytesUnderAnotherDeclaration) {
    Node const survey = Survey();
    std::string expected = Document(survey);
    ASSERT_GT(expected.size(), 2'500'000u);
    std::string const declared = "encoding=\"UTF-8\"";
    expected.replace(expected.find(declared), declared.size(), "encoding=\"UTF-16\"");
    std::wstring text = L"what was here";
    ASSERT_FALSE(WriteText(text, survey).IsError());
    EXPECT_TRUE(text == str::as_wstring(expected));
}

TEST(XmlTextTest, ReadsBackWhatWasWritten) {
    Node const survey = Survey();
    std::wstring text;
    ASSERT_FALSE(WriteText(text, survey).IsError());
    Node read = {L"Survey", {}, L"", {}};
    ASSERT_FALSE(ReadText(text, read).IsError());
    EXPECT_TRUE(read == survey);
}

TEST(XmlTextTest, ANameLongerThanABlockStaysWhole) {
    for (std::size_t const ascii : {0u, 1u, 2u}) {
        Node root = {L"M", {}, L"", {{std::wstring(ascii, L'a') + std::wstring(100'000, L'\u571F'), {}, L"7", {}}}};
        std::wstring text;
        ASSERT_FALSE(WriteText(text, root).IsError());
        Node read = {L"M", {}, L"", {}};
        ASSERT_FALSE(ReadText(text, read).IsError());
        EXPECT_TRUE(read == root) << ascii;
    }
}

TEST(XmlTextTest, ACharacterOfSeveralBytesMayMeetTheEndOfABlock) {
    for (std::size_t before = 65'400; before < 65'404; ++before) {
        Node const root = {L"M", {}, std::wstring(before, L'x') + std::wstring(200, L'\U0001F30D'), {}};
        std::wstring text;
        ASSERT_FALSE(WriteText(text, root).IsError());
        Node read = {L"M", {}, L"", {}};
        ASSERT_FALSE(ReadText(text, read).IsError());
        EXPECT_TRUE(read == root) << before;
    }
}

TEST(XmlTextTest, IsEmptyAfterAFailure) {
    std::wstring text = L"what was here";
    EXPECT_TRUE(WriteText(text, {L"M", {}, L"", {{L"not a name", {}, L"", {}}}}).Is(90010));
    EXPECT_EQ(text, L"");
}

TEST(XmlTextTest, IsEmptyAfterAnException) {
    struct Throwing : XmlElemWriter {
        std::wstring Tag() override { return L"M"; }
        std::wstring Text() override { throw std::runtime_error("a value that throws"); }
        std::pair<XmlAttribute const*, XmlAttribute const*> Attributes() override { return {nullptr, nullptr}; }
        htl::handle<XmlElemWriter> Next() override { return {}; }
        htl::handle<XmlElemWriter> FirstChild() override { return {}; }
    };
    std::wstring text = L"what was here";
    EXPECT_THROW((void)sys::file::XmlTextWrite(text, htl::handle<XmlElemWriter>(new Throwing)), std::runtime_error);
    EXPECT_EQ(text, L"");
}

TEST(XmlTextTest, WhatIsNoCodePointIsRefusedBeforeAnythingIsRead) {
    std::wstring const document = L"<M><A/></M>";
    for (unsigned const unit : {0xD800u, 0xDFFFu, 0x110000u, 0xFFFFFFFFu}) {
        Node read = {L"M", {}, L"", {}};
        EXPECT_TRUE(FailsAs(ReadText(document + static_cast<wchar_t>(unit), read), 90012, 12));
        EXPECT_TRUE(read.children.empty());
    }
}

TEST(XmlTextTest, TheDeclarationNamesSixteenBitsOrNothing) {
    auto const read = [](std::wstring const& declared) {
        Node node;
        return ReadText(L"<?xml version=\"1.0\"" + declared + L"?><M/>", node);
    };
    for (std::wstring const name : {L"UTF-16", L"utf-16", L"UTF-16LE"})
        EXPECT_FALSE(read(L" encoding=\"" + name + L"\"").IsError());
    EXPECT_FALSE(read(L"").IsError());
    for (std::wstring const name : {L"UTF-8", L"US-ASCII", L"ISO-8859-1", L"UTF-16BE", L"UTF-1", L"KOI8-R"})
        EXPECT_TRUE(FailsAs(read(L" encoding=\"" + name + L"\""), 90002, 1, 1,
                            "encoding specified in XML declaration is incorrect"));
}

TEST(XmlTextTest, FaultsAreToldByTheCharactersOfTheText) {
    Node read;
    // The mark counts as no column, a character above the basic plane as one.
    EXPECT_TRUE(FailsAs(ReadText(L"\uFEFF<M>\n\U0001D400\u00FC</N>", read), 90002, 2, 5, "mismatched tag"));
    EXPECT_TRUE(FailsAs(ReadText(std::wstring(L"<M>\0</M>", 8), read), 90002, 1, 4, "not well-formed (invalid token)"));
    for (std::wstring const& document : {std::wstring(1, L'\0'), std::wstring(L"<!DOCTYPE M><M/>"), std::wstring(),
                                         std::wstring(L"\u3C00M/>"), std::wstring(L"<M>\uFFFE</M>")}) {
        htl::status const failure = ReadText(document, read);
        EXPECT_TRUE(failure.IsError());
        EXPECT_EQ(failure.AsWString(), FailureOf(str::as_cstring(document)).AsWString());
    }
}

TEST(XmlTextTest, ZerosDoNotMakeItAnotherEncoding) {
    // The bytes of <M/> in UTF-16, low byte first and high byte first, as characters.
    Node read;
    EXPECT_TRUE(
        FailsAs(ReadText(std::wstring(L"<\0M\0/\0>\0", 8), read), 90002, 1, 2, "not well-formed (invalid token)"));
    EXPECT_TRUE(
        FailsAs(ReadText(std::wstring(L"\0<\0M\0/\0>", 8), read), 90002, 1, 1, "not well-formed (invalid token)"));
    EXPECT_TRUE(FailsAs(ReadText(std::wstring(L"\uFEFF<\0M\0/\0>\0", 9), read), 90002, 1, 2,
                        "not well-formed (invalid token)"));
}

TEST(XmlTextTest, WhiteSpaceFromReferencesIsNoLayout) {
    Node read = {L"M", {}, L"", {}};
    ASSERT_FALSE(ReadText(L"<M>\n  <A>&#32;</A>\n  <B> </B>\n</M>", read).IsError());
    EXPECT_TRUE(read == (Node{L"M", {}, L"", {{L"A", {}, L" ", {}}, {L"B", {}, L"", {}}}}));
}
