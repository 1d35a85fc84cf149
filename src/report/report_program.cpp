#include "report/report_program.h"

#include <ostream>
#include <string_view>

#include "common/command_line.h"
#include "common/failure.h"
#include "common/text_tools.h"
#include "output/number_format.h"
#include "output/text_file.h"
#include "report/cell_geometry.h"
#include "report/disv_grid.h"
#include "report/grid_fix.h"
#include "report/grid_frame.h"
#include "report/grid_picture.h"
#include "report/grid_quality.h"
#include "report/line_reaches.h"
#include "report/report_tables.h"
#include "report/zone_shares.h"
#include "run/program.h"

namespace tesseramill {

namespace {

// The command that writes the grid this program reads.
constexpr const char* kMesherCommand = "tesseramill";

void print_usage(std::ostream& screen) {
  screen << "\n"
            " TESSERAMILL-REPORT is run using the command:\n"
            "\n"
            "   tesseramill-report infile\n"
            "\n"
            " or, to set apart the vertex numbers of a grid of a million vertices or\n"
            " more so that MODFLOW 6 can read it,\n"
            "\n"
            "   tesseramill-report --fix-grid infile\n"
            "\n"
            " where\n"
            "\n"
            "   infile is the name of the TESSERAMILL input file of a finished run,\n"
            "   run in the folder of that run.\n";
}

// What the command line asks for.
enum class ReportMode { kReport, kFixGrid };

constexpr std::string_view kFixGridOption = "--fix-grid";

void write_text_file(RunState& state, const std::string& name, const std::string& text) {
  OutputFile out;
  open_output(state, out, name);
  put_text(out, text);
  close_output(out);
  *state.screen << " - file " << out.name << " written ok.\n";
}

void write_reaches(RunState& state, const DisvGrid& disv, const CellLocator& locator, const GridFrame& frame,
                   const std::string& name) {
  std::string text = reaches_header();
  std::vector<Reach> reaches;
  for (std::int32_t i = 0; i < state.control.inner_line_count; ++i) {
    const BoundaryRing& line = state.inner_lines[static_cast<std::size_t>(i)];
    const std::vector<double> xy = in_grid_frame(frame, line.vertices, line.vertex_count);
    line_reaches(disv, locator, xy.data(), line.vertex_count, reaches);
    append_reach_rows(text, i + 1, trimmed(state.control.inner_line_files[static_cast<std::size_t>(i)]), reaches);
  }
  write_text_file(state, name, text);
}

void write_points(RunState& state, const DisvGrid& disv, const CellLocator& locator, const GridFrame& frame,
                  const std::string& name) {
  std::string text = points_header();
  std::vector<std::int32_t> near;
  std::vector<double> scratch;
  for (std::size_t s = 0; s < state.inner_point_sets.size(); ++s) {
    const PointSet& set = state.inner_point_sets[s];
    const std::string file = trimmed(state.control.inner_points_files[s]);
    for (std::int32_t k = 0; k < set.count; ++k) {
      const double x = set.coords[2 * static_cast<std::size_t>(k)];
      const double y = set.coords[2 * static_cast<std::size_t>(k) + 1];
      const std::int32_t cell = point_cell(disv, locator, frame.x(x), frame.y(y), near, scratch);
      append_point_row(text, k + 1, file, x + state.x_offset, y + state.y_offset, cell);
    }
  }
  write_text_file(state, name, text);
}

void write_zones(RunState& state, const DisvGrid& disv, const CellLocator& locator, const GridFrame& frame,
                 const std::string& name) {
  std::string text = zones_header();
  std::vector<ZoneCell> cells;
  for (std::size_t p = 0; p < state.inner_polygons.size(); ++p) {
    const BoundaryRing& polygon = state.inner_polygons[p];
    const std::vector<double> xy =
        without_closing_vertex(in_grid_frame(frame, polygon.vertices, polygon.vertex_count));
    zone_cells(disv, locator, xy.data(), static_cast<std::int32_t>(xy.size() / 2), cells);
    append_zone_rows(text, static_cast<std::int32_t>(p + 1), trimmed(state.control.inner_polygon_files[p]), cells);
  }
  write_text_file(state, name, text);
}

DomainRings domain_rings(const RunState& state, const GridFrame& frame) {
  DomainRings rings;
  rings.outer = in_grid_frame(frame, state.outer_boundary.vertices, state.outer_boundary.vertex_count);
  for (const BoundaryRing& hole : state.inner_boundaries) {
    rings.holes.push_back(in_grid_frame(frame, hole.vertices, hole.vertex_count));
  }
  return rings;
}

void make_report(RunState& state) {
  const ControlData& c = state.control;
  const std::string stem = trimmed(c.mf6_basename);
  const std::string grid_name = stem + ".disv";
  *state.screen << "\n - reading file " << grid_name << "...\n";
  DisvGrid disv;
  read_disv_grid(state, grid_name, std::string(kMesherCommand) + " " + state.control_file_name, disv);
  *state.screen << " - file " << grid_name << " read ok.\n";

  const GridFrame frame = grid_frame(state);

  CellLocator locator;
  build_cell_locator(disv, locator);
  *state.screen << "\n - finding the cells of inner lines, points and polygons...\n";
  write_reaches(state, disv, locator, frame, stem + "_reaches.csv");
  write_points(state, disv, locator, frame, stem + "_points.csv");
  write_zones(state, disv, locator, frame, stem + "_zones.csv");

  *state.screen << "\n - assessing and drawing the grid...\n";
  PictureLayers layers;
  layers.rings = domain_rings(state, frame);
  for (const BoundaryRing& polygon : state.inner_polygons) {
    layers.zones.push_back(in_grid_frame(frame, polygon.vertices, polygon.vertex_count));
  }
  for (const BoundaryRing& line : state.inner_lines) {
    layers.lines.push_back(in_grid_frame(frame, line.vertices, line.vertex_count));
  }
  for (const PointSet& set : state.inner_point_sets) {
    const std::vector<double> xy = in_grid_frame(frame, set.coords, set.count);
    layers.points.insert(layers.points.end(), xy.begin(), xy.end());
  }
  layers.world_x0 = frame.xorigin;
  layers.world_y0 = frame.yorigin;
  layers.title = grid_name + ": " + format_integer(disv.ncpl) + " cells";
  write_text_file(state, stem + "_grid.svg", grid_picture(disv, layers));

  const GridQuality quality = assess_grid(disv, layers.rings, c.poly_growth_rate);
  const std::string text = quality_text(quality, grid_name);
  write_text_file(state, stem + "_quality.txt", text);
  *state.screen << text;
}

}  // namespace

int run_report(int argc, const char* const* argv, std::ostream& screen) {
  RunState state;
  state.screen = &screen;
  run_to_one_exit(state, [&] {
    initialise_run_state(state);
    screen << "\n TESSERAMILL-REPORT version " << state.version_text << " by Larkspur Analytics.\n";
    ReportMode mode = ReportMode::kReport;
    if (argc > 1 && std::string_view(argv[1]).substr(0, 2) == "--") {
      if (argv[1] != kFixGridOption) {
        fail(state, "Option " + std::string(argv[1]) + " is not known: the report takes " +
                        std::string(kFixGridOption) + " or no option before the name of the input file.");
      }
      mode = ReportMode::kFixGrid;
      argc -= 1;
      argv += 1;
    }
    state.control_file_name = command_line_argument(argc, argv);
    if (state.control_file_name.empty()) {
      print_usage(screen);
      release_run_state(state);
      return;
    }
    run_phase(state, Phase::kReadControlFile);
    if (mode == ReportMode::kFixGrid) {
      fix_grid_file(state, trimmed(state.control.mf6_basename) + ".disv",
                    std::string(kMesherCommand) + " " + state.control_file_name);
    } else {
      run_phase(state, Phase::kReadBoundaryFiles);
      make_report(state);
    }
    release_run_state(state);
  });
  screen.flush();
  return 0;
}

}  // namespace tesseramill
