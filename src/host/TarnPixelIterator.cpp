#include "host/TarnPixelIterator.h"

#include <cstdio>

using namespace Zo::Image;

TarnPixelIterator::TarnPixelIterator(Row& row, ChannelSet channels, bool read_only)
    : origin_(static_cast<std::uint32_t>(row.x())) {
    for (const Channel c : channels& kMaskRgba) {
        const auto slot = static_cast<std::size_t>(c - kRed);
        if (!read_only) write_[slot] = row.writable(c);
        read_[slot] = row[c];
    }
}

// Unsigned throughout, so that columns left of 0 wrap and come back in offset().
void TarnPixelIterator::set_position(std::int32_t x, std::int32_t y) {
    position_ = static_cast<std::uint32_t>(y) * stride_ + static_cast<std::uint32_t>(x);
}

void TarnPixelIterator::next_row() {
    std::puts("TarnPixelIterator::nextRow");
}

float TarnPixelIterator::get(int channel) const {
    const float* pixels = read_[static_cast<std::size_t>(channel)];
    return pixels == nullptr ? 0.0f : pixels[offset()];
}

void TarnPixelIterator::set(int channel, float value) {
    float* pixels = write_[static_cast<std::size_t>(channel)];
    if (pixels != nullptr) pixels[offset()] = value;
}
