#include "listing_budget.h"

#include <cstdlib>
#include <sstream>
#include <vector>

namespace tesseramill_mf6check {

namespace {

// The number after the last "label =" on the line: the rate column, which
// the listing prints right of the cumulative volumes.
bool last_value(const std::string& line, const std::string& label, double& value) {
  const std::size_t at = line.rfind(label);
  if (at == std::string::npos) return false;
  const std::string rest = line.substr(at + label.size());
  const std::size_t equals = rest.find('=');
  if (equals == std::string::npos) return false;
  const char* start = rest.c_str() + equals + 1;
  char* end = nullptr;
  value = std::strtod(start, &end);
  return end != start;
}

}  // namespace

bool last_volume_budget(const std::string& text, VolumeBudget& budget) {
  std::istringstream in(text);
  std::string line;
  VolumeBudget current;
  int seen = 0;
  bool found = false;
  while (std::getline(in, line)) {
    if (line.find("VOLUME BUDGET FOR ENTIRE MODEL") != std::string::npos) {
      seen = 0;
    } else if (line.find("TOTAL IN =") != std::string::npos && last_value(line, "TOTAL IN", current.total_in)) {
      seen |= 1;
    } else if (line.find("TOTAL OUT =") != std::string::npos && last_value(line, "TOTAL OUT", current.total_out)) {
      seen |= 2;
    } else if (line.find("IN - OUT =") != std::string::npos && last_value(line, "IN - OUT", current.in_less_out)) {
      seen |= 4;
    } else if (line.find("PERCENT DISCREPANCY =") != std::string::npos &&
               last_value(line, "PERCENT DISCREPANCY", current.printed_percent)) {
      if (seen == 7) {
        const double mean = (current.total_in + current.total_out) / 2.0;
        current.percent = mean != 0.0 ? 100.0 * current.in_less_out / mean : 0.0;
        budget = current;
        found = true;
      }
      seen = 0;
    }
  }
  return found;
}

}  // namespace tesseramill_mf6check
