// The crude matte of a span: 255 where the backing dominates at least as much as in the clean plate, lowered
// by a tolerance.
//
// Colour in role order on the working scale; n pixels; the output must not overlap the inputs. A NaN ratio
// counts as backing.
#pragma once

#include <cstddef>

#include "controls/ChannelRoles.h"
#include "controls/Controls.h"
#include "lanes/LaneKernel.h"

struct CrudeMatteParams {
    float tolerance;  // of the primary, 0 to 1
};

inline CrudeMatteParams crude_matte_params(const ControlBlock& controls) {
    return {static_cast<float>(controls.get(controls::kScreenTolerance.third)) / 255.0f};
}

using CrudeMatte = void(const CrudeMatteParams& params, const RolePixels& fg, const RolePixels& plate,
                        float* alpha, std::size_t n);
LANE_KERNEL(CrudeMatte, crude_matte);
