// The report's three tables, as CSV text with a header row: the reaches of
// the inner lines, the cells of the inner points and the cells of the inner
// polygons.  Cell numbers are MODFLOW 6's, from 1; numbers have the
// system's layouts.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "report/line_reaches.h"
#include "report/zone_shares.h"

namespace tesseramill {

// A text as one CSV field: in double quotes, each quote doubled, so that any
// file name stays one field.
void append_csv_text(std::string& out, const std::string& text);

// "line,bln_file,cell,length,start,end", then one row per reach.
std::string reaches_header();
void append_reach_rows(std::string& out, std::int32_t line, const std::string& file, const std::vector<Reach>& reaches);

// "point,bln_file,x,y,cell": the point's number in its file, its world
// position, and its cell, or 0 when no cell holds it.
std::string points_header();
void append_point_row(std::string& out, std::int32_t point, const std::string& file, double x, double y,
                      std::int32_t cell);

// "polygon,bln_file,cell,share", then one row per cell of the zone.
std::string zones_header();
void append_zone_rows(std::string& out, std::int32_t polygon, const std::string& file,
                      const std::vector<ZoneCell>& cells);

}  // namespace tesseramill
