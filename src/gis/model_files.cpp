#include "gis/model_files.h"

#include <charconv>
#include <cmath>

#include "common/correctly_rounded.h"
#include "output/number_format.h"

namespace tesseramill {

namespace {

// Cells of a model with a spacing field that is s on a line and grows by
// the rate g away from it until the largest spacing: a row of cells of
// spacing s g^k along each side, k = 0, 1, ..., whose cells along a length
// L number L / (s g^k); their sum is below (L / s) g / (g - 1).
double band_cells(double length, double spacing, std::size_t vertices, double growth) {
  // The mesher keeps every vertex of a ring or line as a mesh point.
  const double along = std::max(length / spacing, static_cast<double>(vertices));
  return 2.0 * along * growth / (growth - 1.0);
}

// A cell of spacing s, a hexagon across its flats, covers about
// sqrt(3)/2 s^2.
constexpr double kCellAreaFactor = 0.8660254037844386;

// The estimate is doubled and 1000 added: MAX_CELLS only sizes the mesher's
// tables, so room to spare costs a little memory, while too little stops a
// run.
constexpr double kMargin = 2.0;
constexpr double kSlack = 1000.0;

double outline_length(const std::vector<double>& xy) {
  double length = 0.0;
  for (std::size_t k = 2; k + 1 < xy.size(); k += 2) length += cr_hypot(xy[k] - xy[k - 2], xy[k + 1] - xy[k - 1]);
  return length;
}

void append_bln_group(std::string& out, const std::vector<double>& xy, const double* spacing) {
  out += format_integer(static_cast<std::int64_t>(xy.size() / 2));
  out += '\n';
  for (std::size_t k = 0; k + 1 < xy.size(); k += 2) {
    out += exact_text(xy[k]);
    out += ' ';
    out += exact_text(xy[k + 1]);
    if (spacing != nullptr) {
      out += ' ';
      out += exact_text(*spacing);
    }
    out += '\n';
  }
}

std::string block(const std::string& name, const std::string& body) {
  return "START " + name + "\n" + body + "END " + name + "\n\n";
}

}  // namespace

std::string exact_text(double value) {
  // Map coordinates and spacings read best without an exponent; the
  // shortest fixed text that reads back as the same double is at most 17
  // significant digits wide between 1e-4 and 1e15, which keeps a BLN line
  // of three numbers inside the 100 characters the mesher reads.
  char buffer[400];
  const double size = std::fabs(value);
  const bool fixed = value == 0.0 || (size >= 1e-4 && size < 1e15);
  const std::to_chars_result r = fixed ? std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed)
                                       : std::to_chars(buffer, buffer + sizeof buffer, value);
  return std::string(buffer, r.ptr);
}

std::int32_t estimated_max_cells(const ImportModel& model, const ImportOptions& o) {
  const double s = o.max_spacing;
  const double g = o.growth;
  double area = 0.5 * std::fabs(doubled_ring_area(model.boundary.xy));
  for (const ModelPiece& h : model.holes) area -= 0.5 * std::fabs(doubled_ring_area(h.xy));
  double cells = std::max(area, 0.0) / (kCellAreaFactor * s * s);
  cells += band_cells(outline_length(model.boundary.xy), model.boundary.spacing, model.boundary.xy.size() / 2, g);
  for (const ModelPiece& h : model.holes) cells += band_cells(outline_length(h.xy), h.spacing, h.xy.size() / 2, g);
  for (const ModelPiece& l : model.lines) cells += band_cells(outline_length(l.xy), l.spacing, l.xy.size() / 2, g);
  // Round a well, ring k of cells has a radius of about s (g^k - 1)/(g - 1)
  // and cells of spacing s g^k, so about 2 pi / (g - 1) cells, up to the
  // ring where the spacing reaches the largest: ln(S/s)/ln(g) rings.
  for (const ModelPiece& p : model.points) {
    cells += 2.0 * 3.141592653589793 / (g - 1.0) * (cr_log(s / p.spacing) / cr_log(g) + 1.0);
  }
  for (const ModelPiece& z : model.zones) {
    cells += 0.5 * std::fabs(doubled_ring_area(z.xy)) / (kCellAreaFactor * z.spacing * z.spacing);
  }
  const double wanted = std::ceil((kMargin * cells + kSlack) / 1000.0) * 1000.0;
  return wanted >= 2147483000.0 ? 2147483000 : static_cast<std::int32_t>(wanted);
}

