// Which pixels are surely the subject's, which are not told yet.
#pragma once

#include "unmix/Plane.h"

namespace unmix {

struct Segmentation {
    Bytes solid;         // fine grid: opaque; alpha is 1 there
    Bytes source;        // fine grid: opaque, and so far from soft edges that colours may be taken from it
    Floats rough;        // fine grid: the opacity that they were told by
    Bytes unknown;       // every pixel: to be solved. Where neither, alpha is 0.
    float spill = 0.0f;  // share of the screen's colour that the solids' rims hold
};

}  // namespace unmix
