// The seeded generator of the benchmark's model family serves the tests too.
#pragma once

#include "model_family.h"

namespace tesseramill_test {
using Random = tesseramill_bench::Random;
}  // namespace tesseramill_test
