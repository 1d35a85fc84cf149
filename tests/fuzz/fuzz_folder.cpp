#include "fuzz/fuzz_folder.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "common/platform.h"

namespace tesseramill_fuzz {

void enter_fuzz_folder() {
  static bool entered = false;
  if (entered) return;
  std::error_code error;
  std::filesystem::current_path(tesseramill::fresh_temporary_folder("tesseramill_fuzz_"), error);
  if (error) std::abort();
  entered = true;
}

void write_file(const std::string& name, const std::uint8_t* data, std::size_t size) {
  std::FILE* file = std::fopen(name.c_str(), "wb");
  if (file == nullptr) std::abort();
  if (size > 0) std::fwrite(data, 1, size, file);
  std::fclose(file);
}

void write_file(const std::string& name, const std::string& text) {
  write_file(name, reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
}

void run_until(tesseramill::Phase last) {
  std::ostringstream screen;
  const char* argv[] = {"tesseramill", "t.in"};
  tesseramill::RunOptions options;
  options.last_phase = last;
  tesseramill::run_program(2, argv, screen, options);
}

}  // namespace tesseramill_fuzz
