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

TEST(XmlTextTest, APairOfSurrogatesMayLieAcrossBlocks) {
    // A block holds an even number of bytes, so that only a character of two units can meet its end halfway.
    for (std::size_t const before : {32'700u, 32'701u}) {
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

TEST(XmlTextTest, ADeclarationOfEightBitsDoesNotFit) {
    Node read;
    EXPECT_TRUE(ReadText(L"<?xml version=\"1.0\" encoding=\"UTF-8\"?><M/>", read).Is(90002));
    EXPECT_FALSE(ReadText(L"<?xml version=\"1.0\"?><M/>", read).IsError());
    EXPECT_TRUE(ReadText(L"", read).Is(90002));
}
