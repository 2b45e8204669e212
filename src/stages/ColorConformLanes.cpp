#include "lanes/ForPacks.h"
#include "stages/ColorConformPixel.h"

namespace LANES {

using namespace kernel;

namespace {

template <bool kAdjust>
[[gnu::always_inline]] inline void conform(const ConformParams& params, const RolePixels& in,
                                           const float* alpha, const RoleOutput& out, std::size_t n) {
    const ConformParams p = params;
    for_packs({in.role0, in.role1, in.primary, alpha}, {out.role0, out.role1, out.primary}, n,
              [&p](const Inputs& from, const Outputs& to) {
                  const Doubles t = wide((255.0f - from[3]) / 255.0f);
                  Toned<Floats> c{toned(p.curve0, t, from[0]), toned(p.curve1, t, from[1]),
                                  toned(p.curveP, t, from[2])};
                  if constexpr (kAdjust) c = adjusted(p, c);
                  to.put(0, one_nan(c.r));
                  to.put(1, one_nan(c.g));
                  to.put(2, one_nan(c.b));
              });
}

}  // namespace

void conform_colour(const ConformParams& params, const RolePixels& in, const float* alpha,
                    const RoleOutput& out, std::size_t n) {
    if (params.adjust) {
        conform<true>(params, in, alpha, out, n);
    } else {
        conform<false>(params, in, alpha, out, n);
    }
}

}  // namespace LANES
