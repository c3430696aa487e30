#include "examples/slope/Words.h"

namespace slope {

namespace {

constexpr Words english{.code = "en",
                        .decimalPoint = L'.',
                        .label = "Label",
                        .value = "Value",
                        .unit = "Unit",
                        .missing = "(missing)",
                        .none = "(none)",
                        .more = "... % more",
                        .yes = "yes",
                        .no = "no",
                        .crossSection = "Cross-section",
                        .crossSectionOf = "Cross-section of %, to scale",
                        .distance = "Distance in %",
                        .elevation = "Elevation in %",
                        .tooLarge = "There is too much in the cross-section for a drawing.",
                        .unnamed = "A slope",
                        .waterLine = "Piezometric line",
                        .porePressure = "Pore pressure ratio %",
                        .slipCircle = "Slip circle %",
                        .noMaterial = "No material",
                        .made = "Made from %."};

constexpr Words german{.code = "de",
                       .decimalPoint = L',',
                       .label = "Bezeichnung",
                       .value = "Wert",
                       .unit = "Einheit",
                       .missing = "(fehlt)",
                       .none = "(keine)",
                       .more = "... % weitere",
                       .yes = "ja",
                       .no = "nein",
                       .crossSection = "Querschnitt",
                       .crossSectionOf = "Querschnitt von %, maßstäblich",
                       .distance = "Abstand in %",
                       .elevation = "Höhe in %",
                       .tooLarge = "Im Querschnitt ist zu viel für eine Zeichnung.",
                       .unnamed = "Eine Böschung",
                       .waterLine = "Piezometerlinie",
                       .porePressure = "Porenwasserdruckbeiwert %",
                       .slipCircle = "Gleitkreis %",
                       .noMaterial = "Kein Boden",
                       .made = "Erstellt aus %."};

} // namespace

Words const& WordsOf(Language language) { return language == Language::German ? german : english; }

std::string Filled(std::string_view text, std::string_view name) {
    std::string filled(text);
    if (std::size_t const place = filled.find('%'); place != std::string::npos) filled.replace(place, 1, name);
    return filled;
}

} // namespace slope
