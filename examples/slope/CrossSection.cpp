#include "examples/slope/CrossSection.h"

#include "examples/slope/Html.h"
#include "examples/slope/Model.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace slope {

namespace {

struct Place {
    double x = 0;
    double y = 0;
};
using Path = std::vector<Place>; // from left to right

// Of the drawing, in its own units, which are pixels where nothing scales it.
constexpr double mostWidth = 760, mostHeight = 420;
constexpr double leftMargin = 64, rightMargin = 20, topMargin = 20, bottomMargin = 52;

std::string Text(double number) {
    std::array<char, 32> buffer{};
    auto const [end, error] =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, std::chars_format::fixed, 1);
    return error == std::errc() ? std::string(buffer.data(), end) : "0";
}

/// What a drawing has to hold.
struct Extent {
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();

    void Take(double value) {
        low = std::min(low, value);
        high = std::max(high, value);
    }
    double Size() const { return high - low; }
};

/// The smallest step of 1, 2 or 5 times a power of ten that is at least `least`.
double TickStep(double least) {
    double const power = std::pow(10, std::floor(std::log10(least)));
    for (double const factor : {1.0, 2.0, 5.0})
        if (factor * power >= least) return factor * power;
    return 10 * power;
}

/// The height of a path at `x`, between its ends.
std::optional<double> HeightAt(Path const& path, double x) {
    for (std::size_t i = 1; i < path.size(); ++i) {
        Place const &a = path[i - 1], &b = path[i];
        if (x < a.x || x > b.x || a.x == b.x) continue;
        return a.y + (b.y - a.y) * ((x - a.x) / (b.x - a.x));
    }
    return {};
}

struct Layer {
    Path const* top = nullptr;
    Path const* bottom = nullptr; // without one it reaches down without end
    std::optional<unsigned long> color;
    std::string material;
};

struct Circle {
    Place centre;
    double radius = 0;
};

/// Reads the geometry out of the tree, in the units that people see.
class Geometry {
public:
    Geometry(Document& document, Display const& display) : document(document), display(display) {
        ReadPoints_();
        ReadLines_();
        ReadLayers_();
        ForEach_("Water.Points", [&](zo::H const& point) {
            if (std::optional<Place> const place = PlaceOf_(point)) waterLine.push_back(*place);
        });
        if (zo::H const ratio = document.Find("Water.PorePressureRatio")) porePressure = display.Number(ratio);
        ForEach_("SlipCircles", [&](zo::H const& circle) {
            std::optional<Place> const centre = PlaceOf_(zo::Find(circle, "Centre"));
            std::optional<double> const radius = Number_(circle, "Radius");
            if (centre && radius && *radius > 0) circles.push_back({*centre, *radius});
        });
        if (zo::H const x = document.Find("Points[0].X")) unit = display.Unit(x);
    }

    /// Whether a drawing of all this is of a size that people can look at. Each layer goes along the ground.
    bool IsDrawable() const {
        constexpr std::size_t most = 200'000, each = 100;
        std::size_t size = ground.size() + waterLine.size();
        for (Layer const& layer : layers) {
            size += each + 2 * ground.size() + layer.top->size() + (layer.bottom ? layer.bottom->size() : 0);
            if (size > most) return false;
        }
        return size <= most && circles.size() <= (most - size) / (each + ground.size());
    }

    Path ground;
    std::vector<Layer> layers;
    Path waterLine;
    std::optional<double> porePressure;
    std::vector<Circle> circles;
    std::string unit;

private:
    /// Each element of a list, none where there is no such list.
    template <class F>
    void ForEach_(std::string const& name, F const& use) const {
        if (zo::H const list = document.Find(name))
            for (zo::H const& element : *list) use(element);
    }

    std::optional<double> Number_(zo::H const& node, std::string const& name) const {
        return display.Number(zo::Find(node, name));
    }

    std::optional<Place> PlaceOf_(zo::H const& point) const {
        if (!point) return {};
        std::optional<double> const x = Number_(point, "X"), y = Number_(point, "Y");
        return x && y ? std::optional<Place>({*x, *y}) : std::nullopt;
    }

