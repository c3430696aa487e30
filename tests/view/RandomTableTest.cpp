// What holds for the view whatever the table says.
#include "Common/redirect/Placeholders.h"
#include "tests/registry/Rows.h"
#include "tests/view/Shown.h"

#include <algorithm>
#include <array>
#include <random>
#include <set>

using namespace shown;

namespace {

/// A quarry in plain rows, which nothing keeps alive behind the test: names are tags.
constexpr std::array rowNames{"Pit",      "Pit.Depth", "Pit.Face",    "Pit.Face.Slope", "Heap",   "Heap.Height",
                              "Heap.Toe", "Road",      "Road.Length", "Road.Grade",     "Benches"};
constexpr std::array sources{L"Pit",         L"Pit.Depth",  L"Pit.Face", L"Pit.Face.Slope", L"Heap",
                             L"Heap.Height", L"Heap.Toe",   L"Road",     L"Benches",        L".Depth",
                             L".Face.Slope", L".Toe",       L"@Parent",  L"@Parent.Road",   L"",
                             L".Width",      L"Benches.[]", L"Quay"};
constexpr std::array entryTags{L"HZNData", L"Pit",       L"Pit.Face", L"Heap",       L"Road",
                               L"Benches", L"Pit.Depth", L"Heap.Toe", L"Benches.[]", L"Benches.[].Width"};

class Random {
public:
    explicit Random(unsigned seed) : engine(seed) {}
    bool OneIn(unsigned count) { return engine() % count == 0; }
    std::size_t Below(std::size_t count) { return engine() % count; }
    template <class List>
    std::wstring From(List const& list) {
        return list[Below(list.size())];
    }

private:
    std::mt19937 engine;
};

struct RandomTable {
    TableText table = TableText::WithDefault();
    bool splices = false; // so that a node may show twice below one other
};

RandomTable Make(Random& random) {
    RandomTable made;
    for (wchar_t const* const tag : entryTags) {
        if (random.OneIn(3)) continue;
        std::vector<fixture::Cell> cells{{L"IsDynamic", random.OneIn(8) ? L"0" : L"1"}};
        if (random.OneIn(6)) cells.emplace_back(L"ViewExcl", L"data");
        std::vector<fixture::Item> list;
        if (random.OneIn(8)) {
            list.push_back(From(L".*"));
        } else {
            for (std::size_t left = random.Below(4); left > 0; --left) {
                std::wstring source = random.From(sources);
                std::wstring target = random.OneIn(3) ? L"As" + std::to_wstring(left) : L"";
                if (random.OneIn(3)) {
                    source += L".*";
                    made.splices = true;
                    if (!target.empty() && random.OneIn(2)) target += L"*";
                }
                fixture::Item item = target.empty() ? From(source) : As(source, target);
                if (random.OneIn(2)) item.push_back({L"RemoveFromSource", L"0"});
                if (random.OneIn(10)) item.push_back({L"IsDynamic", L"1"});
                list.push_back(item);
            }
        }
        made.table.Entry(tag, cells, list);
    }
    return made;
}

/// An array of three plain elements.
class Benches final : public zo::ZOPlaceholderArray {
public:
    explicit Benches(std::size_t regID = npos, zo::ZOSet* owner = nullptr)
        : ZOPlaceholderArray(
              regID, owner, [](ZOPlaceholderArray const*) { return std::size_t(3); }, 0, none, 0) {}
    IZO* Clone() override { return new Benches(RegID(), Owner()); }

private:
    static constexpr int none[6] = {};
};

constexpr int dataView = 0x61F01;
constexpr std::size_t enough = 500;

/// The walk over the children of one node.
void CheckChildren(H const& node, bool mayShowTwice, std::set<std::string>& seen) {
    std::size_t count = 0;
    std::set<std::string> names;
    bool const isArray = node->GetDataTraits().AsArray() != nullptr;
    for (H const& child : zo::view::Children(node, dataView)) {
        ASSERT_LT(++count, endless) << node->Name();
        std::string const name = child->Name();
        EXPECT_TRUE(zo::IsVisible(child, dataView)) << name;
        EXPECT_FALSE(child->Tag().empty()) << name;
        bool const isNew = names.insert(name).second;
        EXPECT_TRUE(isNew || (mayShowTwice && !isArray)) << name;
        seen.insert(name);
    }
}

void CheckTable(unsigned seed) {
    Random random(seed);
    rows::OwnRegistry registry;
    for (char const* const name : rowNames) {
        std::string const text = name;
        if (text == "Benches")
            registry.Add(text, H(new Benches), L"Benches", zo::ZOArray::DefaultDataTraits());
        else
            registry.AddPlain(text, str::as_wstring(text.substr(text.rfind('.') + 1)));
    }
    registry.AddPlain("Benches.[]", L"Benches");
    registry.AddPlain("Benches.[].Width", L"Width");
    registry->OnPostRegistration();
    RandomTable const made = Make(random);
    // Most tables have something to complain of; what they did stays done.
    ASSERT_TRUE(Succeeds(made.table.Read()));
    (void)zo::CompileExtendedInfo();

    std::set<std::string> seen;
    CheckChildren(registry->Root(), made.splices, seen);
    for (char const* const name : rowNames) CheckChildren(registry->Find(name), made.splices, seen);
    CheckChildren(registry->Find("Benches[1]"), made.splices, seen);
    std::size_t visited = 0;
    unsigned deepest = 0;
    zo::view::Walk(registry->Root(), dataView, [&](H const&, unsigned level) {
        deepest = std::max(deepest, level);
        return ++visited < enough; // aliases lead to each other in very many ways
    });
    EXPECT_LT(deepest, zo::view::deepest);
}

// The parts are tests of their own, so that they can run side by side and a failure tells its seed.
class RandomTableTest : public testing::TestWithParam<unsigned> {};

TEST_P(RandomTableTest, EveryWalkEndsAndShowsNothingHiddenAndNothingTwice) {
    constexpr unsigned count = 1000;
    for (unsigned seed = GetParam() * count; seed < (GetParam() + 1) * count; ++seed) {
        CheckTable(seed);
        ASSERT_FALSE(HasFailure()) << "table " << seed;
    }
}

INSTANTIATE_TEST_SUITE_P(Thousands, RandomTableTest, testing::Range(0u, 10u));

} // namespace
