// A plate or clean plate in light, and a matte, as whole planes.
#pragma once

#include "ZoImage/GeneralTile.h"
#include "ZoImage/Iop.h"
#include "unmix/Plane.h"
#include "unmix/UnmixParams.h"

namespace unmix {

// Both read the box, whose lower left pixel is the planes' first; the caller holds `helpers`. False when the render
// was aborted.
bool read_light(Zo::Image::Iop& image, const Zo::Image::Box& box, Encoding encoding, Colours& light,
                Zo::Image::Lock& helpers);
bool read_matte(Zo::Image::Iop& image, const Zo::Image::Box& box, Floats& matte, Zo::Image::Lock& helpers);

}  // namespace unmix
