// The splitters, and the regular expressions that say what they have to give. The expressions themselves recurse once
// for each character in the standard library and bring the stack down on long text, so they stay here, as the judge of
// short texts.
#include "support/split.h"

#if defined(__GNUC__) && !defined(__clang__)
// With sanitizers switched on the compiler sees uninitialised members in the library's automaton that are none.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

#include <random>
#include <regex>

#include <gtest/gtest.h>

namespace {

using Views = std::vector<std::wstring_view>;

Views Fields(std::wstring_view text, str::FieldSyntax const& syntax = {}) {
    Views out = {L"stale"};
    str::SplitFields(out, text, syntax);
    return out;
}

Views Components(std::wstring_view text, std::wstring_view separators) {
    Views out = {L"stale"};
    str::SplitComponents(out, text, separators);
    return out;
}

std::wstring Escaped(std::wstring_view characters) {
    std::wstring out;
    for (wchar_t const c : characters) (out += L'\\') += c;
    return out;
}

struct FieldExpressions {
    explicit FieldExpressions(str::FieldSyntax const& syntax) {
        std::wstring const s = Escaped({&syntax.separator, 1});
        std::wstring const o = Escaped({&syntax.open, 1});
        std::wstring const q = Escaped({&syntax.close, 1});
        std::wstring const backslash = L"\\\\";
        std::wstring const escaped = backslash + L"(.)";
        std::wstring const quoted = o + L"((" + escaped + L"|[^" + q + L"])*)" + q;
        std::wstring const plain = L"[^" + s + backslash + L"]";
        std::wstring const start = L"(?:^|" + s + L")";
        field = start + L"((?:" + quoted + L"|" + escaped + L"|" + plain + L")*)";
        quotes = quoted;
        escapes = escaped;
    }

    std::vector<std::wstring> Split(std::wstring const& text) const {
        std::vector<std::wstring> out;
        for (std::wsregex_iterator at(text.begin(), text.end(), field), end; at != end; ++at) out.push_back((*at)[1]);
        return out;
    }
    std::wstring Strip(std::wstring const& text) const {
        return std::regex_replace(std::regex_replace(text, quotes, L"$1"), escapes, L"$1");
    }

    std::wregex field;
    std::wregex quotes;
    std::wregex escapes;
};

// All texts over the alphabet up to a length, then random ones that are longer.
template <class C, class F>
void ForTexts(std::basic_string<C> const& alphabet, std::size_t allUpTo, F&& check) {
    std::vector<std::basic_string<C>> texts = {{}};
    for (std::size_t i = 0; i < texts.size(); ++i) {
        check(texts[i]);
        if (texts[i].size() == allUpTo) continue;
        for (C const c : alphabet) texts.push_back(texts[i] + c);
    }
    std::mt19937 random(20); // the same texts in every run
    for (int i = 0; i < 3000; ++i) {
        std::basic_string<C> text(allUpTo + random() % 12, C());
        for (C& c : text) c = alphabet[random() % alphabet.size()];
        check(text);
    }
}

} // namespace

TEST(SplitTest, ComponentsCollapseRunsOfSeparators) {
    EXPECT_EQ(Components(L"Soils[2].Name", L".[]"), (Views{L"Soils", L"2", L"Name"}));
    EXPECT_EQ(Components(L"[A_].B", L"[]."), (Views{L"A_", L"B"}));
    EXPECT_EQ(Components(L"..a..", L"."), (Views{L"a"}));
    EXPECT_EQ(Components(L"", L"."), Views{});
    EXPECT_EQ(Components(L"...", L"."), Views{});
    EXPECT_EQ(Components(L"a.b", L""), Views{L"a.b"});
}

TEST(SplitTest, NarrowComponentsAreCutAlike) {
    std::vector<std::string_view> out;
    str::SplitComponents(out, "Project.Points.[].X", ".");
    EXPECT_EQ(out, (std::vector<std::string_view>{"Project", "Points", "[]", "X"}));
}

