#include "bench/LayerModel.h"

#include "bench/Register.h"

#include <algorithm>

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
    for (std::size_t l = 0; l < std::min<std::size_t>(200, layers); ++l) {
        std::wstring const name = str::as_wstring(LayerName(l));
        patterns.push_back(l % 2 ? L"*" + name.substr(1) + L".Remark" : name + L".Rem*");
    }
    return patterns;
}

std::string LayerTable(std::size_t layers) {
    std::string rows;
    std::size_t count = 0;
    auto const add = [&](std::string const& tag) {
        rows += "  <Row Tag=\"" + tag + "\" Label=\"Value of a test\" Description=\"What was measured.\"/>\n";
        ++count;
    };
    std::size_t const spoken = LayerPatterns(layers).size();
    std::size_t remarks = 0;
    ForEachRow(layers, [&](std::string const& name) {
        if (!name.ends_with(".Remark") || remarks++ >= spoken) add(name);
    });
    for (std::wstring const& pattern : LayerPatterns(layers)) add(str::as_cstring(pattern));
    add("Default");
    return "<Meta_ExtendedInfo Rows=\"" + std::to_string(count) + "\">\n" + rows + "</Meta_ExtendedInfo>\n";
}

std::vector<std::wstring> LayerTags(std::size_t layers) {
    std::vector<std::wstring> tags;
    ForEachRow(layers, [&](std::string const& name) { tags.push_back(str::as_wstring(name)); });
    return tags;
}

} // namespace bench
