// The MODFLOW 6 grid and the minimal simulation written around it.
#include <ostream>

#include "common/text_tools.h"
#include "output/disv_file.h"
#include "output/number_format.h"
#include "output/text_file.h"
#include "run/phases.h"

namespace tesseramill {

namespace {

// Writes one file of fixed lines and reports it on the screen.
void write_lines(RunState& state, const std::string& name, const std::vector<std::string>& lines) {
  OutputFile out;
  open_output(state, out, name);
  for (const std::string& line : lines) put_line(out, line);
  close_output(out);
  *state.screen << " - file " << out.name << " written ok.\n";
}

std::string stem(const RunState& state) { return trimmed(state.control.mf6_basename); }

void per_layer(const RunState& state, std::vector<std::string>& lines, const std::string& line) {
  lines.insert(lines.end(), static_cast<std::size_t>(state.control.nlay), line);
}

void write_simulation_name_file(RunState& state) {
  const std::string s = stem(state);
  write_lines(state, "mfsim.nam",
              {"BEGIN OPTIONS", "END OPTIONS", " ", "BEGIN TIMING", "  TDIS6 " + s + ".tdis", "END TIMING",
               " ", "BEGIN MODELS", "  GWF6 " + s + ".nam  GWF_Model", "END MODELS", " ",
               "BEGIN EXCHANGES", "END EXCHANGES", " ", "BEGIN SOLUTIONGROUP 1",
               "  IMS6 " + s + ".ims  GWF_Model", "END SOLUTIONGROUP"});
}

void write_tdis_file(RunState& state) {
  write_lines(state, stem(state) + ".tdis",
              {"BEGIN OPTIONS", "END OPTIONS", " ", "BEGIN DIMENSIONS", "  NPER 1", "END DIMENSIONS", " ",
               "BEGIN PERIODDATA", "  1.0  1  1.0   Items: PERLEN NSTP TSMULT", "END PERIODDATA"});
}

void write_ims_file(RunState& state) {
  write_lines(state, stem(state) + ".ims",
              {"BEGIN OPTIONS", "  COMPLEXITY simple", "END OPTIONS", " ", "BEGIN NONLINEAR",
               "  OUTER_DVCLOSE 1.0E-4", "  OUTER_MAXIMUM 2000", "END NONLINEAR", " ", "BEGIN LINEAR",
               "  INNER_MAXIMUM 100", "  INNER_DVCLOSE 1.0E-4", "  INNER_RCLOSE 0.001", "END LINEAR"});
}

void write_gwf_name_file(RunState& state) {
  const std::string s = stem(state);
  write_lines(state, s + ".nam",
              {"BEGIN OPTIONS", "END OPTIONS", " ", "BEGIN PACKAGES", "  IC6   " + s + ".ic",
               "  NPF6  " + s + ".npf", "  CHD6  " + s + ".chd", "  DISV6 " + s + ".disv",
               "  OC6 " + s + ".oc", "END PACKAGES"});
}

void write_ic_file(RunState& state) {
  std::vector<std::string> lines = {"BEGIN OPTIONS", "END OPTIONS", " ", "BEGIN GRIDDATA", "  STRT LAYERED"};
  per_layer(state, lines, "    CONSTANT 0.0");
  lines.push_back("END GRIDDATA");
  write_lines(state, stem(state) + ".ic", lines);
}

void write_npf_file(RunState& state) {
  std::vector<std::string> lines = {"BEGIN OPTIONS", "END OPTIONS", " ", "BEGIN GRIDDATA",
                                    "  ICELLTYPE LAYERED"};
  per_layer(state, lines, "    CONSTANT 0");
  lines.push_back(" ");
  lines.push_back("  K LAYERED");
  per_layer(state, lines, "    CONSTANT 1.0");
  lines.push_back("END GRIDDATA");
  write_lines(state, stem(state) + ".npf", lines);
}

}  // namespace

std::string head_line(std::int32_t cell, double head) {
  std::string line = "  1";
  append_integer(line, cell, 10);
  line += "  ";
  append_zero_led(line, head, 14, 7);
  return line;
}

namespace {

void write_chd_file(RunState& state) {
  write_lines(state, stem(state) + ".chd",
              {"BEGIN OPTIONS", "END OPTIONS", " ", "BEGIN DIMENSIONS", "  MAXBOUND 2", "END DIMENSIONS", " ",
               "BEGIN PERIOD 1", head_line(1, 20.0), head_line(state.mesh.mesh_point_count, 10.0),
               "END PERIOD 1"});
}

void write_oc_file(RunState& state) {
  write_lines(state, stem(state) + ".oc",
              {"BEGIN OPTIONS", "  HEAD FILEOUT " + stem(state) + ".hds", "END OPTIONS", " ",
               "BEGIN PERIOD 1", "  SAVE HEAD ALL", "END PERIOD"});
}

}  // namespace

void write_mf6_files(RunState& state) {
  const GridVertices grid = number_grid_vertices(state);
  *state.screen << " \n - writing MODFLOW 6 DISV and other files...\n";
  write_disv_file(state, grid);
  write_simulation_name_file(state);
  write_tdis_file(state);
  write_ims_file(state);
  write_gwf_name_file(state);
  write_ic_file(state);
  write_npf_file(state);
  write_chd_file(state);
  write_oc_file(state);
}

}  // namespace tesseramill