void round_origin(const ImportModel& model, double& x, double& y) {
  const std::vector<double>& xy = model.boundary.xy;
  double xmin = xy[0], xmax = xy[0], ymin = xy[1], ymax = xy[1];
  for (std::size_t k = 0; k + 1 < xy.size(); k += 2) {
    xmin = std::min(xmin, xy[k]);
    xmax = std::max(xmax, xy[k]);
    ymin = std::min(ymin, xy[k + 1]);
    ymax = std::max(ymax, xy[k + 1]);
  }
  const double extent = std::max(xmax - xmin, ymax - ymin);
  double step = 1.0;
  while (step * 10.0 <= extent) step *= 10.0;
  x = std::floor(xmin / step) * step;
  y = std::floor(ymin / step) * step;
}

std::vector<ModelFile> model_files(const ImportModel& model, const ImportOptions& o, std::int32_t max_cells,
                                   double xorigin, double yorigin, const std::string& crs_wkt) {
  std::vector<ModelFile> files;
  const std::string& name = o.name;
  std::string control = "# Model written by tesseramill-gis import.\n\n";
  std::string body = "  MAX_CENTROID_SEPARATION = " + exact_text(o.max_spacing) + "\n  POLY_GROWTH_RATE = " +
                     exact_text(o.growth) + "\n  OUT_FILE_BASE = " + name + "\n  MAX_CELLS = " +
                     format_integer(max_cells) + "\n";
  if (o.max_lloyd) body += "  MAX_LLOYD = " + format_integer(*o.max_lloyd) + "\n";
  control += block("CONTROL", body);

  std::vector<ModelFile> blns;
  auto ring_file = [&](const std::string& file, const ModelPiece& piece, bool with_spacing) {
    ModelFile f{file, ""};
    append_bln_group(f.text, piece.xy, with_spacing ? &piece.spacing : nullptr);
    blns.push_back(std::move(f));
  };
  ring_file(name + "_boundary.bln", model.boundary, true);
  control += block("OUTER_BOUNDARY", "  BLN_FILE = " + name + "_boundary.bln\n");
  for (std::size_t h = 0; h < model.holes.size(); ++h) {
    const std::string file = name + "_hole" + format_integer(static_cast<std::int64_t>(h + 1)) + ".bln";
    ring_file(file, model.holes[h], true);
    control += block("INNER_BOUNDARY", "  BLN_FILE = " + file + "\n");
  }
  if (!model.lines.empty()) {
    ModelFile f{name + "_lines.bln", ""};
    for (const ModelPiece& line : model.lines) append_bln_group(f.text, line.xy, &line.spacing);
    blns.push_back(std::move(f));
    control += block("INNER_LINE", "  NUMLINES = " + format_integer(static_cast<std::int64_t>(model.lines.size())) +
                                       "\n  BLN_FILE = " + name + "_lines.bln\n");
  }
  if (!model.points.empty()) {
    ModelFile f{name + "_points.bln", format_integer(static_cast<std::int64_t>(model.points.size())) + "\n"};
    for (const ModelPiece& p : model.points) {
      f.text += exact_text(p.xy[0]) + " " + exact_text(p.xy[1]) + " " + exact_text(p.spacing) + "\n";
    }
    blns.push_back(std::move(f));
    control += block("INNER_POINTS", "  BLN_FILE = " + name + "_points.bln\n");
  }
  for (std::size_t z = 0; z < model.zones.size(); ++z) {
    const std::string file = name + "_zone" + format_integer(static_cast<std::int64_t>(z + 1)) + ".bln";
    ring_file(file, model.zones[z], false);
    control += block("INNER_POLYGON", "  BLN_FILE = " + file + "\n  MAX_CENTROID_SEPARATION = " +
                                          exact_text(model.zones[z].spacing) + "\n");
  }
  control += block("MF6", "  MF6_BASENAME = " + name + "\n  NLAY = " + format_integer(o.nlay) + "\n  XORIGIN = " +
                              exact_text(xorigin) + "\n  YORIGIN = " + exact_text(yorigin) + "\n");
  control.resize(control.size() - 1);  // no empty line after the last block
  files.push_back({name + ".in", control});
  for (ModelFile& f : blns) files.push_back(std::move(f));
  files.push_back({name + ".prj", crs_wkt + "\n"});
  return files;
}

}  // namespace tesseramill
