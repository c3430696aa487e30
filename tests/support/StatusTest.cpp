#include "support/status.h"
#include "support/messages.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <set>
#include <stdexcept>
#include <string>
#include <type_traits>

namespace {

constexpr unsigned notFound = 21660;
constexpr unsigned notSupported = 21661;
constexpr unsigned notBetween = 21662;
constexpr unsigned noText = 12345;

TEST(StatusTest, DefaultAndSuccessAreNull) {
    htl::status const fresh;
    EXPECT_FALSE(fresh.IsError());
    EXPECT_FALSE(htl::status::Success.IsError());
    EXPECT_EQ(fresh.Detail(), nullptr);
    EXPECT_EQ(fresh.AsWString(), L"");
    EXPECT_FALSE(fresh.Is(notFound));
    static_assert(sizeof(htl::status) == sizeof(void*));
}

TEST(StatusTest, FailureKeepsTheUnfilledTextAndLeavesOtherArgumentsEmpty) {
    htl::status const failure(notFound, L"Soils[7]");
    ASSERT_TRUE(failure.IsError());
    EXPECT_EQ(failure.Detail()->message, str::load_wstring(notFound));
    EXPECT_EQ(failure.Detail()->arguments[0], L"Soils[7]");
    for (std::size_t i = 1; i < 5; ++i) EXPECT_EQ(failure.Detail()->arguments[i], L"") << i;
    EXPECT_EQ(failure.Detail()->source, "");
    EXPECT_EQ(failure.Detail()->position, -1);
    EXPECT_EQ(failure.AsWString(), L"Not found: Soils[7]");
}

TEST(StatusTest, ArgumentsMayBeNumbersAndNarrowText) {
    htl::status const failure(notBetween, "Cohesi\xC3\xB3n", -5, std::numeric_limits<unsigned long long>::max());
    EXPECT_EQ(failure.AsWString(), L"Cohesi\u00F3n is not between -5 and 18446744073709551615.");
    htl::status const counted(notBetween, std::string("Count"), short{0}, true);
    EXPECT_EQ(counted.AsWString(), L"Count is not between 0 and 1.");
}

TEST(StatusTest, ArgumentsAreFilledInOnePass) {
    htl::status const failure(notBetween, L"%2", L"%%", L"%3");
    EXPECT_EQ(failure.AsWString(), L"%2 is not between %% and %3.");
}

TEST(StatusTest, MissingArgumentsPrintAsNothing) {
    EXPECT_EQ(htl::status(notBetween).AsWString(), L" is not between  and .");
}

TEST(StatusTest, IdentifierWithoutTextNamesItself) {
    EXPECT_EQ(htl::status(noText).AsWString(), L"Message 12345");
    EXPECT_EQ(str::load_wstring(noText), L"Message 12345");
    EXPECT_EQ(str::load_wstring(0), L"Message 0");
    EXPECT_EQ(str::load_wstring(std::numeric_limits<unsigned>::max()), L"Message 4294967295");
}

TEST(StatusTest, IsTellsIdentifiersApartByTheUnfilledText) {
    htl::status const failure(notFound, L"Soils[7]");
    EXPECT_TRUE(failure.Is(notFound));
    EXPECT_FALSE(failure.Is(notSupported));
    EXPECT_FALSE(htl::status::FromText(failure.AsWString()).Is(notFound));
}

TEST(StatusTest, FromTextProtectsPercentSigns) {
    htl::status const failure = htl::status::FromText(L"Slope of 5% (%1)");
    EXPECT_EQ(failure.AsWString(), L"Slope of 5% (%1)");
    EXPECT_EQ(htl::status::FromText(L"").AsWString(), L"");
    EXPECT_TRUE(htl::status::FromText(L"").IsError());
}

TEST(StatusTest, PercentSignsThatAreNoPlaceholdersStay) {
    htl::status failure(notFound, L"%");
    EXPECT_EQ(failure.AsWString(), L"Not found: %");
    EXPECT_EQ(htl::status::FromText(L"%6 %0 %a %").AsWString(), L"%6 %0 %a %");
}

TEST(StatusTest, CopiesShareOneDetailThatOutlivesTheFirst) {
    htl::status copy;
    htl::status::detail const* detail = nullptr;
    {
        htl::status const failure(notFound, L"Soils[7]");
        detail = failure.Detail();
        copy = failure;
    }
    EXPECT_EQ(copy.Detail(), detail);
    EXPECT_EQ(copy.AsWString(), L"Not found: Soils[7]");
}

TEST(StatusTest, SelfAssignmentKeepsTheDetailAlive) {
    htl::status failure(notFound, L"Soils[7]");
    htl::status const& alias = failure;
    failure = alias;
    EXPECT_EQ(failure.AsWString(), L"Not found: Soils[7]");
}

TEST(StatusTest, MoveLeavesSuccessInTheNewObjectsSource) {
    htl::status failure(notFound, L"Soils[7]");
    htl::status const moved = std::move(failure);
    EXPECT_FALSE(failure.IsError()); // NOLINT(bugprone-use-after-move): the state after a move is the point
    EXPECT_TRUE(moved.Is(notFound));
    htl::status target(notSupported, L"Len");
    target = htl::status();
    EXPECT_FALSE(target.IsError());
}

TEST(StatusTest, WithPlaceLeavesTheOriginalAndSuccessAlone) {
    htl::status const failure(notFound, L"Soils[7]");
    htl::status const placed = failure.WithPlace("Embankment", 1234);
    EXPECT_EQ(failure.Detail()->source, "");
    EXPECT_EQ(placed.Detail()->source, "Embankment");
    EXPECT_EQ(placed.Detail()->position, 1234);
    EXPECT_EQ(placed.AsWString(), failure.AsWString());
    EXPECT_TRUE(placed.Is(notFound));
    EXPECT_FALSE(htl::status::Success.WithPlace("Embankment", 1).IsError());
}

TEST(StatusExceptionTest, CarriesTheFailureWithItsPlace) {
    htl::status_exception const thrown(htl::status(notFound, L"B\u00F6den"), "Registry", 1234);
    EXPECT_STREQ(thrown.what(), "Not found: B\xC3\xB6"
                                "den (Registry:1234)");
    EXPECT_TRUE(thrown.Status().Is(notFound));
    EXPECT_EQ(thrown.Status().Detail()->source, "Registry");
    EXPECT_EQ(thrown.Status().Detail()->position, 1234);
    EXPECT_THROW(throw thrown, std::exception);
}

TEST(ConvertErrorTest, NamesTextAndKind) {
    using htl::Convert_error_status;
    EXPECT_EQ(Convert_error_status::InvalidCharStatus(L"1x", Convert_error_status::WholeNumberString()).AsWString(),
              L"{1x} can't be read as a whole number.");
    EXPECT_EQ(Convert_error_status::OutOfRangeStatus(L"1e999", Convert_error_status::FloatingPointString()).AsWString(),
              L"{1e999} is out of range for a number.");
}

TEST(CompoundTest, JoinsTheTextsOfAllFailuresByLine) {
    htl::status const head = htl::status(notSupported, L"50% %1").WithPlace("Embankment", 7);
    htl::status const all =
        HznError::compound(head, {htl::status(notFound, L"a"), htl::status(), htl::status(notFound, L"b")});
    EXPECT_EQ(all.AsWString(), L"Not supported: 50% %1\nNot found: a\nNot found: b");
    EXPECT_EQ(all.Detail()->source, "Embankment");
    EXPECT_EQ(all.Detail()->position, 7);
}

TEST(CompoundTest, WithoutFailingPartsIsTheHead) {
    htl::status const head(notSupported, L"Len");
    EXPECT_EQ(HznError::compound(head, {}).Detail(), head.Detail());
    EXPECT_EQ(HznError::compound(head, {htl::status()}).Detail(), head.Detail());
    EXPECT_FALSE(HznError::compound({}, {htl::status(), htl::status()}).IsError());
}

TEST(CompoundTest, HeadOfSuccessContributesNothing) {
    htl::status const all = HznError::compound({}, {htl::status(notFound, L"a"), htl::status(notFound, L"b")});
    EXPECT_EQ(all.AsWString(), L"Not found: a\nNot found: b");
    EXPECT_EQ(all.Detail()->source, "");
    EXPECT_EQ(all.Detail()->position, -1);
}

TEST(CompoundTest, EmptyTextsKeepTheirLines) {
    htl::status const blank = htl::status::FromText(L"");
    EXPECT_EQ(HznError::compound(blank, {blank, htl::status(notFound, L"a")}).AsWString(), L"\n\nNot found: a");
}

TEST(HznErrorTest, InternalCarriesItsPlace) {
    htl::status const failure = HznError::internal("ZOUtil", "zo::SetLink", 2713);
    EXPECT_EQ(failure.AsWString(), L"Internal error in zo::SetLink");
    EXPECT_EQ(failure.Detail()->source, "ZOUtil");
    EXPECT_EQ(failure.Detail()->position, 2713);
}

TEST(HznErrorTest, SyntaxQuotesTheText) {
    EXPECT_EQ(HznError::syntax(L"12..5").AsWString(), L"The text {12..5} can't be read.");
}

TEST(MessagesTest, TextsAreDistinctAndInOrderOfTheirIdentifiers) {
    std::set<std::wstring_view> texts;
    unsigned before = 0;
    ASSERT_FALSE(str::Messages().empty());
    for (str::Message const& row : str::Messages()) {
        EXPECT_LT(before, row.id);
        EXPECT_FALSE(row.text.empty()) << row.id;
        EXPECT_TRUE(texts.insert(row.text).second) << row.id;
        EXPECT_EQ(str::load_wstring(row.id), row.text);
        EXPECT_TRUE(htl::status(row.id, 1, 2, 3, 4, 5).Is(row.id));
        before = row.id;
    }
}

TEST(MessagesTest, TextsShowEachOfTheirArgumentsFromTheFirstOn) {
    for (str::Message const& row : str::Messages()) {
        bool isShown = true;
        for (wchar_t digit = L'1'; digit <= L'5'; ++digit) {
            bool const isNext = row.text.find(std::wstring{L'%', digit}) != row.text.npos;
            EXPECT_TRUE(isShown || !isNext) << row.id;
            isShown = isNext;
        }
        // Nothing but placeholders and doubled signs follows a "%".
        for (std::size_t at = row.text.find(L'%'); at != row.text.npos; at = row.text.find(L'%', at + 2)) {
            ASSERT_LT(at + 1, row.text.size()) << row.id;
            EXPECT_NE(std::wstring_view(L"12345%").find(row.text[at + 1]), std::wstring_view::npos) << row.id;
        }
    }
}

} // namespace