    /// What the numbers of a list, from 1, name in another one. Numbers that name nothing are passed over.
    template <class T>
    static std::vector<T const*> Named_(zo::H const& numbers, std::vector<T> const& things) {
        std::vector<T const*> named;
        if (!numbers) return named;
        for (zo::H const& element : *numbers) {
            htl::Int64 number = 0;
            if (element->Get(number).IsError() || number < 1) continue;
            if (static_cast<std::size_t>(number) <= things.size())
                named.push_back(&things[static_cast<std::size_t>(number) - 1]);
        }
        return named;
    }

    void ReadPoints_() {
        ForEach_("Points", [&](zo::H const& point) { points.push_back(PlaceOf_(point)); });
    }

    void ReadLines_() {
        ForEach_("Lines", [&](zo::H const& line) {
            Path path;
            for (std::optional<Place> const* point : Named_(zo::Find(line, "Points"), points))
                if (*point) path.push_back(**point);
            if (path.size() > 1 && path.front().x > path.back().x) std::reverse(path.begin(), path.end());
            htl::Int64 role = 0;
            zo::H const node = zo::Find(line, "Role");
            if (ground.empty() && node && !node->Get(role).IsError() && role == static_cast<int>(LineRole::Ground))
                ground = path;
            lines.push_back(std::move(path));
        });
    }

    void ReadLayers_() {
        ForEach_("Regions", [&](zo::H const& region) {
            std::vector<Path const*> const bounds = Named_(zo::Find(region, "Lines"), lines);
            if (bounds.empty() || bounds[0]->empty()) return;
            Layer layer{bounds[0], bounds.size() > 1 ? bounds[1] : nullptr, display.Color(region), {}};
            zo::H const material = zo::Find(region, "Material");
            if (material && !material->IsUndefined()) layer.material = display.Value(material);
            layers.push_back(std::move(layer));
        });
    }

    Document& document;
    Display const& display;
    std::vector<std::optional<Place>> points;
    std::vector<Path> lines;
};

class Drawer {
public:
    Drawer(Geometry const& geometry, Display const& display)
        : geometry(geometry), display(display), words(display.OwnWords()) {}

    /// False if there is nothing that could be drawn to scale.
    bool Fit() {
        if (geometry.ground.size() < 2) return false;
        for (Place const& place : geometry.ground) Take_(place);
        double const relief = y.Size();
        for (Layer const& layer : geometry.layers)
            for (Path const* path : {layer.top, layer.bottom})
                if (path)
                    for (Place const& place : *path) Take_(place);
        for (Place const& place : geometry.waterLine) Take_(place);
        for (Circle const& circle : geometry.circles) {
            Take_(circle.centre);
            y.Take(circle.centre.y - circle.radius);
        }
        // Some soil below the lowest line: the last layer has no bottom.
        y.low -= std::max(0.3 * relief - (groundLow_() - y.low), 0.12 * y.Size());
        if (!(x.Size() > 0) || !(y.Size() > 0) || !std::isfinite(x.Size()) || !std::isfinite(y.Size())) return false;
        scale = std::min(mostWidth / x.Size(), mostHeight / y.Size());
        return std::isfinite(scale) && scale > 0;
    }

    Drawing Draw(std::string const& title) {
        std::string const width = Text(leftMargin + scale * x.Size() + rightMargin);
        std::string const height = Text(topMargin + scale * y.Size() + bottomMargin);
        svg = "<svg viewBox=\"0 0 " + width + " " + height + "\" width=\"" + width + "\" height=\"" + height +
              "\" role=\"img\" aria-labelledby=\"drawing-title\">\n<title id=\"drawing-title\">" + Escaped(title) +
              "</title>\n<clipPath id=\"below-ground\"><path d=\"" + Area_(geometry.ground, nullptr) +
              "\"/></clipPath>\n";
        Layers_();
        Circles_();
        Line_(geometry.ground, "ground");
        Water_();
        Axes_();
        svg += "</svg>";
        return {std::move(svg), std::move(legend)};
    }

private:
    double groundLow_() const {
        Extent ground;
        for (Place const& place : geometry.ground) ground.Take(place.y);
        return ground.low;
    }

