#include "bench/peers/Model.h"

#include "support/text.h"

#include <expat.h>

#include <algorithm>
#include <charconv>
#include <exception>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace peers {
namespace {

enum class Place {
    Document,
    Root,
    Title,
    Settings,
    Tolerance,
    MaxIterations,
    Tensile,
    Materials,
    Material,
    Name,
    Cohesion,
    FrictionAngle,
    UnitWeight,
    ModelOfMaterial,
    Visible,
    Props,
    Points,
    Point,
    Regions,
    Region,
    MaterialOfRegion,
    Indices
};

struct Element {
    Place parent;
    std::string_view tag;
    Place place;
};
constexpr Element elements[] = {
    {Place::Document, "HZNData", Place::Root},
    {Place::Root, "Materials", Place::Materials},
    {Place::Root, "Points", Place::Points},
    {Place::Root, "Regions", Place::Regions},
    {Place::Root, "Settings", Place::Settings},
    {Place::Root, "Title", Place::Title},
    {Place::Points, "Point", Place::Point},
    {Place::Materials, "Material", Place::Material},
    {Place::Material, "Cohesion", Place::Cohesion},
    {Place::Material, "FrictionAngle", Place::FrictionAngle},
    {Place::Material, "Model", Place::ModelOfMaterial},
    {Place::Material, "Name", Place::Name},
    {Place::Material, "Props", Place::Props},
    {Place::Material, "UnitWeight", Place::UnitWeight},
    {Place::Material, "Visible", Place::Visible},
    {Place::Regions, "Region", Place::Region},
    {Place::Region, "Indices", Place::Indices},
    {Place::Region, "Material", Place::MaterialOfRegion},
    {Place::Settings, "MaxIterations", Place::MaxIterations},
    {Place::Settings, "Tensile", Place::Tensile},
    {Place::Settings, "Tolerance", Place::Tolerance},
};

[[noreturn]] void Refuse(std::string_view what) {
    throw std::runtime_error("the document has an unexpected {" + std::string(what) + "}");
}

template <class T>
T Number(std::string_view text) {
    T number{};
    auto const [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (failure != std::errc() || end != text.data() + text.size()) Refuse(text);
    return number;
}

bool Truth(std::string_view text) {
    if (text != "true" && text != "false") Refuse(text);
    return text == "true";
}

template <class T>
std::vector<T> Numbers(std::string_view text) {
    std::vector<T> numbers;
    for (;;) {
        std::size_t const comma = text.find(',');
        numbers.push_back(Number<T>(text.substr(0, comma)));
        if (comma == text.npos) return numbers;
        text.remove_prefix(comma + 1);
    }
}

// Exceptions must not cross the parser: the first one is kept, and ends the parse.
class Reader {
public:
    explicit Reader(XML_Parser parser) : parser(parser) {
        XML_SetUserData(parser, this);
        XML_SetElementHandler(parser, &Call_<&Reader::Start_, char const*, char const**>,
                              &Call_<&Reader::End_, char const*>);
        XML_SetCharacterDataHandler(parser, &Call_<&Reader::Text_, char const*, int>);
    }

    Model Read(std::string_view document) {
        // The parser takes an int.
        constexpr std::size_t block = std::size_t{1} << 20;
        bool last = false;
        while (!last) {
            last = document.size() <= block;
            std::string_view const part = document.substr(0, block);
            XML_Status const status = XML_Parse(parser, part.data(), static_cast<int>(part.size()), last);
            if (failure) std::rethrow_exception(failure);
            if (status != XML_STATUS_OK) throw std::runtime_error("the document is not well-formed");
            document.remove_prefix(part.size());
        }
        if (lengths !=
            std::vector{model.project.materials.size(), model.project.points.size(), model.project.regions.size()})
            throw std::runtime_error("an array is not as long as the document says");
        return std::move(model);
    }

private:
    template <auto Handler, class... A>
    static void Call_(void* self, A... arguments) {
        Reader& reader = *static_cast<Reader*>(self);
        if (reader.failure) return;
        try {
            (reader.*Handler)(arguments...);
        } catch (...) {
            reader.failure = std::current_exception();
            XML_StopParser(reader.parser, XML_FALSE);
        }
    }

    void Start_(char const* tag, char const** attributes) {
        text.clear();
        places.push_back(Find_(tag));
        bench::Project& project = model.project;
        if (places.back() == Place::Material) project.materials.emplace_back();
        if (places.back() == Place::Point) project.points.emplace_back();
        if (places.back() == Place::Region) project.regions.emplace_back();
        for (; *attributes; attributes += 2) Attribute_(attributes[0], attributes[1]);
    }

    Place Find_(std::string_view tag) const {
        for (Element const& element : elements)
            if (element.parent == places.back() && element.tag == tag) return element.place;
        Refuse(tag);
    }

    void Attribute_(std::string_view name, std::string_view value) {
        bool const length = name == "Len";
        switch (places.back()) {
        case Place::Root:
            if (name == "Version" || name == "AppVersion") return; // of the program that wrote it
            break;
        case Place::Materials:
            if (length) return void(lengths[0] = Number<std::size_t>(value));
            break;
        case Place::Points:
            if (length) return void(lengths[1] = Number<std::size_t>(value));
            break;
        case Place::Regions:
            if (length) return void(lengths[2] = Number<std::size_t>(value));
            break;
        case Place::Point:
            if (name == "X") return void(model.project.points.back().x = Number<double>(value));
            if (name == "Y") return void(model.project.points.back().y = Number<double>(value));
            break;
        default: break;
        }
        Refuse(name);
    }

    void Text_(char const* part, int length) { text.append(part, static_cast<std::size_t>(length)); }

    void End_(char const*) {
        Fill_(places.back());
        places.pop_back();
        text.clear();
    }

    void Fill_(Place place) {
        bench::Project& project = model.project;
        bench::Material* const material = project.materials.empty() ? nullptr : &project.materials.back();
        switch (place) {
        case Place::Title: return void(project.title = str::as_wstring(text));
        case Place::Tolerance: return void(model.settings.tolerance = Number<double>(text));
        case Place::MaxIterations: return void(model.settings.maxIterations = Number<int>(text));
        case Place::Tensile: return void(model.settings.tensile = Truth(text));
        case Place::Name: return void(material->name = str::as_wstring(text));
        case Place::Cohesion: return void(material->cohesion = Number<double>(text));
        case Place::FrictionAngle: return void(material->friction = Number<double>(text));
        case Place::UnitWeight: return void(material->unitWeight = Number<double>(text));
        case Place::ModelOfMaterial: return void(material->model = Number<int>(text));
        case Place::Visible: return void(material->drained = Truth(text));
        case Place::Props: {
            auto const numbers = Numbers<double>(text);
            if (numbers.size() != material->properties.size()) Refuse(text);
            std::copy(numbers.begin(), numbers.end(), material->properties.begin());
            return;
        }
        case Place::MaterialOfRegion: return void(project.regions.back().material = Number<int>(text));
        case Place::Indices: return void(project.regions.back().indices = Numbers<int>(text));
        default: // the text between the elements of a structure is layout
            if (text.find_first_not_of(" \t\r\n") != text.npos) Refuse(text);
        }
    }

    XML_Parser const parser;
    Model model;
    std::vector<Place> places{Place::Document};
    std::vector<std::size_t> lengths = std::vector<std::size_t>(3);
    std::string text; // since the last tag
    std::exception_ptr failure;
};

} // namespace

Model MakeSample(std::size_t megabytes) {
    Model model{bench::MakeProject(megabytes), {0.001, 75, true}};
    model.project.reports.clear();
    return model;
}

Model ReadByHand(std::string_view document) {
    // Whatever the declaration says: that of a text from memory names the encoding of its wide form.
    std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> const parser(XML_ParserCreate("UTF-8"), &XML_ParserFree);
    if (!parser) throw std::bad_alloc();
    return Reader(parser.get()).Read(document);
}

} // namespace peers
