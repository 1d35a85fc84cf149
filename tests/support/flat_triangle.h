// A test hook that collapses triangles: between DTRIS2 and the measuring of
// the triangles it moves the corners of chosen triangles onto a very flat
// triple, whose side lengths still make a positive bot while the
// determinant of its edges rounds to exactly zero, whichever corner comes
// first (found by a search over such triples).  DTRIS2's tolerance keeps
// such triangles out of any real triangulation.
#pragma once

#include <cstdint>
#include <vector>

namespace tesseramill_test {

// The triple, as x,y pairs inside the run (before the offsets are added
// back).
inline constexpr double kFlatCorners[6] = {1061.0, 1068.0, 1063.1784395341951, 1070.1784395341951, 1064.0, 1071.0};

// While alive, the first triangulation of a run flattens, for each share s
// given, the first triangle from s times the triangle count on whose first
// corner is a free point (so that the collapse ends the run), each onto the
// triple moved by 100 units in x from the last one.
class FlattenTriangles {
 public:
  explicit FlattenTriangles(std::vector<double> shares);
  ~FlattenTriangles();
  FlattenTriangles(const FlattenTriangles&) = delete;
  FlattenTriangles& operator=(const FlattenTriangles&) = delete;

  // The triangles flattened, in the order of the shares.
  static const std::vector<std::int32_t>& flattened();
};

}  // namespace tesseramill_test
