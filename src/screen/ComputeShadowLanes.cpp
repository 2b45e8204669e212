#include "lanes/ForPacks.h"
#include "lanes/KernelMath.h"
#include "screen/ComputeShadowKernel.h"

using namespace kernel;

namespace LANES {

void compute_shadow(const ComputeShadowParams& params, const RolePixels& backing, float* density,
                    std::size_t n) {
    const double gain = params.gain;
    for_packs({backing.role0, backing.role1, backing.primary}, {density}, n,
              [gain](const Inputs& from, const Outputs& to) {
                  const Floats s = (from[1] + from[0]) + from[2];
                  const Doubles v = clamp_to(0.0, 255.0, wide(s) * gain);
                  to.put(0, one_nan(narrow(255.0 - v)));
              });
}

}  // namespace LANES
