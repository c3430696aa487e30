#include "Documents.h"

#include <algorithm>
#include <stdexcept>

using namespace documents;

namespace {

constexpr std::size_t block = 64 * 1024;

// Writes down every call, with the depth of the element it came to.
class CallReader final : public XmlElemReader {
public:
    CallReader(std::vector<std::wstring>& log, std::wstring itsTag) : calls(log), tag(std::move(itsTag)) {}
    ~CallReader() override { calls.push_back(L"end of " + tag); }

    htl::handle<XmlElemReader> Element(std::wstring const& child) override {
        calls.push_back(tag + L" has " + child);
        return htl::handle<XmlElemReader>(new CallReader(calls, child));
    }
    void Attribute(XmlAttribute const& item) override { calls.push_back(tag + L" " + item.first + L"=" + item.second); }
    void Text(std::wstring const& text) override { calls.push_back(tag + L" text " + text); }

private:
    std::vector<std::wstring>& calls;
    std::wstring tag;
};

std::vector<std::wstring> CallsOf(std::string_view document) {
    std::vector<std::wstring> calls;
    htl::status const failure =
        sys::file::XmlStringRead(AsBytes(document), htl::handle<XmlElemReader>(new CallReader(calls, L"root")));
    EXPECT_FALSE(failure.IsError()) << testing::PrintToString(failure.AsWString());
    return calls;
}

// The text that reaches the reader of the document element.
std::vector<std::wstring> TextsOf(std::string_view document) {
    struct Reader final : XmlElemReader {
        std::vector<std::wstring>* texts = nullptr;
        void Text(std::wstring const& text) override { texts->push_back(text); }
    };
    std::vector<std::wstring> texts;
    htl::handle<Reader> const reader(new Reader);
    reader->texts = &texts;
    EXPECT_FALSE(sys::file::XmlStringRead(AsBytes(document), reader).IsError());
    return texts;
}

using Texts = std::vector<std::wstring>;

} // namespace

TEST(XmlReadTest, CallsComeInDocumentOrderWithTextAtTheEndOfItsElement) {
    std::vector<std::wstring> const expected = {
        L"root Version=2.01", L"root has Soil",  L"Soil Name=Clay", L"Soil Cohesion=5",
        L"Soil has Note",     L"Note text soft", L"end of Note",    L"Soil text before after",
        L"end of Soil",       L"root has Soil",  L"end of Soil",    L"end of root",
    };
    EXPECT_EQ(CallsOf("<Model Version='2.01'><Soil Name='Clay' Cohesion='5'>before<Note>soft</Note> after</Soil>"
                      "<Soil/></Model>"),
              expected);
}

TEST(XmlReadTest, ReaderIsKeptUntilItsElementEnds) {
    auto const calls = CallsOf("<M><Soil><Note/></Soil></M>");
    EXPECT_EQ(calls, (std::vector<std::wstring>{L"root has Soil", L"Soil has Note", L"end of Note", L"end of Soil",
                                                L"end of root"}));
}

TEST(XmlReadTest, NullReaderSkipsTheWholeElement) {
    struct Reader final : XmlElemReader {
        std::vector<std::wstring> seen;
        htl::handle<XmlElemReader> Element(std::wstring const& tag) override {
            seen.push_back(L"<" + tag);
            return tag == L"Skip" ? htl::handle<XmlElemReader>() : htl::handle<XmlElemReader>(this);
        }
        void Attribute(XmlAttribute const& item) override { seen.push_back(item.first); }
        void Text(std::wstring const& text) override { seen.push_back(text); }
    };
    htl::handle<Reader> const reader(new Reader);
    auto const document = AsBytes("<M><Keep a='1'>one</Keep><Skip b='2'>two<Keep c='3'>three<Skip/></Keep>"
                                  "<![CDATA[four]]></Skip><Keep>five</Keep>six</M>");
    ASSERT_FALSE(sys::file::XmlStringRead(document, reader).IsError());
    EXPECT_EQ(reader->seen, (std::vector<std::wstring>{L"<Keep", L"a", L"one", L"<Skip", L"<Keep", L"five", L"six"}));
}

TEST(XmlReadTest, SkippedElementsMustBeWellFormedToo) {
    htl::handle<XmlElemReader> const reader(new XmlElemReader); // skips all children
    EXPECT_FALSE(sys::file::XmlStringRead(AsBytes("<M><S><T/></S></M>"), reader).IsError());
    EXPECT_TRUE(sys::file::XmlStringRead(AsBytes("<M><S><T></S></M>"), reader).Is(90002));
}

