// What a registration takes and what it leaves behind.
#include "tests/kit/Site.h"

#include <memory>
#include <thread>

namespace site {
namespace {

using zo::kit::Kit;
using zo::kit::Module;
using zo::kit::Report;

Point point{1, 2};
void Origin(Kit& kit) {
    kit.Branch<Point>("Origin", L"Origin", [] { return &point; });
}

class RegisterTest : public KitTest {};

TEST_F(RegisterTest, TakesFunctionsLambdasAndNamedModules) {
    double datum = 3;
    Register({&PointModule, {"Origin", &Origin}, [&datum](Kit& kit) {
                  kit.Branch<double>("Datum", L"Datum", [&datum] { return &datum; });
              }});
    EXPECT_EQ(TextOf("Origin.X"), L"1");
    EXPECT_EQ(TextOf("Datum"), L"3");
}

TEST_F(RegisterTest, OrderOfModulesDoesNotMatter) {
    Register({&Origin, &PointModule});
    EXPECT_EQ(TextOf("Origin.Y"), L"2");
}

TEST_F(RegisterTest, MayBeCalledAgainWithOtherModules) {
    Register({&PointModule, &Origin});
    double datum = 3;
    Register({[&datum](Kit& kit) { kit.Branch<double>("Datum", L"Datum", [&datum] { return &datum; }); }});
    EXPECT_EQ(TextOf("Origin.X"), L"1");
    EXPECT_EQ(TextOf("Datum"), L"3");
    EXPECT_EQ(Body(), L"<Datum>3</Datum><Origin X=\"1\" Y=\"2\"/>");
}

TEST_F(RegisterTest, NothingRefersToTheModulesAfterwards) {
    auto const words = std::make_unique<std::vector<meta::EnumWord>>(methods.begin(), methods.end());
    static Instrument instrument;
    instrument = Instrument();
    {
        std::vector<Module> modules;
        auto const limit = std::make_shared<double>(5.0);
        std::weak_ptr<double> const alive = limit;
        modules.emplace_back([limit, &words](Kit& kit) {
            kit.Enum<Method>(*words);
            kit.Record<Instrument>("Instrument")
                .Field<&Instrument::reading>("Reading", L"Reading", {.max = *limit})
                .Field<&Instrument::method>("Method", L"Method");
            kit.Branch<Instrument>("Instrument", L"Instrument", [] { return &instrument; });
        });
        Register(modules);
    }
    words->clear();
    EXPECT_EQ(zo::Find("Instrument.Reading")->Set(6).AsWString(), L"6 is more than 5.");
    EXPECT_TRUE(Succeeds(zo::Find("Instrument.Method")->Set(L"Auger")));
}

TEST_F(RegisterTest, RegistriesKeepTheirOwnDescriptions) {
    struct Probe {
        double depth = 0;
        std::vector<double> values;
    };
    static Probe probe;
    static double limit;
    auto const declare = [](Kit& kit) {
        kit.Record<Probe>("Probe")
            .Field<&Probe::depth>("Depth", L"Depth", {.dflt = limit - 1, .max = limit})
            .Array<&Probe::values>("Values", L"Values", {.dflt = limit});
        kit.Branch<Probe>("Probe", L"Probe", [] { return &probe; });
    };
    limit = 5;
    Register({declare});
    htl::handle<zo::ZORegistry> const other(new zo::ZORegistry);
    zo::ZORegistry::SetInstance(other.get());
    limit = 9;
    Register({declare});

    zo::Find("Probe")->Clear();
    EXPECT_EQ(probe.depth, 8);
    zo::ZORegistry::SetInstance(registry.get());
    zo::Find("Probe")->Clear();
    EXPECT_EQ(probe.depth, 4);
    EXPECT_TRUE(zo::Find("Probe.Depth")->Set(6).IsError());
    ASSERT_TRUE(Succeeds(zo::Find("Probe.Values")->SetLength(1)));
    EXPECT_EQ(probe.values, (std::vector<double>{5}));
    EXPECT_EQ(zo::DataTraits("Probe.Values").AsArray()->elementTraits().Descriptor(),
              zo::DataTraits("Probe.Values.[]").Descriptor());
}

TEST_F(RegisterTest, ThreadsRegisterAndWorkSideBySide) {
    struct Gauge {
        double value = 2;
        std::vector<double> series;
        std::map<int, int> counts;
    };
    auto const work = [](bool& good) {
        htl::handle<zo::ZORegistry> const own(new zo::ZORegistry);
        zo::ZORegistry* const before = zo::ZORegistry::SetInstance(own.get());
        Gauge gauge;
        Report const report = zo::kit::Register({[&gauge](Kit& kit) {
            kit.Record<Gauge>("Gauge")
                .Field<&Gauge::value>("Value", L"Value")
                .Array<&Gauge::series>("Series", L"Series")
                .Map<&Gauge::counts>("Counts", L"Counts[Count]");
            kit.Branch<Gauge>("Gauge", L"Gauge", [&gauge] { return &gauge; });
        }});
        good = report.IsClean();
        for (int round = 0; round < 50 && good; ++round) {
            gauge.value = round;
            gauge.series.assign(static_cast<std::size_t>(round), 0.5);
            gauge.counts = {{round, 1}, {round + 1, 2}};
            auto const series = gauge.series;
            auto const counts = gauge.counts;
            std::wstring text;
            good = !zo::xml::StringWrite(text, {1, 0}).IsError();
            gauge = Gauge();
            std::vector<htl::status> errors;
            good = good && !zo::xml::StringRead(text, errors).IsError() && errors.empty() && gauge.value == round &&
                   gauge.series == series && gauge.counts == counts;
        }
        zo::ZORegistry::SetInstance(before);
    };
    bool first = false, second = false;
    std::thread other(work, std::ref(first));
    work(second);
    other.join();
    EXPECT_TRUE(first);
    EXPECT_TRUE(second);
}

TEST_F(RegisterTest, EmptyListIsClean) {
    EXPECT_TRUE(zo::kit::Register({}).IsClean());
    EXPECT_TRUE(registry->InitializationComplete());
}

TEST_F(RegisterTest, ReportNamesFileLineAndText) {
    Report const report{{{L"{X}: a tag is needed.", "soil.cpp", 12}, {L"second", "water.cpp", 3}}};
    EXPECT_EQ(report.Text(), L"soil.cpp:12: {X}: a tag is needed.\nwater.cpp:3: second\n");
}

} // namespace
} // namespace site
