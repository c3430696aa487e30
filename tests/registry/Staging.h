// What the tests of transactions work on: the embankment, with its monitoring and two slope trials.
#pragma once

#include "Common/model/ZOArray.h"
#include "Common/model/ZOAtomicData.h"
#include "Common/registry/Find.h"
#include "Common/registry/SetImpl.h"
#include "Common/registry/ZOJournal.h"
#include "Common/registry/ZOTransaction.h"
#include "Common/xml/Write.h"
#include "tests/fixtures/Embankment.h"
#include "tests/registry/Rows.h"

#include "support/describe.h"
#include "support/meta.h"

#include <limits>
#include <string>
#include <vector>

namespace staging {

using embankment::FailsAs;
using embankment::Succeeds;
using embankment::TextOf;
using meta::MetaDataTraits;
using meta::MetaPersistTraits;
using rows::NameOf;
using zo::H;
using zo::IZO;
using Transaction = htl::handle<zo::ZOTransaction>;

constexpr double missing = std::numeric_limits<double>::max();

/// A value that tells how often it was written, and refuses where it has a refusal.
struct Gauge {
    double value = 0;
    int writes = 0;
    htl::status refusal;
};

struct GaugeValue {
    Gauge* gauge;

    double GetData(IZO const*) const { return gauge->value; }
    htl::status SetData(IZO*, double const& value) const {
        ++gauge->writes;
        if (gauge->refusal.IsError()) return gauge->refusal;
        gauge->value = value;
        return {};
    }
};

/// What is measured in a borehole.
struct Borehole {
    double temperature = 12; // degrees Celsius
    int depth = 3;           // whole metres
    double friction = 30;    // degrees
    double ratio = 0.5;      // no unit
    std::wstring remark = L"dry";
};

struct Trial {
    double factor = 1;
    std::vector<double> slices;
};

inline MetaDataTraits NumberTraits() { return meta::AtomicTraits<double>(); }
inline MetaDataTraits NumbersTraits() {
    static MetaDataTraits const traits = meta::ArrayTraits<std::vector<double>>(NumberTraits);
    return traits;
}
template <class T, hzn::units::Kind::Type kind>
MetaDataTraits UnitTraits() {
    static MetaDataTraits const traits = meta::AtomicBuilder<T>().Units(kind).Build();
    return traits;
}

/// The embankment, and: `Level`, `Locked` and `Sealed`, gauges that count what is written to them; `Borehole` {
/// `Temperature`, `Depth`, `Friction`, `Ratio`, `Remark` }; `Trial` and `Final` { `Factor`, `Slices` [double] } with
/// `TrialNote` and `FinalNote` beside them; and `Site.Survey.Height`, whose parents are made. All but the last one are
/// not persisted.
class StagingTest : public testing::Test {
protected:
    StagingTest() : embankment([this](embankment::Embankment& plan) { AddRows_(plan); }) {
        transaction = embankment.registry->CreateTransaction();
    }
    ~StagingTest() override { transaction.release(); }

    H Staged(std::string const& name) const { return transaction->Find(name); }
    template <class V>
    void Stage(std::string const& name, V const& value) const {
        H const node = Staged(name);
        ASSERT_TRUE(node) << name;
        EXPECT_TRUE(Succeeds(node->Set(value))) << name;
    }
    void StageLength(std::string const& name, std::size_t length) const {
        H const node = Staged(name);
        ASSERT_TRUE(node) << name;
        EXPECT_TRUE(Succeeds(node->SetLength(length))) << name;
    }
    htl::status Commit() const { return transaction->Commit("", ""); }

