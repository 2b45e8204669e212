#include "lanes/ForPacks.h"
#include "stages/SpillPixel.h"

namespace LANES {

using namespace kernel;

void suppress_spill(const SpillParams& params, const RolePixels& in, const float* alpha,
                    const float* pre_matte, const RoleOutput& out, std::size_t n) {
    const SpillParams p = params;
    for_packs({in.role0, in.role1, in.primary, alpha, pre_matte}, {out.role0, out.role1, out.primary}, n,
              [p](const Inputs& from, const Outputs& to) {
                  const Colour<Floats> spilled{from[0], from[1], from[2]};
                  const auto keep = from[4] != 0.0f;
                  Colour<Floats> result = spilled;
                  // Certain backing comes in large areas.
                  if (!all_of(keep)) result = without_spill(p, spilled, from[3]);
                  to.put(0, choose(keep, spilled.role0, one_nan(result.role0)));
                  to.put(1, choose(keep, spilled.role1, one_nan(result.role1)));
                  to.put(2, choose(keep, spilled.primary, one_nan(result.primary)));
              });
}

}  // namespace LANES
