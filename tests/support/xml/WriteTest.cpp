#include "Documents.h"

#include <stdexcept>

using namespace documents;

namespace {

std::string const head = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

Node Leaf(std::wstring tag, std::wstring text = {}) { return {std::move(tag), {}, std::move(text), {}}; }

Node Chain(std::size_t depth) {
    Node node = Leaf(L"N");
    for (std::size_t i = 1; i < depth; ++i) {
        Node parent = Leaf(L"N");
        parent.children.push_back(std::move(node));
        node = std::move(parent);
    }
    return node;
}

// Fails the write into a vector that holds something and gives the status.
htl::status RefusalOf(Node const& root) {
    Bytes document = AsBytes("before");
    htl::status failure = sys::file::XmlStringWrite(document, WriterOf(root));
    EXPECT_EQ(AsText(document), "before");
    return failure;
}

} // namespace

TEST(XmlWriteTest, LaysElementsOutOnePerLine) {
    Node const model = {
        L"Model",
        {{L"Version", L"2.01"}},
        L"",
        {{L"Points", {{L"Len", L"2"}}, L"", {{L"Point", {{L"X", L"1.5"}, {L"Y", L"-3"}}, L"", {}}, Leaf(L"Point")}},
         Leaf(L"Title", L"Dam <A> & \"B\""),
         Leaf(L"Empty")}};
    EXPECT_EQ(Document(model), head + "<Model Version=\"2.01\">\n"
                                      "  <Points Len=\"2\">\n"
                                      "    <Point X=\"1.5\" Y=\"-3\"/>\n"
                                      "    <Point/>\n"
                                      "  </Points>\n"
                                      "  <Title>Dam &lt;A&gt; &amp; &quot;B&quot;</Title>\n"
                                      "  <Empty/>\n"
                                      "</Model>\n");
}

TEST(XmlWriteTest, CursorIsAskedInFixedOrder) {
    Node const model = {L"Model", {}, L"", {{L"Soils", {}, L"", {Leaf(L"Soil")}}, Leaf(L""), Leaf(L"Note", L"x")}};
    std::vector<std::string> calls;
    Bytes document;
    ASSERT_FALSE(sys::file::XmlStringWrite(document, WriterOf(model, &calls)).IsError());
    std::vector<std::string> const expected = {
        "Model.Tag",       "Model.Text",       "Model.Attributes", "Model.FirstChild", "Soils.Tag",
        "Soils.Text",      "Soils.Attributes", "Soils.FirstChild", "Soil.Tag",         "Soil.Text",
        "Soil.Attributes", "Soil.FirstChild",  "Soil.Next",        "Soils.Next",       ".Tag",
        ".Next",           "Note.Tag",         "Note.Text",        "Note.Attributes",  "Note.FirstChild",
        "Note.Next",
    };
    EXPECT_EQ(calls, expected);
}

TEST(XmlWriteTest, ElementWithoutTagIsLeftOutWithAllBelowIt) {
    Node const model = {L"Model", {}, L"", {{L"", {{L"a", L"1"}}, L"x", {Leaf(L"Soil")}}, Leaf(L"")}};
    EXPECT_EQ(Document(model), head + "<Model/>\n");
}

TEST(XmlWriteTest, OneCursorMayServeParentAndChildren) {
    // Steps down one level a time and up again, always as the same object.
    struct Cursor final : XmlElemWriter {
        int depth = 0;
        int left[3] = {1, 0, 0}; // elements to come at each depth
        std::wstring Tag() override { return L"L" + std::to_wstring(depth); }
        std::wstring Text() override { return {}; }
        std::pair<XmlAttribute const*, XmlAttribute const*> Attributes() override { return {nullptr, nullptr}; }
        htl::handle<XmlElemWriter> FirstChild() override {
            if (depth == 2) return {};
            left[++depth] = 2;
            return htl::handle<XmlElemWriter>(this);
        }
        htl::handle<XmlElemWriter> Next() override {
            if (--left[depth] > 0) return htl::handle<XmlElemWriter>(this);
            --depth;
            return {};
        }
    };
    Bytes document;
    ASSERT_FALSE(sys::file::XmlStringWrite(document, htl::handle<XmlElemWriter>(new Cursor)).IsError());
    EXPECT_EQ(AsText(document), head + "<L0>\n"
                                       "  <L1>\n"
                                       "    <L2/>\n"
                                       "    <L2/>\n"
                                       "  </L1>\n"
                                       "  <L1>\n"
                                       "    <L2/>\n"
                                       "    <L2/>\n"
                                       "  </L1>\n"
                                       "</L0>\n");
}

TEST(XmlWriteTest, NothingIsPutAroundTextAndChildrenThatStandTogether) {
    Node const note = {L"Note", {}, L"see", {{L"Ref", {}, L"", {Leaf(L"To", L"Clay"), Leaf(L"To")}}, Leaf(L"Ref")}};
    EXPECT_EQ(Document(note), head + "<Note>see<Ref>\n"
                                     "    <To>Clay</To>\n"
                                     "    <To/>\n"
                                     "  </Ref><Ref/></Note>\n");
    Node read = Tree(Document(note));
    read.tag = L"Note";
    EXPECT_EQ(read, note);
}

