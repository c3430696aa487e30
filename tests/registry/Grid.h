// What the traces of lookups are made on: one structure, arrays of structures and of arrays, and an alias.
#pragma once

#include "tests/registry/Rows.h"

#include <string>
#include <vector>

namespace grid {

using rows::H;
using Texts = std::vector<std::string>;

struct Layer {
    double b = 0;
};
struct Grid {
    std::vector<Layer> a{std::vector<Layer>(5)};
    std::vector<std::vector<int>> g{{1, 2, 3}, {4, 5, 6}};
};

inline meta::MetaDataTraits DoubleTraits() { return meta::AtomicTraits<double>(); }
inline meta::MetaDataTraits IntTraits() { return meta::AtomicTraits<int>(); }
inline meta::MetaDataTraits LayerTraits() {
    static meta::MetaDataTraits const traits = meta::StructureBuilder<Layer>().Member(&Layer::b, DoubleTraits).Build();
    return traits;
}
inline meta::MetaDataTraits LayersTraits() {
    static meta::MetaDataTraits const traits = meta::ArrayTraits<std::vector<Layer>>(LayerTraits);
    return traits;
}
inline meta::MetaDataTraits RowTraits() {
    static meta::MetaDataTraits const traits = meta::ArrayTraits<std::vector<int>>(IntTraits);
    return traits;
}
inline meta::MetaDataTraits RowsTraits() {
    static meta::MetaDataTraits const traits = meta::ArrayTraits<std::vector<std::vector<int>>>(RowTraits);
    return traits;
}

/// `a` is an array of five structures with a member `b`; `g` holds two arrays of three numbers; `s` is one
/// structure, and `al` an alias of it.
class GridTest : public rows::RegistryTest {
protected:
    GridTest() {
        using namespace embankment;
        for (std::size_t i = 0; i < 5; ++i) grid.a[i].b = 10.0 * static_cast<double>(i);
        registry.Add("a", ArrayPrototype(LayersTraits()), L"A", LayersTraits(), &grid.a);
        registry.Add("a.[]", StructPrototype(LayerTraits()), L"", LayerTraits());
        registry.Add("a.[].b", ValuePrototype<double>(DoubleTraits()), L"B", DoubleTraits());
        registry.Add("g", ArrayPrototype(RowsTraits()), L"G", RowsTraits(), &grid.g);
        registry.Add("g.[]", ArrayPrototype(RowTraits()), L"", RowTraits());
        registry.Add("g.[].[]", ValuePrototype<int>(IntTraits()), L"", IntTraits());
        registry.Add("s", StructPrototype(LayerTraits()), L"S", LayerTraits(), &single);
        registry.Add("s.b", ValuePrototype<double>(DoubleTraits()), L"B", DoubleTraits());
        registry.Add("al", H(new rows::OtherName("s", true)), L"Al", rows::StructureTraits());
        registry->OnPostRegistration();
    }

    double ValueOf(H const& node) const {
        double value = -1;
        EXPECT_TRUE(node && embankment::Succeeds(node->Get(value)));
        return value;
    }

    Grid grid;
    Layer single{7};
};

} // namespace grid
