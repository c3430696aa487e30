#include "bench/LayerModel.h"

#include "bench/Register.h"

#include <algorithm>
#include <map>

namespace bench {
namespace {

std::string LayerName(std::size_t layer) {
    std::string number = std::to_string(layer);
    number.insert(0, 4 - std::min<std::size_t>(4, number.size()), '0');
    return "Layer" + number;
}
std::string SampleName(std::size_t sample) { return "Sample" + std::to_string(sample); }
std::string ValueName(std::size_t value) { return "Value" + std::to_string(value); }

/// Calls `add` with the name of every row.
template <class Add>
void ForEachRow(std::size_t layers, Add add) {
    for (std::size_t l = 0; l < layers; ++l) {
        std::string const layer = LayerName(l);
        add(layer);
        for (std::size_t s = 0; s < 10; ++s) {
            std::string const sample = layer + "." + SampleName(s);
            add(sample);
            for (std::size_t v = 0; v < 9; ++v) add(sample + "." + ValueName(v));
        }
        add(layer + ".Remark");
    }
}

/// The rows that patterns speak for, each with its own: the remark of each layer, then the last value of samples.
std::map<std::string, std::string> RowsOfPatterns(std::size_t layers) {
    constexpr std::size_t most = 200;
    std::map<std::string, std::string> patterns;
    for (std::size_t sample = 0; sample <= 10; ++sample) {
        for (std::size_t l = 0; l < layers && patterns.size() < most; ++l) {
            std::string const layer = LayerName(l);
            std::string const below = sample == 0 ? "." : "." + SampleName(sample - 1) + ".";
            std::string const name = sample == 0 ? "Remark" : ValueName(8);
            patterns[layer + below + name] =
                l % 2 ? "*" + layer.substr(1) + below + name : layer + below + name.substr(0, 3) + "*" + name.back();
        }
    }
    return patterns;
}

} // namespace

void RegisterLayers(std::vector<Layer>& layers) {
    static auto const values = meta::AtomicBuilder<double>().Units(hzn::units::Kind::Stress).Build();
    static auto const sample = meta::StructureBuilder<Sample>().Build();
    static auto const layer = meta::StructureBuilder<Layer>().Build();
    auto const persist = [](std::string const& tag) {
        return MetaPersistTraits(MetaPersistTraits::Always, str::as_wstring(tag));
    };
    for (std::size_t l = 0; l < layers.size(); ++l) {
        std::string const top = LayerName(l);
        Row(top, Structure(0, layer), persist(top), layer, &layers[l]);
        for (std::size_t s = 0; s < 10; ++s) {
            std::string const inner = top + "." + SampleName(s);
            Row(inner, Structure(s * sizeof(Sample), sample), persist(SampleName(s)), sample);
            for (std::size_t v = 0; v < 9; ++v)
                Row(inner + "." + ValueName(v), Value<double>(v * sizeof(double), values), persist(ValueName(v)),
                    values);
        }
        Row(top + ".Remark", Value<double>(meta::OffsetOf(&Layer::remark), values), persist("Remark"), values);
    }
    zo::ZORegistry::Instance()->OnPostRegistration();
}

std::vector<std::wstring> LayerPatterns(std::size_t layers) {
    std::vector<std::wstring> patterns;
    for (auto const& [row, pattern] : RowsOfPatterns(layers)) patterns.push_back(str::as_wstring(pattern));
    return patterns;
}

std::string LayerTable(std::size_t layers) {
    std::string rows;
    std::size_t count = 0;
    auto const add = [&](std::string const& tag) {
        rows += "  <Row Tag=\"" + tag + "\" Label=\"Value of a test\" Description=\"What was measured.\"/>\n";
        ++count;
    };
    std::map<std::string, std::string> const patterns = RowsOfPatterns(layers);
    ForEachRow(layers, [&](std::string const& name) {
        if (!patterns.contains(name)) add(name);
    });
    for (auto const& [row, pattern] : patterns) add(pattern);
    add("Default");
    return "<Meta_ExtendedInfo Rows=\"" + std::to_string(count) + "\">\n" + rows + "</Meta_ExtendedInfo>\n";
}

std::vector<std::wstring> LayerTags(std::size_t layers) {
    std::vector<std::wstring> tags;
    ForEachRow(layers, [&](std::string const& name) { tags.push_back(str::as_wstring(name)); });
    return tags;
}

} // namespace bench
