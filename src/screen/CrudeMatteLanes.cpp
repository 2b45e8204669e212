#include "lanes/KernelMath.h"
#include "screen/CrudeMatteKernel.h"

namespace LANES {

namespace {

constexpr auto kByte = static_cast<float>(kernel::kByte);

}  // namespace

void crude_matte(const CrudeMatteParams& params, const RolePixels& fg, const RolePixels& plate, float* alpha,
                 std::size_t n) {
    const float tolerance = params.tolerance;
    const float* fg0 = fg.role0;
    const float* fg1 = fg.role1;
    const float* fgP = fg.primary;
    const float* plate0 = plate.role0;
    const float* plate1 = plate.role1;
    const float* plateP = plate.primary;
#pragma GCC ivdep
    for (std::size_t i = 0; i < n; ++i) {
        const float primary = fgP[i] * kByte;
        const float level = plateP[i] * kByte - tolerance;
        const float r1 = (primary - fg1[i] * kByte) / (level - plate1[i] * kByte);
        const float r0 = (primary - fg0[i] * kByte) / (level - plate0[i] * kByte);
        const float m = r1 <= r0 ? r1 : r0;
        alpha[i] = m < 1.0f ? 0.0f : 255.0f;
    }
}

}  // namespace LANES