    Gauge level, locked, sealed;
    Borehole borehole;
    Trial trial, finalTrial;
    double trialNote = 0, finalNote = 0, surveyHeight = 0;
    embankment::Embankment embankment;
    embankment::Model& model = embankment.model;
    Transaction transaction;

private:
    static H Prototype_(Gauge& gauge) {
        return H(new zo::ZOAtomicCustom<GaugeValue, zo::ZOAccessDataVMT<double>>(IZO::npos, nullptr, NumberTraits(),
                                                                                 GaugeValue{&gauge}));
    }
    static MetaPersistTraits Unsaved_(wchar_t const* tag) { return {MetaPersistTraits::No, tag}; }
    void AddRows_(embankment::Embankment& plan) {
        using namespace embankment;
        using hzn::units::Kind;
        using meta::OffsetOf;
        locked.refusal = htl::status::FromText(L"The gauge is locked.");
        sealed.refusal = htl::status::FromText(L"The gauge is sealed.");
        plan.Row("Level", Prototype_(level), Unsaved_(L"Level"), NumberTraits());
        plan.Row("Locked", Prototype_(locked), Unsaved_(L"Locked"), NumberTraits());
        plan.Row("Sealed", Prototype_(sealed), Unsaved_(L"Sealed"), NumberTraits());

        MetaDataTraits const temperature = UnitTraits<double, Kind::Temperature>();
        MetaDataTraits const depth = UnitTraits<int, Kind::Length>();
        MetaDataTraits const friction = UnitTraits<double, Kind::Angle>();
        plan.Row("Borehole", StructPrototype(rows::StructureTraits()), Unsaved_(L"Borehole"), rows::StructureTraits(),
                 &borehole);
        plan.Row("Borehole.Temperature", ValuePrototype<double>(temperature, OffsetOf(&Borehole::temperature)),
                 Unsaved_(L"Temperature"), temperature);
        plan.Row("Borehole.Depth", ValuePrototype<int>(depth, OffsetOf(&Borehole::depth)), Unsaved_(L"Depth"), depth);
        plan.Row("Borehole.Friction", ValuePrototype<double>(friction, OffsetOf(&Borehole::friction)),
                 Unsaved_(L"Friction"), friction);
        plan.Row("Borehole.Ratio", ValuePrototype<double>(NumberTraits(), OffsetOf(&Borehole::ratio)),
                 Unsaved_(L"Ratio"), NumberTraits());
        plan.Row("Borehole.Remark", ValuePrototype<std::wstring>(TitleTraits(), OffsetOf(&Borehole::remark)),
                 Unsaved_(L"Remark"), TitleTraits());

        AddTrial_(plan, "Trial", L"Trial", trial);
        AddTrial_(plan, "Final", L"Final", finalTrial);
        plan.Row("TrialNote", ValuePrototype<double>(NumberTraits()), Unsaved_(L"TrialNote"), NumberTraits(),
                 &trialNote);
        plan.Row("FinalNote", ValuePrototype<double>(NumberTraits()), Unsaved_(L"FinalNote"), NumberTraits(),
                 &finalNote);
        plan.Row("Site.Survey.Height", ValuePrototype<double>(NumberTraits()),
                 {MetaPersistTraits::Always, L"Site.Survey.Height"}, NumberTraits(), &surveyHeight);
    }
    static void AddTrial_(embankment::Embankment& plan, std::string const& name, wchar_t const* tag, Trial& trial) {
        using namespace embankment;
        using meta::OffsetOf;
        plan.Row(name, StructPrototype(rows::StructureTraits()), Unsaved_(tag), rows::StructureTraits(), &trial);
        plan.Row(name + ".Factor", ValuePrototype<double>(NumberTraits(), OffsetOf(&Trial::factor)),
                 Unsaved_(L"Factor"), NumberTraits());
        plan.Row(name + ".Slices", ArrayPrototype(NumbersTraits(), OffsetOf(&Trial::slices)), Unsaved_(L"Slices"),
                 NumbersTraits());
        plan.Row(name + ".Slices.[]", ValuePrototype<double>(NumberTraits()), Unsaved_(L""), NumberTraits());
    }
};

/// The current registry as a document.
inline std::wstring Document() {
    std::wstring text;
    EXPECT_TRUE(Succeeds(zo::xml::StringWrite(text, {1, 0})));
    return text;
}

} // namespace staging
