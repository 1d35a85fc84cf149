#include <iostream>

#include "run/program.h"

int main(int argc, char** argv) { return tesseramill::run_program(argc, argv, std::cout); }