    void Take_(Place const& place) {
        x.Take(place.x);
        y.Take(place.y);
    }

    double X_(double value) const { return leftMargin + scale * (value - x.low); }
    double Y_(double value) const { return topMargin + scale * (y.high - value); }
    std::string At_(Place const& place) const { return Text(X_(place.x)) + " " + Text(Y_(place.y)); }

    std::string Polyline_(Path const& path) const {
        std::string text;
        for (Place const& place : path) text += (text.empty() ? "M" : "L") + At_(place);
        return text;
    }

    /// A line that ends on the ground goes on along it, so that every line parts the whole section.
    Path Extended_(Path const& line) const {
        if (line.empty()) return geometry.ground;
        Path whole;
        for (Place const& place : geometry.ground)
            if (place.x < line.front().x) whole.push_back(place);
        whole.insert(whole.end(), line.begin(), line.end());
        for (Place const& place : geometry.ground)
            if (place.x > line.back().x) whole.push_back(place);
        return whole;
    }

    /// The outline of what lies between two lines, or below the one.
    std::string Area_(Path const& top, Path const* bottom) const {
        Path outline = Extended_(top);
        double const left = outline.front().x, right = outline.back().x;
        if (!bottom || bottom->empty()) {
            outline.push_back({right, y.low});
            outline.push_back({left, y.low});
        } else {
            Path const below = Extended_(*bottom);
            outline.insert(outline.end(), below.rbegin(), below.rend());
        }
        return Polyline_(outline) + "Z";
    }

    void Line_(Path const& path, std::string const& style) {
        svg += "<path class=\"" + style + "\" d=\"" + Polyline_(path) + "\"/>\n";
    }

    void Layers_() {
        for (Layer const& layer : geometry.layers) {
            svg += "<path class=\"layer\"" + (layer.color ? " style=\"fill:" + ColorText(*layer.color) + "\"" : "") +
                   " d=\"" + Area_(*layer.top, layer.bottom) + "\"/>\n";
            LegendItem item{LegendItem::Fill, layer.material.empty() ? std::string(words.noMaterial) : layer.material,
                            layer.color.value_or(0xFFFFFF)};
            auto const same = [&](LegendItem const& other) {
                return other.text == item.text && other.color == item.color;
            };
            if (std::none_of(legend.begin(), legend.end(), same)) legend.push_back(std::move(item));
        }
    }

    /// Where the circle comes out of the ground, from left to right.
    Path Exits_(Circle const& circle) const {
        Path exits;
        for (std::size_t i = 1; i < geometry.ground.size(); ++i) {
            Place const &a = geometry.ground[i - 1], &b = geometry.ground[i];
            double const dx = b.x - a.x, dy = b.y - a.y, fx = a.x - circle.centre.x, fy = a.y - circle.centre.y;
            double const square = dx * dx + dy * dy, half = dx * fx + dy * fy;
            double const rest = half * half - square * (fx * fx + fy * fy - circle.radius * circle.radius);
            if (!(square > 0) || !(rest >= 0)) continue;
            for (double const sign : {-1.0, 1.0}) {
                double const t = (sign * std::sqrt(rest) - half) / square;
                if (t >= 0 && t <= 1) exits.push_back({a.x + t * dx, a.y + t * dy});
            }
        }
        return exits;
    }

    void Circles_() {
        for (std::size_t i = 0; i < geometry.circles.size(); ++i) {
            Circle const& circle = geometry.circles[i];
            Path const exits = Exits_(circle);
            if (exits.size() > 1) Line_({exits.front(), circle.centre, exits.back()}, "radius");
            svg += "<circle class=\"slip\" clip-path=\"url(#below-ground)\" cx=\"" + Text(X_(circle.centre.x)) +
                   "\" cy=\"" + Text(Y_(circle.centre.y)) + "\" r=\"" + Text(scale * circle.radius) +
                   "\"/>\n<circle class=\"centre\" cx=\"" + Text(X_(circle.centre.x)) + "\" cy=\"" +
                   Text(Y_(circle.centre.y)) + "\" r=\"3\"/>\n";
            legend.push_back({LegendItem::Circle, Filled(words.slipCircle, std::to_string(i + 1)), 0});
        }
    }

