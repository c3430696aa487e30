// The tables of docs/names.md, looked up.
#include "tests/readme/Page.h"

#include <gtest/gtest.h>
#include <kit/kit.h>
#include <zo/zo.h>

#include <array>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace {

struct Soil {
    std::wstring name;
    double friction = 30; // degrees
};

/// As the page describes it.
struct Project {
    std::wstring title = L"Harbour";
    std::vector<Soil> soils{{L"Clay", 18}, {L"Sand", 35}, {L"Gravel", 38}};
    std::map<int, double> loads{{3, 1.5}, {7, 2.5}};
    std::map<std::wstring, double> cases{{L"snow", 0.8}, {L"wind", 1.2}};
    std::vector<Soil> layers{{L"Peat", 10}, {L"Fill", 28}};
    std::vector<std::vector<double>> lists{{1, 2}, {3, 4}};
    std::array<std::array<double, 2>, 2> cells{{{1, 2}, {3, 4}}};
};

class NamesPageTest : public testing::Test {
protected:
    NamesPageTest() : registry(new zo::ZORegistry), previous(zo::ZORegistry::SetInstance(registry.get())) {
        zo::kit::Report const report = zo::kit::Register({[this](zo::kit::Kit& kit) {
            kit.Record<Soil>("Soil").Field<&Soil::name>("Name", L"Name").Field<&Soil::friction>("Friction", L"Phi");
            kit.Record<Project>("Project")
                .Field<&Project::title>("Title", L"Title")
                .Array<&Project::soils>("Soils", L"Soils[Soil]")
                .Map<&Project::loads>("Loads", L"Loads[Load]")
                .Map<&Project::cases>("Cases", L"Cases[Case]")
                .Keyed<&Project::layers, &Soil::name>("Layers", L"Layers[Layer]")
                .Array<&Project::lists>("Lists", L"Lists[List]")
                .Array<&Project::cells>("Cells", L"Cells[Row]");
            kit.Branch<Project>("Project", L"Project", [this] { return &project; });
        }});
        EXPECT_EQ(report.Text(), L"");
    }
    ~NamesPageTest() override { zo::ZORegistry::SetInstance(previous); }

    /// Compares the table with this head with what `find` finds: the node's name, or "" for nothing.
    static void ExpectTable(std::string const& head, std::function<zo::H(std::string const&)> const& find) {
        bool isInside = false;
        int count = 0;
        for (page::Row const& row : page::Rows(page::Text("names.md"))) {
            ASSERT_GE(row.size(), 2u);
            if (page::Quoted(row[0]).empty() && row[1].starts_with("leads to")) isInside = row[0] == head;
            if (!isInside || page::Quoted(row[0]).empty()) continue;
            zo::H const node = find(page::Quoted(row[0]));
            EXPECT_EQ(node ? node->Name() : "", page::Quoted(row[1])) << row[0];
            EXPECT_TRUE(!page::Quoted(row[1]).empty() || row[1].starts_with("nothing")) << row[1];
            ++count;
        }
        EXPECT_GT(count, 0) << "no table of " << head;
    }

    Project project;

private:
    htl::handle<zo::ZORegistry> registry;
    zo::ZORegistry* previous;
};

TEST_F(NamesPageTest, NameAndTagInOneRowAreThoseOfOneNode) {
    int count = 0;
    for (page::Row const& row : page::Rows(page::Text("names.md"))) {
        if (row.size() < 3 || page::Quoted(row[1]).empty() || page::Quoted(row[2]).empty()) continue;
        zo::H const node = zo::Find(page::Quoted(row[1]));
        ASSERT_TRUE(node) << row[1];
        EXPECT_EQ(zo::FullTag(node), str::as_wstring(page::Quoted(row[2])));
        ++count;
    }
    EXPECT_EQ(count, 3);
}

TEST_F(NamesPageTest, NamesLeadWhereThePageSays) {
    ExpectTable("name", [](std::string const& name) { return zo::Find(name); });
}

TEST_F(NamesPageTest, TagsLeadWhereThePageSays) {
    ExpectTable("tag", [](std::string const& tag) { return zo::FindTag(tag); });
}

} // namespace
