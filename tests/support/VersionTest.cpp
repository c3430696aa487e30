#include "support/version.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using ApplicationVersion = hzn::version::NumberKind<1>;
using DocumentVersion = hzn::version::NumberKind<0>;
using hzn::version::number::Encode;

TEST(DocumentVersionTest, MinorPartHasTwoDigits) {
    EXPECT_EQ(str::as_wstring(DocumentVersion{12, 3}), L"12.03");
    EXPECT_EQ(str::as_wstring(DocumentVersion{12, 30}), L"12.30");
    EXPECT_EQ(str::as_wstring(DocumentVersion{0, 0}), L"0.00");
    EXPECT_EQ(str::as_wstring(DocumentVersion{4294967295u, 99}), L"4294967295.99");
}

TEST(DocumentVersionTest, EncodesToWhatItsTextReadsAs) {
    EXPECT_EQ(Encode({12, 3}), 12.03);
    EXPECT_EQ(Encode({1, 10}), 1.1);
    EXPECT_EQ(Encode({8, 29}), 8.29);
    EXPECT_EQ(Encode({0, 0}), 0);
    for (unsigned minorPart = 0; minorPart < 100; ++minorPart) {
        DocumentVersion const version{11, minorPart};
        EXPECT_EQ(Encode(version),
                  std::stod(std::string("11.") + char('0' + minorPart / 10) + char('0' + minorPart % 10)));
    }
}

TEST(DocumentVersionTest, EncodedVersionsKeepTheirOrder) {
    EXPECT_LT(Encode({11, 99}), Encode({12, 0}));
    EXPECT_LT(Encode({12, 3}), Encode({12, 20}));
    EXPECT_TRUE((DocumentVersion{12, 3}) < (DocumentVersion{12, 20}));
    EXPECT_TRUE((DocumentVersion{11, 99}) < (DocumentVersion{12, 0}));
}

TEST(ApplicationVersionTest, TextHasFourNumbers) {
    EXPECT_EQ(str::as_wstring(ApplicationVersion{11, 2, 0, 4711}), L"11.2.0.4711");
    EXPECT_EQ(str::as_wstring(ApplicationVersion{}), L"0.0.0.0");
}

TEST(ApplicationVersionTest, ReadsOneToFourNumbers) {
    struct Case {
        wchar_t const* text;
        ApplicationVersion version;
    };
    Case const cases[] = {
        {L"11", {11, 0, 0, 0}},
        {L"11.2", {11, 2, 0, 0}},
        {L"11.2.3", {11, 2, 3, 0}},
        {L"11.2.0.4711", {11, 2, 0, 4711}},
        {L"011.002.0000000000000.4294967295", {11, 2, 0, 4294967295u}},
    };
    for (Case const& c : cases) {
        ApplicationVersion version{9, 9, 9, 9};
        EXPECT_FALSE(str::from_wstring(c.text, version).IsError()) << c.text;
        EXPECT_EQ(version, c.version) << c.text;
    }
}

TEST(ApplicationVersionTest, RefusesOtherTextAndKeepsTheValue) {
    ApplicationVersion version{9, 9, 9, 9};
    for (wchar_t const* text : {L"", L".", L"11.", L".2", L"11..2", L"1.2.3.4.5", L"1.2.3.4.", L" 1", L"1 .2", L"-1",
                                L"+1", L"1,2", L"v1", L"1.2b", L"\u0661"}) {
        EXPECT_EQ(str::from_wstring(text, version).AsWString(), HznError::syntax(text).AsWString()) << text;
    }
    using htl::Convert_error_status;
    EXPECT_EQ(
        str::from_wstring(L"1.4294967296", version).AsWString(),
        Convert_error_status::OutOfRangeStatus(L"1.4294967296", Convert_error_status::WholeNumberString()).AsWString());
    EXPECT_EQ(version, (ApplicationVersion{9, 9, 9, 9}));
}

TEST(ApplicationVersionTest, OrderIsFromTheFirstNumberOn) {
    EXPECT_TRUE((ApplicationVersion{11, 2, 0, 4711}) < (ApplicationVersion{11, 10, 0, 0}));
    EXPECT_TRUE((ApplicationVersion{11, 2, 0, 1}) < (ApplicationVersion{11, 2, 1, 0}));
}

TEST(CurrentVersionTest, IsWhatTheApplicationSet) {
    hzn::version::Record const before = hzn::version::Current();
    EXPECT_EQ(before.application, ApplicationVersion());
    hzn::version::SetCurrent({{11, 2, 0, 4711}});
    EXPECT_EQ(hzn::version::Current().application, (ApplicationVersion{11, 2, 0, 4711}));
    hzn::version::SetCurrent(before);
    EXPECT_EQ(hzn::version::Current().application, ApplicationVersion());
}

} // namespace
