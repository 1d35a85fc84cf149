// Reader of the block-structured control file named on the command line.
#include <ostream>

#include "common/failure.h"
#include "common/limits.h"
#include "common/text_tools.h"
#include "input/control_file.h"
#include "input/control_keywords.h"
#include "input/line_reader.h"
#include "run/phases.h"

namespace tesseramill {

namespace {

struct ControlParser {
  RunState& state;
  ControlData& control;
  std::string file;  // control_file_name as messages show it
  int block_state = kNoBlock;
  std::int32_t line_number = 0;
  std::string line_text;
  std::string raw_line_text;
};

std::string at_line(const ControlParser& p) {
  return " at line " + p.state.line_number_text + " of file " + p.file + ".";
}

[[noreturn]] void fail_at_line(ControlParser& p, const std::string& head) {
  fail(p.state, head + at_line(p));
}

const std::string& block_name(const ControlParser& p, int block_state) {
  return p.state.block_names[static_cast<std::size_t>(block_state)];
}

// ---- START ---------------------------------------------------------------

struct BlockWord {
  std::string_view word;
  int block_state;
};

constexpr BlockWord kBlockWords[] = {
    {"outer_boun", kOuterBoundaryBlock}, {"inner_boun", kInnerBoundaryBlock},
    {"inner_poin", kInnerPointsBlock},   {"inner_line", kInnerLineBlock},
    {"inner_poly", kInnerPolygonBlock},  {"control", kControlBlock},
    {"mf6", kMf6Block},
};

void start_block(ControlParser& p) {
  if (p.block_state != kNoBlock) {
    fail_at_line(p, "Unexpected START encountered");
  }
  std::string word = p.line_text.size() > 5 ? p.line_text.substr(5) : std::string();
  left_adjust(word);
  int block = kNoBlock;
  for (const BlockWord& entry : kBlockWords) {
    if (std::string_view(word).substr(0, entry.word.size()) == entry.word) {
      block = entry.block_state;
      break;
    }
  }
  if (block == kNoBlock) {
    fail_at_line(p, "Unknown block type \"" + word + "\" encountered");
  }
  ControlData& c = p.control;
  std::int32_t* counter = nullptr;
  int limit = 1;
  switch (block) {
    case kOuterBoundaryBlock: counter = &c.outer_boundary_count; break;
    case kInnerBoundaryBlock: counter = &c.inner_boundary_count; limit = kMaxInnerBoundaryBlocks; break;
    case kInnerPointsBlock: counter = &c.inner_points_count; limit = kMaxInnerPointsBlocks; break;
    case kInnerLineBlock: counter = &c.inner_line_count; limit = kMaxInnerLines; break;
    case kInnerPolygonBlock: counter = &c.inner_polygon_count; limit = kMaxInnerPolygonBlocks; break;
    case kMf6Block: counter = &c.mf6_count; break;
    default: counter = &c.control_count; break;
  }
  const std::int32_t old_count = *counter;
  *counter += 1;
  p.block_state = block;
  if (old_count >= limit) {
    if (block == kInnerLineBlock) {
      fail(p.state, "Maximum of 50 inner lines can be collectively defined using INNER_LINE blocks "
                    "cited in file " + p.file + ".");
    }
    p.state.limit_text = int_to_text(limit);
    fail(p.state, "Maximum of " + p.state.limit_text + " " + block_name(p, block) +
                      " blocks allowed in file " + p.file + ".");
  }
  if (block == kInnerLineBlock) {
    c.inner_line_block_count += 1;
    c.inner_line_block[static_cast<std::size_t>(old_count)] = c.inner_line_block_count;
  }
}

// ---- END -----------------------------------------------------------------

struct Requirement {
  Statement keyword;
  bool present;
};

void end_block(ControlParser& p) {
  if (p.block_state == kNoBlock) {
    fail_at_line(p, "Unexpected END statement encountered");
  }
  ControlData& c = p.control;
  // The CONTROL block does not name itself: its message shows the block
  // most recently closed before it.
  if (p.block_state != kControlBlock) {
    p.state.block_label = fit_field(block_name(p, p.block_state), kBlockLabelLength);
  }
  Requirement needs[4] = {};
  int need_count = 0;
  auto need = [&](Statement keyword, bool present) { needs[need_count++] = {keyword, present}; };
  switch (p.block_state) {
    case kOuterBoundaryBlock: need(Statement::kBlnFile, !c.outer_boundary_file.empty()); break;
    case kInnerBoundaryBlock:
      need(Statement::kBlnFile, !c.inner_boundary_files[c.inner_boundary_count - 1].empty());
      break;
    case kInnerPointsBlock:
      need(Statement::kBlnFile, !c.inner_points_files[c.inner_points_count - 1].empty());
      break;
    case kInnerLineBlock:
      need(Statement::kBlnFile, !c.inner_line_files[c.inner_line_count - 1].empty());
      need(Statement::kNumlines, c.numlines > 0);
      break;
    case kInnerPolygonBlock:
      need(Statement::kBlnFile, !c.inner_polygon_files[c.inner_polygon_count - 1].empty());
      need(Statement::kMaxCentroidSeparation,
           real_is_set(c.inner_polygon_max_separation[c.inner_polygon_count - 1]));
      break;
    case kMf6Block:
      need(Statement::kMf6Basename, !c.mf6_basename.empty());
      need(Statement::kNlay, c.nlay > 0);
      break;
    default:
      need(Statement::kPolyGrowthRate, real_is_set(c.poly_growth_rate));
      need(Statement::kMaxCentroidSeparation, real_is_set(c.max_centroid_separation));
      need(Statement::kOutFileBase, !c.out_file_base.empty());
      need(Statement::kMaxCells, c.max_cells > 0);
      break;
  }
  for (int k = 0; k < need_count; ++k) {
    if (!needs[k].present) {
      p.state.keyword_label = std::string(keyword_label_of(needs[k].keyword));
      fail(p.state, trimmed(p.state.block_label) + " block that finishes on line " +
                        p.state.line_number_text + " of file " + p.file +
                        " does not contain a " + p.state.keyword_label + " keyword.");
    }
  }
  if (p.block_state == kInnerLineBlock) {
    const int first = c.inner_line_count;  // 1-based number of the block's line
    const int lines = c.numlines;
    // The total is worked out in 64 bits: NUMLINES may be as large as any
    // 32-bit integer, and the sum must not wrap round past the limit test.
    const std::int64_t total = static_cast<std::int64_t>(first) + lines - 1;
    if (total > kMaxInnerLines) {
      fail(p.state, "Maximum of 50 inner lines can be collectively defined using INNER_LINE blocks "
                    "cited in file " + p.file + ".");
    }
    c.inner_line_count = static_cast<std::int32_t>(total);
    for (int k = first; k < first + lines - 1; ++k) {
      c.inner_line_files[static_cast<std::size_t>(k)] = c.inner_line_files[static_cast<std::size_t>(first - 1)];
      c.inner_line_block[static_cast<std::size_t>(k)] = c.inner_line_block[static_cast<std::size_t>(first - 1)];
    }
    c.numlines = -1;
  }
  p.block_state = kNoBlock;
}

// ---- keyword lines -------------------------------------------------------

std::string& bln_entry(ControlParser& p) {
  ControlData& c = p.control;
  switch (p.block_state) {
    case kOuterBoundaryBlock: return c.outer_boundary_file;
    case kInnerBoundaryBlock: return c.inner_boundary_files[c.inner_boundary_count - 1];
    case kInnerPointsBlock: return c.inner_points_files[c.inner_points_count - 1];
    case kInnerLineBlock: return c.inner_line_files[c.inner_line_count - 1];
    default: return c.inner_polygon_files[c.inner_polygon_count - 1];
  }
}

double& separation_entry(ControlParser& p) {
  ControlData& c = p.control;
  if (p.block_state == kInnerPolygonBlock) {
    return c.inner_polygon_max_separation[c.inner_polygon_count - 1];
  }
  return c.max_centroid_separation;
}

bool keyword_is_set(ControlParser& p, Statement keyword) {
  const ControlData& c = p.control;
  switch (keyword) {
    case Statement::kMaxCentroidSeparation: return real_is_set(separation_entry(p));
    case Statement::kBlnFile: return !bln_entry(p).empty();
    case Statement::kPolyGrowthRate: return real_is_set(c.poly_growth_rate);
    case Statement::kOutFileBase: return !c.out_file_base.empty();
    case Statement::kMf6Basename: return !c.mf6_basename.empty();
    case Statement::kNlay: return c.nlay > 0;
    case Statement::kMaxCells: return c.max_cells > 0;
    case Statement::kSafety: return c.safety >= 0;
    case Statement::kMaxLloyd: return c.max_lloyd > kUnsetInteger;
    case Statement::kEpsLloyd: return real_is_set(c.eps_lloyd);
    case Statement::kXorigin: return real_is_set(c.xorigin);
    case Statement::kYorigin: return real_is_set(c.yorigin);
    case Statement::kNsdim: return c.nsdim > 0;
    case Statement::kLloydFac: return real_is_set(c.lloyd_fac);
    case Statement::kNumlines: return c.numlines > 0;
    default: return false;
  }
}

bool is_file_name_keyword(Statement keyword) {
  return keyword == Statement::kBlnFile || keyword == Statement::kOutFileBase ||
         keyword == Statement::kMf6Basename;
}

bool is_integer_keyword(Statement keyword) {
  return keyword == Statement::kNlay || keyword == Statement::kMaxCells ||
         keyword == Statement::kSafety || keyword == Statement::kMaxLloyd ||
         keyword == Statement::kNsdim || keyword == Statement::kNumlines;
}

[[noreturn]] void fail_keyword_value(ControlParser& p, const std::string& requirement) {
  fail_at_line(p, "Value for " + p.state.keyword_label + " keyword must be " + requirement);
}

void store_file_name(ControlParser& p, Statement keyword, const std::string& name) {
  ControlData& c = p.control;
  switch (keyword) {
    case Statement::kBlnFile: bln_entry(p) = name; break;
    case Statement::kOutFileBase: c.out_file_base = name; break;
    default:
      c.mf6_basename = name;
      if (name.find_first_of("\\/") != std::string::npos) {
        fail_at_line(p, "As presently programmed, MF6_BASENAME cannot include a path in the "
                        "filename base. This is violated");
      }
      break;
  }
}

void store_integer(ControlParser& p, Statement keyword, std::int32_t value) {
  ControlData& c = p.control;
  switch (keyword) {
    case Statement::kNlay:
      c.nlay = value;
      if (value > kMaxNlay) fail_at_line(p, "Value for NLAY must be less than 100");
      if (value < 1) fail_at_line(p, "Value for NLAY must be greater than zero");
      break;
    case Statement::kMaxCells:
      c.max_cells = value;
      if (value < kMinMaxCells) fail_at_line(p, "Value for MAX_CELLS must be greater than 1000");
      break;
    case Statement::kSafety:
      c.safety = value;
      if (value < 0) fail_at_line(p, "Value supplied for SAFETY keyword must be zero or greater");
      break;
    case Statement::kMaxLloyd:
      c.max_lloyd = value;
      if (value < 0) fail_at_line(p, "Value supplied for MAX_LLOYD keyword must be zero or greater");
      break;
    case Statement::kNsdim:
      c.nsdim = value;
      if (value < kMinNsdim) fail_at_line(p, "Value for NSDIM must be at least 5");
      if (value % 2 == 0) fail_at_line(p, "Value for NSDIM must be a positive odd integer");
      break;
    default:
      c.numlines = value;
      if (value <= 0) fail_keyword_value(p, "greater than zero");
      break;
  }
}

void store_real(ControlParser& p, Statement keyword, double value) {
  ControlData& c = p.control;
  switch (keyword) {
    case Statement::kMaxCentroidSeparation:
      separation_entry(p) = value;
      if (value <= 0.0) fail_keyword_value(p, "greater than zero");
      break;
    case Statement::kPolyGrowthRate:
      c.poly_growth_rate = value;
      if (value <= 1.0) fail_keyword_value(p, "greater than one");
      break;
    case Statement::kEpsLloyd:
      c.eps_lloyd = value;
      if (value <= 0.0) fail_keyword_value(p, "greater than zero");
      break;
    case Statement::kLloydFac:
      c.lloyd_fac = value;
      if (value <= 0.0) fail_keyword_value(p, "greater than zero");
      if (value > 1.0) fail_at_line(p, "LLOYD_FAC should be less than 1.0");
      break;
    case Statement::kXorigin: c.xorigin = value; break;
    default: c.yorigin = value; break;
  }
}

void keyword_line(ControlParser& p, Statement keyword) {
  RunState& s = p.state;
  s.keyword_label = std::string(keyword_label_of(keyword));
  if (!keyword_allowed_in(keyword, p.block_state)) {
    fail(s, s.keyword_label + " keyword is not allowed in " + block_name(p, p.block_state) +
                " block.");
  }
  if (keyword_is_set(p, keyword)) {
    fail_at_line(p, s.keyword_label + " keyword repeated in " + block_name(p, p.block_state) +
                        " block");
  }
  blank_out_char(p.line_text, '=');
  int first[2];
  int last[2];
  if (split_line(2, p.line_text, first, last) != 0) {
    fail_at_line(p, "Cannot read value following " + s.keyword_label + " keyword");
  }
  if (is_file_name_keyword(keyword)) {
    std::string from_token = fit_field(
        std::string_view(p.raw_line_text).substr(static_cast<std::size_t>(first[1])), kFileNameLength);
    int end = static_cast<int>(from_token.size()) - 1;
    std::string name;
    if (read_file_name(from_token, 0, end, name, kFileNameLength) != 0) {
      fail_at_line(p, "Cannot read filename following " + s.keyword_label + " keyword");
    }
    store_file_name(p, keyword, name);
    return;
  }
  s.value_token = fit_field(
      std::string_view(p.line_text).substr(static_cast<std::size_t>(first[1]),
                                           static_cast<std::size_t>(last[1] - first[1] + 1)),
      kNumericTokenLength);
  if (is_integer_keyword(keyword)) {
    std::int32_t value = 0;
    if (read_integer(s.value_token, value) != 0) {
      fail_at_line(p, "Cannot read value following " + s.keyword_label + " keyword");
    }
    store_integer(p, keyword, value);
  } else {
    double value = 0.0;
    if (read_real(s.value_token, value) != 0) {
      fail_at_line(p, "Cannot read value following " + s.keyword_label + " keyword");
    }
    store_real(p, keyword, value);
  }
}

void closing_steps(ControlParser& p, LineReader& reader) {
  close_lines(reader);
  ControlData& c = p.control;
  if (p.block_state != kNoBlock) {
    fail(p.state, "End encountered to file " + p.file + " before closure of " +
                      block_name(p, p.block_state) + " block.");
  }
  if (c.safety < 0) c.safety = 0;
  if (c.outer_boundary_count == 0) {
    fail(p.state, "No OUTER_BOUNDARY block found in file " + p.file + ".");
  }
  if (c.control_count == 0) {
    // A missing CONTROL block is reported with the INNER_POLYGON row of the
    // block names; users' scripts may look for exactly these words.
    fail(p.state, "No " + block_name(p, kInnerPolygonBlock) + " block found in file " + p.file + ".");
  }
  if (c.mf6_count == 0) {
    fail(p.state, "No MF6 block found in file " + p.file + ".");
  }
  check_duplicate_bln_names(p.state);
  check_control_totals(p.state);
}

}  // namespace

void read_control_file(RunState& state) {
  std::ostream& screen = *state.screen;
  ControlParser p{state, state.control, trimmed(state.control_file_name), kNoBlock, 0, {}, {}};
  screen << "\n - reading file " << p.file << "...\n";
  LineReader reader;
  if (!open_lines(reader, state.control_file_name)) {
    fail(state, "Cannot open TESSERAMILL input file " + p.file + ".");
  }
  for (;;) {
    count_line(p.line_number);
    state.line_number_text = int_to_text(p.line_number);
    LineStatus status = read_line(reader, p.line_text, kInputLineLength);
    if (status == LineStatus::kEnd) break;
    if (status == LineStatus::kError) {
      fail(state, "Error reading line " + state.line_number_text + " of file " + p.file + ".");
    }
    if (is_comment_line(p.line_text)) continue;
    p.raw_line_text = p.line_text;
    to_lower(p.line_text);
    Statement statement = match_statement(p.line_text);
    switch (statement) {
      case Statement::kUnknown: fail_at_line(p, "Unknown keyword");
      case Statement::kStart: start_block(p); break;
      case Statement::kEnd: end_block(p); break;
      default: keyword_line(p, statement); break;
    }
  }
  closing_steps(p, reader);
  screen << " - file " << p.file << " read ok.\n";
}

}  // namespace tesseramill
