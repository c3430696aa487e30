// Documents that are refused, and where.
#include "Documents.h"

using namespace documents;

namespace {

struct Refused {
    char const* document;
    int line;
    int column; // of the character that can't stand there; of the tag for a fault of an attribute's value
    char const* reason;
};

std::string Nested(std::size_t depth) {
    std::string document;
    for (std::size_t i = 0; i < depth; ++i) document += "<N>";
    for (std::size_t i = 0; i < depth; ++i) document += "</N>";
    return document;
}

} // namespace

TEST(XmlRefusalTest, DocumentCutAtAnyByteFailsAndKeepsWhatCameBefore) {
    std::string const whole =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!-- soils --><M V='1.5'>\n  <S N='Cl\xC3\xA4y' "
        "C='&lt;5'>a&#233;b<![CDATA[ x ]]><?pi y?></S>\n  <S N=\"\xF0\x9D\x90\x80\"/>\n</M>";
    Node const expected = Tree(whole);
    ASSERT_EQ(expected.children.size(), 2u);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        Node root;
        EXPECT_TRUE(Read(AsBytes(whole.substr(0, length)), root).Is(90002)) << length;
        EXPECT_LE(root.children.size(), 2u);
        for (std::size_t i = 0; i < root.children.size(); ++i)
            EXPECT_EQ(root.children[i].attributes, expected.children[i].attributes) << length;
    }
}

TEST(XmlRefusalTest, NotWellFormedTellsPlaceAndReason) {
    Refused const table[] = {
        {"", 1, 1, "no element found"},
        {" \n ", 2, 2, "no element found"},
        {"<!-- only -->", 1, 14, "no element found"},
        {"text", 1, 1, "syntax error"},
        {"<M></N>", 1, 6, "mismatched tag"},
        {"<M>\n  <A></B>\n</M>", 2, 8, "mismatched tag"},
        {"<M></M></M>", 1, 9, "not well-formed (invalid token)"},
        {"<M/><M/>", 1, 5, "junk after document element"},
        {"<M/>text", 1, 5, "junk after document element"},
        {"<M/>\n&amp;", 2, 1, "not well-formed (invalid token)"},
        {"<M", 1, 1, "unclosed token"},
        {"<M a='1' b='2' a='3'/>", 1, 16, "duplicate attribute"},
        {"<M a=1/>", 1, 6, "not well-formed (invalid token)"},
        {"<M a/>", 1, 5, "not well-formed (invalid token)"},
        {"<M a='<'/>", 1, 7, "not well-formed (invalid token)"},
        {"<M a='1'b='2'/>", 1, 9, "not well-formed (invalid token)"},
        {"<M 1='x'/>", 1, 4, "not well-formed (invalid token)"},
        {"<1/>", 1, 2, "not well-formed (invalid token)"},
        {"< M/>", 1, 2, "not well-formed (invalid token)"},
        {"<M>&</M>", 1, 5, "not well-formed (invalid token)"},
        {"<M>&nbsp;</M>", 1, 4, "undefined entity"},
        {"<M a='&nbsp;'/>", 1, 1, "undefined entity"},
        {"<M>&#0;</M>", 1, 4, "reference to invalid character number"},
        {"<M>&#xD800;</M>", 1, 4, "reference to invalid character number"},
        {"<M>&#xFFFE;</M>", 1, 4, "reference to invalid character number"},
        {"<M>&#x110000;</M>", 1, 4, "reference to invalid character number"},
        {"<M>]]></M>", 1, 6, "not well-formed (invalid token)"},
        {"<M>\x01</M>", 1, 4, "not well-formed (invalid token)"},
        {"<M>\x80</M>", 1, 4, "not well-formed (invalid token)"},
        {"<M>\xC0\x80</M>", 1, 4, "not well-formed (invalid token)"},
        {"<M>\xED\xA0\x80</M>", 1, 4, "not well-formed (invalid token)"},
        {"<M>\xEF\xBF\xBF</M>", 1, 4, "not well-formed (invalid token)"},
        {"<M><![CDATA[x</M>", 1, 18, "unclosed CDATA section"},
        {"<M><!-- -- --></M>", 1, 11, "not well-formed (invalid token)"},
        {" <?xml version='1.0'?><M/>", 1, 2, "XML or text declaration not at start of entity"},
        {"<?xml version='1.0' encoding='wide'?><M/>", 1, 31, "unknown encoding \"wide\""},
        {"<?xml version='1.0' standalone='maybe'?><M/>", 1, 33, "XML declaration not well-formed"},
    };
    for (Refused const& row : table)
        EXPECT_TRUE(FailsAs(FailureOf(row.document), 90002, row.line, row.column, row.reason)) << row.document;
}

