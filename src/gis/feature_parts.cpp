#include "gis/feature_parts.h"

#include <ostream>

#include <cpl_error.h>

#include "common/failure.h"
#include "gis/model_pieces.h"
#include "output/number_format.h"

namespace tesseramill {

namespace {

std::string feature_text(std::int64_t fid, const SourceLayer& layer) {
  return "Feature " + format_integer(fid) + " of layer " + layer.name;
}

std::string type_name(const OGRGeometry& g) { return g.getGeometryName(); }

[[noreturn]] void wrong_type(RunState& state, std::int64_t fid, const SourceLayer& layer, const OGRGeometry& g,
                             FeatureSet set, const char* wanted) {
  fail(state, feature_text(fid, layer) + " is a " + type_name(g) + ", but the " + feature_set_word(set) +
                  " are made of " + wanted + ".");
}

void add_polygon(const OGRPolygon& polygon, std::int64_t fid, std::optional<double> spacing,
                 std::vector<PolygonPart>& out) {
  if (polygon.IsEmpty()) return;
  PolygonPart part;
  part.fid = fid;
  part.part = 0;
  part.spacing = spacing;
  part.outer = outline_vertices(*polygon.getExteriorRing(), true, kMergeDistance);
  for (int r = 0; r < polygon.getNumInteriorRings(); ++r) {
    part.inner.push_back(outline_vertices(*polygon.getInteriorRing(r), true, kMergeDistance));
  }
  out.push_back(std::move(part));
}

// The polygons of a valid geometry, in the order they stand in it.
void collect_polygons(const OGRGeometry& g, std::int64_t fid, std::optional<double> spacing,
                      std::vector<PolygonPart>& out) {
  const OGRwkbGeometryType type = wkbFlatten(g.getGeometryType());
  if (type == wkbPolygon) {
    add_polygon(*g.toPolygon(), fid, spacing, out);
  } else if (type == wkbMultiPolygon || type == wkbGeometryCollection) {
    for (const OGRGeometry* member : *g.toGeometryCollection()) collect_polygons(*member, fid, spacing, out);
  }
}

// Inner rings of no area, which dissolves leave behind, make a polygon
// invalid for GEOS though nothing is wrong with it.  A ring below a square
// millimetre (the merge distance squared) is such a ring; it goes with a
// line on the screen before the polygon is judged.
void drop_void_rings(OGRPolygon& polygon, std::int64_t fid, const SourceLayer& layer, int part, std::ostream& screen) {
  for (int r = polygon.getNumInteriorRings() - 1; r >= 0; --r) {
    const double area = polygon.getInteriorRing(r)->get_Area();
    if (area >= kMergeDistance * kMergeDistance) continue;
    screen << " - inner ring " << r + 1 << " of " << (part > 0 ? "part " + format_integer(part) + " of " : "")
           << "feature " << format_integer(fid) << " of layer " << layer.name << " left out: its area of "
           << format_fixed(area, 0, 1) << " is far smaller than a cell there.\n";
    polygon.removeRing(r + 1);
  }
}

void drop_void_rings(OGRGeometry& g, std::int64_t fid, const SourceLayer& layer, std::ostream& screen) {
  const OGRwkbGeometryType type = wkbFlatten(g.getGeometryType());
  if (type == wkbPolygon) drop_void_rings(*g.toPolygon(), fid, layer, 0, screen);
  if (type == wkbMultiPolygon) {
    OGRMultiPolygon& parts = *g.toMultiPolygon();
    for (int k = 0; k < parts.getNumGeometries(); ++k) {
      drop_void_rings(*parts.getGeometryRef(k), fid, layer, parts.getNumGeometries() > 1 ? k + 1 : 0, screen);
    }
  }
}

}  // namespace

std::vector<PolygonPart> polygon_parts(RunState& state, const SourceLayer& layer, FeatureSet set, bool make_valid,
                                       std::ostream& screen) {
  std::vector<PolygonPart> out;
  for (const LayerFeature& f : layer.features) {
    const OGRwkbGeometryType type = wkbFlatten(f.geometry->getGeometryType());
    if (type != wkbPolygon && type != wkbMultiPolygon) wrong_type(state, f.fid, layer, *f.geometry, set, "polygons");
    drop_void_rings(*f.geometry, f.fid, layer, screen);
    std::string reason;
    const std::size_t first = out.size();
    if (geos_valid(*f.geometry, reason)) {
      collect_polygons(*f.geometry, f.fid, f.spacing, out);
      number_parts(out, first);
      continue;
    }
    if (!make_valid) {
      fail(state, feature_text(f.fid, layer) + " is not a valid polygon: " + reason +
                      ". Repair it in a GIS, or run the import again with --make-valid.");
    }
    CPLPushErrorHandler(CPLQuietErrorHandler);
    OGRGeometryUniquePtr repaired(f.geometry->MakeValid());
    CPLPopErrorHandler();
    if (!repaired) fail(state, feature_text(f.fid, layer) + " is not a valid polygon (" + reason + ") and cannot be repaired.");
    const std::size_t before = out.size();
    collect_polygons(*repaired, f.fid, f.spacing, out);
    number_parts(out, first);
    screen << " - " << feature_text(f.fid, layer) << " repaired (" << reason << "): "
           << format_integer(static_cast<std::int64_t>(out.size() - before)) << " polygon"
           << (out.size() - before == 1 ? "" : "s") << " now.\n";
  }
  return out;
}

std::vector<OutlinePart> line_parts(RunState& state, const SourceLayer& layer, std::ostream& screen) {
  std::vector<OutlinePart> out;
  for (const LayerFeature& f : layer.features) {
    const std::size_t first = out.size();
    std::vector<const OGRLineString*> members;
    const OGRwkbGeometryType type = wkbFlatten(f.geometry->getGeometryType());
    if (type == wkbLineString) {
      members.push_back(f.geometry->toLineString());
    } else if (type == wkbMultiLineString) {
      for (const OGRLineString* line : *f.geometry->toMultiLineString()) members.push_back(line);
    } else {
      wrong_type(state, f.fid, layer, *f.geometry, FeatureSet::kLines, "lines");
    }
    for (const OGRLineString* line : members) {
      OutlinePart part{f.fid, f.spacing, outline_vertices(*line, false, kMergeDistance)};
      if (part.xy.size() < 4) {
        screen << " - a line of " << feature_text(f.fid, layer) << " left out: it is shorter than a millimetre.\n";
        continue;
      }
      out.push_back(std::move(part));
    }
    number_parts(out, first);
  }
  return out;
}

std::vector<OutlinePart> point_parts(RunState& state, const SourceLayer& layer) {
  std::vector<OutlinePart> out;
  for (const LayerFeature& f : layer.features) {
    const std::size_t first = out.size();
    const OGRwkbGeometryType type = wkbFlatten(f.geometry->getGeometryType());
    if (type == wkbPoint) {
      const OGRPoint* p = f.geometry->toPoint();
      out.push_back(OutlinePart{f.fid, f.spacing, {p->getX(), p->getY()}});
    } else if (type == wkbMultiPoint) {
      for (const OGRPoint* p : *f.geometry->toMultiPoint()) out.push_back(OutlinePart{f.fid, f.spacing, {p->getX(), p->getY()}});
    } else {
      wrong_type(state, f.fid, layer, *f.geometry, FeatureSet::kPoints, "points");
    }
    number_parts(out, first);
  }
  return out;
}

}  // namespace tesseramill