TEST(SplitTest, ComponentsAgreeWithTheirExpression) {
    std::regex const narrow("(?:^|[\\[\\]\\.]+)([^\\[\\]\\.]+)");
    std::wregex const wide(L"(?:^|[\\[\\]\\.]+)([^\\[\\]\\.]+)");
    ForTexts(std::string("ab.[]"), 5, [&](std::string const& text) {
        std::vector<std::string> expected;
        for (std::sregex_iterator at(text.begin(), text.end(), narrow), end; at != end; ++at)
            expected.push_back((*at)[1]);
        std::vector<std::string_view> out;
        str::SplitComponents(out, text, "[].");
        ASSERT_EQ(std::vector<std::string>(out.begin(), out.end()), expected) << text;

        std::wstring const wideText(text.begin(), text.end());
        std::vector<std::wstring> wideExpected;
        for (std::wsregex_iterator at(wideText.begin(), wideText.end(), wide), end; at != end; ++at)
            wideExpected.push_back((*at)[1]);
        auto const wideOut = Components(wideText, L"[].");
        ASSERT_EQ(std::vector<std::wstring>(wideOut.begin(), wideOut.end()), wideExpected) << text;
    });
}

TEST(SplitTest, FieldsKeepEmptyOnes) {
    EXPECT_EQ(Fields(L"SourceTag,DestTag,IsDynamic"), (Views{L"SourceTag", L"DestTag", L"IsDynamic"}));
    EXPECT_EQ(Fields(L""), Views{L""});
    EXPECT_EQ(Fields(L",a"), (Views{L"", L"a"}));
    EXPECT_EQ(Fields(L"a,,"), (Views{L"a", L"", L""}));
}

TEST(SplitTest, SeparatorsInQuotesAndBehindBackslashesDoNotCount) {
    EXPECT_EQ(Fields(L"\"a,b\",c"), (Views{L"\"a,b\"", L"c"}));
    EXPECT_EQ(Fields(L"a\\,b,c"), (Views{L"a\\,b", L"c"}));
    EXPECT_EQ(Fields(L"\"a\\\",b\",c"), (Views{L"\"a\\\",b\"", L"c"}));
    EXPECT_EQ(Fields(L"\"a,b"), (Views{L"\"a", L"b"}));
    EXPECT_EQ(Fields(L"{a,b},c", {L',', L'{', L'}'}), (Views{L"{a,b}", L"c"}));
}

TEST(SplitTest, BackslashWithNothingToEscapeEndsTheField) {
    EXPECT_EQ(Fields(L"a\\"), (Views{L"a"}));
    EXPECT_EQ(Fields(L"a\\\nlost,b"), (Views{L"a", L"b"}));
}

TEST(SplitTest, StrippingTakesQuotesThenEscapes) {
    EXPECT_EQ(str::StripField(L"\"a,b\""), L"a,b");
    EXPECT_EQ(str::StripField(L"a\\,b"), L"a,b");
    EXPECT_EQ(str::StripField(L"\"a\\\"b\""), L"a\"b");
    EXPECT_EQ(str::StripField(L"\\\\"), L"\\");
    EXPECT_EQ(str::StripField(L"plain"), L"plain");
    EXPECT_EQ(str::StripField(L"\"open"), L"\"open");
    EXPECT_EQ(str::StripField(L""), L"");
}

TEST(SplitTest, FieldsAgreeWithTheirExpressions) {
    for (str::FieldSyntax const& syntax : {str::FieldSyntax{}, str::FieldSyntax{L';', L'(', L')'}}) {
        FieldExpressions const expressions(syntax);
        std::wstring alphabet = {L'a', L'\\', L'\n', syntax.separator, syntax.open};
        if (syntax.close != syntax.open) alphabet += syntax.close;
        ForTexts(alphabet, 5, [&](std::wstring const& text) {
            auto const fields = Fields(text, syntax);
            ASSERT_EQ(std::vector<std::wstring>(fields.begin(), fields.end()), expressions.Split(text))
                << testing::PrintToString(text);
            ASSERT_EQ(str::StripField(text, syntax), expressions.Strip(text)) << testing::PrintToString(text);
        });
    }
}

TEST(SplitTest, LongTextsTakeNoStackAndLinearTime) {
    std::wstring const value(1000000, L'x');
    EXPECT_EQ(Fields(value + L"," + value).size(), 2u);
    EXPECT_EQ(Fields(L"\"" + value + L",\"," + value).size(), 2u);
    std::wstring quotes;
    for (int i = 0; i < 300000; ++i) quotes += L"\\\"(";
    EXPECT_EQ(Fields(quotes, {L',', L'(', L')'}).size(), 1u);
    EXPECT_EQ(str::StripField(quotes, {L',', L'(', L')'}).size(), 600000u);
}
