#include "gis/grid_export.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <ostream>
#include <sstream>

#include <cpl_error.h>
#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include "common/correctly_rounded.h"
#include "common/failure.h"
#include "common/text_tools.h"
#include "gis/boundary_cell_rings.h"
#include "gis/spatial_index.h"
#include "output/number_format.h"
#include "report/cell_geometry.h"
#include "report/disv_grid.h"
#include "report/grid_frame.h"
#include "report/line_reaches.h"
#include "report/zone_shares.h"
#include "run/program.h"

namespace tesseramill {

namespace fs = std::filesystem;

namespace {

constexpr const char* kMesherCommand = "tesseramill";

struct DatasetCloser {
  void operator()(GDALDataset* d) const { GDALClose(d); }
};
using Dataset = std::unique_ptr<GDALDataset, DatasetCloser>;

// World coordinates of a place in the grid's frame.
struct World {
  double x0 = 0.0;
  double y0 = 0.0;
};

OGRLinearRing world_ring(const std::vector<double>& xy, const World& w, bool reverse) {
  OGRLinearRing ring;
  const int n = static_cast<int>(xy.size() / 2);
  ring.setNumPoints(n + 1, FALSE);
  for (int k = 0; k < n; ++k) {
    const std::size_t i = 2 * static_cast<std::size_t>(reverse ? n - 1 - k : k);
    ring.setPoint(k, xy[i] + w.x0, xy[i + 1] + w.y0);
  }
  ring.setPoint(n, ring.getX(0), ring.getY(0));
  return ring;
}

// The part of the polyline between the distances `start` and `end` along it.
OGRLineString part_of_line(const std::vector<double>& xy, double start, double end, const World& w) {
  OGRLineString out;
  double travelled = 0.0;
  auto add = [&](double x, double y) {
    const int n = out.getNumPoints();
    if (n > 0 && out.getX(n - 1) == x + w.x0 && out.getY(n - 1) == y + w.y0) return;
    out.addPoint(x + w.x0, y + w.y0);
  };
  for (std::size_t k = 0; k + 3 < xy.size(); k += 2) {
    const double ax = xy[k], ay = xy[k + 1], bx = xy[k + 2], by = xy[k + 3];
    const double length = cr_hypot(bx - ax, by - ay);
    const double next = travelled + length;
    if (next >= start && travelled <= end && length > 0.0) {
      const double t0 = std::max(0.0, (start - travelled) / length);
      const double t1 = std::min(1.0, (end - travelled) / length);
      add(ax + t0 * (bx - ax), ay + t0 * (by - ay));
      add(ax + t1 * (bx - ax), ay + t1 * (by - ay));
    }
    travelled = next;
  }
  if (out.getNumPoints() == 1) out.addPoint(out.getX(0), out.getY(0));
  return out;
}

OGRLayer* new_layer(RunState& state, GDALDataset& d, const char* name, OGRSpatialReference* crs,
                    OGRwkbGeometryType type, const std::vector<std::pair<const char*, OGRFieldType>>& fields) {
  // The spatial index is written by the layer's transaction itself, packed.
  const char* options[] = {"SPATIAL_INDEX=NO", nullptr};
  OGRLayer* layer = d.CreateLayer(name, crs, type, const_cast<char**>(options));
  if (layer == nullptr) fail(state, std::string("Cannot make layer ") + name + ": " + CPLGetLastErrorMsg());
  for (const auto& [field, field_type] : fields) {
    OGRFieldDefn defn(field, field_type);
    layer->CreateField(&defn);
  }
  return layer;
}

// Writes one layer's features and its spatial index in one transaction;
// `body` adds the features through add_feature.
void in_transaction(RunState& state, GDALDataset& d, OGRLayer& layer,
                    const std::function<void(PendingIndex&)>& body) {
  const std::string name = layer.GetName();
  if (d.StartTransaction() != OGRERR_NONE) fail(state, "Cannot start writing layer " + name + ".");
  PendingIndex index = begin_spatial_index(state, d, layer);
  body(index);
  finish_spatial_index(state, d, index);
  if (d.CommitTransaction() != OGRERR_NONE) {
    fail(state, "Cannot write layer " + name + ": " + CPLGetLastErrorMsg());
  }
}

void add_feature(RunState& state, OGRLayer& layer, PendingIndex& index, OGRFeature& f) {
  if (layer.CreateFeature(&f) != OGRERR_NONE) {
    fail(state, std::string("Cannot write a feature of layer ") + layer.GetName() + ": " + CPLGetLastErrorMsg());
  }
  OGREnvelope e;
  f.GetGeometryRef()->getEnvelope(&e);
  index_feature(index, f.GetFID(), Envelope{e.MinX, e.MaxX, e.MinY, e.MaxY});
}

std::vector<double> cell_xy(const DisvGrid& disv, std::size_t c) {
  std::vector<double> xy;
  cell_polygon(disv, c, xy);
  return xy;
}

}  // namespace

void export_grid(RunState& state, const std::vector<std::string>& args, std::ostream& screen) {
  if (args.size() != 1) fail(state, "The export takes one argument, the input file of a finished run: tesseramill-gis export infile");
  state.control_file_name = args[0];
  run_phase(state, Phase::kReadControlFile);
  run_phase(state, Phase::kReadBoundaryFiles);
  const ControlData& c = state.control;
  const std::string stem = trimmed(c.mf6_basename);
  const std::string grid_name = stem + ".disv";
  const std::string command = std::string(kMesherCommand) + " " + state.control_file_name;
  screen << "\n - reading file " << grid_name << "...\n";
  DisvGrid disv;
  read_disv_grid(state, grid_name, command, disv);
  screen << " - file " << grid_name << " read ok.\n" << std::flush;
  const std::string table = trimmed(c.out_file_base) + "_boundary_cells.dat";
  const std::vector<std::int32_t> rings = boundary_cell_rings(state, table, disv.ncpl, command);

  // The coordinate system the import wrote beside the control file.
  fs::path prj = fs::path(state.control_file_name);
  prj.replace_extension(".prj");
  OGRSpatialReference crs;
  bool has_crs = false;
  {
    std::ifstream in(prj);
    std::stringstream text;
    text << in.rdbuf();
    if (in && !trimmed(text.str()).empty()) {
      CPLPushErrorHandler(CPLQuietErrorHandler);
      has_crs = crs.SetFromUserInput(trimmed(text.str()).c_str()) == OGRERR_NONE;
      CPLPopErrorHandler();
      if (!has_crs) fail(state, "File " + prj.string() + " holds no coordinate system GDAL can read.");
      crs.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    }
  }
  if (has_crs) {
    screen << " - coordinate system from file " << prj.string() << ": " << (crs.GetName() ? crs.GetName() : "unnamed")
           << "\n";
  } else {
    screen << " - no file " << prj.string() << " here: the GeoPackage carries no coordinate system.\n";
  }
  OGRSpatialReference* srs = has_crs ? &crs : nullptr;

  const GridFrame frame = grid_frame(state);
  const World world{frame.xorigin, frame.yorigin};
  CellLocator locator;
  build_cell_locator(disv, locator);

  const std::string out_name = stem + ".gpkg";
  GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("GPKG");
  if (driver == nullptr) fail(state, "The GDAL here has no GeoPackage driver.");
  std::error_code error;
  fs::remove(out_name, error);
  Dataset d(driver->Create(out_name.c_str(), 0, 0, 0, GDT_Unknown, nullptr));
  if (!d) fail(state, "Cannot make file " + out_name + ": " + CPLGetLastErrorMsg());
  screen << "\n - writing file " << out_name << "...\n" << std::flush;

  // Cells, run anticlockwise as simple features' outer rings are; the grid
  // file holds them clockwise.
  OGRLayer* cells = new_layer(state, *d, "cells", srs, wkbPolygon,
                              {{"cell", OFTInteger}, {"area", OFTReal}, {"x", OFTReal}, {"y", OFTReal}, {"ring", OFTInteger}});
  in_transaction(state, *d, *cells, [&](PendingIndex& index) {
    OGRFeature f(cells->GetLayerDefn());
    for (std::size_t k = 0; k < static_cast<std::size_t>(disv.ncpl); ++k) {
      const std::vector<double> xy = cell_xy(disv, k);
      const double area2 = doubled_area(xy.data(), static_cast<std::int32_t>(xy.size() / 2));
      OGRPolygon polygon;
      polygon.addRingDirectly(new OGRLinearRing(world_ring(xy, world, area2 < 0.0)));
      f.SetFID(OGRNullFID);
      f.SetField("cell", static_cast<int>(k + 1));
      f.SetField("area", 0.5 * std::fabs(area2));
      f.SetField("x", disv.centres[2 * k] + world.x0);
      f.SetField("y", disv.centres[2 * k + 1] + world.y0);
      f.SetField("ring", rings[k]);
      f.SetGeometry(&polygon);
      add_feature(state, *cells, index, f);
    }
  });
  screen << " - layer cells: " << format_integer(disv.ncpl) << " cells\n" << std::flush;

  OGRLayer* reaches = new_layer(state, *d, "reaches", srs, wkbLineString,
                                {{"line", OFTInteger}, {"bln_file", OFTString}, {"cell", OFTInteger},
                                 {"length", OFTReal}, {"start", OFTReal}, {"end", OFTReal}});
  std::int64_t reach_count = 0;
  in_transaction(state, *d, *reaches, [&](PendingIndex& index) {
    OGRFeature f(reaches->GetLayerDefn());
    std::vector<Reach> found;
    for (std::int32_t i = 0; i < c.inner_line_count; ++i) {
      const BoundaryRing& line = state.inner_lines[static_cast<std::size_t>(i)];
      const std::vector<double> xy = in_grid_frame(frame, line.vertices, line.vertex_count);
      line_reaches(disv, locator, xy.data(), line.vertex_count, found);
      for (const Reach& r : found) {
        OGRLineString geometry = part_of_line(xy, r.start, r.end, world);
        f.SetFID(OGRNullFID);
        f.SetField("line", i + 1);
        f.SetField("bln_file", trimmed(c.inner_line_files[static_cast<std::size_t>(i)]).c_str());
        f.SetField("cell", r.cell + 1);
        f.SetField("length", r.length);
        f.SetField("start", r.start);
        f.SetField("end", r.end);
        f.SetGeometry(&geometry);
        add_feature(state, *reaches, index, f);
        ++reach_count;
      }
    }
  });
  screen << " - layer reaches: " << format_integer(reach_count) << " reaches\n" << std::flush;

  OGRLayer* wells = new_layer(state, *d, "wells", srs, wkbPoint,
                              {{"point", OFTInteger}, {"bln_file", OFTString}, {"cell", OFTInteger}});
  std::int64_t well_count = 0;
  in_transaction(state, *d, *wells, [&](PendingIndex& index) {
    OGRFeature f(wells->GetLayerDefn());
    std::vector<std::int32_t> near;
    std::vector<double> scratch;
    for (std::size_t s = 0; s < state.inner_point_sets.size(); ++s) {
      const PointSet& set = state.inner_point_sets[s];
      for (std::int32_t k = 0; k < set.count; ++k) {
        const double x = set.coords[2 * static_cast<std::size_t>(k)];
        const double y = set.coords[2 * static_cast<std::size_t>(k) + 1];
        const std::int32_t cell = point_cell(disv, locator, frame.x(x), frame.y(y), near, scratch);
        OGRPoint point(x + state.x_offset, y + state.y_offset);
        f.SetFID(OGRNullFID);
        f.SetField("point", k + 1);
        f.SetField("bln_file", trimmed(c.inner_points_files[s]).c_str());
        f.SetField("cell", cell + 1);
        f.SetGeometry(&point);
        add_feature(state, *wells, index, f);
        ++well_count;
      }
    }
  });
  screen << " - layer wells: " << format_integer(well_count) << " wells\n" << std::flush;

  OGRLayer* zones = new_layer(state, *d, "zones", srs, wkbPolygon,
                              {{"polygon", OFTInteger}, {"bln_file", OFTString}, {"cell", OFTInteger}, {"share", OFTReal}});
  std::int64_t zone_count = 0;
  in_transaction(state, *d, *zones, [&](PendingIndex& index) {
    OGRFeature f(zones->GetLayerDefn());
    std::vector<ZoneCell> found;
    for (std::size_t p = 0; p < state.inner_polygons.size(); ++p) {
      const BoundaryRing& polygon = state.inner_polygons[p];
      const std::vector<double> xy = without_closing_vertex(in_grid_frame(frame, polygon.vertices, polygon.vertex_count));
      zone_cells(disv, locator, xy.data(), static_cast<std::int32_t>(xy.size() / 2), found);
      for (const ZoneCell& z : found) {
        const std::vector<double> corners = cell_xy(disv, static_cast<std::size_t>(z.cell));
        const double area2 = doubled_area(corners.data(), static_cast<std::int32_t>(corners.size() / 2));
        OGRPolygon cell_polygon;
        cell_polygon.addRingDirectly(new OGRLinearRing(world_ring(corners, world, area2 < 0.0)));
        f.SetFID(OGRNullFID);
        f.SetField("polygon", static_cast<int>(p + 1));
        f.SetField("bln_file", trimmed(c.inner_polygon_files[p]).c_str());
        f.SetField("cell", z.cell + 1);
        f.SetField("share", z.share);
        f.SetGeometry(&cell_polygon);
        add_feature(state, *zones, index, f);
        ++zone_count;
      }
    }
  });
  screen << " - layer zones: " << format_integer(zone_count) << " cells of zones\n" << std::flush;

  OGRLayer* domain = new_layer(state, *d, "domain", srs, wkbPolygon, {});
  in_transaction(state, *d, *domain, [&](PendingIndex& index) {
    OGRFeature f(domain->GetLayerDefn());
    OGRPolygon polygon;
    const World offset{state.x_offset, state.y_offset};
    auto ring_of = [&](const BoundaryRing& r, bool outer) {
      const std::vector<double> xy = without_closing_vertex(std::vector<double>(
          r.vertices.begin(), r.vertices.begin() + 2 * static_cast<std::ptrdiff_t>(r.vertex_count)));
      const double area2 = doubled_area(xy.data(), static_cast<std::int32_t>(xy.size() / 2));
      // The outer ring anticlockwise, holes clockwise.
      return world_ring(xy, offset, outer ? area2 < 0.0 : area2 > 0.0);
    };
    polygon.addRingDirectly(new OGRLinearRing(ring_of(state.outer_boundary, true)));
    for (const BoundaryRing& hole : state.inner_boundaries) polygon.addRingDirectly(new OGRLinearRing(ring_of(hole, false)));
    f.SetGeometry(&polygon);
    add_feature(state, *domain, index, f);
  });
  screen << " - layer domain: the outer boundary with " << format_integer(static_cast<std::int64_t>(state.inner_boundaries.size()))
         << (state.inner_boundaries.size() == 1 ? " hole\n" : " holes\n");
  d.reset();
  screen << " - file " << out_name << " written ok.\n";
}

}  // namespace tesseramill
