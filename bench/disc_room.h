// Whether the scratch disc has room for a run's files before the run, and
// whether the benchmark's own table reached its output.
#pragma once

#include <cstdint>
#include <filesystem>
#include <ostream>
#include <string>

namespace tesseramill_bench {

// The bytes a run's folder takes per cell, with a margin: the family's
// million cells with 3 passes leave 2.87 GB for 1,076,876 cells (2,670
// bytes a cell: the first and last pass's map files, the grid and the
// simulation), the GIS-like divide of 8,000 vertices 844 MB for 317,622
// (2,660).
inline constexpr double kFolderBytesPerCell = 3000.0;

// "" when `available` bytes hold `folders` run folders of about `cells`
// cells each; else what is short, as "needs about 31.7 GB free in
// /tmp/tesseramill_bench_1, has 18.2 GB".
std::string room_shortfall(std::uintmax_t available, double cells, int folders, const std::filesystem::path& where);

// The same for the disc that holds `where`, as the system reports its free
// space; "" when the system cannot tell, so that the run goes ahead.
std::string room_shortfall_at(const std::filesystem::path& where, double cells, int folders);

// The exit status once what was printed has been pushed out: `status`
// when `out` took all of it, else 1 (or `status`, when that is already a
// failure), with a line on `err`.  A table lost to a full disc would
// otherwise end with no word and a status of 0.
int status_after_output(std::ostream& out, std::ostream& err, int status);

}  // namespace tesseramill_bench
