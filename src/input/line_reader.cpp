#include "input/line_reader.h"

#include "common/platform.h"

namespace tesseramill {

LineReader::~LineReader() { close_lines(*this); }

bool open_lines(LineReader& reader, const std::string& name) {
  close_lines(reader);
  // No file name can hold a NUL byte; handing the name over would open the
  // file named by the part before it.
  if (name.find('\0') != std::string::npos) return false;
  reader.file = open_file(name, "rb");
  return reader.file != nullptr;
}

void close_lines(LineReader& reader) {
  if (reader.file != nullptr) {
    std::fclose(reader.file);
    reader.file = nullptr;
  }
}

LineStatus read_line(LineReader& reader, std::string& line, std::size_t keep) {
  line.clear();
  if (reader.file == nullptr) return LineStatus::kError;
  bool any = false;
  bool pending_cr = false;
  for (;;) {
    int c = std::getc(reader.file);
    if (c == EOF) {
      if (std::ferror(reader.file)) return LineStatus::kError;
      if (!any) return LineStatus::kEnd;
      break;
    }
    any = true;
    if (c == '\n') break;
    if (pending_cr && line.size() < keep) line.push_back('\r');
    pending_cr = c == '\r';
    if (!pending_cr && line.size() < keep) line.push_back(static_cast<char>(c));
  }
  return LineStatus::kLine;
}

}  // namespace tesseramill
