// Names that differ in more than case, for many at once.
#include "support/unique.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

TEST(FoldCaseTest, LettersBecomeLowerCaseWhateverTheirAlphabet) {
    EXPECT_EQ(str::FoldCase(L"Clay (2)"), L"clay (2)");
    EXPECT_EQ(str::FoldCase(L"B\u00D6SCHUNG"), L"b\u00F6schung");
    EXPECT_EQ(str::FoldCase(L""), L"");
}

TEST(UniqueTextsTest, AFreeNameStaysAsItIs) {
    str::UniqueTexts taken;
    EXPECT_EQ(taken.Make(L"Clay"), L"Clay");
    taken.Add(L"Sand");
    EXPECT_EQ(taken.Make(L"Clay"), L"Clay");
}

TEST(UniqueTextsTest, ATakenNameGetsTheLowestFreeNumber) {
    str::UniqueTexts taken;
    for (std::wstring const text : {L"Clay", L"CLAY (2)", L"Clay (4)"}) taken.Add(text);
    EXPECT_EQ(taken.Make(L"clay"), L"clay (3)");
    taken.Add(L"clay (3)");
    EXPECT_EQ(taken.Make(L"Clay"), L"Clay (5)");
}

TEST(UniqueTextsTest, TheResultIsNotTaken) {
    str::UniqueTexts taken;
    taken.Add(L"Clay");
    EXPECT_EQ(taken.Make(L"Clay"), L"Clay (2)");
    EXPECT_EQ(taken.Make(L"Clay"), L"Clay (2)");
}

TEST(UniqueTextsTest, MakesTheSameNamesAsTheFunctionForOneName) {
    std::vector<std::wstring> const words{L"Clay",         L"clay",     L"",     L"Clay (2)",
                                          L"CLAY (2) (2)", L" (2)",     L"Sand", L"\u00D6lig",
                                          L"\u00F6lig",    L"Clay (3)", L"(2)",  L"sand (2)"};
    unsigned state = 1;
    for (int round = 0; round < 50; ++round) {
        str::UniqueTexts indexed;
        std::vector<std::wstring> list;
        for (int i = 0; i < 60; ++i) {
            state = state * 1664525u + 1013904223u;
            std::wstring const& word = words[(state >> 16) % words.size()];
            std::wstring const expected = GenerateUniqueDesriptionIgnoreCase(list, word);
            ASSERT_EQ(indexed.Make(word), expected);
            bool const keep = (state >> 8) % 4 != 0;
            list.push_back(keep ? expected : word);
            indexed.Add(list.back());
        }
    }
}

} // namespace
