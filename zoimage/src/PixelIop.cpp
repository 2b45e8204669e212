#include "ZoImage/PixelIop.h"

namespace Zo::Image {

void PixelIop::_request(int x, int y, int r, int t, ChannelSet channels, int count) {
    in_channels(0, channels);
    input(0).request(x, y, r, t, channels, count);
}

void PixelIop::engine(int y, int x, int r, const ChannelSet& channels, Row& row) {
    ChannelSet read = channels;
    in_channels(0, read);
    Row in(x, r);
    in.get(input(0), y, read);
    pixel_engine(in, y, x, r, channels, row);
}

}  // namespace Zo::Image
