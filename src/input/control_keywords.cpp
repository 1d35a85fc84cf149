#include "input/control_keywords.h"

#include "common/run_state.h"

namespace tesseramill {

namespace {

struct StatementWord {
  std::string_view word;
  Statement statement;
};

// The order matters: `max_centroid` must be tried before `max_cell`, and each
// line is the statement of the first word it begins with.
constexpr StatementWord kStatementWords[] = {
    {"start", Statement::kStart},
    {"end", Statement::kEnd},
    {"max_centroid", Statement::kMaxCentroidSeparation},
    {"bln_file", Statement::kBlnFile},
    {"poly_growth", Statement::kPolyGrowthRate},
    {"out_file", Statement::kOutFileBase},
    {"mf6_base", Statement::kMf6Basename},
    {"nlay", Statement::kNlay},
    {"max_cell", Statement::kMaxCells},
    {"safety", Statement::kSafety},
    {"max_lloyd", Statement::kMaxLloyd},
    {"max_loyd", Statement::kMaxLloyd},
    {"eps_lloyd", Statement::kEpsLloyd},
    {"eps_loyd", Statement::kEpsLloyd},
    {"xorig", Statement::kXorigin},
    {"yorig", Statement::kYorigin},
    {"nsdim", Statement::kNsdim},
    {"lloyd_fac", Statement::kLloydFac},
    {"numline", Statement::kNumlines},
};

}  // namespace

Statement match_statement(std::string_view lower_line) {
  for (const StatementWord& entry : kStatementWords) {
    if (lower_line.substr(0, entry.word.size()) == entry.word) return entry.statement;
  }
  return Statement::kUnknown;
}

std::string_view keyword_label_of(Statement keyword) {
  switch (keyword) {
    case Statement::kMaxCentroidSeparation: return "MAX_CENTROID_SEPARATION";
    case Statement::kBlnFile: return "BLN_FILE";
    case Statement::kPolyGrowthRate: return "POLY_GROWTH_RATE";
    case Statement::kOutFileBase: return "OUT_FILE_BASE";
    case Statement::kMf6Basename: return "MF6_BASENAME";
    case Statement::kNlay: return "NLAY";
    case Statement::kMaxCells: return "MAX_CELLS";
    case Statement::kSafety: return "SAFETY";
    case Statement::kMaxLloyd: return "MAX_LLOYD";
    case Statement::kEpsLloyd: return "EPS_LLOYD";
    // The label is spelled with a digit zero; users still type XORIGIN.
    case Statement::kXorigin: return "X0RIGIN";
    case Statement::kYorigin: return "YORIGIN";
    case Statement::kNsdim: return "NSDIM";
    case Statement::kLloydFac: return "LLOYD_FAC";
    case Statement::kNumlines: return "NUMLINES";
    default: return "";
  }
}

bool keyword_allowed_in(Statement keyword, int block_state) {
  switch (keyword) {
    case Statement::kMaxCentroidSeparation:
      return block_state == kControlBlock || block_state == kInnerPolygonBlock;
    case Statement::kBlnFile:
      return block_state >= kOuterBoundaryBlock && block_state <= kInnerPolygonBlock;
    case Statement::kPolyGrowthRate:
    case Statement::kOutFileBase:
    case Statement::kMaxCells:
    case Statement::kSafety:
    case Statement::kMaxLloyd:
    case Statement::kEpsLloyd:
    case Statement::kNsdim:
    case Statement::kLloydFac:
      return block_state == kControlBlock;
    case Statement::kMf6Basename:
    case Statement::kNlay:
    case Statement::kXorigin:
    case Statement::kYorigin:
      return block_state == kMf6Block;
    case Statement::kNumlines:
      return block_state == kInnerLineBlock;
    default:
      return false;
  }
}

}  // namespace tesseramill
