#include <iostream>

#include "report/report_program.h"

int main(int argc, char** argv) { return tesseramill::run_report(argc, argv, std::cout); }
