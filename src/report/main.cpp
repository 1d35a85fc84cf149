#include <iostream>

#include "common/platform.h"
#include "report/report_program.h"

int main(int argc, char** argv) {
  const tesseramill::CommandLine line = tesseramill::utf8_command_line(argc, argv);
  return tesseramill::run_report(line.argc(), line.argv.data(), std::cout);
}
