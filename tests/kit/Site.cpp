#include "tests/kit/Site.h"

namespace site {

void PointModule(zo::kit::Kit& kit) {
    kit.Record<Point>("Point", {.attributes = true}).Field<&Point::x>("X", L"X").Field<&Point::y>("Y", L"Y");
}

void InstrumentModule(zo::kit::Kit& kit) {
    kit.Enum<Method>(methods);
    kit.Record<Instrument>("Instrument")
        .Field<&Instrument::channel>("Channel", L"Channel")
        .Field<&Instrument::offset>("Offset", L"Offset")
        .Field<&Instrument::serial>("Serial", L"Serial")
        .Field<&Instrument::reference>("Reference", L"Reference")
        .Field<&Instrument::color>("Color", L"Color")
        .Field<&Instrument::gain>("Gain", L"Gain")
        .Field<&Instrument::reading>("Reading", L"Reading", {.unit = zo::kit::Kind::Stress})
        .Field<&Instrument::taken>("Taken", L"Taken")
        .Field<&Instrument::mask>("Mask", L"Mask")
        .Field<&Instrument::calibrated>("Calibrated", L"Calibrated")
        .Field<&Instrument::maker>("Maker", L"Maker")
        .Field<&Instrument::note>("Note", L"Note")
        .Field<&Instrument::parameter>("Parameter", L"Parameter")
        .Field<&Instrument::method>("Method", L"Method");
}

KitTest::KitTest() : registry(new zo::ZORegistry), previous(zo::ZORegistry::SetInstance(registry.get())) {}

KitTest::~KitTest() { zo::ZORegistry::SetInstance(previous); }

void KitTest::Register(std::vector<zo::kit::Module> const& modules) {
    zo::kit::Report const report = zo::kit::Register(modules);
    ASSERT_TRUE(report.IsClean()) << str::as_cstring(report.Text());
}

std::wstring KitTest::Save() {
    std::wstring text;
    EXPECT_TRUE(Succeeds(zo::xml::StringWrite(text, {1, 0})));
    return text;
}

std::wstring KitTest::Body() {
    std::wstring const text = Save();
    std::size_t const begin = text.find(L"<HZNData ");
    std::size_t const open = text.find(L'>', begin);
    std::size_t const close = text.rfind(L"</HZNData>");
    if (begin == text.npos || close == text.npos) return L"";
    std::wstring body;
    std::wstring blanks;
    for (std::size_t i = open + 1; i < close; ++i) {
        if (text[i] == L' ' || text[i] == L'\n') {
            blanks += text[i];
            continue;
        }
        // Blanks between two tags are the layout's.
        if (!(text[i] == L'<' && (body.empty() || body.back() == L'>'))) body += blanks;
        blanks.clear();
        body += text[i];
    }
    return body;
}

void KitTest::Load(std::wstring const& document) {
    std::vector<htl::status> errors;
    EXPECT_TRUE(Succeeds(zo::xml::StringRead(document, errors, {}, zo::xml::impl::UnknownAreErrors())));
    for (htl::status const& error : errors) ADD_FAILURE() << str::as_cstring(error.AsWString());
}

std::wstring KitTest::Document(std::wstring const& body) {
    return L"<?xml version=\"1.0\" encoding=\"UTF-16\"?><HZNData Version=\"1.00\" AppVersion=\"0.0.0.0\">" + body +
           L"</HZNData>";
}

std::wstring TextOf(zo::H const& node) {
    if (!node) return L"<no node>";
    std::wstring text;
    if (htl::status const failure = node->Get(text); failure.IsError()) return L"<" + failure.AsWString() + L">";
    return text;
}

std::wstring TextOf(std::string const& name) { return TextOf(zo::Find(name)); }

testing::AssertionResult Succeeds(htl::status const& result) {
    if (!result.IsError()) return testing::AssertionSuccess();
    return testing::AssertionFailure() << str::as_cstring(result.AsWString());
}

testing::AssertionResult FailsAs(htl::status const& failure, htl::status const& expected) {
    if (failure.IsError() == expected.IsError() && failure.AsWString() == expected.AsWString())
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "{" << str::as_cstring(failure.AsWString()) << "} and not {"
                                       << str::as_cstring(expected.AsWString()) << "}";
}

meta::MetaPersistTraits PersistOf(std::string const& name) {
    zo::IZO const* const node = zo::GetTemplate(name);
    return node ? node->GetPersistTraits() : meta::MetaPersistTraits();
}

} // namespace site
