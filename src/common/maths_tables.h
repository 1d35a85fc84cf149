#pragma once

// Tables of the fast paths of the correctly rounded functions, written by
// tools/maths_tables.cpp with MPFR; each value is a double-double within
// 2^-106 of the exact one.

#include "common/double_double.h"

namespace tesseramill::maths_tables {

// log: mantissas m in [sqrt(1/2), sqrt(2)) fall into entry floor(512 m).
constexpr int kLogFirst = 362;
constexpr int kLogLast = 724;
struct LogEntry {
  double r;             // about 1 / m, and exactly 1 next to 1
  double minus_log_hi;  // -log(r) as a double-double
  double minus_log_lo;
};
extern const LogEntry kLog[kLogLast - kLogFirst + 1];

extern const DoubleDouble kExp2[128];  // 2^(j/128)
extern const DoubleDouble kAtan[65];   // atan(j/64)

extern const DoubleDouble kLn2;
extern const DoubleDouble kPi;
extern const DoubleDouble kHalfPi;
extern const DoubleDouble kInverseLn10;
extern const DoubleDouble kThird;

}  // namespace tesseramill::maths_tables
