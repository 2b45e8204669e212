#include "lanes/ForPacks.h"
#include "stages/MattePixel.h"

namespace LANES {

using kernel::one_nan;

void matte_constant(const MatteParams& params, const RolePixels& fg, float* matte, std::size_t n) {
    const MatteParams k = params;
    const auto backing = kernel::backing_of(k.backingP, k.backing0, k.backing1, k.darks);
    for_packs({fg.role0, fg.role1, fg.primary}, {matte}, n, [=](const Inputs& from, const Outputs& to) {
        to.put(0, one_nan(kernel::matte_of(k, backing, from[0], from[1], from[2])));
    });
}

void matte_clean_plate(const MatteParams& params, const RolePixels& fg, const RolePixels& plate, float* matte,
                       std::size_t n) {
    const MatteParams k = params;
    for_packs({fg.role0, fg.role1, fg.primary, plate.role0, plate.role1, plate.primary}, {matte}, n,
              [=](const Inputs& from, const Outputs& to) {
                  const auto backing = kernel::backing_of(from[5], from[3], from[4], k.darks);
                  to.put(0, one_nan(kernel::matte_of(k, backing, from[0], from[1], from[2])));
              });
}

}  // namespace LANES
