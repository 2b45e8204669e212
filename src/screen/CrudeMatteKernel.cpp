#include "screen/CrudeMatteKernel.h"

CrudeMatteParams crude_matte_params(const ControlBlock& controls) {
    return {static_cast<float>(controls.get(controls::kScreenTolerance.third)) / 255.0f};
}

LANE_KERNEL(CrudeMatte, crude_matte);
