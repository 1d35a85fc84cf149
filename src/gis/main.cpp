#include <iostream>

#include "gis/gis_program.h"

int main(int argc, char** argv) { return tesseramill::run_gis(argc, argv, std::cout); }
