#include "Documents.h"

#include <expat.h>

#include <memory>

using sys::file::IsXmlName;

namespace {

void AppendUtf8(std::string& out, char32_t c) {
    auto const put = [&out](char32_t byte) { out += static_cast<char>(byte); };
    if (c < 0x80) return put(c);
    if (c < 0x800) {
        put(0xC0 | (c >> 6));
    } else {
        if (c >= 0x10000) {
            put(0xF0 | (c >> 18));
            put(0x80 | ((c >> 12) & 0x3F));
        } else {
            put(0xE0 | (c >> 12));
        }
        put(0x80 | ((c >> 6) & 0x3F));
    }
    put(0x80 | (c & 0x3F));
}

// Asks the parser library for a document whose one element has this name, as the very name it reports.
class Judge {
public:
    Judge() : parser(XML_ParserCreate(nullptr), &XML_ParserFree) {}

    bool Accepts(std::u32string_view name) {
        std::string narrow;
        for (char32_t const c : name) AppendUtf8(narrow, c);
        XML_ParserReset(parser.get(), nullptr);
        std::string reported;
        XML_SetUserData(parser.get(), &reported);
        XML_SetStartElementHandler(parser.get(), [](void* self, char const* element, char const**) {
            *static_cast<std::string*>(self) += element;
        });
        std::string const document = "<" + narrow + "/>";
        return XML_Parse(parser.get(), document.data(), static_cast<int>(document.size()), 1) == XML_STATUS_OK &&
               reported == narrow;
    }

private:
    std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> parser;
};

} // namespace

TEST(XmlNameTest, EveryCharacterIsJudgedAsByTheParser) {
    Judge judge;
    std::size_t firsts = 0;
    std::size_t laters = 0;
    for (char32_t c = 1; c <= 0xFFFF; ++c) {
        if (c >= 0xD800 && c <= 0xDFFF) continue;
        auto const wide = static_cast<wchar_t>(c);
        bool const first = IsXmlName(std::wstring{wide});
        bool const later = IsXmlName(std::wstring{L'S', wide});
        ASSERT_EQ(first, judge.Accepts(std::u32string{c})) << unsigned(c);
        ASSERT_EQ(later, judge.Accepts(std::u32string{U'S', c})) << unsigned(c);
        firsts += first;
        laters += later;
    }
    EXPECT_GT(firsts, 30000u); // ideographs alone are more than 20,000, syllables of Hangul 11,172
    EXPECT_GT(laters, firsts);
}

TEST(XmlNameTest, CharactersOutsideOfTheBasicPlaneMakeNoName) {
    Judge judge;
    for (char32_t const c : {0x10000u, 0x1D400u, 0x20000u, 0x10FFFFu}) {
        EXPECT_FALSE(IsXmlName(std::wstring{static_cast<wchar_t>(c)}));
        EXPECT_FALSE(IsXmlName(std::wstring{L'S', static_cast<wchar_t>(c)}));
        EXPECT_FALSE(judge.Accepts(std::u32string{c}));
        EXPECT_FALSE(judge.Accepts(std::u32string{U'S', c}));
    }
    for (std::uint32_t const c : {0xD800u, 0xDFFFu, 0x110000u, 0xFFFFFFFFu, 0x80000041u})
        EXPECT_FALSE(IsXmlName(std::wstring{static_cast<wchar_t>(c)})) << c;
}

TEST(XmlNameTest, WholeNames) {
    for (wchar_t const* name : {L"S", L"_", L":", L"Soil.Name-2", L"soil:name", L"B\u00F6schung", L"\u571F\u8CEA"})
        EXPECT_TRUE(IsXmlName(name));
    for (wchar_t const* name : {L"", L"2", L".a", L"-", L"a b", L"a[1]", L"a&", L"a/", L"[2]"})
        EXPECT_FALSE(IsXmlName(name));
    EXPECT_FALSE(IsXmlName(std::wstring_view(L"a\0b", 3)));
}
