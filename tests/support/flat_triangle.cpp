#include "support/flat_triangle.h"

#include "common/run_state.h"
#include "triangulation/triangulate_points.h"

namespace tesseramill_test {

namespace {

std::vector<double> chosen_shares;
std::vector<std::int32_t> flattened_triangles;

void flatten(tesseramill::RunState& state) {
  if (!flattened_triangles.empty()) return;
  const tesseramill::TriangleTable& tt = state.triangles;
  auto corner = [&](std::int32_t t, int e) { return static_cast<std::size_t>(tt.tri_vertex[3 * static_cast<std::size_t>(t - 1) + static_cast<std::size_t>(e)] - 1); };
  double shift = 0.0;
  for (const double share : chosen_shares) {
    std::int32_t t = static_cast<std::int32_t>(share * tt.triangle_count) + 1;
    while (state.mesh.mesh_point_label[corner(t, 0)] < 0) ++t;
    flattened_triangles.push_back(t);
    for (int e = 0; e < 3; ++e) {
      state.mesh.mesh_points[2 * corner(t, e)] = kFlatCorners[2 * e] + shift;
      state.mesh.mesh_points[2 * corner(t, e) + 1] = kFlatCorners[2 * e + 1];
    }
    shift += 100.0;
  }
}

}  // namespace

FlattenTriangles::FlattenTriangles(std::vector<double> shares) {
  chosen_shares = std::move(shares);
  flattened_triangles.clear();
  tesseramill::after_dtris2_for_tests = flatten;
}

FlattenTriangles::~FlattenTriangles() { tesseramill::after_dtris2_for_tests = nullptr; }

const std::vector<std::int32_t>& FlattenTriangles::flattened() { return flattened_triangles; }

}  // namespace tesseramill_test
