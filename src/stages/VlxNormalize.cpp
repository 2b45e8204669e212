#include "stages/VlxNormalize.h"

#include "stages/NormalizeKernel.h"

using namespace Zo::Image;

void VlxNormalize::setup() {
    Hash hash;
    if (const Op* op = input_op(0)) hash.append(op->hash());
    invalidate(hash);
}

void VlxNormalize::pixel_engine(const Row& in, int /*y*/, int /*x*/, int /*r*/, ChannelSet channels,
                                Row& out) {
    for (const Channel c : channels) normalize(in[c], out.overwrite(c), out.width());
}
