// Documents in other encodings than UTF-8.
#include "Documents.h"

using namespace documents;

namespace {

constexpr std::size_t block = 64 * 1024;

enum class Order { little, big };

void AppendUnit(Bytes& out, unsigned unit, Order order) {
    auto const low = static_cast<unsigned char>(unit & 0xFF);
    auto const high = static_cast<unsigned char>(unit >> 8);
    out.push_back(order == Order::little ? low : high);
    out.push_back(order == Order::little ? high : low);
}

// Every element of `units` is one 16-bit unit, so that a test can write halves of pairs.
Bytes Utf16(std::u16string_view units, Order order, bool mark = false) {
    Bytes out;
    if (mark) AppendUnit(out, 0xFEFF, order);
    for (char16_t const unit : units) AppendUnit(out, unit, order);
    return out;
}

std::u16string Ascii16(std::string_view text) { return std::u16string(text.begin(), text.end()); }

Node const soil = {L"", {{L"Name", L"T\u00F6n"}}, L"\u20AC\U0001D400 &", {}};

} // namespace

TEST(XmlEncodingTest, Utf8WithAndWithoutMarkAndDeclaration) {
    std::string const body = "<S Name='T\xC3\xB6n'>\xE2\x82\xAC\xF0\x9D\x90\x80 &amp;</S>";
    for (std::string const mark : {"", "\xEF\xBB\xBF"})
        for (std::string const declaration : {"", "<?xml version='1.0'?>", "<?xml version='1.0' encoding='UTF-8'?>",
                                              "<?xml version='1.0' encoding='utf-8' standalone='yes'?>\n"})
            EXPECT_EQ(Tree(mark + declaration + body), soil) << declaration;
}

TEST(XmlEncodingTest, Utf16OfBothOrdersWithAndWithoutMarkAndDeclaration) {
    std::u16string const body = u"<S Name='T\u00F6n'>\u20AC\U0001D400 &amp;</S>";
    for (Order const order : {Order::little, Order::big})
        for (bool const mark : {false, true}) {
            EXPECT_EQ(Tree(Utf16(body, order, mark)), soil);
            EXPECT_EQ(Tree(Utf16(u"<?xml version='1.0' encoding='UTF-16'?>\n" + body, order, mark)), soil);
        }
}

TEST(XmlEncodingTest, WhiteSpaceRulesHoldIn16Bits) {
    for (Order const order : {Order::little, Order::big}) {
        EXPECT_EQ(Tree(Utf16(u"<S>\n  <T/>\r\n  <T/>\n \t</S>", order)).text, L"");
        EXPECT_EQ(Tree(Utf16(u"<S>&#32;</S>", order)).text, L" ");
        EXPECT_EQ(Tree(Utf16(u"<S>\n&#x9;\n</S>", order)).text, L"\n\t\n");
        EXPECT_EQ(Tree(Utf16(u"<S><![CDATA[ ]]></S>", order)).text, L" ");
    }
}

TEST(XmlEncodingTest, Latin1IsReadWhenDeclared) {
    EXPECT_EQ(Tree("<?xml version='1.0' encoding='ISO-8859-1'?><S Name='T\xF6n'>\xA7\xFF</S>"),
              (Node{L"", {{L"Name", L"T\u00F6n"}}, L"\u00A7\u00FF", {}}));
    EXPECT_TRUE(FailureOf("<S>\xA7</S>").Is(90002));
}

TEST(XmlEncodingTest, AsciiIsReadWhenDeclaredAndNothingElseUnderItsName) {
    EXPECT_EQ(Tree("<?xml version='1.0' encoding='US-ASCII'?><S>~&#233;</S>").text, L"~\u00E9");
    EXPECT_TRUE(FailureOf("<?xml version='1.0' encoding='US-ASCII'?><S>\xC3\xA9</S>").Is(90002));
}

TEST(XmlEncodingTest, WidthThatContradictsTheDeclarationIsRefused) {
    char const reason[] = "encoding specified in XML declaration is incorrect";
    std::string const declaration = "<?xml version='1.0' encoding='";
    EXPECT_TRUE(FailsAs(FailureOf(declaration + "UTF-16'?><S/>"), 90002, 1, 31, reason));
    EXPECT_TRUE(FailsAs(FailureOf(declaration + "UTF-16LE'?><S/>"), 90002, 1, 31, reason));
    for (Order const order : {Order::little, Order::big})
        for (char const* name : {"UTF-8", "ISO-8859-1", "US-ASCII"})
            EXPECT_TRUE(
                FailsAs(FailureOf(Utf16(Ascii16(declaration + name + "'?><S/>"), order, true)), 90002, 1, 31, reason))
                << name;
    EXPECT_TRUE(FailureOf(Utf16(Ascii16(declaration + "UTF-16BE'?><S/>"), Order::little)).Is(90002));
}

TEST(XmlEncodingTest, MarkCountsAsNoColumn) {
    for (std::string const mark : {"", "\xEF\xBB\xBF"}) {
        EXPECT_TRUE(FailsAs(FailureOf(mark), 90002, 1, 1, "no element found"));
        EXPECT_TRUE(FailsAs(FailureOf(mark + "<S></T>"), 90002, 1, 6, "mismatched tag"));
        EXPECT_TRUE(FailsAs(FailureOf(mark + "<S>\n</T>"), 90002, 2, 3, "mismatched tag"));
    }
    for (Order const order : {Order::little, Order::big}) {
        EXPECT_TRUE(FailsAs(FailureOf(Utf16(u"", order, true)), 90002, 1, 1, "no element found"));
        EXPECT_TRUE(FailsAs(FailureOf(Utf16(u"<S></T>", order, true)), 90002, 1, 6, "mismatched tag"));
    }
}

