#include "support/text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr wchar_t bad = L'\uFFFD';

/// UTF-8 as its definition has it, bit by bit.
std::string Utf8Of(char32_t c) {
    int const tail = c < 0x80 ? 0 : c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
    unsigned const lead[] = {0x00, 0xC0, 0xE0, 0xF0};
    std::string bytes(1, static_cast<char>(lead[tail] | c >> 6 * tail));
    for (int i = tail - 1; i >= 0; --i) bytes += static_cast<char>(0x80 | (c >> 6 * i & 0x3F));
    return bytes;
}

/// UTF-16 in the same way.
std::u16string Utf16Of(std::wstring const& text) {
    std::u16string units;
    for (wchar_t const unit : text) {
        auto c = static_cast<char32_t>(unit);
        if (c >= 0x10000) {
            c -= 0x10000;
            units += static_cast<char16_t>(0xD800 + (c >> 10));
            c = 0xDC00 + (c & 0x3FF);
        }
        units += static_cast<char16_t>(c);
    }
    return units;
}

bool IsSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDFFF; }

TEST(Utf8Test, EveryCodePointConvertsBothWays) {
    std::string all;
    std::wstring wide;
    for (char32_t c = 0; c <= 0x10FFFF; ++c) {
        if (IsSurrogate(c)) continue;
        std::string const bytes = Utf8Of(c);
        std::wstring const one(1, static_cast<wchar_t>(c));
        ASSERT_EQ(str::as_cstring(one), bytes) << std::hex << static_cast<unsigned>(c);
        ASSERT_EQ(str::as_wstring(bytes), one) << std::hex << static_cast<unsigned>(c);
        all += bytes;
        wide += one;
    }
    EXPECT_TRUE(str::as_wstring(all) == wide);
    EXPECT_TRUE(str::as_cstring(wide) == all);
}

TEST(Utf8Test, EachByteOfIllFormedTextBecomesOneReplacement) {
    struct Case {
        std::string bytes;
        std::size_t replacements;
    };
    Case const cases[] = {
        {"\x80", 1},             // a tail without a beginning
        {"\xC3", 1},             // cut off
        {"\xE2\x82", 2},         // cut off
        {"\xF0\x9F\x98", 3},     // cut off
        {"\xC0\x80", 2},         // not the shortest form of 0
        {"\xC1\xBF", 2},         // not the shortest form of 0x7F
        {"\xE0\x9F\xBF", 3},     // not the shortest form of 0x7FF
        {"\xF0\x8F\xBF\xBF", 4}, // not the shortest form of 0xFFFF
        {"\xED\xA0\x80", 3},     // first surrogate
        {"\xED\xBF\xBF", 3},     // last surrogate
        {"\xF4\x90\x80\x80", 4}, // 0x110000
        {"\xF5\x80\x80\x80", 4}, // no first byte
        {"\xFE\xFF", 2},         // no bytes of UTF-8 at all
    };
    for (Case const& c : cases) {
        std::wstring const expected = L"a" + std::wstring(c.replacements, bad) + L"z";
        EXPECT_EQ(str::as_wstring("a" + c.bytes + "z"), expected) << testing::PrintToString(c.bytes);
    }
    EXPECT_EQ(str::as_wstring(std::string("\xE2\x82")), std::wstring(2, bad));
}

TEST(Utf8Test, ASequenceThatIsBrokenOffDoesNotSwallowTheNext) {
    EXPECT_EQ(str::as_wstring(std::string("\xE2\x82\xC3\xB3")), std::wstring(2, bad) + L"\u00F3");
    EXPECT_EQ(str::as_wstring(std::string("\xF0\x9F"
                                          "A")),
              std::wstring(2, bad) + L"A");
}

