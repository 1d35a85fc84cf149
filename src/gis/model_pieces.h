// The model as the import builds it: every ring, line and point with the
// layer and feature it came from and the spacing it asks for.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <ogr_geometry.h>

namespace tesseramill {

struct ModelPiece {
  std::string layer;
  std::int64_t fid = 0;
  double spacing = 0.0;    // along a ring or line, round a point; a zone's cap
  std::vector<double> xy;  // x,y pairs; a ring repeats its first vertex at the end
  int part = 0;            // the part of a multi-part feature, from 1; 0 for a feature of one part
  int inner_ring = 0;      // the inner ring of a polygon this hole was, from 1; 0 for none
};

struct ImportModel {
  ModelPiece boundary;
  std::vector<ModelPiece> holes;
  std::vector<ModelPiece> lines;
  std::vector<ModelPiece> points;
  std::vector<ModelPiece> zones;
};

// "feature 3 of layer rivers", as messages name a piece; "part 2 of
// feature 3 ..." for a part of a multi-part feature, "inner ring 1 of
// feature 3 ..." for a hole of a polygon.
std::string piece_name(const ModelPiece& piece);

// The vertices of a ring or line as x,y pairs, consecutive vertices closer
// than `merge_distance` taken as one; a ring comes back closed, its last
// vertex repeating the first exactly.
std::vector<double> outline_vertices(const OGRSimpleCurve& curve, bool ring, double merge_distance);

OGRLinearRing linear_ring(const std::vector<double>& xy);
// A polygon of one ring, or of a ring and holes.
OGRPolygon ring_polygon(const std::vector<double>& xy);
OGRPolygon domain_polygon(const ImportModel& model);
OGRLineString line_string(const std::vector<double>& xy);

// GEOS's verdict on a geometry and, when it is not valid, its reason (which
// GDAL passes on as an error text).
bool geos_valid(const OGRGeometry& g, std::string& reason);

// Twice the signed area of a closed ring: positive anticlockwise.
double doubled_ring_area(const std::vector<double>& xy);
// The ring run anticlockwise.
void make_anticlockwise(std::vector<double>& xy);

}  // namespace tesseramill
