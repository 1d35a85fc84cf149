// What the fuzz targets share: a private folder to write their inputs into,
// and a run of the program on them that stops after a given phase.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "run/program.h"

namespace tesseramill_fuzz {

// Makes a fresh folder under the temporary folder and works in it from then
// on; later calls do nothing.
void enter_fuzz_folder();

void write_file(const std::string& name, const std::uint8_t* data, std::size_t size);
void write_file(const std::string& name, const std::string& text);

// Runs the program on t.in in the fuzz folder up to and including `last`.
void run_until(tesseramill::Phase last);

}  // namespace tesseramill_fuzz
