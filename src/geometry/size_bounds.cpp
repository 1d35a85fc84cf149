#include "geometry/size_bounds.h"

#include <type_traits>

#include "common/correctly_rounded.h"

namespace tesseramill {

namespace {

bool work_out_growth(double growth, Growth& g) {
  g.less_one = growth - 1.0;
  g.inverse_rise = 1.0 / cr_pow(growth, 1.5);
  // A growth rate whose rise overflows, or so close to one that nothing
  // grows, leaves the algebraic size without meaning.
  return g.less_one > 0.0 && std::isfinite(g.less_one) && g.inverse_rise > 0.0 && std::isnormal(g.inverse_rise) &&
         std::isfinite(1.0 / cr_log(growth));
}

}  // namespace

// The run keeps one growth rate, and the bounds are asked for at every
// point, so the constants are kept from call to call, as plain numbers (see
// cached_constants_for in local_separation.cpp).
static_assert(std::is_trivially_destructible_v<Growth>);
bool growth_for(double growth, Growth& g) {
  thread_local double cached_rate = 0.0;
  thread_local Growth cached{};
  thread_local bool cached_usable = work_out_growth(0.0, cached);
  if (growth != cached_rate) {
    cached_usable = work_out_growth(growth, cached);
    cached_rate = growth;
  }
  g = cached;
  return cached_usable;
}

}  // namespace tesseramill
