// The one object of a run: everything read, computed and written hangs here
// from the first phase to the last.
#pragma once

#include <array>
#include <iosfwd>
#include <string>

#include <vector>

#include "common/control_data.h"
#include "emplacement/fast_emplacement.h"
#include "emplacement/mesh_point_list.h"
#include "geometry/domain_index.h"
#include "geometry/source_index.h"
#include "input/boundary_ring.h"
#include "relaxation/cell_tables.h"
#include "triangulation/triangle_table.h"

namespace tesseramill {

// Block states of the control-file reader; they also index `block_names`.
enum BlockState : int {
  kNoBlock = 0,
  kOuterBoundaryBlock = 1,
  kInnerBoundaryBlock = 2,
  kInnerPointsBlock = 3,
  kInnerLineBlock = 4,
  kInnerPolygonBlock = 5,
  kMf6Block = 6,
  kControlBlock = 10,
};

struct RunState {
  std::ostream* screen = nullptr;
  // Set by the library's tests and benchmarks only: every fast path gives
  // way to the reference routine it is checked against.
  bool reference_paths = false;

  ControlData control;

  std::string version_text;
  std::string control_file_name;
  double x_offset = 0.0;
  double y_offset = 0.0;

  std::string message_buffer;
  std::string keyword_label;
  std::string block_label;
  std::string line_number_text;
  std::string limit_text;
  std::string value_token;
  std::array<std::string, 11> block_names{};

  // Geometry read from the BLN files, shifted by x_offset and y_offset.
  BoundaryRing outer_boundary;
  std::vector<BoundaryRing> inner_boundaries;
  std::vector<BoundaryRing> inner_lines;
  std::vector<BoundaryRing> inner_polygons;
  std::vector<PointSet> inner_point_sets;

  // The smallest of the run's maximum separations; below it the caps of the
  // separation field cannot matter.
  double smallest_max_separation = 0.0;
  // Sources of the separation field by place, rebuilt whenever the chains change.
  SourceIndex source_index;
  // The edges of the rings by place, built once the rings are accepted.
  DomainIndex domain_index;

  MeshPointList mesh;
  EmplacementGrid grid;
  // Indexes and scratch of the fast proposal of interior emplacement.
  FastEmplacement fast_emplacement;

  // The Lloyd loop: the pass being made, and the tables of that pass.
  std::int32_t lloyd_iteration = 0;
  bool lloyd_last_pass = false;
  std::string iteration_stamp;
  TriangleTable triangles;
  CellTables cells;
};

// Blanks the run state and sets its fixed texts (version, block names).
void initialise_run_state(RunState& state);
// Drops everything the run state holds; the screen stays.
void release_run_state(RunState& state);

}  // namespace tesseramill
