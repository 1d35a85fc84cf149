#include <iostream>

#include "common/platform.h"
#include "run/program.h"

int main(int argc, char** argv) {
  const tesseramill::CommandLine line = tesseramill::utf8_command_line(argc, argv);
  return tesseramill::run_program(line.argc(), line.argv.data(), std::cout);
}
