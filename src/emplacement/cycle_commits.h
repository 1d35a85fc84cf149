// The points committed in one shared emplacement cycle, kept apart by the
// part that saw each as it stands, so that whether a search box holds a
// point a part did not see is asked of the other parts' points alone.
#pragma once

#include <cstddef>
#include <vector>

#include "emplacement/mesh_point_index.h"

namespace tesseramill {

struct CycleCommits {
  // The points that one part saw as they stand, or, in the last group, that
  // no part did, with the box that holds them.
  struct Group {
    std::vector<double> coordinates;  // x,y pairs, in commit order
    MeshPointIndex index;
    bool any = false;
    double xlo = 0.0;
    double xhi = 0.0;
    double ylo = 0.0;
    double yhi = 0.0;
  };
  // Made once by start_cycle_commits and never resized: each index points
  // at its group's coordinates.
  std::vector<Group> groups;
};

// Starts `parts` + 1 empty groups, their indexes over the given region.
void start_cycle_commits(CycleCommits& commits, std::size_t parts, double xlo, double xhi, double ylo, double yhi);

// Adds a committed point that part `seen_by` saw as it stands; `seen_by`
// equal to the number of parts for a point that no part did.
void add_commit(CycleCommits& commits, double x, double y, std::size_t seen_by);

// Whether a point committed so far with xlo <= x <= xhi and ylo <= y <= yhi
// is one that part `part` did not see as it stands.
bool unseen_in_box(const CycleCommits& commits, std::size_t part, double xlo, double xhi, double ylo, double yhi);

}  // namespace tesseramill