    void Water_() {
        Path const& line = geometry.waterLine;
        if (line.size() > 1) {
            Line_(line, "water");
            // The sign of a water level stands on the longest piece.
            std::size_t longest = 1;
            for (std::size_t i = 2; i < line.size(); ++i)
                if (line[i].x - line[i - 1].x > line[longest].x - line[longest - 1].x) longest = i;
            double const middle = (line[longest - 1].x + line[longest].x) / 2;
            if (std::optional<double> const height = HeightAt(line, middle)) {
                double const px = X_(middle), py = Y_(*height);
                svg += "<path class=\"level\" d=\"M" + Text(px) + " " + Text(py) + "l-6 -10h12Z\"/>\n";
            }
            legend.push_back({LegendItem::WaterLine, std::string(words.waterLine), 0});
        }
        if (geometry.porePressure)
            legend.push_back(
                {LegendItem::Note, Filled(words.porePressure, display.Rounded(*geometry.porePressure, 6)), 0});
    }

    void Axes_() {
        double const bottom = Y_(y.low), left = X_(x.low);
        svg += "<path class=\"axis\" d=\"M" + Text(left) + " " + Text(topMargin) + "V" + Text(bottom) + "H" +
               Text(X_(x.high)) + "\"/>\n";
        Ticks_(x, 56, [&](double value, std::string const& label) {
            std::string const at = Text(X_(value));
            svg += "<path class=\"axis\" d=\"M" + at + " " + Text(bottom) + "v5\"/><text x=\"" + at + "\" y=\"" +
                   Text(bottom + 19) + "\" text-anchor=\"middle\">" + label + "</text>\n";
        });
        Ticks_(y, 30, [&](double value, std::string const& label) {
            std::string const at = Text(Y_(value));
            svg += "<path class=\"axis\" d=\"M" + Text(left) + " " + at + "h-5\"/><text x=\"" + Text(left - 9) +
                   "\" y=\"" + Text(Y_(value) + 4) + "\" text-anchor=\"end\">" + label + "</text>\n";
        });
        svg += "<text class=\"title\" x=\"" + Text((left + X_(x.high)) / 2) + "\" y=\"" + Text(bottom + 40) +
               "\" text-anchor=\"middle\">" + Escaped(Filled(words.distance, geometry.unit)) + "</text>\n";
        std::string const middle = Text((topMargin + bottom) / 2);
        svg += "<text class=\"title\" x=\"16\" y=\"" + middle + "\" text-anchor=\"middle\" transform=\"rotate(-90 16 " +
               middle + ")\">" + Escaped(Filled(words.elevation, geometry.unit)) + "</text>\n";
    }

    /// At least `distance` apart in the drawing, so that their labels don't run into each other.
    template <class F>
    void Ticks_(Extent const& extent, double distance, F const& tick) const {
        double const step = TickStep(distance / scale);
        double const first = std::ceil(extent.low / step);
        for (int i = 0; i < 20; ++i) {
            double const value = (first + i) * step;
            if (!(value <= extent.high)) return;
            tick(value, Escaped(display.Rounded(value == 0 ? 0 : value, 6)));
        }
    }

    Geometry const& geometry;
    Display const& display;
    Words const& words;
    Extent x, y;
    double scale = 1;
    std::string svg;
    std::vector<LegendItem> legend;
};

} // namespace

std::optional<Drawing> DrawCrossSection(Document& document, Display const& display) {
    Geometry const geometry(document, display);
    if (!geometry.IsDrawable()) return Drawing();
    Drawer drawer(geometry, display);
    if (!drawer.Fit()) return {};
    zo::H const name = document.Find("Project.Name");
    return drawer.Draw(Filled(display.OwnWords().crossSectionOf, name && !name->IsUndefined()
                                                                     ? display.Value(name)
                                                                     : std::string(display.OwnWords().unnamed)));
}

} // namespace slope