TEST(Utf8Test, UnitsThatAreNoCodePointsNarrowToTheReplacement) {
    std::string const replacement = "\xEF\xBF\xBD";
    for (unsigned const unit : {0xD800u, 0xDBFFu, 0xDC00u, 0xDFFFu, 0x110000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        std::wstring const text{L'a', static_cast<wchar_t>(unit), L'z'};
        EXPECT_EQ(str::as_cstring(text), "a" + replacement + "z") << std::hex << unit;
    }
}

TEST(Utf8Test, ZeroCharactersAreText) {
    std::string const narrow("a\0b", 3);
    std::wstring const wide(L"a\0b", 3);
    EXPECT_EQ(str::as_wstring(narrow), wide);
    EXPECT_EQ(str::as_wstring(narrow.data(), 3), wide);
    EXPECT_EQ(str::as_wstring(wide.data(), 3), wide);
    EXPECT_EQ(str::as_cstring(wide), narrow);
    EXPECT_EQ(str::as_cstring(narrow.data(), 3), narrow);
    EXPECT_EQ(str::as_wstring(std::string()), L"");
    EXPECT_EQ(str::as_cstring(std::wstring()), "");
}

TEST(Utf8Test, AppendAndAssignReuseTheTarget) {
    std::string narrow = "Soil ";
    str::AppendUtf8(narrow, L"\u00FC");
    EXPECT_EQ(narrow, "Soil \xC3\xBC");
    std::wstring wide = L"what was here";
    str::AssignWide(wide, "\xC3\xBC");
    EXPECT_EQ(wide, L"\u00FC");
    str::AssignWide(wide, "");
    EXPECT_EQ(wide, L"");
}

TEST(Utf8Test, U8StringHoldsTheSameBytes) {
    str::u8string const text = str::as_u8string("\xC3\xBC");
    EXPECT_TRUE(text == u8"\u00FC");
    EXPECT_EQ(str::as_wstring(text), L"\u00FC");
}

TEST(Utf16Test, EncodesLowByteFirst) {
    std::vector<unsigned char> bytes{1, 2, 3};
    EXPECT_FALSE(str::as_utf16le(L"A\u20AC\U0001D400\U0010FFFF", bytes).IsError());
    EXPECT_EQ(bytes,
              (std::vector<unsigned char>{0x41, 0x00, 0xAC, 0x20, 0x35, 0xD8, 0x00, 0xDC, 0xFF, 0xDB, 0xFF, 0xDF}));
    EXPECT_FALSE(str::as_utf16le(L"", bytes).IsError());
    EXPECT_TRUE(bytes.empty());
}

TEST(Utf16Test, RefusesWhatNoDocumentCarriesWithItsPosition) {
    for (unsigned const unit : {0xD800u, 0xDFFFu, 0x110000u, 0xFFFFFFFFu}) {
        std::vector<unsigned char> bytes{1};
        htl::status const failure = str::as_utf16le(std::wstring{L'a', L'b', static_cast<wchar_t>(unit)}, bytes);
        EXPECT_EQ(failure.AsWString(), htl::status(90012, 3).AsWString()) << std::hex << unit;
        EXPECT_TRUE(failure.Is(90012));
        EXPECT_TRUE(bytes.empty());
    }
}

TEST(Utf8Test, EncodesWholeCharactersAsLongAsThereIsRoom) {
    struct Case {
        std::size_t room, bytes, rest;
    };
    // One, two, three, four bytes and one.
    std::wstring const text = L"A\u00FC\u20AC\U0001D400B";
    std::string const expected = "A\xC3\xBC\xE2\x82\xAC\xF0\x9D\x90\x80"
                                 "B";
    for (auto const [room, bytes, rest] :
         {Case{0, 0, 5}, Case{1, 1, 4}, Case{2, 1, 4}, Case{3, 3, 3}, Case{5, 3, 3}, Case{6, 6, 2}, Case{9, 6, 2},
          Case{10, 10, 1}, Case{11, 11, 0}, Case{99, 11, 0}}) {
        std::string out(room + 1, '#');
        std::wstring_view left = text;
        EXPECT_EQ(str::EncodeUtf8(std::span(out).first(room), left), bytes) << room;
        EXPECT_EQ(left, text.substr(text.size() - rest)) << room;
        EXPECT_EQ(out.substr(0, bytes), expected.substr(0, bytes)) << room;
        EXPECT_EQ(out[room], '#') << room;
    }
}

TEST(Utf8Test, EncodesLongTextAsTheConversionDoes) {
    for (std::size_t const place : {0u, 31u, 32u, 33u, 63u, 64u, 99u}) {
        for (wchar_t const other : {L'\u00FC', L'\u20AC', L'\U0001D400', wchar_t(0xD800), wchar_t(0x110000)}) {
            std::wstring text(100, L'x');
            text[place] = other;
            std::string out(200, '#');
            std::wstring_view left = text;
            out.resize(str::EncodeUtf8(out, left));
            EXPECT_TRUE(left.empty());
            EXPECT_EQ(out, str::as_cstring(text)) << place;
        }
    }
}

TEST(Utf16Test, CharactersAmongManyOthersComeOutInTheirPlaces) {
    for (std::size_t const place : {0u, 31u, 32u, 33u, 63u, 64u, 99u}) {
        std::wstring text(100, L'x');
        text[place] = L'\U0001D400';
        std::string expected;
        for (wchar_t const c : text) expected += c == L'x' ? std::string("x\0", 2) : std::string("\x35\xD8\x00\xDC", 4);
        std::vector<unsigned char> bytes;
        ASSERT_FALSE(str::as_utf16le(text, bytes).IsError());
        EXPECT_EQ(std::string(bytes.begin(), bytes.end()), expected) << place;
    }
}

TEST(Utf16Test, TheFirstUnitThatIsNoCodePointIsTold) {
    for (std::size_t const place : {0u, 30u, 31u, 32u, 64u, 99u}) {
        std::wstring text(100, L'\u20AC');
        EXPECT_FALSE(str::CheckCodePoints(text).IsError());
        text[99] = wchar_t(0xDC00);
        text[place] = wchar_t(0xD800);
        EXPECT_EQ(str::CheckCodePoints(text).AsWString(), htl::status(90012, place + 1).AsWString());
    }
}

TEST(CompareUtf16Test, CharactersAboveTheBasicPlaneComeBeforePrivateUse) {
    std::wstring const mathBoldA = L"\U0001D400";
    EXPECT_LT(str::CompareUtf16(mathBoldA, L"\uE000"), 0);
    EXPECT_GT(str::CompareUtf16(L"\uE000", mathBoldA), 0);
    EXPECT_LT(str::CompareUtf16(mathBoldA, L"\uFFFF"), 0);
    EXPECT_GT(str::CompareUtf16(mathBoldA, L"\uD7FF"), 0);
    EXPECT_TRUE(str::LessUtf16()(mathBoldA, L"\uE000"));
    EXPECT_FALSE(str::LessUtf16()(L"\uE000", mathBoldA));
}

TEST(CompareUtf16Test, SharedLeadsAreToldApartByTheirTrails) {
    EXPECT_LT(str::CompareUtf16(L"\U0001D400", L"\U0001D401"), 0);
    EXPECT_LT(str::CompareUtf16(L"\U0001D7FF", L"\U0001D800"), 0);
    EXPECT_EQ(str::CompareUtf16(L"x\U0001D400", L"x\U0001D400"), 0);
}

TEST(CompareUtf16Test, AShorterTextComesBeforeItsContinuation) {
    EXPECT_LT(str::CompareUtf16(L"", L"a"), 0);
    EXPECT_LT(str::CompareUtf16(L"Soil", L"Soils"), 0);
    EXPECT_GT(str::CompareUtf16(L"Soils", L"Soil"), 0);
    EXPECT_EQ(str::CompareUtf16(L"", L""), 0);
    EXPECT_FALSE(str::LessUtf16()(L"Soil", L"Soil"));
}

TEST(CompareUtf16Test, AgreesWithComparingEncodedText) {
    std::wstring const alphabet =
        L"aZ\uD7FF\uE000\uFFFD\U00010000\U0001D400\U0010FFFF" + std::wstring{wchar_t(0xD835), wchar_t(0xDC00)};
    std::mt19937 random(7);
    auto const text = [&] {
        std::wstring made;
        for (std::size_t n = random() % 4; n > 0; --n) made += alphabet[random() % alphabet.size()];
        return made;
    };
    for (int i = 0; i < 20000; ++i) {
        std::wstring const a = text();
        std::wstring const b = text();
        int const expected = Utf16Of(a).compare(Utf16Of(b));
        int const order = str::CompareUtf16(a, b);
        ASSERT_EQ(order < 0, expected < 0) << str::as_cstring(a) << " / " << str::as_cstring(b);
        ASSERT_EQ(order > 0, expected > 0) << str::as_cstring(a) << " / " << str::as_cstring(b);
    }
}

TEST(ReplaceAllTest, ReplacesLeftToRightWithoutSearchingWhatWasPutIn) {
    auto const replaced = [](std::wstring text, wchar_t const* from, wchar_t const* to) {
        str::replace_all(text, from, to);
        return text;
    };
    EXPECT_EQ(replaced(L"a.b.c", L".", L"::"), L"a::b::c");
    EXPECT_EQ(replaced(L"aaa", L"aa", L"b"), L"ba");
    EXPECT_EQ(replaced(L"aa", L"a", L"aa"), L"aaaa");
    EXPECT_EQ(replaced(L"Soil", L"Soil", L""), L"");
    EXPECT_EQ(replaced(L"Soil", L"Rock", L"x"), L"Soil");
    EXPECT_EQ(replaced(L"Soil", L"", L"x"), L"Soil");
    EXPECT_EQ(replaced(L"", L"a", L"x"), L"");
}

TEST(ReplaceAllTest, TakesPartsOfTheTextItself) {
    std::wstring text = L"aba";
    str::replace_all(text, text, L"c");
    EXPECT_EQ(text, L"c");
}

TEST(SplitTest, KeepsEmptyPieces) {
    std::vector<std::wstring> pieces{L"old"};
    str::split(pieces, L",a,,b,", L",");
    EXPECT_EQ(pieces, (std::vector<std::wstring>{L"", L"a", L"", L"b", L""}));
    str::split(pieces, L"a::b:c", L"::");
    EXPECT_EQ(pieces, (std::vector<std::wstring>{L"a", L"b:c"}));
}

TEST(SplitTest, EmptyTextHasNoPiecesAndAnEmptySeparatorCutsNothing) {
    std::vector<std::string> pieces{"old"};
    str::split(pieces, "", ",");
    EXPECT_TRUE(pieces.empty());
    str::split(pieces, "a,b", "");
    EXPECT_EQ(pieces, std::vector<std::string>{"a,b"});
}

TEST(SplitTest, TakesAPieceOfTheOutputAsText) {
    std::vector<std::string> pieces{"a,b"};
    str::split(pieces, pieces[0], ",");
    EXPECT_EQ(pieces, (std::vector<std::string>{"a", "b"}));
}

TEST(JoinTest, PutsTheSeparatorBetweenPieces) {
    std::wstring wide = L"old";
    str::join(wide, {L"", L"a", L""}, L", ");
    EXPECT_EQ(wide, L", a, ");
    str::join(wide, {}, L",");
    EXPECT_EQ(wide, L"");
    std::string narrow;
    str::join(narrow, {"Soils", "Cohesion"}, ".");
    EXPECT_EQ(narrow, "Soils.Cohesion");
}

TEST(JoinTest, IsUndoneBySplit) {
    std::vector<std::wstring> const pieces{L"", L"1.5", L"", L"x y", L""};
    std::wstring text;
    str::join(text, pieces, L";");
    std::vector<std::wstring> back;
    str::split(back, text, L";");
    EXPECT_EQ(back, pieces);
}

TEST(TrimTest, CutsBlanksAtBothEndsAlone) {
    EXPECT_EQ(str::Trim(std::wstring_view(L" \t\n\v\f\rSoil 1 \r\n")), L"Soil 1");
    EXPECT_EQ(str::Trim(std::string_view("  ")), "");
    EXPECT_EQ(str::Trim(std::wstring_view()), L"");
    EXPECT_EQ(str::Trim(std::wstring_view(L"\u00A0x\u0008")), L"\u00A0x\u0008");
    EXPECT_EQ(str::Trim(std::string_view("\xC2\xA0")), "\xC2\xA0");
}

TEST(CharacterClassTest, OnlyAsciiCounts) {
    for (char32_t c = 0; c <= 0x10FFFF; ++c) {
        auto const w = static_cast<wchar_t>(c);
        ASSERT_EQ(str::IsDigit(w), c >= 0x30 && c <= 0x39) << static_cast<unsigned>(c);
        ASSERT_EQ(str::IsBlank(w), (c >= 9 && c <= 13) || c == 32) << static_cast<unsigned>(c);
        ASSERT_EQ(str::ToLowerAscii(w), c >= 0x41 && c <= 0x5A ? w + 32 : w) << static_cast<unsigned>(c);
    }
}

TEST(UniqueDescriptionTest, AFreeNameStands) {
    EXPECT_EQ(GenerateUniqueDesriptionIgnoreCase({}, L"Clay"), L"Clay");
    EXPECT_EQ(GenerateUniqueDesriptionIgnoreCase({L"Sand", L"Clay 2"}, L"Clay"), L"Clay");
    EXPECT_EQ(GenerateUniqueDesriptionIgnoreCase({L"Sand"}, L""), L"");
}

TEST(UniqueDescriptionTest, ATakenNameGetsTheFirstFreeNumberFromTwo) {
    EXPECT_EQ(GenerateUniqueDesriptionIgnoreCase({L"Clay"}, L"Clay"), L"Clay (2)");
    EXPECT_EQ(GenerateUniqueDesriptionIgnoreCase({L"Clay", L"Clay (2)", L"Clay (4)"}, L"Clay"), L"Clay (3)");
    EXPECT_EQ(GenerateUniqueDesriptionIgnoreCase({L"Clay (2)"}, L"Clay (2)"), L"Clay (2) (2)");
    EXPECT_EQ(GenerateUniqueDesriptionIgnoreCase({L""}, L""), L" (2)");
}

TEST(UniqueDescriptionTest, CaseIsIgnoredAndThatOfTheNameKept) {
    EXPECT_EQ(GenerateUniqueDesriptionIgnoreCase({L"CLAY", L"clay (2)"}, L"Clay"), L"Clay (3)");
    EXPECT_EQ(GenerateUniqueDesriptionIgnoreCase({L"B\u00D6SCHUNG"}, L"b\u00F6schung"), L"b\u00F6schung (2)");
    EXPECT_EQ(
        GenerateUniqueDesriptionIgnoreCase({L"\u0413\u041B\u0418\u041D\u0410"}, L"\u0433\u043B\u0438\u043D\u0430"),
        L"\u0433\u043B\u0438\u043D\u0430 (2)");
}

} // namespace
