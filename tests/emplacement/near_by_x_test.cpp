// A seed's near list laid out by buckets of x gives the arrays a sort gives,
// bit for bit, on every kind of list.
#include "emplacement/near_by_x.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include "support/random.h"

namespace tesseramill {
namespace {

using tesseramill_test::Random;

struct Laid {
  std::vector<std::int32_t> numbers;
  std::vector<double> xs;
  std::vector<double> ys;
  std::vector<double> strikes;
  NearArrays arrays() { return NearArrays{numbers, xs, ys, strikes}; }
};

bool same_bits(const std::vector<double>& a, const std::vector<double>& b) {
  return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0);
}

// Lays `near` out both ways, the arrays holding what an earlier list left
// in them, and compares; the list itself must stay as it was given.
void expect_as_by_sort(const MeshPointIndex::EntryList& near, bool sloped, const char* what) {
  Laid fast;
  Laid sorted;
  for (Laid* laid : {&fast, &sorted}) {
    laid->numbers.assign(7, -1);
    laid->xs.assign(7, 99.0);
    laid->ys.assign(7, 99.0);
    laid->strikes.assign(7, 99.0);
  }
  const MeshPointIndex::EntryList given = near;
  lay_out_near_by_x(near, sloped, fast.arrays());
  MeshPointIndex::EntryList copy = near;
  lay_out_near_by_sort(copy, sloped, sorted.arrays());
  ASSERT_EQ(fast.numbers, sorted.numbers) << what << ", " << near.size() << " points";
  ASSERT_TRUE(same_bits(fast.xs, sorted.xs)) << what;
  ASSERT_TRUE(same_bits(fast.ys, sorted.ys)) << what;
  ASSERT_TRUE(same_bits(fast.strikes, sorted.strikes)) << what;
  ASSERT_EQ(near.size(), given.size());
  for (std::size_t i = 0; i < near.size(); ++i) {
    ASSERT_EQ(near[i].number, given[i].number) << what << ": the list was reordered";
  }
}

MeshPointIndex::Entry entry(double x, double y, double strike, std::int32_t number) {
  MeshPointIndex::Entry e;
  e.x = x;
  e.y = y;
  e.strike = strike;
  e.number = number;
  return e;
}

// Numbers 1..n in a seeded shuffle, so that ties of x are settled by
// numbers in no order of the list.
std::vector<std::int32_t> shuffled_numbers(Random& random, std::size_t n) {
  std::vector<std::int32_t> numbers(n);
  for (std::size_t i = 0; i < n; ++i) numbers[i] = static_cast<std::int32_t>(i + 1);
  for (std::size_t i = n; i > 1; --i) {
    const std::size_t j = static_cast<std::size_t>(random.next() % i);
    std::swap(numbers[i - 1], numbers[j]);
  }
  return numbers;
}

TEST(NearByX, ASmallListInItsOrder) {
  MeshPointIndex::EntryList near;
  near.push_back(entry(3.0, 30.0, 0.3, 12));
  near.push_back(entry(-1.0, 10.0, 0.1, 40));
  near.push_back(entry(3.0, 31.0, 0.5, 7));
  near.push_back(entry(0.0, 20.0, 0.2, 3));
  near.push_back(entry(-0.0, 21.0, 0.4, 2));
  near.push_back(entry(2.5, 25.0, 0.6, 9));
  Laid laid;
  lay_out_near_by_x(near, true, laid.arrays());
  EXPECT_EQ(laid.numbers, (std::vector<std::int32_t>{40, 2, 3, 9, 7, 12}));
  EXPECT_EQ(laid.xs, (std::vector<double>{-1.0, -0.0, 0.0, 2.5, 3.0, 3.0}));
  EXPECT_TRUE(std::signbit(laid.xs[1]));
  EXPECT_EQ(laid.ys, (std::vector<double>{10.0, 21.0, 20.0, 25.0, 31.0, 30.0}));
  EXPECT_EQ(laid.strikes, (std::vector<double>{0.1, 0.4, 0.2, 0.6, 0.5, 0.3}));
  lay_out_near_by_x(near, false, laid.arrays());
  EXPECT_EQ(laid.strikes, std::vector<double>(6, 0.0));
  expect_as_by_sort(near, true, "the small list");
}

// Lists of every length to past the longest placed by buckets, their x
// spread evenly, clustered, drawn from a few values (many ties, -0 beside
// 0), all one value, an ulp apart, at the ends of the doubles, infinite, or
// among subnormals whose spread makes the scale infinite.
TEST(NearByX, SeededListsOfEveryKindAsBySort) {
  Random random(18);
  const double inf = std::numeric_limits<double>::infinity();
  const double largest = std::numeric_limits<double>::max();
  const double tiny = std::numeric_limits<double>::denorm_min();
  std::size_t lists = 0;
  for (std::size_t n : {0, 1, 2, 3, 5, 8, 13, 23, 24, 31, 32, 33, 60, 64, 65, 100, 255, 256, 257, 511, 512, 513,
                        700}) {
    for (int kind = 0; kind < 10; ++kind) {
      const std::size_t repeats = n <= 64 ? 40 : 4;
      for (std::size_t r = 0; r < repeats; ++r) {
        const std::vector<std::int32_t> numbers = shuffled_numbers(random, n);
        MeshPointIndex::EntryList near;
        const double centre = random.uniform(-1e7, 1e7);
        for (std::size_t i = 0; i < n; ++i) {
          double x = 0.0;
          switch (kind) {
            case 0: x = centre + random.uniform(-500.0, 500.0); break;
            case 1: x = centre + (random.next() % 4 == 0 ? random.uniform(-500.0, 500.0) : random.uniform(0.0, 1.0));
              break;
            case 2: x = static_cast<double>(static_cast<std::int64_t>(random.next() % 5) - 2) * 0.5; break;
            case 3: x = random.next() % 2 == 0 ? 0.0 : -0.0; break;
            case 4: x = centre; break;
            case 5: x = std::nextafter(centre, random.next() % 2 == 0 ? inf : -inf); break;
            case 6: x = random.next() % 3 == 0 ? largest : (random.next() % 2 == 0 ? -largest : 0.0); break;
            case 7: x = random.next() % 5 == 0 ? (random.next() % 2 == 0 ? inf : -inf) : random.uniform(-9.0, 9.0);
              break;
            case 8: x = tiny * static_cast<double>(random.next() % 3); break;
            default: x = centre + random.uniform(-500.0, 500.0) * std::ldexp(1.0, -static_cast<int>(random.next() % 40));
          }
          near.push_back(entry(x, random.uniform(-1e3, 1e3), random.uniform(0.0, 4e4), numbers[i]));
        }
        expect_as_by_sort(near, r % 2 == 0, "seeded list");
        ++lists;
      }
    }
  }
  EXPECT_EQ(lists, 5960u);
}

}  // namespace
}  // namespace tesseramill
