#pragma once

namespace tesseramill_bench {

// Prints the cost per call of each correctly rounded function and of the
// system library's function on the same arguments (the ranges the programs
// use), as the median of 11 rounds of a million calls each.
int time_maths();

}  // namespace tesseramill_bench
