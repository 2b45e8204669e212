// Smaller stand-ins for pictures, to be keyed fast while the user waits.
#pragma once

#include <memory>

#include "ZoImage/KnobPanel.h"
#include "shot/image/Image.h"

namespace veloxa::viewer {

// The picture at 1 / scale: each pixel is the mean of scale x scale pixels, of those that there are at the
// edges of the data window. The windows are rounded outward.
std::shared_ptr<const Image> shrunk(const Image& image, int scale);

// The pixels of the stand-in that show a part of the picture.
Zo::Image::Box shrunk(const Zo::Image::Box& box, int scale);

// Sets what counts pixels to as many of the stand-in's.
void shrink_knobs(Zo::Image::KnobPanel& panel, int scale);

}  // namespace veloxa::viewer
