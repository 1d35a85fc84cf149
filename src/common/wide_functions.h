#pragma once

// The slow paths of the correctly rounded functions: log, exp and atan in
// wide fixed point, accurate to far below 2^-300 of the result, for the rare
// arguments whose double-double value lies too close to a rounding boundary.

#include "common/wide_fixed.h"

namespace tesseramill {

const Wide& wide_ln2();
const Wide& wide_pi();
const Wide& wide_inverse_ln10();

// log(x) for finite x > 0; absolute error below 2^-360.
Wide wide_log(double x);
// exp(z) = result * 2^scale for |z| below 2^11; relative error below 2^-360.
Wide wide_exp(const Wide& z, int& scale);
// atan(t) for t in [0, 1]; absolute error below 2^-370.
Wide wide_atan(const Wide& t);

}  // namespace tesseramill
