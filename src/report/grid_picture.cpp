#include "report/grid_picture.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "common/correctly_rounded.h"
#include "output/number_format.h"
#include "report/cell_geometry.h"

namespace tesseramill {

namespace {

// Picture units are tenths of a pixel, so that coordinates are integers.
constexpr double kUnit = 10.0;
constexpr double kLongestSide = 1600.0;  // pixels of the larger side of the plot
constexpr double kLeft = 120.0;
constexpr double kRight = 190.0;
constexpr double kTop = 60.0;
constexpr double kBottom = 70.0;
constexpr int kClasses = 24;
// Height of one class in the legend, in picture units.
constexpr double kLegendBox = 200.0;

// A colour ramp from dark violet through blue and green to yellow, in
// kClasses steps between five anchors.
std::string class_colour(int k) {
  static const double anchors[5][3] = {{68, 1, 84}, {59, 82, 139}, {33, 145, 140}, {94, 201, 98}, {253, 231, 37}};
  const double t = kClasses > 1 ? 4.0 * k / (kClasses - 1) : 0.0;
  const int i = std::min(3, static_cast<int>(t));
  const double f = t - i;
  char text[8];
  std::snprintf(text, sizeof text, "#%02x%02x%02x",
                static_cast<int>(std::lround(anchors[i][0] + f * (anchors[i + 1][0] - anchors[i][0]))),
                static_cast<int>(std::lround(anchors[i][1] + f * (anchors[i + 1][1] - anchors[i][1]))),
                static_cast<int>(std::lround(anchors[i][2] + f * (anchors[i + 1][2] - anchors[i][2]))));
  return text;
}

std::string escaped(const std::string& text) {
  std::string out;
  for (char c : text) {
    switch (c) {
      case '&': out += "&amp;"; break;
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      case '"': out += "&quot;"; break;
      default: out += c;
    }
  }
  return out;
}

// A step of 1, 2 or 5 times a power of ten that cuts `range` into about
// `parts` pieces.
double tick_step(double range, int parts) {
  const double rough = range / parts;
  const double power = cr_pow(10.0, std::floor(cr_log10(rough)));
  for (double m : {1.0, 2.0, 5.0}) {
    if (m * power >= rough) return m * power;
  }
  return 10.0 * power;
}

std::string number(double value, int decimals) { return format_fixed(value, 0, decimals); }

// Picture coordinates are kept within this many units of the origin.  A
// layer far outside the grid, or a grid whose vertices all fall on one
// place, would otherwise scale past any integer; pinned here such a shape
// lies far off the canvas, where it is not seen, and the relative steps
// between two pinned points cannot overflow.
constexpr double kFarthest = 1.0e9;

long picture_units(double units) { return std::lround(std::clamp(units, -kFarthest, kFarthest)); }

struct Frame {
  double x0, y1;     // the grid frame's left and top
  double scale;      // picture units per grid unit
  long px(double x) const { return picture_units((kLeft * kUnit) + (x - x0) * scale); }
  long py(double y) const { return picture_units((kTop * kUnit) + (y1 - y) * scale); }
};

void append_polyline(std::string& d, const Frame& f, const std::vector<double>& xy, bool closed) {
  long lx = 0;
  long ly = 0;
  for (std::size_t k = 0; k + 1 < xy.size(); k += 2) {
    const long x = f.px(xy[k]);
    const long y = f.py(xy[k + 1]);
    if (k == 0) {
      d += "M" + std::to_string(x) + " " + std::to_string(y);
    } else {
      d += "l" + std::to_string(x - lx) + " " + std::to_string(y - ly);
    }
    lx = x;
    ly = y;
  }
  if (closed) d += "z";
}

}  // namespace

std::string grid_picture(const DisvGrid& disv, const PictureLayers& layers) {
  double xmin = INFINITY, xmax = -INFINITY, ymin = INFINITY, ymax = -INFINITY;
  for (std::size_t k = 0; k + 1 < disv.vertices.size(); k += 2) {
    xmin = std::min(xmin, disv.vertices[k]);
    xmax = std::max(xmax, disv.vertices[k]);
    ymin = std::min(ymin, disv.vertices[k + 1]);
    ymax = std::max(ymax, disv.vertices[k + 1]);
  }
  const double width = std::max(xmax - xmin, 1e-300);
  const double height = std::max(ymax - ymin, 1e-300);
  const double pixels_per_unit = kLongestSide / std::max(width, height);
  const Frame f{xmin, ymax, pixels_per_unit * kUnit};
  const double plot_w = width * pixels_per_unit;
  const double plot_h = height * pixels_per_unit;
  const double total_w = kLeft + plot_w + kRight;
  // Tall enough for the legend beside a flat domain.
  const double total_h = std::max(kTop + plot_h, kTop + (300.0 + kClasses * kLegendBox + 200.0) / kUnit) + kBottom;

  // Areas on a log scale in classes.
  std::vector<double> areas(static_cast<std::size_t>(disv.ncpl));
  std::vector<double> xy;
  double amin = INFINITY;
  double amax = 0.0;
  for (std::size_t c = 0; c < areas.size(); ++c) {
    cell_polygon(disv, c, xy);
    areas[c] = std::fabs(0.5 * doubled_area(xy.data(), corner_count(disv, c)));
    if (areas[c] > 0.0) amin = std::min(amin, areas[c]);
    amax = std::max(amax, areas[c]);
  }
  if (!(amin < INFINITY)) amin = amax = 1.0;
  const double log_low = cr_log10(amin);
  const double log_span = std::max(cr_log10(amax) - log_low, 1e-12);
  auto class_of = [&](double a) {
    if (!(a > 0.0)) return 0;
    return std::clamp(static_cast<int>((cr_log10(a) - log_low) / log_span * kClasses), 0, kClasses - 1);
  };

  std::string svg;
  svg.reserve(static_cast<std::size_t>(disv.ncpl) * 70 + 20000);
  svg += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  // The picture takes the size of the window it is opened in and keeps its
  // proportions, so that a small window shows all of it, legend included,
  // without scroll bars.
  svg += "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"100%\" height=\"100%\" viewBox=\"0 0 " +
         number(total_w * kUnit, 0) + " " + number(total_h * kUnit, 0) +
         "\" preserveAspectRatio=\"xMidYMid meet\">\n<style>\n";
  svg += "path.cell{stroke:#202020;stroke-width:3;stroke-linejoin:round}\n";
  for (int k = 0; k < kClasses; ++k) svg += ".a" + std::to_string(k) + "{fill:" + class_colour(k) + "}\n";
  svg += ".rim{fill:none;stroke:#000000;stroke-width:18}\n.line{fill:none;stroke:#1f4fd0;stroke-width:14}\n"
         ".zone{fill:none;stroke:#d04010;stroke-width:12;stroke-dasharray:80 50}\n"
         ".point{fill:#e02020;stroke:#ffffff;stroke-width:6}\ntext{font-family:sans-serif;font-size:140px}\n"
         ".axis{stroke:#000000;stroke-width:8;fill:none}\ntext.title{font-size:220px}\n</style>\n";
  svg += "<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n";
  svg += "<text x=\"" + number(kLeft * kUnit, 0) + "\" y=\"" + number(kTop * kUnit * 0.6, 0) +
         "\" class=\"title\">" + escaped(layers.title) + "</text>\n";

  // The cells, one path each.
  svg += "<g>\n";
  std::string d;
  for (std::size_t c = 0; c < areas.size(); ++c) {
    cell_polygon(disv, c, xy);
    d.clear();
    append_polyline(d, f, xy, true);
    svg += "<path class=\"cell a" + std::to_string(class_of(areas[c])) + "\" d=\"" + d + "\"/>\n";
  }
  svg += "</g>\n";

  // Boundaries, lines and points over the cells.
  d.clear();
  append_polyline(d, f, layers.rings.outer, true);
  for (const std::vector<double>& hole : layers.rings.holes) append_polyline(d, f, hole, true);
  svg += "<path class=\"rim\" d=\"" + d + "\"/>\n";
  for (const std::vector<double>& zone : layers.zones) {
    d.clear();
    append_polyline(d, f, zone, true);
    svg += "<path class=\"zone\" d=\"" + d + "\"/>\n";
  }
  for (const std::vector<double>& line : layers.lines) {
    d.clear();
    append_polyline(d, f, line, false);
    svg += "<path class=\"line\" d=\"" + d + "\"/>\n";
  }
  for (std::size_t k = 0; k + 1 < layers.points.size(); k += 2) {
    svg += "<circle class=\"point\" cx=\"" + std::to_string(f.px(layers.points[k])) + "\" cy=\"" +
           std::to_string(f.py(layers.points[k + 1])) + "\" r=\"40\"/>\n";
  }

  // Axes in world coordinates.
  const double left = kLeft * kUnit;
  const double right = (kLeft + plot_w) * kUnit;
  const double top = kTop * kUnit;
  const double bottom = (kTop + plot_h) * kUnit;
  svg += "<path class=\"axis\" d=\"M" + number(left, 0) + " " + number(top, 0) + "V" + number(bottom, 0) + "H" +
         number(right, 0) + "\"/>\n";
  // Ticks at whole multiples of the step, with labels of the decimals the
  // step needs.  They are counted by an integer: where the step is too small
  // for the coordinates' digits, first + 1 equals first, and a loop that
  // added 1 to a double would never end.
  auto ticks = [&](double low, double high, double step, auto place) {
    const double first = std::ceil(low / step);
    const double last = std::floor(high / step);
    if (!(last - first < 50.0)) return;
    const int decimals = std::clamp(static_cast<int>(-std::floor(cr_log10(step))), 0, 9);
    const int count = static_cast<int>(last - first);
    for (int i = 0; i <= count; ++i) {
      const double k = first + i;
      place(k * step, number(k * step, decimals));
    }
  };
  ticks(xmin + layers.world_x0, xmax + layers.world_x0, tick_step(width, 6), [&](double x, const std::string& label) {
    const long px = f.px(x - layers.world_x0);
    svg += "<path class=\"axis\" d=\"M" + std::to_string(px) + " " + number(bottom, 0) + "v80\"/>\n";
    svg += "<text x=\"" + std::to_string(px) + "\" y=\"" + number(bottom + 260, 0) + "\" text-anchor=\"middle\">" +
           label + "</text>\n";
  });
  ticks(ymin + layers.world_y0, ymax + layers.world_y0, tick_step(height, 6), [&](double y, const std::string& label) {
    const long py = f.py(y - layers.world_y0);
    svg += "<path class=\"axis\" d=\"M" + number(left - 80, 0) + " " + std::to_string(py) + "h80\"/>\n";
    svg += "<text x=\"" + number(left - 110, 0) + "\" y=\"" + std::to_string(py + 50) + "\" text-anchor=\"end\">" +
           label + "</text>\n";
  });

  // The legend: the classes from the smallest area at the bottom to the
  // largest at the top, with areas at five of their edges.
  const double lx = right + 400;
  svg += "<text x=\"" + number(lx, 0) + "\" y=\"" + number(top + 150, 0) + "\">cell area</text>\n";
  for (int k = 0; k < kClasses; ++k) {
    const double y = top + 300 + (kClasses - 1 - k) * kLegendBox;
    svg += "<rect class=\"a" + std::to_string(k) + "\" x=\"" + number(lx, 0) + "\" y=\"" + number(y, 0) +
           "\" width=\"300\" height=\"" + number(kLegendBox, 0) + "\"/>\n";
  }
  for (int k = 0; k <= kClasses; k += kClasses / 4) {
    const double y = top + 300 + (kClasses - k) * kLegendBox;
    std::string label;
    append_scientific(label, cr_pow(10.0, log_low + log_span * k / kClasses), 0, 2);
    svg += "<text x=\"" + number(lx + 340, 0) + "\" y=\"" + number(y + 50, 0) + "\">" + label + "</text>\n";
  }
  svg += "</svg>\n";
  return svg;
}

}  // namespace tesseramill
