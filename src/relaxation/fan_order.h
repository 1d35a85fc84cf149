// The ordering of one mesh point's internal triangles into fan order.
#pragma once

#include <cstdint>
#include <string>

namespace tesseramill {

// Puts the first c entries of `col` (the internal triangles at mesh point p,
// in ascending order) into fan order, with `work` (room for c entries) as
// scratch; `tri_neighbour` holds 3 entries per triangle.  Gives the failure
// text, or an empty text.  order_fan is the literal routine; order_fan_fast
// gives the same column and text without searching the column for every
// neighbour anew.
std::string order_fan(const std::int32_t* tri_neighbour, std::int32_t* col, std::int32_t c, std::int32_t p,
                      std::int32_t* work);
std::string order_fan_fast(const std::int32_t* tri_neighbour, std::int32_t* col, std::int32_t c, std::int32_t p,
                           std::int32_t* work);

}  // namespace tesseramill
