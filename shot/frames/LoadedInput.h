// An image on one of the node's inputs.
#pragma once

#include <memory>

#include "ZoImage/Hash.h"
#include "shot/image/Image.h"

namespace veloxa {

struct LoadedInput {
    std::shared_ptr<const Image> image;  // null for an input that is not used
    Zo::Image::Hash identity;            // names the pixels
};

}  // namespace veloxa
