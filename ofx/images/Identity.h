// Names of pictures, for what is kept between renders.
#pragma once

#include <string_view>

#include "ZoImage/Hash.h"
#include "images/Image.h"
#include "parameters/Parameters.h"

namespace veloxa::ofx {

// Equal for images with the same pixels in the same place; `field` is the one that is rendered, as the host
// names it. An image that the host gives no identifier is like none before. Any thread.
Zo::Image::Hash identity_of(const Image& image, OfxTime time, const RenderScale& scale,
                            std::string_view field);
// Unlike any other in this process. Any thread.
Zo::Image::Hash fresh_identity();
// The settings that a render depends on.
Zo::Image::Hash identity_of(const Values& values);

}  // namespace veloxa::ofx
