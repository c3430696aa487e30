// What the tests of the kit share: a registry of their own, saving and loading, and the model of a site investigation.
#pragma once

#include <kit/kit.h>

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <vector>

enum class DataParamType : std::int32_t { None = 0, Cohesion = 7, Modulus = 9 };

namespace site {

enum class Method : unsigned char { Rotary = 1, Percussion = 2, Auger = 9 };
inline constexpr std::array methods{
    meta::EnumWord{1, L"Rotary", L"R", L"Rotary core"},
    meta::EnumWord{2, L"Percussion", L"P", L"Cable percussion"},
    meta::EnumWord{9, L"Auger", L"A", L"Hollow auger"},
};

/// In metres.
struct Point {
    double x = 0;
    double y = 0;

    bool operator==(Point const&) const = default;
};

/// One value of each type.
struct Instrument {
    unsigned char channel = 0;
    int offset = 0;
    unsigned serial = 0;
    long reference = 0;
    unsigned long color = 0;
    float gain = 0;
    double reading = 0;
    htl::Int64 taken = 0;
    htl::UInt64 mask = 0;
    bool calibrated = false;
    std::string maker;
    std::wstring note;
    DataParamType parameter{};
    Method method = Method::Rotary;

    bool operator==(Instrument const&) const = default;
};

void InstrumentModule(zo::kit::Kit& kit);
void PointModule(zo::kit::Kit& kit);

/// Each test has a registry of its own, current while the test runs.
class KitTest : public testing::Test {
protected:
    KitTest();
    ~KitTest() override;

    /// Registers and expects that all is in order.
    void Register(std::vector<zo::kit::Module> const& modules);
    /// The current registry as a document.
    static std::wstring Save();
    /// The document between the tags of its document element, without white space between tags.
    static std::wstring Body();
    /// Loads a document; expects that everything in it is known and fits.
    static void Load(std::wstring const& document);
    /// Puts `body` into a document element.
    static std::wstring Document(std::wstring const& body);

    htl::handle<zo::ZORegistry> registry;

private:
    zo::ZORegistry* previous;
};

/// The text of a value; a failure's text in "<>".
std::wstring TextOf(zo::H const& node);
std::wstring TextOf(std::string const& name);

testing::AssertionResult Succeeds(htl::status const& result);
testing::AssertionResult FailsAs(htl::status const& failure, htl::status const& expected);

/// How the row of a name is persisted.
meta::MetaPersistTraits PersistOf(std::string const& name);

} // namespace site
