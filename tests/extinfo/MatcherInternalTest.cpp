// Which of many patterns speaks for a tag.
#include "Common/extinfo/TagMatcher.h"

#include "support/text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

using zo::extinfo::TagMatcher;

/// Patterns in the order of a table, which is sorted.
class Patterns {
public:
    explicit Patterns(std::vector<std::wstring> list) : texts(std::move(list)) {
        std::ranges::sort(texts, str::LessUtf16());
    }

    /// The pattern that wins, "none" without one.
    std::wstring For(std::wstring_view tag) const {
        TagMatcher const matcher(std::vector<std::wstring_view>(texts.begin(), texts.end()));
        std::size_t const place = matcher.Match(tag);
        return place == TagMatcher::npos ? L"none" : texts[place];
    }

    std::vector<std::wstring> texts;
};

Patterns Materials() { return Patterns({L"*.Name", L"Mat*", L"Material.*"}); }

TEST(MatcherTest, LongestOfTheMatchingPatternsWins) {
    EXPECT_EQ(Materials().For(L"Material.Name"), L"Material.*");
    EXPECT_EQ(Materials().For(L"Material.[].Name"), L"Material.*");
}

TEST(MatcherTest, LongerPatternWithALeadingStarWinsOverAShorterOneWithAPrefix) {
    EXPECT_EQ(Materials().For(L"Mat.Name"), L"*.Name");
}

TEST(MatcherTest, PatternIsFoundByItsEndAlone) { EXPECT_EQ(Materials().For(L"Model.Name"), L"*.Name"); }

TEST(MatcherTest, PatternIsFoundByItsBeginningAlone) {
    EXPECT_EQ(Materials().For(L"Material"), L"Mat*");
    EXPECT_EQ(Materials().For(L"Material."), L"Mat*");
    EXPECT_EQ(Materials().For(L"Mate"), L"Mat*");
}

TEST(MatcherTest, StarStandsForOneCharacterAtLeast) {
    EXPECT_EQ(Materials().For(L"Mat"), L"none");
    EXPECT_EQ(Materials().For(L".Name"), L"none");
    EXPECT_EQ(Materials().For(L"x.Name"), L"*.Name");
}

TEST(MatcherTest, BeginningAndEndDoNotShareCharacters) {
    Patterns const patterns({L"Soil*oils"});
    EXPECT_EQ(patterns.For(L"Soils"), L"none");
    EXPECT_EQ(patterns.For(L"Soiloils"), L"none");
    EXPECT_EQ(patterns.For(L"Soilxoils"), L"Soil*oils");
}

TEST(MatcherTest, CaseMatters) { EXPECT_EQ(Materials().For(L"material.name"), L"none"); }

TEST(MatcherTest, EmptyTagMatchesNothing) { EXPECT_EQ(Materials().For(L""), L"none"); }

TEST(MatcherTest, NothingMatchesAmongNoPatterns) { EXPECT_EQ(Patterns({}).For(L"Material"), L"none"); }

TEST(MatcherTest, OfEqualLengthThePatternWithAPrefixWinsOverTheOneWithALeadingStar) {
    EXPECT_EQ(Patterns({L"*.Name", L"Mater*"}).For(L"Material.Name"), L"Mater*");
}

TEST(MatcherTest, WithoutALeadingStarTheFirstPatternGivesWayToALaterOneOfEqualLength) {
    EXPECT_EQ(Patterns({L"A*C", L"AB*"}).For(L"ABxC"), L"AB*");
}

TEST(MatcherTest, WithALeadingStarInTheTableTheEarlierOfEqualPrefixesWins) {
    EXPECT_EQ(Patterns({L"*zzz", L"A*C", L"AB*"}).For(L"ABxC"), L"A*C");
}

TEST(MatcherTest, OfEqualLeadingStarsTheEarlierWins) {
    // "*" sorts before letters, so both of these give way to prefixes; one ends in the other.
    EXPECT_EQ(Patterns({L"*.Name", L"*zName"}).For(L"Soils.Name"), L"*.Name");
}

TEST(MatcherTest, LongestWinsWhereShorterPatternsStandBetween) {
    EXPECT_EQ(Patterns({L"*q", L"A*CDz", L"AA*", L"AB*"}).For(L"ABCDz"), L"A*CDz");
}

TEST(MatcherTest, PatternsThatSortBeforeAStarGiveWayLikeLeadingStars) {
    // "(" is less than "*": "(a*" stands before "*b)" and so before the split.
    EXPECT_EQ(Patterns({L"(a*", L"*b)", L"(*b"}).For(L"(axb"), L"(*b");
    EXPECT_EQ(Patterns({L"(a*", L"*x)"}).For(L"(ax)"), L"(a*");
}

TEST(MatcherTest, EarlierOfTwoEqualPatternsWins) {
    EXPECT_EQ(TagMatcher({L"*.Name", L"Mat*", L"Mat*"}).Match(L"Material"), 1u);
}

TEST(MatcherTest, SplitFollowsTheLastLeadingStar) {
    std::vector<std::wstring_view> const patterns{L"*.Name", L"*Len", L"Mat*"};
    EXPECT_EQ(TagMatcher(patterns).Split(), 2u);
}

TEST(MatcherTest, SplitIsOneWithoutALeadingStar) {
    EXPECT_EQ(TagMatcher({L"A*", L"B*"}).Split(), 1u);
    EXPECT_EQ(TagMatcher({}).Split(), 1u);
}

// What a match is, pattern by pattern.
bool Matches(std::wstring_view pattern, std::wstring_view tag) {
    std::size_t const star = pattern.find(L'*');
    return pattern.size() <= tag.size() && tag.substr(0, star) == pattern.substr(0, star) &&
           tag.ends_with(pattern.substr(star + 1));
}

