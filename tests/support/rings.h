// Boundary rings made by hand for the geometry's tests.
#pragma once

#include <cstdint>
#include <vector>

#include "input/boundary_ring.h"

namespace tesseramill_test {

// A closed ring of the given x,y pairs, as the boundary files give one.
inline tesseramill::BoundaryRing ring_of(const std::vector<double>& vertices) {
  tesseramill::BoundaryRing ring;
  ring.vertices = vertices;
  ring.vertex_count = static_cast<std::int32_t>(vertices.size() / 2);
  ring.closed = -1;
  return ring;
}

}  // namespace tesseramill_test
