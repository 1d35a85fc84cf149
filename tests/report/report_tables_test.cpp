// The layout of the report's tables.
#include <gtest/gtest.h>

#include "report/report_tables.h"

namespace tesseramill_test {
namespace {

TEST(ReportTables, ReachRows) {
  std::string text = tesseramill::reaches_header();
  tesseramill::append_reach_rows(text, 3, "river a.bln", {{0, 2.5, 0.0, 2.5}, {11, 0.125, 2.5, 2.625}});
  EXPECT_EQ(text,
            "line,bln_file,cell,length,start,end\n"
            "3,\"river a.bln\",1,2.500000000000000E+00,0.000000000000000E+00,2.500000000000000E+00\n"
            "3,\"river a.bln\",12,1.250000000000000E-01,2.500000000000000E+00,2.625000000000000E+00\n");
}

TEST(ReportTables, PointRowsWithACellAndOutsideTheGrid) {
  std::string text = tesseramill::points_header();
  tesseramill::append_point_row(text, 1, "wells.bln", 514800.0, 6234600.0, 0);
  tesseramill::append_point_row(text, 2, "wells.bln", -1.5, 0.1, -1);
  EXPECT_EQ(text,
            "point,bln_file,x,y,cell\n"
            "1,\"wells.bln\",5.148000000000000E+05,6.234600000000000E+06,1\n"
            "2,\"wells.bln\",-1.500000000000000E+00,1.000000000000000E-01,0\n");
}

TEST(ReportTables, ZoneRows) {
  std::string text = tesseramill::zones_header();
  tesseramill::append_zone_rows(text, 2, "zone.bln", {{4, 1.0}, {9, 0.36}});
  EXPECT_EQ(text,
            "polygon,bln_file,cell,share\n"
            "2,\"zone.bln\",5,1.000000000000\n"
            "2,\"zone.bln\",10,0.360000000000\n");
}

TEST(ReportTables, FileNamesWithQuotesAndCommasStayOneField) {
  std::string text;
  tesseramill::append_csv_text(text, "a \"b\", c");
  EXPECT_EQ(text, "\"a \"\"b\"\", c\"");
}

}  // namespace
}  // namespace tesseramill_test
