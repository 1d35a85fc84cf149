#include "disc_room.h"

#include <system_error>

#include "text_columns.h"

namespace tesseramill_bench {

namespace {

std::string gigabytes(double bytes) { return fixed(bytes / 1e9, 1) + " GB"; }

}  // namespace

std::string room_shortfall(std::uintmax_t available, double cells, int folders, const std::filesystem::path& where) {
  const double needed = cells * kFolderBytesPerCell * folders;
  if (static_cast<double>(available) >= needed) return "";
  return "needs about " + gigabytes(needed) + " free in " + where.string() + ", has " +
         gigabytes(static_cast<double>(available));
}

std::string room_shortfall_at(const std::filesystem::path& where, double cells, int folders) {
  std::error_code error;
  const std::filesystem::space_info space = std::filesystem::space(where, error);
  if (error) return "";
  return room_shortfall(space.available, cells, folders, where);
}

int status_after_output(std::ostream& out, std::ostream& err, int status) {
  out.flush();
  if (!out.fail()) return status;
  err << "tesseramill-bench: the table could not be written in full to its output (is the disc full?)\n";
  err.flush();
  return status != 0 ? status : 1;
}

}  // namespace tesseramill_bench