TEST(XmlReadTest, NullRootReaderOnlyChecks) {
    EXPECT_FALSE(sys::file::XmlStringRead(AsBytes("<M a='1'>text<S/></M>"), {}).IsError());
    EXPECT_TRUE(sys::file::XmlStringRead(AsBytes("<M>"), {}).Is(90002));
}

TEST(XmlReadTest, TextIsJoinedAcrossReferencesSectionsCommentsAndInstructions) {
    EXPECT_EQ(TextsOf("<T>a&amp;b&#x41;&#66;<![CDATA[<&>]]>c<!-- no -->d<?no thing?>e</T>"), Texts{L"a&bAB<&>cde"});
    EXPECT_EQ(TextsOf("<T>&lt;&gt;&quot;&apos;</T>"), Texts{L"<>\"'"});
}

TEST(XmlReadTest, TextAroundChildElementsIsJoinedWithItsBlanks) {
    EXPECT_EQ(TextsOf("<T> a <C>not this</C> b\n<C/>\t</T>"), Texts{L" a  b\n\t"});
    EXPECT_EQ(TextsOf("<T>\n  <C/>\n  <C/>\n  <C/>\n x</T>"), Texts{L"\n  \n  \n  \n x"});
    EXPECT_EQ(TextsOf("<T>\n \n  <C/>\n \n  <C/>  <C/>  <C/>x\n </T>"), Texts{L"\n \n  \n \n      x\n "});
}

TEST(XmlReadTest, LineEndsBecomeLineFeeds) {
    EXPECT_EQ(TextsOf("<T>a\r\nb\rc\nd\r\r\ne</T>"), Texts{L"a\nb\nc\nd\n\ne"});
    EXPECT_EQ(TextsOf("<T>a&#13;&#10;b</T>"), Texts{L"a\r\nb"});
}

TEST(XmlReadTest, EmptyElementGetsNoText) {
    EXPECT_EQ(TextsOf("<T/>"), Texts{});
    EXPECT_EQ(TextsOf("<T></T>"), Texts{});
    EXPECT_EQ(TextsOf("<T><!-- nothing --><?at all?></T>"), Texts{});
    EXPECT_EQ(TextsOf("<T><![CDATA[]]></T>"), Texts{});
}

TEST(XmlReadTest, LiteralWhiteSpaceAloneIsLayout) {
    for (char const* document : {"<T> </T>", "<T>\n</T>", "<T>\r</T>", "<T>\r\n</T>", "<T>\t</T>", "<T>   \n\t </T>",
                                 "<T>\n  <C/>\n  <C/>\n</T>", "<T> <!-- x --> </T>"})
        EXPECT_EQ(TextsOf(document), Texts{}) << document;
}

TEST(XmlReadTest, WhiteSpaceFromAReferenceOrSectionIsText) {
    EXPECT_EQ(TextsOf("<T>&#32;</T>"), Texts{L" "});
    EXPECT_EQ(TextsOf("<T>&#x20;&#9;&#10;&#13;</T>"), Texts{L" \t\n\r"});
    EXPECT_EQ(TextsOf("<T>\n &#32; \n</T>"), Texts{L"\n   \n"});
    EXPECT_EQ(TextsOf("<T><![CDATA[ ]]></T>"), Texts{L" "});
    EXPECT_EQ(TextsOf("<T>\n<![CDATA[\n]]></T>"), Texts{L"\n\n"});
    EXPECT_EQ(TextsOf("<T> <![CDATA[]]> </T>"), Texts{L"  "});
}

TEST(XmlReadTest, LayoutOfOneElementDoesNotReachTheNext) {
    Node const root = Tree("<M>\n <A>\n  <B/>\n </A>\n <A>x</A>\n <A>\n </A>\n</M>");
    ASSERT_EQ(root.children.size(), 3u);
    EXPECT_EQ(root.children[0].text, L"");
    EXPECT_EQ(root.children[1].text, L"x");
    EXPECT_EQ(root.children[2].text, L"");
    EXPECT_EQ(root.text, L"");
}

TEST(XmlReadTest, AttributeValuesAreNormalised) {
    Node const root = Tree("<M a='x\ty\nz\r\nw' b='&#9;&#10;&#13; ' c='&lt;&amp;\"'/>");
    EXPECT_EQ(root.attributes, (std::vector<XmlAttribute>{{L"a", L"x y z w"}, {L"b", L"\t\n\r "}, {L"c", L"<&\""}}));
}

