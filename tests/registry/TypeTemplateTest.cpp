// Templates of types, and the checks of traits at registration.
#include "tests/registry/Rows.h"

#include "support/diag.h"

namespace {

using rows::H;
using rows::IZO;

struct Layer {};

class TypeTemplateTest : public rows::RegistryTest {};

TEST_F(TypeTemplateTest, AnUnknownTypeHasNoNodeAndAskingAddsNone) {
    EXPECT_EQ(zo::ZOTypeTemplate::Lookup(typeid(Layer)), nullptr);
    EXPECT_EQ(zo::ZOTypeTemplate::Lookup(typeid(Layer)), nullptr);
    H const node = registry.AddPlain("Layer", L"");
    zo::ZOTypeTemplate::Register(typeid(Layer), node);
    EXPECT_EQ(zo::ZOTypeTemplate::Lookup(typeid(Layer)), node.get());
}

TEST_F(TypeTemplateTest, TheFirstRegistrationWins) {
    H const first = registry.AddPlain("First", L""), second = registry.AddPlain("Second", L"");
    zo::ZOTypeTemplate::Register(typeid(Layer), first);
    zo::ZOTypeTemplate::Register(typeid(Layer), second);
    EXPECT_EQ(zo::ZOTypeTemplate::Lookup(typeid(Layer)), first.get());
}

TEST_F(TypeTemplateTest, ARowOfAnotherTypeReportsTheRegisteredOneFromThenOn) {
    H const number = embankment::ValuePrototype<int>(meta::AtomicTraits<int>());
    registry.Add("Number", number, L"", meta::AtomicTraits<int>());
    H const second = embankment::ValuePrototype<int>(meta::AtomicTraits<int>());
    registry.Add("Second", second, L"", meta::AtomicTraits<int>());
    ASSERT_EQ(zo::DataTraits(1).TypeName(), "int");
    zo::ZOTypeTemplate::Register(typeid(embankment::Drainage), number);
    EXPECT_EQ(zo::DataTraits(1).TypeName(), "embankment::Drainage");
    ASSERT_NE(zo::DataTraits(1).AsAtomic(), nullptr);
    int value = 5;
    zo::DataTraits(1).AsAtomic()->setDefault(&value);
    EXPECT_EQ(value, 0) << "all else is as it was";
    EXPECT_EQ(zo::DataTraits(2).TypeName(), "int");
    EXPECT_EQ(meta::AtomicTraits<int>().TypeName(), "int") << "the shared record is not touched";
}

TEST_F(TypeTemplateTest, StructuresAndArraysKeepTheirKind) {
    H const structure = registry.AddPlain("Structure", L""), array = registry.AddArray("Array", L"");
    zo::ZOTypeTemplate::Register(typeid(Layer), structure);
    zo::ZOTypeTemplate::Register(typeid(std::vector<int>), array);
    EXPECT_NE(zo::DataTraits(1).AsStructure(), nullptr);
    EXPECT_NE(zo::DataTraits(2).AsArray(), nullptr);
    EXPECT_EQ(*zo::DataTraits(1).Descriptor()->type, typeid(Layer));
    EXPECT_EQ(*zo::DataTraits(2).Descriptor()->type, typeid(std::vector<int>));
}

TEST_F(TypeTemplateTest, ANodeWithoutRowIsNotedAndNotFound) {
    H const loose(new rows::Plain), known = registry.AddPlain("Known", L"");
    zo::ZOTypeTemplate::Register(typeid(Layer), loose);
    EXPECT_EQ(zo::ZOTypeTemplate::Lookup(typeid(Layer)), nullptr);
    zo::ZOTypeTemplate::Register(typeid(Layer), known);
    EXPECT_EQ(zo::ZOTypeTemplate::Lookup(typeid(Layer)), nullptr) << "the first registration won";
}

TEST_F(TypeTemplateTest, ARowWithoutTraitsStaysWithoutThem) {
    H const node(new rows::Plain);
    registry.Add("Bare", node, L"", {});
    zo::ZOTypeTemplate::Register(typeid(Layer), node);
    EXPECT_FALSE(zo::DataTraits(1));
    EXPECT_EQ(zo::ZOTypeTemplate::Lookup(typeid(Layer)), node.get());
}

TEST_F(TypeTemplateTest, TemplatesBelongToTheirRegistry) {
    zo::ZOTypeTemplate::Register(typeid(Layer), registry.AddPlain("Layer", L""));
    rows::OwnRegistry const other;
    EXPECT_EQ(zo::ZOTypeTemplate::Lookup(typeid(Layer)), nullptr);
}

/// Collects what is posted while it lives, with the check of registered types on.
class Collector final : public hzn::IEventSink {
public:
    Collector() : previous(hzn::eventsink::SetInstance(this)) {
        hzn::diag::SetLogged(hzn::diag::DeclareCategoryMask("ZO.Registry"), hzn::diag::Severity::Info);
        meta::bValidateRegistry = true;
    }
    ~Collector() {
        meta::bValidateRegistry = false;
        hzn::diag::SetLogged(0, hzn::diag::Severity::Info);
        hzn::eventsink::SetInstance(previous);
    }
    void Post(hzn::diag::Severity::Type severity, int, std::wstring const& text) override {
        EXPECT_EQ(severity, 3);
        texts.push_back(text);
    }
    std::vector<std::wstring> texts;

private:
    hzn::IEventSink* previous;
};

wchar_t const* const clash =
    L"Invalid typename in data traits. Rename ZO so its name/tag is not the same as the type.\n";

meta::MetaDataTraits LayerTraits() {
    static meta::MetaDataTraits const traits = meta::StructureBuilder<embankment::Point>().Build();
    return traits;
}

TEST_F(TypeTemplateTest, AStructureWhoseTypeNameIsAnothersNameIsLogged) {
    Collector const sink;
    registry.AddPlain("embankment::Point", L"");
    zo::ValidateMetaData(typeid(embankment::Point), LayerTraits());
    EXPECT_EQ(sink.texts, std::vector<std::wstring>{clash});
}

TEST_F(TypeTemplateTest, AStructureWhoseTypeNameIsAnothersTagIsLogged) {
    Collector const sink;
    registry.AddPlain("Point", L"embankment::Point");
    zo::ValidateMetaData(typeid(embankment::Point), LayerTraits());
    EXPECT_EQ(sink.texts, std::vector<std::wstring>{clash});
}

TEST_F(TypeTemplateTest, ARowOfTheSameTypeIsNoClash) {
    Collector const sink;
    registry.Add("embankment::Point", H(new rows::Plain), L"embankment::Point", LayerTraits());
    zo::ValidateMetaData(typeid(embankment::Point), LayerTraits());
    EXPECT_TRUE(sink.texts.empty());
}

TEST_F(TypeTemplateTest, OnlyStructuresCanClash) {
    Collector const sink;
    registry.AddPlain("int", L"int");
    registry.AddPlain("embankment::Point", L"");
    zo::ValidateMetaData(typeid(int), meta::AtomicTraits<int>());
    zo::ValidateMetaData(typeid(embankment::Point), rows::ArrayKindTraits());
    zo::ValidateMetaData(typeid(embankment::Point), {});
    EXPECT_TRUE(sink.texts.empty());
}

TEST_F(TypeTemplateTest, ClashesAreLoggedOnlyWhereRegistriesAreValidated) {
    Collector const sink;
    meta::bValidateRegistry = false;
    registry.AddPlain("embankment::Point", L"");
    zo::ValidateMetaData(typeid(embankment::Point), LayerTraits());
    EXPECT_TRUE(sink.texts.empty());
}

TEST_F(TypeTemplateTest, AConversionOfWholeNumbersIsTriedOnce) {
    static int calls;
    calls = 0;
    auto record = std::make_shared<meta::MetaTraitsAtomic>(meta::MakeAtomic<int>(0, std::nullopt));
    record->convert = [](void const* value, void* out) {
        EXPECT_EQ(*static_cast<int const*>(value), 0);
        EXPECT_EQ(out, nullptr);
        ++calls;
    };
    meta::MetaDataTraits const traits{std::shared_ptr<meta::MetaTraits const>(record)};
    ASSERT_EQ(*record->type, typeid(int));
    zo::ValidateMetaData(typeid(embankment::Drainage), traits);
    EXPECT_EQ(calls, 1);
    zo::ValidateMetaData(typeid(int), traits);
    EXPECT_EQ(calls, 1) << "nothing to convert";
    zo::ValidateMetaData(typeid(embankment::Drainage), meta::AtomicTraits<int>());
    EXPECT_EQ(calls, 1) << "no conversion";
}

} // namespace
