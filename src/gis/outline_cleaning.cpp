#include "gis/outline_cleaning.h"

#include <memory>

#include <cpl_error.h>
#include <ogr_api.h>

#include "gis/model_pieces.h"

namespace tesseramill {

namespace {

// Arcs of the buffers are drawn with 8 segments a quarter circle: the chord
// of a segment departs from the arc by under 2 % of the radius, far inside
// the thinning tolerance that follows, which removes most of those vertices.
constexpr int kQuarterSegments = 8;

OGRGeometryUniquePtr buffered(const OGRGeometry& g, double distance) {
  return OGRGeometryUniquePtr(g.Buffer(distance, kQuarterSegments));
}

// Before the buffers the ring is simplified, keeping it valid, within a
// tenth of the radius: the buffers of a ring digitised metres apart with
// metre-sized wiggles cost GEOS time that grows far faster than the
// vertices (20 s for 60,000), while a deviation of a tenth of the radius is
// below what the closing and opening change anyway.
constexpr double kPresimplify = 0.1;

}  // namespace

CleanedRing clean_ring(const std::vector<double>& ring, double radius) {
  CleanedRing out;
  const OGRPolygon original = ring_polygon(ring);
  CPLPushErrorHandler(CPLQuietErrorHandler);
  OGRGeometryUniquePtr simplified(original.SimplifyPreserveTopology(kPresimplify * radius));
  OGRGeometryUniquePtr grown = buffered(simplified ? *simplified : static_cast<const OGRGeometry&>(original), radius);
  OGRGeometryUniquePtr closed = grown ? buffered(*grown, -radius) : nullptr;
  OGRGeometryUniquePtr shrunk = closed ? buffered(*closed, -radius) : nullptr;
  OGRGeometryUniquePtr opened = shrunk ? buffered(*shrunk, radius) : nullptr;
  CPLPopErrorHandler();
  if (!opened || opened->IsEmpty()) {
    out.removed = original.get_Area();
    return out;
  }
  // The largest polygon is the cleaned ring; the opening may have cut off others.
  std::vector<const OGRPolygon*> parts;
  if (wkbFlatten(opened->getGeometryType()) == wkbPolygon) {
    parts.push_back(opened->toPolygon());
  } else {
    for (const OGRGeometry* member : *opened->toGeometryCollection()) {
      if (wkbFlatten(member->getGeometryType()) == wkbPolygon) parts.push_back(member->toPolygon());
    }
  }
  const OGRPolygon* largest = nullptr;
  for (const OGRPolygon* p : parts) {
    if (largest == nullptr || p->get_Area() > largest->get_Area()) largest = p;
  }
  for (const OGRPolygon* p : parts) {
    if (p != largest) out.left_out.push_back(p->get_Area());
  }
  if (largest == nullptr) {
    out.removed = original.get_Area();
    return out;
  }
  // Only the outer ring is kept: a bay that the closing shut becomes part of
  // the polygon, and counts as added area.
  out.ring = outline_vertices(*largest->getExteriorRing(), true, 0.0);
  const OGRPolygon cleaned = ring_polygon(out.ring);
  CPLPushErrorHandler(CPLQuietErrorHandler);
  OGRGeometryUniquePtr plus(cleaned.Difference(&original));
  OGRGeometryUniquePtr minus(original.Difference(&cleaned));
  CPLPopErrorHandler();
  out.added = plus ? OGR_G_Area(OGRGeometry::ToHandle(plus.get())) : 0.0;
  out.removed = minus ? OGR_G_Area(OGRGeometry::ToHandle(minus.get())) : 0.0;
  return out;
}

}  // namespace tesseramill