std::size_t Longest(std::vector<std::wstring> const& patterns, std::size_t begin, std::size_t end,
                    std::wstring_view tag) {
    std::size_t best = TagMatcher::npos;
    for (std::size_t i = begin; i < end; ++i)
        if (Matches(patterns[i], tag) && (best == TagMatcher::npos || patterns[i].size() > patterns[best].size()))
            best = i;
    return best;
}

std::size_t MatchOneByOne(std::vector<std::wstring> const& patterns, std::wstring_view tag) {
    std::size_t split = 0;
    for (std::size_t i = 0; i < patterns.size(); ++i)
        if (patterns[i].front() == L'*') split = i;
    split = std::min(split + 1, patterns.size());
    std::size_t const prefixed = Longest(patterns, split, patterns.size(), tag);
    std::size_t const starred = Longest(patterns, 0, split, tag);
    if (prefixed == TagMatcher::npos) return starred;
    if (starred == TagMatcher::npos) return prefixed;
    return patterns[starred].size() > patterns[prefixed].size() ? starred : prefixed;
}

TEST(MatcherTest, AnswersAsATestOfEachPatternDoes) {
    std::mt19937 random(20240117);
    auto const textOf = [&random](std::size_t most, std::wstring_view letters) {
        std::wstring text(random() % (most + 1), L' ');
        for (wchar_t& c : text) c = letters[random() % letters.size()];
        return text;
    };
    std::size_t matches = 0;
    for (int round = 0; round < 400; ++round) {
        std::wstring_view const letters = round % 2 ? L"ab" : L"(ab.\x00e9\xe000";
        std::vector<std::wstring> list;
        for (std::size_t left = random() % 30; left > 0; --left) {
            std::wstring const start = random() % 3 == 0 ? L"" : textOf(4, letters);
            list.push_back(start + L"*" + (random() % 3 == 0 ? L"" : textOf(4, letters)));
        }
        std::erase(list, L"*");
        Patterns const patterns(std::move(list));
        TagMatcher const matcher(std::vector<std::wstring_view>(patterns.texts.begin(), patterns.texts.end()));
        for (int i = 0; i < 100; ++i) {
            std::wstring const tag = textOf(10, letters);
            std::size_t const expected = MatchOneByOne(patterns.texts, tag);
            matches += expected != TagMatcher::npos;
            ASSERT_EQ(matcher.Match(tag), expected)
                << testing::PrintToString(patterns.texts) << " for " << testing::PrintToString(tag);
        }
    }
    EXPECT_GT(matches, 10000u); // the patterns are such that many tags are matched
}

// Hostile tables: these would take minutes if each pattern were looked at for each tag.
constexpr std::size_t many = 30'000;

TEST(MatcherTest, FindsOneOfManyPatternsWithOneBeginning) {
    Patterns patterns({});
    for (std::size_t i = 0; i < many; ++i) patterns.texts.push_back(L"Soils.*." + std::to_wstring(100'000 + i));
    TagMatcher const matcher(std::vector<std::wstring_view>(patterns.texts.begin(), patterns.texts.end()));
    for (std::size_t i = 0; i < many; ++i) ASSERT_EQ(matcher.Match(L"Soils.x." + std::to_wstring(100'000 + i)), i);
    EXPECT_EQ(matcher.Match(L"Soils.x.9"), TagMatcher::npos);
}

TEST(MatcherTest, FindsOneOfManyPatternsWithALeadingStar) {
    Patterns patterns({});
    for (std::size_t i = 0; i < many; ++i) patterns.texts.push_back(L"*." + std::to_wstring(100'000 + i));
    TagMatcher const matcher(std::vector<std::wstring_view>(patterns.texts.begin(), patterns.texts.end()));
    for (std::size_t i = 0; i < many; ++i) ASSERT_EQ(matcher.Match(L"Soils." + std::to_wstring(100'000 + i)), i);
}

TEST(MatcherTest, PatternsThatAreBeginningsOfEachOtherNeedNoStack) {
    Patterns patterns({});
    constexpr std::size_t deepest = 3000;
    for (std::size_t i = 1; i <= deepest; ++i) patterns.texts.push_back(std::wstring(i, L'a') + L"*");
    TagMatcher const matcher(std::vector<std::wstring_view>(patterns.texts.begin(), patterns.texts.end()));
    // All match the longest tag; a tag one longer than a pattern has that one as its longest.
    EXPECT_EQ(matcher.Match(std::wstring(deepest + 1, L'a')), deepest - 1);
    EXPECT_EQ(matcher.Match(std::wstring(11, L'a')), 9u);
    EXPECT_EQ(matcher.Match(L"a"), TagMatcher::npos);
}

TEST(MatcherTest, BeginningsAndEndsOfOneLetterAreTriedWithinBounds) {
    Patterns patterns({});
    for (std::size_t start = 0; start < 100; ++start)
        for (std::size_t end = 1; end < 100; ++end)
            patterns.texts.push_back(std::wstring(start, L'a') + L"*" + std::wstring(end, L'a'));
    std::ranges::sort(patterns.texts, str::LessUtf16());
    TagMatcher const matcher(std::vector<std::wstring_view>(patterns.texts.begin(), patterns.texts.end()));
    std::wstring const tag(150, L'a');
    EXPECT_EQ(matcher.Match(tag), MatchOneByOne(patterns.texts, tag));
    EXPECT_EQ(patterns.texts[matcher.Match(tag)].size(), 150u);
}

} // namespace
