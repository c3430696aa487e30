#include "support/typename.h"
#include "support/int64.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <typeinfo>
#include <vector>

enum class DataParamType : std::int32_t;

namespace embankment {

struct Soil {};
enum class Shape { Round };
template <class T>
struct Layer {};

} // namespace embankment

namespace {

using meta::TypeName;

TEST(TypeNameTest, ValueTypesHaveTheirSourceNames) {
    EXPECT_EQ(TypeName(typeid(unsigned char)), "unsigned char");
    EXPECT_EQ(TypeName(typeid(int)), "int");
    EXPECT_EQ(TypeName(typeid(unsigned)), "unsigned int");
    EXPECT_EQ(TypeName(typeid(long)), "long");
    EXPECT_EQ(TypeName(typeid(unsigned long)), "unsigned long");
    EXPECT_EQ(TypeName(typeid(float)), "float");
    EXPECT_EQ(TypeName(typeid(double)), "double");
    EXPECT_EQ(TypeName(typeid(htl::Int64)), "__int64");
    EXPECT_EQ(TypeName(typeid(htl::UInt64)), "unsigned __int64");
    EXPECT_EQ(TypeName(typeid(bool)), "bool");
    EXPECT_EQ(TypeName(typeid(std::string)), "std::string");
    EXPECT_EQ(TypeName(typeid(std::wstring)), "std::wstring");
    EXPECT_EQ(TypeName(typeid(DataParamType)), "DataParamType");
    EXPECT_EQ(TypeName(typeid(void)), "void");
}

TEST(TypeNameTest, OwnTypesHaveTheirNamespacesAndNoKeyword) {
    EXPECT_EQ(TypeName(typeid(embankment::Soil)), "embankment::Soil");
    EXPECT_EQ(TypeName(typeid(embankment::Shape)), "embankment::Shape");
    EXPECT_EQ(TypeName(typeid(embankment::Layer<embankment::Soil>)), "embankment::Layer<embankment::Soil>");
}

TEST(TypeNameTest, LibraryTypesDoNotShowTheirInnerNamespace) {
    std::string const& name = TypeName(typeid(std::vector<std::string>));
    EXPECT_EQ(name.rfind("std::vector<std::basic_string<char", 0), 0u) << name;
    EXPECT_EQ(name.find("__cxx11"), std::string::npos) << name;
}

TEST(TypeNameTest, ATextStaysWhereItIs) {
    std::string const* const first = &TypeName(typeid(embankment::Soil));
    EXPECT_EQ(&TypeName(typeid(embankment::Soil)), first);
}

template <int N>
struct Numbered {};

/// A type of a module that may be unloaded.
class LoadedType : public std::type_info {
public:
    explicit LoadedType(char const* name) : std::type_info(name) {}
};

TEST(TypeNameTest, ATextStaysWhenTheTypeGoesAwayWithItsModule) {
    auto name = std::make_unique<std::array<char, 20>>(std::array<char, 20>{"N6module6AnchorE"});
    auto type = std::make_unique<LoadedType>(name->data());
    std::string const& text = TypeName(*type);
    EXPECT_EQ(text, "module::Anchor");
    name->fill('x'); // other data takes its place
    type.reset();
    name.reset();
    LoadedType const loadedAgain("N6module6AnchorE");
    EXPECT_EQ(&TypeName(loadedAgain), &text);
}

TEST(TypeNameTest, ThreadsMayAskAtTheSameTime) {
    std::vector<std::string const*> texts(8);
    {
        std::vector<std::jthread> threads;
        for (std::string const*& text : texts) {
            threads.emplace_back([&text] {
                for (int i = 0; i < 200; ++i) {
                    text = &TypeName(typeid(Numbered<1>));
                    (void)TypeName(typeid(Numbered<2>)); // the other entry of the table that threads race for
                }
            });
        }
    }
    for (std::string const* text : texts) EXPECT_EQ(text, texts[0]);
}

} // namespace
