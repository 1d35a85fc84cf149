#include "gis/model_relations.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include <cpl_error.h>
#include <ogr_api.h>

#include "common/correctly_rounded.h"
#include "output/number_format.h"

namespace tesseramill {

namespace {

struct PreparedDeleter {
  void operator()(OGRPreparedGeometry* p) const { OGRDestroyPreparedGeometry(p); }
};
using Prepared = std::unique_ptr<OGRPreparedGeometry, PreparedDeleter>;

Prepared prepare(const OGRGeometry& g) { return Prepared(OGRCreatePreparedGeometry(OGRGeometry::ToHandle(const_cast<OGRGeometry*>(&g)))); }

bool prepared_contains(const Prepared& p, const OGRGeometry& g) {
  return OGRPreparedGeometryContains(p.get(), OGRGeometry::ToHandle(const_cast<OGRGeometry*>(&g))) != 0;
}
bool prepared_intersects(const Prepared& p, const OGRGeometry& g) {
  return OGRPreparedGeometryIntersects(p.get(), OGRGeometry::ToHandle(const_cast<OGRGeometry*>(&g))) != 0;
}

// A ring of three distinct vertices or more that GEOS finds valid.
bool simple_ring(const std::vector<double>& xy, std::string& reason) {
  if (xy.size() < 8) {
    reason = "it has fewer than three distinct vertices";
    return false;
  }
  return geos_valid(ring_polygon(xy), reason);
}

std::string number(double v) { return format_fixed(v, 0, 1); }

// Strictly inside a hole: the mesher accepts a well on a hole's edge.
bool strictly_inside(const std::vector<double>& ring, const OGRPoint& p) {
  const OGRPolygon polygon = ring_polygon(ring);
  return polygon.Contains(&p) != 0;
}

}  // namespace

InsideFlags inside_flags(const ImportModel& model) {
  InsideFlags flags;
  const OGRPolygon outer = ring_polygon(model.boundary.xy);
  const Prepared prepared = prepare(outer);
  for (const ModelPiece& line : model.lines) flags.lines.push_back(prepared_contains(prepared, line_string(line.xy)));
  for (const ModelPiece& zone : model.zones) flags.zones.push_back(prepared_contains(prepared, ring_polygon(zone.xy)));
  return flags;
}

std::vector<Breach> model_breaches(const ImportModel& model, const InsideFlags* kept) {
  std::vector<Breach> out;
  const std::size_t first_hole = 1;
  const std::size_t first_line = first_hole + model.holes.size();
  const std::size_t first_zone = first_line + model.lines.size();
  const std::string boundary = "the boundary (" + piece_name(model.boundary) + ")";
  std::string reason;

  if (!simple_ring(model.boundary.xy, reason)) {
    out.push_back({"The boundary (" + piece_name(model.boundary) + ") is not a simple ring: " + reason + ".", {0}});
    return out;  // nothing else can be judged against it
  }
  const OGRPolygon outer = ring_polygon(model.boundary.xy);
  const Prepared prepared_outer = prepare(outer);

  for (std::size_t h = 0; h < model.holes.size(); ++h) {
    const ModelPiece& hole = model.holes[h];
    if (!simple_ring(hole.xy, reason)) {
      out.push_back({"Hole " + piece_name(hole) + " is not a simple ring: " + reason + ".", {first_hole + h}});
      continue;
    }
    if (!prepared_contains(prepared_outer, ring_polygon(hole.xy))) {
      out.push_back({"Hole " + piece_name(hole) + " is not inside " + boundary +
                         ": a hole must lie wholly within the boundary.",
                     {0, first_hole + h}});
    }
    for (std::size_t g = h + 1; g < model.holes.size(); ++g) {
      const OGRPolygon a = ring_polygon(hole.xy);
      const OGRPolygon b = ring_polygon(model.holes[g].xy);
      if (a.Intersects(&b) && !a.Touches(&b)) {
        out.push_back({"Holes " + piece_name(hole) + " and " + piece_name(model.holes[g]) +
                           " overlap: merge them into one hole.",
                       {first_hole + h, first_hole + g}});
      }
    }
  }
  for (std::size_t z = 0; z < model.zones.size(); ++z) {
    if (!simple_ring(model.zones[z].xy, reason)) {
      out.push_back({"Zone " + piece_name(model.zones[z]) + " is not a simple ring: " + reason + ".", {first_zone + z}});
    } else if (kept != nullptr && kept->zones[z] != 0 &&
               !prepared_contains(prepared_outer, ring_polygon(model.zones[z].xy))) {
      out.push_back({"Zone " + piece_name(model.zones[z]) + " leaves " + boundary + ".", {0, first_zone + z}});
    }
  }
  if (kept != nullptr) {
    for (std::size_t l = 0; l < model.lines.size(); ++l) {
      if (kept->lines[l] != 0 && !prepared_contains(prepared_outer, line_string(model.lines[l].xy))) {
        out.push_back({"Line " + piece_name(model.lines[l]) + " leaves " + boundary + ".", {0, first_line + l}});
      }
    }
  }

  // Wells: inside the outer ring or on it, and not strictly inside a hole.
  for (const ModelPiece& well : model.points) {
    const OGRPoint p(well.xy[0], well.xy[1]);
    if (!prepared_intersects(prepared_outer, p)) {
      out.push_back({"Well " + piece_name(well) + " lies outside " + boundary + ".", {0}});
      continue;
    }
    for (std::size_t h = 0; h < model.holes.size(); ++h) {
      if (strictly_inside(model.holes[h].xy, p)) {
        out.push_back({"Well " + piece_name(well) + " lies in hole " + piece_name(model.holes[h]) + ".",
                       {first_hole + h}});
      }
    }
  }
  // Wells apart: the mesher refuses two wells closer than the spacing of
  // either.  Sorted by x, each well meets only those within the largest
  // spacing in x, so that many wells cost n log n and not n squared.
  std::vector<std::size_t> order(model.points.size());
  for (std::size_t k = 0; k < order.size(); ++k) order[k] = k;
  std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    return model.points[a].xy[0] < model.points[b].xy[0] ||
           (model.points[a].xy[0] == model.points[b].xy[0] && a < b);
  });
  double largest = 0.0;
  for (const ModelPiece& well : model.points) largest = std::max(largest, well.spacing);
  for (std::size_t i = 0; i < order.size(); ++i) {
    const ModelPiece& a = model.points[order[i]];
    for (std::size_t j = i + 1; j < order.size() && model.points[order[j]].xy[0] - a.xy[0] < largest; ++j) {
      const ModelPiece& b = model.points[order[j]];
      const double d = cr_hypot(b.xy[0] - a.xy[0], b.xy[1] - a.xy[1]);
      const double wanted = std::max(a.spacing, b.spacing);
      if (d < wanted) {
        const ModelPiece& first = order[i] < order[j] ? a : b;
        const ModelPiece& second = order[i] < order[j] ? b : a;
        out.push_back({"Wells " + piece_name(first) + " and " + piece_name(second) + " stand " + number(d) +
                           " apart, closer than the spacing of " + number(wanted) +
                           " asked at one of them. Drop or merge one of them, or ask a smaller spacing.",
                       {}});
      }
    }
  }
  return out;
}

