#include "gis/model_build.h"

#include <cmath>
#include <ostream>

#include "common/correctly_rounded.h"
#include "common/failure.h"
#include "common/limits.h"
#include "gis/feature_parts.h"
#include "output/number_format.h"

namespace tesseramill {

namespace {

constexpr const char* kSpacingOptionOf[kFeatureSetCount] = {"--boundary-spacing", "--hole-spacing",
                                                            "--line-spacing", "--point-spacing", "--zone-spacing"};

double resolve_spacing(RunState& state, const ImportOptions& o, FeatureSet set, std::optional<double> own,
                       const std::string& layer, std::int64_t fid) {
  if (own) return *own;
  const int s = static_cast<int>(set);
  if (o.set_spacing[s]) return *o.set_spacing[s];
  fail(state, "Feature " + format_integer(fid) + " of layer " + layer + " has no value in field " + o.spacing_field +
                  ", and no " + kSpacingOptionOf[s] + " was given for the " + feature_set_word(set) + ".");
}

double ring_area(const std::vector<double>& xy) { return 0.5 * std::fabs(doubled_ring_area(xy)); }

void check_spacing(RunState& state, const ImportOptions& o, const ModelPiece& piece, bool zone) {
  if (piece.spacing <= o.max_spacing) return;
  if (zone) {
    fail(state, "The cap of " + screen_number(piece.spacing) + " of zone " + piece_name(piece) +
                    " is above --max-spacing " + screen_number(o.max_spacing) +
                    ": a zone's cap may not be larger than the largest spacing.");
  }
  fail(state, "The spacing of " + screen_number(piece.spacing) + " asked by " + piece_name(piece) +
                  " is above --max-spacing " + screen_number(o.max_spacing) +
                  ": no spacing may be larger than the largest.");
}

void left_out(std::ostream& screen, const ModelPiece& piece, double area) {
  screen << " - " << piece_name(piece) << " left out: its area of " << screen_number(area)
         << " is far smaller than a cell of spacing " << screen_number(piece.spacing) << " there.\n";
}

// The rings of polygons as holes or zones, each ring its own piece.
void add_rings(RunState& state, const ImportOptions& o, FeatureSet set, const SourceLayer& layer,
               std::vector<ModelPiece>& out, std::ostream& screen) {
  for (PolygonPart& part : polygon_parts(state, layer, set, o.make_valid, screen)) {
    ModelPiece piece{layer.name, part.fid, resolve_spacing(state, o, set, part.spacing, layer.name, part.fid),
                     std::move(part.outer), part.part};
    if (!part.inner.empty()) {
      screen << " - the " << part.inner.size() << " inner ring" << (part.inner.size() == 1 ? "" : "s") << " of "
             << piece_name(piece) << " left out: a " << (set == FeatureSet::kZones ? "zone" : "hole")
             << " is one ring.\n";
    }
    const double area = ring_area(piece.xy);
    if (far_smaller_than_a_cell(area, piece.spacing)) {
      left_out(screen, piece, area);
      continue;
    }
    out.push_back(std::move(piece));
  }
}

}  // namespace

std::string screen_number(double value) { return format_fixed(value, 0, 1); }

bool far_smaller_than_a_cell(double area, double spacing) { return area < 0.01 * spacing * spacing; }

ImportModel build_model(RunState& state, const ImportOptions& o, const ImportLayers& layers, std::ostream& screen) {
  ImportModel model;
  const SourceLayer& boundary_layer = *layers[0];
  std::vector<ModelPiece> boundaries;
  std::vector<std::vector<std::vector<double>>> boundary_holes;
  for (PolygonPart& part : polygon_parts(state, boundary_layer, FeatureSet::kBoundary, o.make_valid, screen)) {
    ModelPiece piece{boundary_layer.name, part.fid,
                     resolve_spacing(state, o, FeatureSet::kBoundary, part.spacing, boundary_layer.name, part.fid),
                     std::move(part.outer), part.part};
    const double area = ring_area(piece.xy);
    if (far_smaller_than_a_cell(area, piece.spacing)) {
      left_out(screen, piece, area);
      continue;
    }
    boundaries.push_back(std::move(piece));
    boundary_holes.push_back(std::move(part.inner));
  }
  if (boundaries.size() != 1) {
    std::string names;
    for (const ModelPiece& b : boundaries) names += (names.empty() ? "" : ", ") + piece_name(b);
    fail(state, boundaries.empty()
                    ? "Layer " + boundary_layer.name + " holds no polygon large enough to be the boundary."
                    : "Layer " + boundary_layer.name + " gives " + format_integer(static_cast<std::int64_t>(boundaries.size())) +
                          " polygons for the boundary (" + names +
                          "), but a model has one. Dissolve them into one polygon first.");
  }
  model.boundary = std::move(boundaries[0]);
  check_spacing(state, o, model.boundary, false);

  // The boundary's own holes take --hole-spacing, else the boundary's spacing.
  const double own_hole_spacing = o.set_spacing[1] ? *o.set_spacing[1] : model.boundary.spacing;
  int inner_ring = 0;
  for (std::vector<double>& ring : boundary_holes[0]) {
    ModelPiece hole{model.boundary.layer, model.boundary.fid, own_hole_spacing, std::move(ring), model.boundary.part,
                    ++inner_ring};
    const double area = ring_area(hole.xy);
    if (far_smaller_than_a_cell(area, hole.spacing)) {
      left_out(screen, hole, area);
      continue;
    }
    model.holes.push_back(std::move(hole));
  }
  if (layers[1]) add_rings(state, o, FeatureSet::kHoles, *layers[1], model.holes, screen);
  if (layers[2]) {
    for (OutlinePart& part : line_parts(state, *layers[2], screen)) {
      model.lines.push_back({layers[2]->name, part.fid,
                             resolve_spacing(state, o, FeatureSet::kLines, part.spacing, layers[2]->name, part.fid),
                             std::move(part.xy), part.part});
    }
  }
  if (layers[3]) {
    for (OutlinePart& part : point_parts(state, *layers[3])) {
      model.points.push_back({layers[3]->name, part.fid,
                              resolve_spacing(state, o, FeatureSet::kPoints, part.spacing, layers[3]->name, part.fid),
                              std::move(part.xy), part.part});
    }
  }
  if (layers[4]) add_rings(state, o, FeatureSet::kZones, *layers[4], model.zones, screen);

  for (const ModelPiece& p : model.holes) check_spacing(state, o, p, false);
  for (const ModelPiece& p : model.lines) check_spacing(state, o, p, false);
  for (const ModelPiece& p : model.points) check_spacing(state, o, p, false);
  for (const ModelPiece& p : model.zones) check_spacing(state, o, p, true);
  check_model_limits(state, model);
  return model;
}

void check_model_limits(RunState& state, const ImportModel& model) {
  auto smallest_ring = [](const std::vector<ModelPiece>& rings) {
    std::size_t best = 0;
    for (std::size_t k = 1; k < rings.size(); ++k) {
      if (ring_area(rings[k].xy) < ring_area(rings[best].xy)) best = k;
    }
    return best;
  };
  if (model.holes.size() > static_cast<std::size_t>(kMaxInnerBoundaryBlocks)) {
    const ModelPiece& h = model.holes[smallest_ring(model.holes)];
    fail(state, "The model would have " + format_integer(static_cast<std::int64_t>(model.holes.size())) +
                    " holes, but the mesher takes at most 5. Merge holes that lie close together, or drop the "
                    "smallest: " + piece_name(h) + " (area " + screen_number(ring_area(h.xy)) + ").");
  }
  if (model.lines.size() > static_cast<std::size_t>(kMaxInnerLines)) {
    std::size_t best = 0;
    std::vector<double> lengths;
    for (const ModelPiece& line : model.lines) {
      double length = 0.0;
      for (std::size_t k = 2; k + 1 < line.xy.size(); k += 2) {
        length += cr_hypot(line.xy[k] - line.xy[k - 2], line.xy[k + 1] - line.xy[k - 1]);
      }
      lengths.push_back(length);
    }
    for (std::size_t k = 1; k < lengths.size(); ++k) {
      if (lengths[k] < lengths[best]) best = k;
    }
    fail(state, "The model would have " + format_integer(static_cast<std::int64_t>(model.lines.size())) +
                    " lines, but the mesher takes at most 50. Merge lines that join end to end, or drop the "
                    "shortest: " + piece_name(model.lines[best]) + " (length " + screen_number(lengths[best]) + ").");
  }
  if (model.zones.size() > static_cast<std::size_t>(kMaxInnerPolygonBlocks)) {
    const ModelPiece& z = model.zones[smallest_ring(model.zones)];
    fail(state, "The model would have " + format_integer(static_cast<std::int64_t>(model.zones.size())) +
                    " zones, but the mesher takes at most 15. Merge zones with the same cap, or drop the smallest: " +
                    piece_name(z) + " (area " + screen_number(ring_area(z.xy)) + ").");
  }
}

}  // namespace tesseramill
