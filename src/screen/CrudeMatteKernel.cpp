#include "screen/CrudeMatteKernel.h"

#include "stages/KernelMath.h"

namespace {

constexpr auto kByte = static_cast<float>(kernel::kByte);

}  // namespace

CrudeMatteParams crude_matte_params(const ControlBlock& controls) {
    return {static_cast<float>(controls.get(controls::kScreenTolerance.third)) / 255.0f};
}

void crude_matte(const CrudeMatteParams& params, const RolePixels& fg, const RolePixels& plate, float* alpha,
                 std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        const float primary = fg.primary[i] * kByte;
        const float level = plate.primary[i] * kByte - params.tolerance;
        const float r1 = (primary - fg.role1[i] * kByte) / (level - plate.role1[i] * kByte);
        const float r0 = (primary - fg.role0[i] * kByte) / (level - plate.role0[i] * kByte);
        const float m = r1 <= r0 ? r1 : r0;
        alpha[i] = m < 1.0f ? 0.0f : 255.0f;
    }
}
