#include "unmix/VlxUnmixShadow.h"

#include <algorithm>
#include <vector>

#include "unmix/VlxUnmixBacking.h"

using namespace Zo::Image;

bool VlxUnmixShadow::compute(Lock& helpers) {
    return backing_.make(helpers);
}

void VlxUnmixShadow::show(int y, int x, ChannelSet channels, Row& row) {
    std::vector<float> shade(row.width());
    backing_.model().shade_row(y, x, x + static_cast<int>(row.width()), shade.data());
    for (float& v : shade) v = 255.0f * std::clamp(1.0f - v, 0.0f, 1.0f);
    for (const Channel channel : channels) std::copy(shade.begin(), shade.end(), row.overwrite(channel));
}
