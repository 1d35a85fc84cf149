// Writing of the output text files: whole lines gathered in memory and
// handed to the file in large pieces.
#pragma once

#include <cstdio>
#include <string>

#include "run/run_state.h"

namespace tesseramill {

struct OutputFile {
  std::FILE* file = nullptr;
  std::string name;
  std::string pending;

  OutputFile() = default;
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  ~OutputFile();
};

// Opens `name` for writing, replacing a file of that name; a file that
// cannot be opened ends the run with "Cannot write to file {name}.".
void open_output(RunState& state, OutputFile& out, const std::string& name);

// Appends `line` and a line end.
void put_line(OutputFile& out, const std::string& line);

// Writes what is pending and closes the file.
void close_output(OutputFile& out);

}  // namespace tesseramill
