// The statements of the control file: how a line is recognised, the label
// that messages use, and the blocks in which a keyword may stand.
#pragma once

#include <string_view>

namespace tesseramill {

enum class Statement {
  kStart,
  kEnd,
  kMaxCentroidSeparation,
  kBlnFile,
  kPolyGrowthRate,
  kOutFileBase,
  kMf6Basename,
  kNlay,
  kMaxCells,
  kSafety,
  kMaxLloyd,
  kEpsLloyd,
  kXorigin,
  kYorigin,
  kNsdim,
  kLloydFac,
  kNumlines,
  kUnknown,
};

// Matches the start of a lower-case line against the statement words in
// their fixed order; the first word that matches decides.
Statement match_statement(std::string_view lower_line);

// The keyword's name as messages show it.
std::string_view keyword_label_of(Statement keyword);

bool keyword_allowed_in(Statement keyword, int block_state);

}  // namespace tesseramill