std::vector<Breach> gap_breaches(const ImportModel& model) {
  std::vector<Breach> out;
  // Rings closer than half the smaller spacing leave no room for a row of
  // cells between them: measured, a lake 5 m under a side with spacings of
  // 50 and 400 stops the mesher, or keeps it running without end, while 15 m
  // meshes.  Half the spacing keeps a margin above what was seen to fail;
  // swept over boundary spacings of 50 to 400 and hole spacings of 20 to
  // 150, a hole at 1.02 times this limit meshed to the end every time.
  std::vector<const ModelPiece*> rings{&model.boundary};
  for (const ModelPiece& h : model.holes) rings.push_back(&h);
  auto ring_text = [&](std::size_t k) {
    return k == 0 ? "the boundary (" + piece_name(model.boundary) + ")" : "hole " + piece_name(*rings[k]);
  };
  std::vector<OGRLineString> outlines;
  for (const ModelPiece* r : rings) outlines.push_back(line_string(r->xy));
  for (std::size_t a = 0; a < rings.size(); ++a) {
    for (std::size_t b = a + 1; b < rings.size(); ++b) {
      const double limit = 0.5 * std::min(rings[a]->spacing, rings[b]->spacing);
      const double d = outlines[a].Distance(&outlines[b]);
      if (d < limit) {
        const std::string first = a == 0 ? "Hole " + piece_name(*rings[b]) : "Holes " + piece_name(*rings[a]);
        const std::string second = a == 0 ? "the boundary (" + piece_name(model.boundary) + ")" : piece_name(*rings[b]);
        out.push_back({first + (a == 0 ? " comes within " : " and " + second + " come within ") + number(d) +
                           (a == 0 ? " of " + second : " of each other") +
                           ", less than half the smaller of their spacings (" + number(limit) +
                           "): the mesher cannot place cells in so narrow a gap. Move them apart, or merge them.",
                       {a, b}});
      }
    }
  }
  // A well needs the ring of mesh points the mesher sets round it at its
  // spacing: measured, a well 15 m from a side with a spacing of 20 stops
  // the mesher, 30 m meshes.  Swept over side spacings of 50 to 400 and
  // well spacings of 10 to 60, a well at 1.02 times its spacing from the
  // side meshed to the end every time.
  for (const ModelPiece& well : model.points) {
    const OGRPoint p(well.xy[0], well.xy[1]);
    for (std::size_t k = 0; k < rings.size(); ++k) {
      const double d = outlines[k].Distance(&p);
      if (d < well.spacing) {
        out.push_back({"Well " + piece_name(well) + " stands " + number(d) + " from " + ring_text(k) +
                           ", closer than its spacing of " + number(well.spacing) +
                           ": the mesher cannot place the cells round it. Move it, or ask a smaller spacing there.",
                       {k}});
      }
    }
  }
  return out;
}

}  // namespace tesseramill
