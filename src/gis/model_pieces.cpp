#include "gis/model_pieces.h"

#include <algorithm>
#include <cmath>

#include <cpl_error.h>

#include "common/correctly_rounded.h"
#include "output/number_format.h"

namespace tesseramill {

std::string piece_name(const ModelPiece& piece) {
  std::string name;
  if (piece.inner_ring > 0) name += "inner ring " + format_integer(piece.inner_ring) + " of ";
  if (piece.part > 0) name += "part " + format_integer(piece.part) + " of ";
  return name + "feature " + format_integer(piece.fid) + " of layer " + piece.layer;
}

std::vector<double> outline_vertices(const OGRSimpleCurve& curve, bool ring, double merge_distance) {
  std::vector<double> xy;
  const int n = curve.getNumPoints();
  xy.reserve(2 * static_cast<std::size_t>(n) + 2);
  for (int k = 0; k < n; ++k) {
    const double x = curve.getX(k);
    const double y = curve.getY(k);
    const std::size_t m = xy.size();
    if (m >= 2 && cr_hypot(x - xy[m - 2], y - xy[m - 1]) < merge_distance) continue;
    xy.push_back(x);
    xy.push_back(y);
  }
  if (ring) {
    // The closing vertex, and any vertex before it that stands on the first,
    // go; the ring is then closed exactly on its first vertex.
    while (xy.size() >= 4 && cr_hypot(xy[xy.size() - 2] - xy[0], xy[xy.size() - 1] - xy[1]) < merge_distance) {
      xy.resize(xy.size() - 2);
    }
    xy.push_back(xy[0]);
    xy.push_back(xy[1]);
  }
  return xy;
}

namespace {

void set_points(OGRSimpleCurve& curve, const std::vector<double>& xy) {
  const int n = static_cast<int>(xy.size() / 2);
  curve.setNumPoints(n, FALSE);
  for (int k = 0; k < n; ++k) curve.setPoint(k, xy[2 * static_cast<std::size_t>(k)], xy[2 * static_cast<std::size_t>(k) + 1]);
}

}  // namespace

OGRLinearRing linear_ring(const std::vector<double>& xy) {
  OGRLinearRing ring;
  set_points(ring, xy);
  return ring;
}

OGRPolygon ring_polygon(const std::vector<double>& xy) {
  OGRPolygon polygon;
  polygon.addRingDirectly(new OGRLinearRing(linear_ring(xy)));
  return polygon;
}

OGRPolygon domain_polygon(const ImportModel& model) {
  OGRPolygon polygon = ring_polygon(model.boundary.xy);
  for (const ModelPiece& hole : model.holes) polygon.addRingDirectly(new OGRLinearRing(linear_ring(hole.xy)));
  return polygon;
}

OGRLineString line_string(const std::vector<double>& xy) {
  OGRLineString line;
  set_points(line, xy);
  return line;
}

bool geos_valid(const OGRGeometry& g, std::string& reason) {
  CPLPushErrorHandler(CPLQuietErrorHandler);
  CPLErrorReset();
  const bool valid = g.IsValid();
  reason = CPLGetLastErrorMsg();
  CPLPopErrorHandler();
  if (reason.empty()) reason = "GEOS finds it invalid";
  return valid;
}

double doubled_ring_area(const std::vector<double>& xy) {
  double sum = 0.0;
  // Products taken from the first vertex, so that large map coordinates
  // cancel before they are multiplied.
  for (std::size_t k = 2; k + 3 < xy.size(); k += 2) {
    const double ax = xy[k] - xy[0];
    const double ay = xy[k + 1] - xy[1];
    const double bx = xy[k + 2] - xy[0];
    const double by = xy[k + 3] - xy[1];
    sum += ax * by - bx * ay;
  }
  return sum;
}

void make_anticlockwise(std::vector<double>& xy) {
  if (doubled_ring_area(xy) >= 0.0) return;
  for (std::size_t a = 0, b = xy.size() - 2; a < b; a += 2, b -= 2) {
    std::swap(xy[a], xy[b]);
    std::swap(xy[a + 1], xy[b + 1]);
  }
}

}  // namespace tesseramill
