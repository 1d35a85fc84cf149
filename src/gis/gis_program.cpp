#include "gis/gis_program.h"

#include <ostream>
#include <string>
#include <vector>

#include <gdal_priv.h>

#include "common/failure.h"
#include "common/run_state.h"
#include "gis/gis_import.h"
#include "gis/grid_export.h"

namespace tesseramill {

namespace {

void print_usage(std::ostream& screen) {
  screen << "\n"
            " TESSERAMILL-GIS is run using the commands:\n"
            "\n"
            "   tesseramill-gis import OUTDIR --boundary SRC [--holes SRC] [--lines SRC]\n"
            "                   [--points SRC] [--zones SRC] --max-spacing S [options]\n"
            "   tesseramill-gis export infile\n"
            "\n"
            " import writes a model folder from GIS layers; SRC is a file GDAL reads\n"
            " (GeoPackage, Shapefile, GeoJSON, a CSV of points with x and y columns),\n"
            " as path or path:layer.  Options:\n"
            "   --spacing-field NAME   numeric field of each feature's spacing (spacing)\n"
            "   --boundary-spacing S, --hole-spacing S, --line-spacing S,\n"
            "   --point-spacing S, --zone-spacing S   spacing of features without one\n"
            "   --growth G (1.2)  --max-cells N (estimated)  --max-lloyd N  --nlay N (1)\n"
            "   --name NAME (model)  --origin X,Y (rounded lower left corner)\n"
            "   --to EPSG:n        reproject every layer into this system\n"
            "   --assume EPSG:n    the system of layers that carry none\n"
            "   --simplify TOL     thinning tolerance (a tenth of the local spacing)\n"
            "   --keep-vertices    keep every vertex\n"
            "   --clean R          radius of cleaning (half the local spacing; 0 off)\n"
            "   --make-valid       repair invalid polygons\n"
            "   --force            write into a folder that holds files\n"
            "\n"
            " export, run in the folder of a finished run, writes the grid, the\n"
            " reaches, wells, zones and the domain as stem.gpkg.\n";
}

}  // namespace

int run_gis(int argc, const char* const* argv, std::ostream& screen) {
  RunState state;
  state.screen = &screen;
  bool completed = false;
  GDALAllRegister();
  run_to_one_exit(state, [&] {
    initialise_run_state(state);
    screen << "\n TESSERAMILL-GIS version " << state.version_text << " by Larkspur Analytics.\n";
    const std::string command = argc > 1 ? argv[1] : "";
    std::vector<std::string> args;
    for (int k = 2; k < argc; ++k) args.emplace_back(argv[k]);
    if (command == "import") {
      import_model(state, args, screen);
    } else if (command == "export") {
      export_grid(state, args, screen);
    } else if (command.empty()) {
      print_usage(screen);
    } else {
      fail(state, "Command " + command + " is not known: tesseramill-gis takes import or export.");
    }
    release_run_state(state);
    completed = true;
  });
  screen.flush();
  return completed ? 0 : 1;
}

}  // namespace tesseramill
