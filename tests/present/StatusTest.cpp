// Failures of what people type: their numbers are in the units that people see.
#include "tests/present/Basin.h"

#include "Common/model/ZOAtomicData.h"
#include "Common/present/FormattedTraits.h"

#include <cmath>

/// A client's structure that holds a value or a function of place.
struct FnAttr {};

namespace basin {
namespace {

using htl::status;
using zo::SetPrettyPrintValue;

status const limits = status::FromText(L"12 is not between 0 and 60.5.");

class StatusTest : public BasinTest {
protected:
    /// Rewrites a failure as that of a write to the node.
    static status Rewritten(H const& node, status const& failure) {
        zo::ZOAcessWriteFormattedOutput::Function const none;
        std::wstring const text;
        return zo::ZOAcessWriteFormattedOutput(none, node.get(), 2, text).ConvertUnitsInStatusToVisible(failure);
    }
    static std::wstring Text(std::wstring const& message, std::string const& name = "Gauges.Length") {
        return Rewritten(Find(name), status::FromText(message)).AsWString();
    }
    /// Whether the very failure comes back.
    static bool IsTheSame(H const& node, status const& failure = limits) {
        return Rewritten(node, failure).Detail() == failure.Detail();
    }
    static bool IsTheSame(std::string const& name) { return IsTheSame(Find(name)); }
};

TEST_F(StatusTest, LimitsAreInVisibleUnits) {
    std::wstring const before = TextOf(Find("Marks[0].Level"));
    // 250 ft are 76.2 m.
    EXPECT_EQ(SetPrettyPrintValue(Find("Marks[0].Level"), L"250 ft").AsWString(),
              L"250 is not between 0 and 196.85039.");
    EXPECT_EQ(TextOf(Find("Marks[0].Level")), before);
    EXPECT_EQ(zo::SetAbbrevValue(Find("Marks[0].Level"), L"-1").AsWString(), L"-1 is not between 0 and 196.85039.");
}

TEST_F(StatusTest, LimitsOfAnAliasAreThoseOfItsSource) {
    EXPECT_EQ(SetPrettyPrintValue(Find("Sill"), L"250").AsWString(), L"250 is not between 0 and 196.85039.");
}

TEST_F(StatusTest, PlainWritesKeepTheirNumbers) {
    EXPECT_EQ(Find("Marks[0].Level")->Set(75.0).AsWString(), L"75 is not between 0 and 60.");
}

TEST_F(StatusTest, EveryNumberIsConvertedToEightDigits) {
    EXPECT_EQ(Text(L"12 is not between 0 and 60.5."), L"39.370079 is not between 0 and 198.49081.");
    EXPECT_EQ(Text(L"12"), L"39.370079");
    EXPECT_EQ(Text(L"-4.5e0 +12 3.048"), L"-14.76378 39.370079 10");
    EXPECT_EQ(Text(L".3048"), L"1");
    EXPECT_EQ(Text(L"304800000000"), L"1e+12");
}

TEST_F(StatusTest, DigitsInWordsAreNumbersToo) {
    EXPECT_EQ(Text(L"H3.048O"), L"H10O");
    EXPECT_EQ(Text(L"Points[12].X"), L"Points[39.370079].X");
    EXPECT_EQ(Text(L"3.048ft"), L"10ft");
}

TEST_F(StatusTest, APointBehindANumberStays) {
    EXPECT_EQ(Text(L"Not above 3.048. Not below 12."), L"Not above 10. Not below 39.370079.");
    EXPECT_EQ(Text(L"12.)"), L"39.370079.)");
    EXPECT_EQ(Text(L"12.."), L"39.370079..");
}

TEST_F(StatusTest, WhatIsNoNumberStays) {
    for (wchar_t const* text : {L"", L"Too much.", L"information", L"nan inf - + . , ex", L"a.b-c", L" \t\n ",
                                L"all%% of %s %n", L"\u00B2 \u0661"})
        EXPECT_EQ(Text(text), text);
    EXPECT_EQ(Text(L"%1 3.048%"), L"%3.2808399 10%");
}

TEST_F(StatusTest, AMessageWithoutNumbersComesBackEqual) {
    status const failure = status::FromText(L"Too much.");
    status const rewritten = Rewritten(Find("Gauges.Length"), failure);
    EXPECT_TRUE(FailsAs(rewritten, failure));
    EXPECT_NE(rewritten.Detail(), failure.Detail());
}

TEST_F(StatusTest, TheUndefinedValueIsNotConverted) {
    EXPECT_EQ(Text(L"1.7976931348623157e308 m"), L"1.7976931e+308 m");
}

TEST_F(StatusTest, NumbersBeyondAllUnitsStay) {
    EXPECT_EQ(Text(L"1e308"), L"1e308");          // 3e308 ft
    EXPECT_EQ(Text(L"1e999 3.048"), L"1e999 10"); // no double
}

TEST_F(StatusTest, LongMessagesTakeTheirTime) {
    std::wstring const digits(100000, L'9');
    std::wstring const signs(100000, L'-');
    EXPECT_EQ(Text(digits + signs), digits + signs);
}

TEST_F(StatusTest, SuccessStaysSuccess) { EXPECT_TRUE(Succeeds(Rewritten(Find("Gauges.Length"), status()))); }

TEST_F(StatusTest, TheSameUnitsLeaveTheFailure) {
    site.shown = metric;
    EXPECT_TRUE(IsTheSame("Gauges.Length"));
}

TEST_F(StatusTest, NoVisibleUnitsLeaveTheFailure) {
    site.shown = noUnits;
    EXPECT_TRUE(IsTheSame("Gauges.Length"));
}

TEST_F(StatusTest, NoKindLeavesTheFailure) {
    EXPECT_TRUE(IsTheSame("Gauges.Factor"));
    EXPECT_TRUE(IsTheSame("Marks[0].Cohesion")); // a parameter without a kind
}

TEST_F(StatusTest, OnlyDoublesAreRewritten) {
    EXPECT_TRUE(IsTheSame("Gauges.Span"));
    EXPECT_TRUE(IsTheSame("Gauges.Depth"));
    EXPECT_TRUE(IsTheSame("Gauges.Remark"));
    EXPECT_TRUE(IsTheSame("Gauges"));
    EXPECT_TRUE(IsTheSame(H()));
}

TEST_F(StatusTest, AFunctionOfPlaceIsRewritten) {
    auto record = std::make_shared<meta::MetaTraitsAtomic>(meta::MakeAtomic<double>(0, missing));
    record->type = &typeid(FnAttr);
    record->unitKind = [](void const*, zo::IZO const*) { return Kind::Length; };
    H const node(new zo::ZOAtomicData<double>(zo::IZO::npos, nullptr,
                                              meta::MetaDataTraits(std::shared_ptr<meta::MetaTraits const>(record))));
    EXPECT_EQ(Rewritten(node, limits).AsWString(), L"39.370079 is not between 0 and 198.49081.");
}

TEST_F(StatusTest, AParametersUnitsAreTaken) {
    RegisterParameters();
    site.shown = metric;
    EXPECT_EQ(Text(L"100 kPa", "Marks[0].Cohesion"), L"2088.5434 kPa");
    // No visible units for the parameter: those of the kind take no part.
    site.shownOfCohesion = noUnits;
    site.shown = imperial;
    EXPECT_TRUE(IsTheSame("Marks[0].Cohesion"));
}

TEST_F(StatusTest, NumbersHaveThePeoplesDecimalPoint) {
    Notation const comma(german);
    EXPECT_EQ(Text(L"3,048 is more than 1,5."), L"10 is more than 4,9212598.");
    EXPECT_EQ(Text(L"12, 12. 12"), L"39,370079, 39,370079. 39,370079");
    EXPECT_EQ(SetPrettyPrintValue(Find("Marks[0].Level"), L"250,5 ft").AsWString(),
              L"250,5 is not between 0 and 196,85039.");
}

TEST_F(StatusTest, NumbersOfClientsHaveAPointInEveryNotation) {
    Notation const comma(german);
    EXPECT_EQ(Text(L"3.048 is more than 1.5."), L"10 is more than 4,9212598.");
}

TEST_F(StatusTest, ThePlaceOfAFailureIsKept) {
    status const rewritten = Rewritten(Find("Gauges.Length"), limits.WithPlace("Level.cpp", 12));
    ASSERT_TRUE(rewritten.IsError());
    EXPECT_EQ(rewritten.Detail()->source, "Level.cpp");
    EXPECT_EQ(rewritten.Detail()->position, 12);
    EXPECT_EQ(rewritten.AsWString(), L"39.370079 is not between 0 and 198.49081.");
}

TEST_F(StatusTest, WhatWasTypedIsRepeatedAsItWasTyped) {
    EXPECT_TRUE(FailsAs(
        SetPrettyPrintValue(Find("Gauges.Length"), L"12 apples"),
        htl::Convert_error_status::InvalidCharStatus(L"12 apples", htl::Convert_error_status::FloatingPointString())));
    EXPECT_TRUE(FailsAs(
        SetPrettyPrintValue(Find("Gauges.Length"), L"9e999"),
        htl::Convert_error_status::OutOfRangeStatus(L"9e999", htl::Convert_error_status::FloatingPointString())));
    Notation const comma(german);
    EXPECT_TRUE(FailsAs(SetPrettyPrintValue(Find("Gauges.Length"), L"12.500"), htl::status(90013, L"12.500", L",")));
}

TEST_F(StatusTest, LimitsThatATypesOwnReadingNamesAreConverted) {
    auto record = std::make_shared<meta::MetaTraitsAtomic>(meta::MakeAtomic<double>(0, missing));
    record->unitKind = [](void const*, zo::IZO const*) { return Kind::Length; };
    record->fromWide = [](std::wstring const&, void*, int, zo::IZO const*) {
        return status::FromText(L"Not above 3.048.");
    };
    H const node(new zo::ZOAtomicData<double>(zo::IZO::npos, nullptr,
                                              meta::MetaDataTraits(std::shared_ptr<meta::MetaTraits const>(record))));
    EXPECT_EQ(SetPrettyPrintValue(node, L"20").AsWString(), L"Not above 10.");
}

using WriteTraitTest = BasinTest;

TEST_F(WriteTraitTest, TheFunctionIsGivenTheTextTheFormatAndTheNode) {
    std::wstring const text = L"typed";
    int format = 0;
    zo::IZO const* at = nullptr;
    std::wstring given;
    zo::ZOAcessWriteFormattedOutput::Function const write = [&](std::wstring const& in, void* value, int how,
                                                                zo::IZO const* node) {
        given = in;
        format = how;
        at = node;
        *static_cast<double*>(value) = 7;
        return status();
    };
    H const node = Find("Gauges.Length");
    zo::ZOAcessWriteFormattedOutput trait(write, node.get(), 1, text);
    EXPECT_TRUE(Succeeds(zo::impl::NodeAccess::CallValueTypeTrait(*node, trait)));
    EXPECT_EQ(given, text);
    EXPECT_EQ(format, 1);
    EXPECT_EQ(at, node.get());
    EXPECT_EQ(site.model.gauges.length, 7);
}

TEST_F(WriteTraitTest, WithoutAFunctionNothingIsSupported) {
    zo::ZOAcessWriteFormattedOutput::Function const none;
    zo::ZOAccessReadFormattedOutput::Function const noRead;
    std::wstring text = L"typed";
    H const node = Find("Gauges.Length");
    zo::ZOAcessWriteFormattedOutput write(none, node.get(), 1, text);
    zo::ZOAccessReadFormattedOutput read(noRead, 1, node.get(), text);
    EXPECT_TRUE(FailsAs(zo::impl::NodeAccess::CallValueTypeTrait(*node, write), zo::ZOError::not_supported("")));
    EXPECT_TRUE(FailsAs(zo::impl::NodeAccess::CallValueTypeTrait(*node, read), zo::ZOError::not_supported("")));
    EXPECT_EQ(text, L"typed");
}

TEST_F(WriteTraitTest, TheReadTraitLeavesTheValue) {
    std::wstring text;
    H const node = Find("Gauges.Length");
    meta::MetaDataTraits const traits = node->GetDataTraits();
    zo::ZOAccessReadFormattedOutput read(traits.AsAtomic()->toWide, 2, node.get(), text);
    EXPECT_TRUE(Succeeds(zo::impl::NodeAccess::CallValueTypeTrait(*node, read)));
    EXPECT_EQ(text, L"8.20209973753281");
    EXPECT_EQ(site.model.gauges.length, 2.5);
}

} // namespace
} // namespace basin
