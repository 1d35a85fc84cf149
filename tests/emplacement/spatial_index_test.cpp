// The mesh point index lists what a scan of every point lists, the segment
// index every segment within reach, and the minimum-separation sweep the
// all-pairs minimum, bit for bit.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>
#include <vector>

#include "emplacement/mesh_point_index.h"
#include "emplacement/minimum_separation.h"
#include "geometry/planar_tools.h"
#include "geometry/segment_index.h"
#include "support/random.h"
#include "support/whole_run.h"

namespace tesseramill {
namespace {

using tesseramill_test::Random;

std::vector<std::int32_t> scan(const std::vector<double>& points, double xlo, double xhi, double ylo, double yhi) {
  std::vector<std::int32_t> out;
  for (std::size_t k = 0; 2 * k + 1 < points.size(); ++k) {
    const double x = points[2 * k];
    const double y = points[2 * k + 1];
    if (x >= xlo && x <= xhi && y >= ylo && y <= yhi) out.push_back(static_cast<std::int32_t>(k + 1));
  }
  return out;
}

// A place on the lines that part the index's cells: `lo` and a whole
// number of steps of the region's side halved one to eleven times.
double on_parting_line(Random& random, double lo, double side) {
  const int halvings = static_cast<int>(random.uniform(1, 12));
  const double step = std::ldexp(side, -halvings);
  return lo + step * std::floor(random.uniform(0, std::ldexp(1.0, halvings)));
}

// Points clustered at many densities, with duplicates (once more of one
// point than a cell holds), points exactly on the region's rim, on the
// lines that part its cells or an ulp short of them, and outside it; boxes
// of every size, many with edges exactly on points or on those lines, some
// with a side that is no number or has no end.
TEST(MeshPointIndex, ListsWhatAScanLists) {
  Random random(31);
  for (double offset : {0.0, 1e6, 7e6}) {
    std::vector<double> points;
    MeshPointIndex index;
    start_mesh_point_index(index, &points, offset + 1000, offset + 5000, offset + 1000, offset + 3000);
    std::vector<std::int32_t> listed;
    MeshPointIndex::EntryList entries;
    MeshPointIndex::EntryList by_visits;
    for (int n = 0; n < 4000; ++n) {
      double x;
      double y;
      const int kind = n % 8;
      if (n >= 2000 && n < 2040) {  // more duplicates than a cell holds, to the deepest level
        x = offset + 1234.5;
        y = offset + 2345.25;
      } else if (kind == 0 && n > 0) {  // a duplicate of an earlier point
        const std::size_t k = static_cast<std::size_t>(random.uniform(0, n - 1));
        x = points[2 * k];
        y = points[2 * k + 1];
      } else if (kind == 1) {  // a tight cluster
        x = offset + 2000 + random.uniform(0, 1e-3);
        y = offset + 2000 + random.uniform(0, 1e-3);
      } else if (kind == 2) {  // the rim and beyond
        x = offset + (n % 16 == 2 ? 1000 : 5000 + random.uniform(-1, 1));
        y = offset + random.uniform(900, 3100);
      } else if (kind == 3) {  // on the lines that part the cells
        x = n % 3 == 0 ? offset + random.uniform(1000, 5000) : on_parting_line(random, offset + 1000, 4000);
        y = n % 3 == 1 ? offset + random.uniform(1000, 3000) : on_parting_line(random, offset + 1000, 4000);
        if (n % 16 == 3) {  // just short of them
          x = std::nextafter(x, -INFINITY);
          y = std::nextafter(y, -INFINITY);
        }
      } else {
        x = offset + random.uniform(1000, 5000);
        y = offset + random.uniform(1000, 3000);
      }
      points.push_back(x);
      points.push_back(y);
      insert_mesh_point(index, n + 1);
      if (n % 40 == 0) {
        for (int q = 0; q < 20; ++q) {
          double xlo = offset + random.uniform(900, 5100);
          double ylo = offset + random.uniform(900, 3100);
          if (q % 3 == 0) {  // box edges exactly on a point
            const std::size_t k = static_cast<std::size_t>(random.uniform(0, n));
            xlo = points[2 * k];
            ylo = points[2 * k + 1];
          }
          const double size = q % 4 == 0 ? 1e-3 : random.uniform(0, 1500);
          double xhi = xlo + size;
          double yhi = ylo + size;
          if (q % 5 == 1) {  // box edges exactly on the lines that part the cells
            xlo = on_parting_line(random, offset + 1000, 4000);
            xhi = q % 10 == 1 ? xlo : on_parting_line(random, offset + 1000, 4000);
            if (xhi < xlo) std::swap(xlo, xhi);
          }
          if (q % 7 == 2) {
            yhi = on_parting_line(random, offset + 1000, 4000);
            ylo = q % 14 == 2 ? yhi : std::min(ylo, yhi);
          }
          if (q == 19) {  // a side that is no number, or has no end
            (n % 80 == 0 ? xlo : yhi) = n % 120 == 0 ? INFINITY : NAN;
          }
          points_in_box(index, xlo, xhi, ylo, yhi, listed);
          ASSERT_EQ(listed, scan(points, xlo, xhi, ylo, yhi));
          // The same points with their coordinates, appended after what
          // the list already holds.
          // In the order, and with every field, of the reference's pushes,
          // after lists of one entry and of more than a leaf holds.
          const std::size_t before = q % 2 == 0 ? 1 : 37;
          entries.assign(before, MeshPointIndex::Entry{-1.0, -1.0, -1.0, -1});
          by_visits.assign(before, MeshPointIndex::Entry{-1.0, -1.0, -1.0, -1});
          entries_in_box(index, xlo, xhi, ylo, yhi, entries);
          entries_in_box_by_visits(index, xlo, xhi, ylo, yhi, by_visits);
          ASSERT_EQ(entries.size(), by_visits.size());
          for (std::size_t e = 0; e < entries.size(); ++e) {
            ASSERT_EQ(entries[e].number, by_visits[e].number);
            ASSERT_EQ(0, std::memcmp(&entries[e].x, &by_visits[e].x, 3 * sizeof(double)));
          }
          entries.erase(entries.begin(), entries.begin() + static_cast<std::ptrdiff_t>(before - 1));
          ASSERT_EQ(entries[0].number, -1);
          std::sort(entries.begin() + 1, entries.end(),
                    [](const MeshPointIndex::Entry& a, const MeshPointIndex::Entry& b) { return a.number < b.number; });
          ASSERT_EQ(entries.size(), listed.size() + 1);
          for (std::size_t e = 1; e < entries.size(); ++e) {
            const std::size_t k = static_cast<std::size_t>(entries[e].number - 1);
            ASSERT_EQ(entries[e].number, listed[e - 1]);
            ASSERT_EQ(0, std::memcmp(&entries[e].x, &points[2 * k], sizeof(double)));
            ASSERT_EQ(0, std::memcmp(&entries[e].y, &points[2 * k + 1], sizeof(double)));
          }
        }
      }
    }
  }
}

// Each segment's line of unit normal with its slack; segments of no length,
// of a length past 1e100 and with an end that is no number have no line.
TEST(SegmentIndex, GivesEachSegmentItsLineAndSlack) {
  SegmentIndex index;
  index.ends = {0, 0, 3, 4,  10, 2, 10, -6,  5, 5, 5, 5,  0, 0, 1e101, 0,  0, 0, NAN, 1};
  segment_lines(index);
  ASSERT_EQ(index.lines.size(), 20u);
  const std::vector<double> first(index.lines.begin(), index.lines.begin() + 8);
  EXPECT_EQ(first, (std::vector<double>{-0.8, 0.6, 0.0, 1e-12 * 7.0, 1.0, 0.0, 10.0, 1e-12 * 28.0}));
  EXPECT_EQ(index.lines[11], INFINITY);
  EXPECT_EQ(index.lines[15], INFINITY);
  EXPECT_EQ(index.lines[19], INFINITY);
}

// Outlines of 300 and of 5,000 vertices, on grids of 256 and 565 cells a
// side (cells_per_side_for).
void expect_every_segment_within_reach(int vertices, int queries, int lattice) {
  Random random(32);
  std::vector<double> ring;
  for (int k = 0; k < vertices; ++k) {
    const double theta = 6.283185307179586 * k / vertices;
    const double r = 1000 * (1 + 0.3 * std::sin(5 * theta) + random.uniform(0, 0.05));
    ring.push_back(5e6 + r * std::cos(theta));
    ring.push_back(7e6 + r * std::sin(theta));
  }
  ring.push_back(ring[0]);
  ring.push_back(ring[1]);
  const std::vector<double> hole = {5e6, 7e6, 5e6 + 50, 7e6, 5e6 + 50, 7e6 + 50, 5e6, 7e6};
  SegmentIndex index;
  build_segment_index(index, {ring.data(), hole.data()},
                      {static_cast<std::int32_t>(ring.size() / 2), static_cast<std::int32_t>(hole.size() / 2)});
  ASSERT_TRUE(index.built);
  std::vector<std::int32_t> found;
  for (int q = 0; q < queries; ++q) {
    const double x = 5e6 + random.uniform(-1500, 1500);
    const double y = 7e6 + random.uniform(-1500, 1500);
    const double w = random.uniform(0, 200);
    const double reach = random.uniform(0, 300);
    segments_near(index, x, x + w, y, y + w, reach, found);
    for (std::size_t s = 0; 4 * s < index.ends.size(); ++s) {
      const double* e = &index.ends[4 * s];
      // The nearest point of the rectangle to the segment is within reach
      // when any of these sample points is: the rectangle's points are
      // probed on a lattice, the segment exactly.
      bool within = false;
      for (int i = 0; i <= lattice && !within; ++i) {
        for (int j = 0; j <= lattice && !within; ++j) {
          within = distance_to_segment(x + w * i / lattice, y + w * j / lattice, e[0], e[1], e[2], e[3]) <= reach;
        }
      }
      if (within) {
        ASSERT_TRUE(std::binary_search(found.begin(), found.end(), static_cast<std::int32_t>(s))) << s;
      }
    }
  }
}

TEST(SegmentIndex, FindsEverySegmentWithinReach) { expect_every_segment_within_reach(300, 3000, 8); }

TEST(SegmentIndex, FindsEverySegmentWithinReachAlongALongOutline) {
  expect_every_segment_within_reach(5000, 150, 3);
}

TEST(CellGrid, CellsPerSideGrowWithTheRootOfTheEdgesBetweenTheirBounds) {
  EXPECT_EQ(cells_per_side_for(0), 256);
  EXPECT_EQ(cells_per_side_for(1024), 256);
  EXPECT_EQ(cells_per_side_for(1025), 256);  // 8 x 32.016 = 256.12
  EXPECT_EQ(cells_per_side_for(1040), 257);
  EXPECT_EQ(cells_per_side_for(8000), 715);
  EXPECT_EQ(cells_per_side_for(16384), 1024);
  EXPECT_EQ(cells_per_side_for(16385), 1024);
  EXPECT_EQ(cells_per_side_for(std::size_t{1} << 40), 1024);
}

MeshPointList mesh_of(const std::vector<double>& points) {
  MeshPointList mesh;
  mesh.mesh_points = points;
  mesh.mesh_point_count = static_cast<std::int32_t>(points.size() / 2);
  return mesh;
}

TEST(MinimumSeparation, GivesTheAllPairsMinimumOnDuplicatesLinesAndLattices) {
  Random random(33);
  for (int trial = 0; trial < 200; ++trial) {
    std::vector<double> points;
    const double offset = trial % 3 == 0 ? 0.0 : trial % 3 == 1 ? 1e6 : 1e7;
    const int n = 2 + trial * 3;
    for (int k = 0; k < n; ++k) {
      const int kind = k % 5;
      if (kind == 0 && k > 0 && trial % 4 == 0) {  // exact duplicates
        points.push_back(points[0]);
        points.push_back(points[1]);
      } else if (kind == 1) {  // a vertical row of equal x
        points.push_back(offset + 500);
        points.push_back(offset + random.uniform(0, 1000));
      } else if (kind == 2) {  // points on a line
        const double t = random.uniform(0, 1);
        points.push_back(offset + 1000 * t);
        points.push_back(offset + 500 * t);
      } else {
        points.push_back(offset + random.uniform(0, 1000));
        points.push_back(offset + random.uniform(0, 1000));
      }
    }
    const MeshPointList mesh = mesh_of(points);
    ASSERT_EQ(minimum_separation(mesh), minimum_separation_reference(mesh)) << trial;
    // The sort and the scan shared between the two cores from 2 points on.
    const tesseramill_test::SharedFrom shared(2);
    ASSERT_EQ(minimum_separation(mesh), minimum_separation_reference(mesh)) << trial << " shared";
  }
  // A lattice where many pairs tie exactly.
  std::vector<double> lattice;
  for (int i = 0; i < 40; ++i) {
    for (int j = 0; j < 40; ++j) lattice.insert(lattice.end(), {1000.0 + 2.5 * i, 3000.0 + 2.5 * j});
  }
  EXPECT_EQ(minimum_separation(mesh_of(lattice)), minimum_separation_reference(mesh_of(lattice)));
  {
    const tesseramill_test::SharedFrom shared(2);
    EXPECT_EQ(minimum_separation(mesh_of(lattice)), minimum_separation_reference(mesh_of(lattice)));
  }
  EXPECT_EQ(minimum_separation(mesh_of({5, 5})), minimum_separation_reference(mesh_of({5, 5})));
}

// Points spread evenly, the closest pair anywhere: in one band of the box,
// across two, or two or more bands apart, as in the rows of a jittered
// hexagonal packing, whose spacing is more than the bands' height.  Then
// sets that the bands cannot serve, left to the sweep over all points:
// fewer than nine points, points on one row, and rows a few subnormal
// numbers apart.
TEST(MinimumSeparation, BandsGiveTheAllPairsMinimum) {
  Random random(71);
  for (int trial = 0; trial < 2000; ++trial) {
    std::vector<double> points;
    const int n = 20 + trial % 400;
    const double offset = trial % 2 == 0 ? 0.0 : 4e6;
    if (trial % 4 < 2) {
      // A few points make a few bands, where the closest pair often lies
      // across two; many make many.
      const int count = trial % 4 == 0 ? 3 + trial % 7 : n;
      for (int k = 0; k < count; ++k) {
        points.push_back(offset + random.uniform(0, 1000));
        points.push_back(offset + random.uniform(0, 700));
      }
    } else {
      const int per_row = 5 + trial % 17;
      for (int k = 0; k < n; ++k) {
        const int row = k / per_row;
        const double shift = row % 2 == 0 ? 0.0 : 5.0;
        points.push_back(offset + 10.0 * (k % per_row) + shift + random.uniform(-0.01, 0.01));
        points.push_back(offset + 8.660254 * row + random.uniform(-0.01, 0.01));
      }
    }
    const MeshPointList mesh = mesh_of(points);
    ASSERT_EQ(minimum_separation(mesh), minimum_separation_reference(mesh)) << trial;
    const tesseramill_test::SharedFrom shared(2);
    ASSERT_EQ(minimum_separation(mesh), minimum_separation_reference(mesh)) << trial << " shared";
  }
  std::vector<std::vector<double>> thin = {{0, 0, 0, 5, 0, 2, 0, 9}, {0, 0, 1000, 1e-9, 300, 2e-9, 301, 0}};
  for (const double y : {7.0, 1e6}) {
    std::vector<double> row;  // one row: the box has no height
    for (int k = 0; k < 60; ++k) row.insert(row.end(), {random.uniform(0, 1000), y});
    thin.push_back(row);
    std::vector<double> column;  // one column: bands of points on a line
    for (int k = 0; k < 60; ++k) column.insert(column.end(), {y, random.uniform(0, 1000)});
    thin.push_back(column);
  }
  // Bands too low for their height to have a finite inverse.
  std::vector<double> subnormal;
  for (int k = 0; k < 40; ++k) subnormal.insert(subnormal.end(), {random.uniform(0, 1000), k * 1e-310});
  thin.push_back(subnormal);
  for (const std::vector<double>& points : thin) {
    EXPECT_EQ(minimum_separation(mesh_of(points)), minimum_separation_reference(mesh_of(points)));
  }
}

}  // namespace
}  // namespace tesseramill