TEST(XmlEncodingTest, UnknownEncodingIsRefusedByName) {
    EXPECT_TRUE(FailsAs(FailureOf("<?xml version='1.0' encoding='windows-1252'?><S/>"), 90002, 1, 31,
                        "unknown encoding \"windows-1252\""));
}

TEST(XmlEncodingTest, UnpairedSurrogatesAreRefusedWithTheirPlace) {
    using Text = std::u16string;
    struct Row {
        Text document;
        int line;
        int column;
    };
    Text const high(1, char16_t(0xD835));
    Text const low(1, char16_t(0xDC00));
    Row const table[] = {
        {u"<S>" + high + u"</S>", 1, 4},
        {u"<S>" + low + u"</S>", 1, 4},
        {u"<S>" + high + high + low + u"</S>", 1, 4},
        {u"<S>" + high + low + low + u"</S>", 1, 5},
        {u"<S>\n\U0001D400x" + high + u"y</S>", 2, 3},
        {u"<S>\r\n\r" + low + u"y</S>", 3, 1},
        {u"<S a='" + high + u"'/>", 1, 7},
        {u"<S/>" + high, 1, 5},
        {u"<S/>" + low, 1, 5},
        {u"<S>\n" + high, 2, 1},
    };
    for (Row const& row : table)
        for (Order const order : {Order::little, Order::big})
            for (bool const mark : {false, true})
                EXPECT_TRUE(FailsAs(FailureOf(Utf16(row.document, order, mark)), 90002, row.line, row.column,
                                    "unpaired surrogate"));
}

TEST(XmlEncodingTest, AnErrorBeforeAnUnpairedSurrogateIsTheOneReported) {
    std::u16string const low(1, char16_t(0xDC00));
    EXPECT_TRUE(FailsAs(FailureOf(Utf16(u"<S></T>" + low, Order::little)), 90002, 1, 6, "mismatched tag"));
}

TEST(XmlEncodingTest, WhatStandsBeforeAnUnpairedSurrogateWasRead) {
    Node root;
    std::u16string const low(1, char16_t(0xDC00));
    EXPECT_TRUE(Read(Utf16(u"<S><T>x</T><T>" + low + u"</T></S>", Order::little), root).Is(90002));
    ASSERT_EQ(root.children.size(), 2u);
    EXPECT_EQ(root.children[0].text, L"x");
}

TEST(XmlEncodingTest, SurrogatesAtBlockBordersAreToldPairedFromUnpaired) {
    std::u16string const high(1, char16_t(0xD835));
    std::u16string const low(1, char16_t(0xDC00));
    for (Order const order : {Order::little, Order::big})
        for (bool const mark : {false, true})
            for (std::size_t shift = 0; shift < 6; ++shift) {
                std::size_t const length = block / 2 - 3 - shift;
                std::u16string const start = u"<S>" + std::u16string(length, u'x');
                std::wstring const wide(length, L'x');
                EXPECT_EQ(Tree(Utf16(start + high + low + u"y</S>", order, mark)).text, wide + L"\U0001D400y") << shift;
                auto const place = static_cast<int>(length) + 4;
                EXPECT_TRUE(FailsAs(FailureOf(Utf16(start + high + u"y</S>", order, mark)), 90002, 1, place,
                                    "unpaired surrogate"))
                    << shift;
                EXPECT_TRUE(FailsAs(FailureOf(Utf16(start + low + u"y</S>", order, mark)), 90002, 1, place,
                                    "unpaired surrogate"))
                    << shift;
                EXPECT_TRUE(FailsAs(FailureOf(Utf16(start + high, order, mark)), 90002, 1, place, "unpaired surrogate"))
                    << shift;
            }
}

TEST(XmlEncodingTest, Utf16CutAtAnyByteIsRefused) {
    for (Order const order : {Order::little, Order::big}) {
        Bytes const whole = Utf16(u"<?xml version='1.0' encoding='UTF-16'?><S a='\U0001D400'>\u20AC<T/></S>", order);
        for (std::size_t length = 0; length < whole.size(); ++length)
            EXPECT_TRUE(FailureOf(Bytes(whole.begin(), whole.begin() + std::ptrdiff_t(length))).Is(90002)) << length;
        Bytes odd = whole;
        odd.push_back(' ');
        EXPECT_TRUE(FailureOf(odd).Is(90002));
    }
}

TEST(XmlEncodingTest, FilesIn16BitsAreReadAndCheckedAlike) {
    std::string const path = testing::TempDir() + "zo-utf16.xml";
    std::wstring const name(path.begin(), path.end());
    Node root;
    htl::handle<XmlElemReader> const reader(new TreeReader(root));
    MakeFile(path, AsText(Utf16(u"<S>\U0001D400</S>", Order::big, true)));
    ASSERT_FALSE(sys::file::XmlFileRead(name, reader).IsError());
    EXPECT_EQ(root.text, L"\U0001D400");
    MakeFile(path, AsText(Utf16(u"<S>" + std::u16string(1, char16_t(0xD835)) + u"</S>", Order::big, true)));
    EXPECT_TRUE(FailsAs(sys::file::XmlFileRead(name, reader), 90002, 1, 4, "unpaired surrogate"));
    std::remove(path.c_str());
}
