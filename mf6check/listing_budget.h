// The volume budget that MODFLOW 6 writes into the model's listing file
// (STEM.lst) at the end of each time step.
#pragma once

#include <string>

namespace tesseramill_mf6check {

struct VolumeBudget {
  double total_in = 0.0;         // rates for the time step, L**3/T
  double total_out = 0.0;
  double in_less_out = 0.0;
  double printed_percent = 0.0;  // "PERCENT DISCREPANCY" as printed, two decimals
  // 100 (in - out) / ((in + out) / 2), from the printed rates: more digits
  // than the printed percent, which a grid-sized discrepancy of a few
  // thousandths of a percent would round to 0.00.
  double percent = 0.0;
};

// The last budget of the listing `text`, from the rate columns; false when
// the listing holds no complete budget.
bool last_volume_budget(const std::string& text, VolumeBudget& budget);

}  // namespace tesseramill_mf6check
