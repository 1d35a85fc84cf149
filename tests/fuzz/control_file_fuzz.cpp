// Fuzz target: the whole input is the control file; the run stops once it
// has been read and judged.
#include "fuzz/fuzz_folder.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tesseramill_fuzz::enter_fuzz_folder();
  tesseramill_fuzz::write_file("t.in", data, size);
  tesseramill_fuzz::run_until(tesseramill::Phase::kReadControlFile);
  return 0;
}
