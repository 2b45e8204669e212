#include "framework/RowStage.h"

using namespace Zo::Image;

ChannelSet RowStage::needed(std::size_t n, ChannelSet channels) const {
    const ChannelSet own = described_inputs()[n].channels;
    return n == 0 ? channels - output_.made + own : own;
}

void RowStage::_validate(bool /*for_real*/) {
    validate_writing(output_.declared, output_.added);
}

void RowStage::_request(int x, int y, int r, int t, ChannelSet channels, int count) {
    for (std::size_t n = 0; n < described_inputs().size(); ++n) {
        if (reads(static_cast<int>(n))) {
            input(static_cast<int>(n)).request(x, y, r, t, needed(n, channels), count);
        }
    }
}

void RowStage::engine(int y, int x, int r, const ChannelSet& channels, Row& row) {
    if (!channels.intersects(output_.wanted)) {
        row.get(input(0), y, channels);
        return;
    }
    Rows in;
    for (std::size_t n = 0; n < described_inputs().size(); ++n) {
        if (!reads(static_cast<int>(n))) continue;
        in[n] = Row(x, r);
        in[n].get(input(static_cast<int>(n)), y, needed(n, channels));
    }
    row.share(in[0], channels - output_.made);
    run(y, in, channels, row);
}
