// The grid's first and last steps that a span reaches, held to the grid by
// selections, give what the tests one by one give, at every edge.
#include "emplacement/grid_steps.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

namespace tesseramill {
namespace {

void expect_as_by_tests(double t, std::int32_t half) {
  EXPECT_EQ(first_step(t, half), first_step_by_tests(t, half)) << "t " << t << " half " << half;
  EXPECT_EQ(last_step(t, half), last_step_by_tests(t, half)) << "t " << t << " half " << half;
}

TEST(GridSteps, TheEdgesAndTheValuesThatAreNoNumbers) {
  const double inf = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (std::int32_t half : {0, 1, 2, 7, 15, 40, 1000000}) {
    std::vector<double> ts = {nan, -nan, inf, -inf, 0.0, -0.0, 1e300, -1e300, 5e-324, -5e-324};
    for (double edge : {static_cast<double>(half), static_cast<double>(-half)}) {
      for (double offset : {-1.0, -0.5, 0.0, 0.5, 1.0}) {
        const double at = edge + offset;
        ts.push_back(at);
        ts.push_back(std::nextafter(at, inf));
        ts.push_back(std::nextafter(at, -inf));
      }
    }
    for (std::int32_t k = -half - 2; k <= half + 2 && k < 60; ++k) {
      ts.push_back(k);
      ts.push_back(std::nextafter(static_cast<double>(k), inf));
      ts.push_back(std::nextafter(static_cast<double>(k), -inf));
      ts.push_back(k + 0.5);
    }
    for (double t : ts) expect_as_by_tests(t, half);
  }
}

TEST(GridSteps, SeededValuesAcrossAndBeyondTheGrid) {
  std::mt19937_64 random(20261128);
  for (std::int32_t half : {1, 15, 40}) {
    std::uniform_real_distribution<double> across(-3.0 * half, 3.0 * half);
    for (int n = 0; n < 200000; ++n) expect_as_by_tests(across(random), half);
  }
}

// What the steps are: the ceiling and the floor inside the grid, and the
// places just past it outside.
TEST(GridSteps, WhatTheStepsAre) {
  struct Case {
    double t;
    std::int32_t first;
    std::int32_t last;
  };
  const std::vector<Case> cases = {
      {2.25, 3, 2},  {-2.25, -2, -3}, {3.0, 3, 3},    {15.0, 15, 15}, {15.25, 16, 15},
      {-15.0, -15, -15}, {-15.25, -15, -16}, {100.0, 16, 15}, {-100.0, -15, -16},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(first_step(c.t, 15), c.first) << c.t;
    EXPECT_EQ(last_step(c.t, 15), c.last) << c.t;
  }
  EXPECT_EQ(first_step(std::numeric_limits<double>::quiet_NaN(), 15), -15);
  EXPECT_EQ(last_step(std::numeric_limits<double>::quiet_NaN(), 15), 15);
}

}  // namespace
}  // namespace tesseramill
