#include "report/report_tables.h"

#include "output/number_format.h"

namespace tesseramill {

namespace {

// Lengths, distances and coordinates keep every digit a double holds, so
// that reach lengths add up to the line's length in the table as well.
void append_real(std::string& out, double value) { append_scientific(out, value, 0, 15); }

}  // namespace

void append_csv_text(std::string& out, const std::string& text) {
  out += '"';
  for (char c : text) {
    if (c == '"') out += '"';
    out += c;
  }
  out += '"';
}

std::string reaches_header() { return "line,bln_file,cell,length,start,end\n"; }

void append_reach_rows(std::string& out, std::int32_t line, const std::string& file, const std::vector<Reach>& reaches) {
  for (const Reach& reach : reaches) {
    append_integer(out, line);
    out += ',';
    append_csv_text(out, file);
    out += ',';
    append_integer(out, reach.cell + 1);
    out += ',';
    append_real(out, reach.length);
    out += ',';
    append_real(out, reach.start);
    out += ',';
    append_real(out, reach.end);
    out += '\n';
  }
}

std::string points_header() { return "point,bln_file,x,y,cell\n"; }

void append_point_row(std::string& out, std::int32_t point, const std::string& file, double x, double y,
                      std::int32_t cell) {
  append_integer(out, point);
  out += ',';
  append_csv_text(out, file);
  out += ',';
  append_real(out, x);
  out += ',';
  append_real(out, y);
  out += ',';
  append_integer(out, cell + 1);
  out += '\n';
}

std::string zones_header() { return "polygon,bln_file,cell,share\n"; }

void append_zone_rows(std::string& out, std::int32_t polygon, const std::string& file,
                      const std::vector<ZoneCell>& cells) {
  for (const ZoneCell& zone_cell : cells) {
    append_integer(out, polygon);
    out += ',';
    append_csv_text(out, file);
    out += ',';
    append_integer(out, zone_cell.cell + 1);
    out += ',';
    append_fixed(out, zone_cell.share, 0, 12);
    out += '\n';
  }
}

}  // namespace tesseramill
