// What an operator says of its image before any pixel is computed.
#pragma once

#include "ZoImage/Box.h"
#include "ZoImage/ChannelSet.h"

namespace Zo::Image {

// The picture's frame (display window) and the shape of its pixels.
struct Format {
    Box box;
    double pixel_aspect = 1.0;  // width of a pixel over its height

    friend bool operator==(const Format&, const Format&) = default;
};

struct Info {
    Box box;              // the data window: where the pixels are; beyond it its edge pixels repeat
    Format format;        // the display window
    ChannelSet channels;  // channels that exist; any other reads as 0
};

}  // namespace Zo::Image