TEST(XmlRefusalTest, ColumnsCountCharactersNotBytes) {
    EXPECT_TRUE(FailsAs(FailureOf("<M>\n\xC3\xA4\xE2\x82\xAC&;</M>"), 90002, 2, 4, "not well-formed (invalid token)"));
}

TEST(XmlRefusalTest, DocumentTypeDeclarationIsRefused) {
    for (char const* document :
         {"<!DOCTYPE M><M/>", "<!DOCTYPE M []><M/>", "<!DOCTYPE M SYSTEM 'file:///etc/passwd'><M/>",
          "<!DOCTYPE M PUBLIC 'a' 'b'><M/>", "<!DOCTYPE M [<!ENTITY e SYSTEM 'file:///etc/passwd'>]><M>&e;</M>"}) {
        EXPECT_TRUE(FailureOf(document).Is(90008)) << document;
    }
    EXPECT_TRUE(FailsAs(FailureOf("\n<!DOCTYPE M [\n]><M/>"), 90008, 2, 13));
}

TEST(XmlRefusalTest, EntitiesThatMultiplyAreRefusedBeforeAnythingIsRead) {
    std::string document = "<!DOCTYPE M [<!ENTITY e0 'ha'>";
    for (int i = 1; i < 30; ++i) {
        std::string const before = "&e" + std::to_string(i - 1) + ";";
        document += "<!ENTITY e" + std::to_string(i) + " '" + before + before + "'>";
    }
    Node root;
    EXPECT_TRUE(Read(AsBytes(document + "]><M a='&e29;'>&e29;</M>"), root).Is(90008));
    EXPECT_EQ(root, Node());
}

TEST(XmlRefusalTest, NestingIsLimitedTo4096Elements) {
    EXPECT_FALSE(FailureOf(Nested(4096)).IsError());
    EXPECT_TRUE(FailsAs(FailureOf(Nested(4097)), 90009, 1, 3 * 4096 + 1, 4096));
    // A flood that never closes is stopped at the same place.
    std::string flood;
    for (int i = 0; i < 1000000; ++i) flood += "<N>";
    EXPECT_TRUE(FailsAs(FailureOf(flood), 90009, 1, 3 * 4096 + 1, 4096));
}

TEST(XmlRefusalTest, NestingIsLimitedInSkippedElementsToo) {
    htl::handle<XmlElemReader> const skipping(new XmlElemReader);
    EXPECT_FALSE(sys::file::XmlStringRead(AsBytes(Nested(4096)), skipping).IsError());
    EXPECT_TRUE(sys::file::XmlStringRead(AsBytes(Nested(4097)), skipping).Is(90009));
}

TEST(XmlRefusalTest, FileThatCannotBeReadIsNamedWithTheReason) {
    Node root;
    htl::handle<XmlElemReader> const reader(new TreeReader(root));
    std::wstring const gone = L"/no such directory/soils.xml";
    EXPECT_TRUE(FailsAs(sys::file::XmlFileRead(gone, reader), 90001, gone, "No such file or directory"));
    EXPECT_TRUE(FailsAs(sys::file::XmlFileRead(L"/tmp", reader), 90001, L"/tmp", "Is a directory"));
    EXPECT_TRUE(FailsAs(sys::file::XmlFileRead(L"", reader), 90001, L"", "No such file or directory"));
    EXPECT_TRUE(sys::file::XmlFileRead(std::wstring(L"/tmp/a\0b", 8), reader).Is(90011));
    EXPECT_EQ(root, Node());
}

TEST(XmlRefusalTest, FileNamesThatNoSystemTakesAreRefused) {
    std::string path = "old";
    ASSERT_FALSE(sys::file::native_path(path, L"/a/D\u00E4mme\\\U0001D400.xml").IsError());
    EXPECT_EQ(path, "/a/D\xC3\xA4mme\\\xF0\x9D\x90\x80.xml");
    for (std::wstring const& name : {std::wstring(L"a\0b", 3), std::wstring(1, wchar_t(0xD800)),
                                     std::wstring(1, wchar_t(0x110000)), std::wstring(1, wchar_t(-1))}) {
        path = "old";
        EXPECT_TRUE(sys::file::native_path(path, name).Is(90011));
        EXPECT_EQ(path, "");
    }
}