TEST(XmlWriteTest, EscapesInTextAndAttributes) {
    EXPECT_EQ(Document({L"T", {{L"a", L"&<>\"'\t\n\r x"}}, L"&<>\"'\t\n\r x", {}}),
              head + "<T a=\"&amp;&lt;&gt;&quot;'&#9;&#10;&#13; x\">&amp;&lt;&gt;&quot;'\t\n&#13; x</T>\n");
}

TEST(XmlWriteTest, TextOfWhiteSpaceAloneIsWrittenAsReferences) {
    EXPECT_EQ(Document(Leaf(L"T", L" \t\n\r")), head + "<T>&#32;&#9;&#10;&#13;</T>\n");
    EXPECT_EQ(Document({L"T", {{L"a", L"  "}}, L" x ", {}}), head + "<T a=\"  \"> x </T>\n");
}

TEST(XmlWriteTest, DeclarationInsideAValueDoesNotStandLiterally) {
    std::wstring const value = L"encoding=\"UTF-8\"";
    Node const root = {L"T", {{L"a", value}}, value, {Leaf(L"C", value)}};
    std::string const document = Document(root);
    EXPECT_EQ(document.find("encoding=\"UTF-8\""), head.find("encoding=\"UTF-8\""));
    EXPECT_EQ(document.find("encoding=\"UTF-8\"", head.size()), std::string::npos);
    EXPECT_EQ(Tree(document).text, value);
}

TEST(XmlWriteTest, EveryLegalCharacterRoundTripsInTextAndAttributes) {
    std::wstring all;
    for (char32_t c = 1; c <= 0x10FFFF; ++c) {
        bool const legal =
            c == 9 || c == 10 || c == 13 || (c >= 0x20 && c <= 0xD7FF) || (c >= 0xE000 && c <= 0xFFFD) || c >= 0x10000;
        if (legal) all += static_cast<wchar_t>(c);
    }
    ASSERT_EQ(all.size(), 0x10FFFFu - 29 - 2048 - 2 + 1);
    Node read = Tree(Document({L"T", {{L"a", all}}, all, {}}));
    EXPECT_TRUE(read.text == all);
    ASSERT_EQ(read.attributes.size(), 1u);
    EXPECT_TRUE(read.attributes[0].second == all);
}

TEST(XmlWriteTest, EveryWhiteSpaceValueRoundTrips) {
    std::wstring const blanks = L" \t\n\r";
    for (wchar_t const a : blanks)
        for (wchar_t const b : blanks)
            for (std::wstring const& value : {std::wstring{a}, std::wstring{a, b}, std::wstring{a, L'x', b}}) {
                Node const read = Tree(Document({L"T", {{L"a", value}}, value, {}}));
                EXPECT_EQ(read.text, value);
                EXPECT_EQ(read.attributes[0].second, value);
            }
}

TEST(XmlWriteTest, CharactersThatNoDocumentHoldsBecomeTheReplacementCharacter) {
    std::vector<char32_t> illegal = {0xD800, 0xDBFF, 0xDC00, 0xDFFF, 0xFFFE, 0xFFFF, 0x110000, 0x7FFFFFFF, 0xFFFFFFFF};
    for (char32_t c = 0; c < 0x20; ++c)
        if (c != 9 && c != 10 && c != 13) illegal.push_back(c);
    for (char32_t const c : illegal) {
        std::wstring const value = L"a" + std::wstring(1, static_cast<wchar_t>(c)) + L"b";
        EXPECT_EQ(Document({L"T", {{L"a", value}}, value, {}}), head + "<T a=\"a\xEF\xBF\xBD"
                                                                       "b\">a\xEF\xBF\xBD"
                                                                       "b</T>\n")
            << static_cast<unsigned>(c);
    }
}

TEST(XmlWriteTest, ValuesLongerThanABlockComeOutWhole) {
    std::wstring value;
    for (int i = 0; i < 50000; ++i) value += L"<\u20AC\U0001D400&x";
    Node root = {L"T", {{L"a", value}}, value, {Leaf(L"C", value), Leaf(L"C", L"end")}};
    Node read = Tree(Document(root));
    read.tag = L"T";
    EXPECT_TRUE(read == root);
}

TEST(XmlWriteTest, AppendsToTheVector) {
    Bytes document = AsBytes("before ");
    ASSERT_FALSE(sys::file::XmlStringWrite(document, WriterOf(Leaf(L"M"))).IsError());
    EXPECT_EQ(AsText(document), "before " + head + "<M/>\n");
}

TEST(XmlWriteTest, DocumentElementNeedsAName) {
    EXPECT_TRUE(FailsAs(RefusalOf(Leaf(L"")), 90010, "its document element has no name."));
    Bytes document;
    EXPECT_TRUE(sys::file::XmlStringWrite(document, {}).Is(90010));
}