TEST(XmlReadTest, TextLongerThanABlockComesWhole) {
    std::string narrow;
    std::wstring wide;
    for (int i = 0; i < 40000; ++i) {
        narrow += "ab\xC3\xA9\xE2\x82\xAC\xF0\x9D\x90\x80\n";
        wide += L"ab\u00E9\u20AC\U0001D400\n";
    }
    EXPECT_EQ(TextsOf("<T>" + narrow + "</T>"), Texts{wide});
    Node const root = Tree("<T a='" + narrow + "'/>");
    std::ranges::replace(wide, L'\n', L' ');
    EXPECT_EQ(root.attributes, (std::vector<XmlAttribute>{{L"a", wide}}));
}

TEST(XmlReadTest, CharactersAtBlockBordersStayWhole) {
    std::string const tail = "\xC3\xA9\xE2\x82\xAC\xF0\x9D\x90\x80";
    for (std::size_t shift = 0; shift < tail.size() + 2; ++shift) {
        std::string const filler(block - 3 - shift, 'x');
        EXPECT_EQ(TextsOf("<T>" + filler + tail + "</T>"),
                  Texts{std::wstring(filler.begin(), filler.end()) + L"\u00E9\u20AC\U0001D400"})
            << shift;
    }
}

TEST(XmlReadTest, LayoutAndReferencesAtBlockBordersAreTold) {
    for (std::size_t shift = 0; shift < 12; ++shift) {
        std::string const comment = "<!--" + std::string(block - 20 - shift, 'x') + "-->";
        EXPECT_EQ(TextsOf("<T>" + comment + "\n        \r\n   \n</T>"), Texts{}) << shift;
        EXPECT_EQ(TextsOf("<T>" + comment + "\n   &#32;  \r\n </T>"), Texts{L"\n      \n "}) << shift;
    }
}

TEST(XmlReadTest, AttributeOfManyBlocksIsReadInReasonableTime) {
    std::string const value(24u << 20, 'v');
    Node const root = Tree("<T a='" + value + "'/>");
    ASSERT_EQ(root.attributes.size(), 1u);
    EXPECT_EQ(root.attributes[0].second.size(), value.size());
}

TEST(XmlReadTest, ExceptionOfAReaderReachesTheCallerAndEndsTheRead) {
    struct Reader final : XmlElemReader {
        std::wstring failing;
        int calls = 0;
        void Count(std::wstring const& operation) {
            ++calls;
            if (operation == failing) throw std::runtime_error("the reader gave up");
        }
        htl::handle<XmlElemReader> Element(std::wstring const&) override {
            Count(L"Element");
            return htl::handle<XmlElemReader>(this);
        }
        void Attribute(XmlAttribute const&) override { Count(L"Attribute"); }
        void Text(std::wstring const&) override { Count(L"Text"); }
    };
    auto const document = AsBytes("<M><S a='1' b='2'/><S>x</S><S>y</S></M>");
    for (auto const& [operation, calls] :
         {std::pair(L"Element", 1), std::pair(L"Attribute", 2), std::pair(L"Text", 5)}) {
        htl::handle<Reader> const reader(new Reader);
        reader->failing = operation;
        EXPECT_THROW((void)sys::file::XmlStringRead(document, reader), std::runtime_error);
        EXPECT_EQ(reader->calls, calls);
        EXPECT_EQ(reader->RefCount(), 1);
    }
}

TEST(XmlReadTest, OneReaderMayServeEveryElement) {
    struct Reader final : XmlElemReader {
        std::size_t elements = 0;
        htl::handle<XmlElemReader> Element(std::wstring const&) override {
            ++elements;
            return htl::handle<XmlElemReader>(this);
        }
    };
    htl::handle<Reader> const reader(new Reader);
    ASSERT_FALSE(sys::file::XmlStringRead(AsBytes("<M><A><B/></A><A/></M>"), reader).IsError());
    EXPECT_EQ(reader->elements, 3u);
    EXPECT_EQ(reader->RefCount(), 1);
}

TEST(XmlReadTest, BaseReaderSkipsChildrenAndIgnoresTheRest) {
    htl::handle<XmlElemReader> const reader(new XmlElemReader);
    EXPECT_FALSE(reader->Element(L"Soil"));
    EXPECT_FALSE(sys::file::XmlStringRead(AsBytes("<M a='1'>x<S/></M>"), reader).IsError());
}
