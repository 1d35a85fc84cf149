#include <iostream>

#include "common/platform.h"
#include "run/program.h"

int main(int argc, char** argv) {
  // A run makes and frees tables of hundreds of megabytes; kept for reuse,
  // their pages are not faulted in afresh each time.
  tesseramill::keep_freed_memory();
  const tesseramill::CommandLine line = tesseramill::utf8_command_line(argc, argv);
  return tesseramill::run_program(line.argc(), line.argv.data(), std::cout);
}