TEST(XmlWriteTest, NamesThatCannotBeReadBackAreRefused) {
    for (std::wstring const name : {L"1st", L"a b", L"a<b", L"-", L"a=", L"\u00D7", L"\U00010000", L"a\n"}) {
        EXPECT_TRUE(FailsAs(RefusalOf({L"M", {}, L"", {Leaf(L"Soil"), Leaf(name)}}), 90010,
                            L"\"" + name + L"\" is no name of an element."));
        EXPECT_TRUE(FailsAs(RefusalOf({L"M", {{L"a", L"1"}, {name, L"2"}}, L"", {}}), 90010,
                            L"\"" + name + L"\" is no name of an attribute, in <M>."));
    }
    EXPECT_TRUE(RefusalOf({L"M", {{L"", L"2"}}, L"", {}}).Is(90010));
}

TEST(XmlWriteTest, RepeatedAttributeIsRefused) {
    EXPECT_TRUE(FailsAs(RefusalOf({L"M", {{L"a", L"1"}, {L"b", L"1"}, {L"a", L"2"}}, L"", {}}), 90010,
                        "<M> has the attribute \"a\" twice."));
    EXPECT_FALSE(Document({L"M", {{L"a", L"1"}}, L"", {{L"S", {{L"a", L"1"}}, L"", {}}}}).empty());
}

TEST(XmlWriteTest, RepeatedAttributeIsFoundAmongMoreNamesThanAreRemembered) {
    Node root = Leaf(L"M");
    for (int i = 0; i < 3000; ++i) root.attributes.emplace_back(L"a" + std::to_wstring(i), L"x");
    EXPECT_EQ(Tree(Document(root)).attributes, root.attributes);
    for (std::size_t const repeated : {0u, 1u, 1500u, 2998u}) {
        Node wrong = root;
        wrong.attributes.push_back(root.attributes[repeated]);
        EXPECT_TRUE(FailsAs(RefusalOf(wrong), 90010,
                            L"<M> has the attribute \"" + root.attributes[repeated].first + L"\" twice."));
    }
}

TEST(XmlWriteTest, ManyNamesAreWrittenAsTheyAre) {
    Node root = Leaf(L"M");
    for (int i = 0; i < 3000; ++i) {
        std::wstring const name = L"S\u00F6" + std::to_wstring(i);
        root.children.push_back({name, {{name, L"x"}}, L"", {Leaf(name + L"_")}});
    }
    Node read = Tree(Document(root));
    read.tag = L"M";
    EXPECT_TRUE(read == root);
}

TEST(XmlWriteTest, NestingIsLimitedLikeThatOfReading) {
    Node const deepest = Chain(4096);
    Bytes document;
    ASSERT_FALSE(sys::file::XmlStringWrite(document, WriterOf(deepest)).IsError());
    EXPECT_FALSE(sys::file::XmlStringRead(document, {}).IsError());
    EXPECT_TRUE(FailsAs(RefusalOf(Chain(4097)), 90010, "its elements are nested deeper than 4096."));
}

TEST(XmlWriteTest, ExceptionOfAWriterLeavesTheVectorAsItWas) {
    struct Cursor final : XmlElemWriter {
        std::size_t left = 50000;
        std::wstring Tag() override { return L"Soil"; }
        std::wstring Text() override { return L"clay"; }
        std::pair<XmlAttribute const*, XmlAttribute const*> Attributes() override { return {nullptr, nullptr}; }
        htl::handle<XmlElemWriter> Next() override {
            if (--left == 0) throw std::runtime_error("the cursor gave up");
            return htl::handle<XmlElemWriter>(this);
        }
        htl::handle<XmlElemWriter> FirstChild() override {
            return left == 50000 ? htl::handle<XmlElemWriter>(this) : htl::handle<XmlElemWriter>();
        }
    };
    struct Root final : XmlElemWriter {
        std::wstring Tag() override { return L"M"; }
        std::wstring Text() override { return {}; }
        std::pair<XmlAttribute const*, XmlAttribute const*> Attributes() override { return {nullptr, nullptr}; }
        htl::handle<XmlElemWriter> Next() override { return {}; }
        htl::handle<XmlElemWriter> FirstChild() override {
            htl::handle<Cursor> cursor(new Cursor);
            cursor->left = 49999;
            return cursor;
        }
    };
    Bytes document = AsBytes("before");
    EXPECT_THROW((void)sys::file::XmlStringWrite(document, htl::handle<XmlElemWriter>(new Root)), std::runtime_error);
    EXPECT_EQ(AsText(document), "before");
}

TEST(XmlWriteTest, BaseCursorHasNoChildAndIsNoArrayEntry) {
    struct Cursor final : XmlElemWriter {
        std::wstring Tag() override { return L"M"; }
        std::wstring Text() override { return {}; }
        std::pair<XmlAttribute const*, XmlAttribute const*> Attributes() override { return {nullptr, nullptr}; }
        htl::handle<XmlElemWriter> Next() override { return {}; }
    };
    htl::handle<XmlElemWriter> const cursor(new Cursor);
    EXPECT_FALSE(cursor->FirstChild());
    EXPECT_FALSE(cursor->IsArrayEntry());
    Bytes document;
    ASSERT_FALSE(sys::file::XmlStringWrite(document, cursor).IsError());
    EXPECT_EQ(AsText(document), head + "<M/>\n");
}
