#include "keyer/OutputKernel.h"

LANE_KERNEL(Opacity, opacity);
LANE_KERNEL(Opacity, linear_opacity);
LANE_KERNEL(Opacity, colour_share);
LANE_KERNEL(OutputColour, output_colour);
LANE_KERNEL(AddedColour, added_colour);
LANE_KERNEL(Overlay, overlay);
LANE_KERNEL(HoldoutColour, holdout_colour);
LANE_KERNEL(HoldoutAlpha, holdout_alpha);
