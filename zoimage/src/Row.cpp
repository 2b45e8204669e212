#include "ZoImage/Row.h"

#include <algorithm>
#include <cassert>
#include <utility>

#include "BufferPool.h"
#include "ZoImage/Iop.h"

namespace Zo::Image {

Row& Row::operator=(Row&& other) noexcept {
    if (this == &other) return *this;
    clear(present_);
    x_ = other.x_;
    r_ = other.r_;
    present_ = std::exchange(other.present_, kMaskNone);
    for (const Channel c : present_) slot(c) = other.slot(c);
    return *this;
}

void Row::get(Iop& source, int y, ChannelSet channels) {
    source.get(y, x_, r_, channels, *this);
}

const float* Row::zeros() const {
    return Image::zeros(width());
}

void Row::set(Channel c, RowBuffer* buffer, const float* pixels) {
    clear(c);
    slot(c) = {buffer, pixels};
    present_ += c;
}

void Row::clear(ChannelSet channels) {
    for (const Channel c : channels& present_) {
        if (counted(c)) BufferPool::release(slot(c).buffer);
    }
    present_ -= channels;
}

RowBuffer* Row::storage_for(Channel c) {
    if (places_ != nullptr) {
        RowBuffer* place = (*places_)[static_cast<std::size_t>(c)];
        if (place != nullptr && place->references == 0) {
            place->references = 1;
            return place;
        }
    }
    return BufferPool::take(width());
}

bool Row::sole(Channel c) const {
    return present_.has(c) && counted(c) && slot(c).buffer->references == 1;
}

float* Row::overwrite(Channel c) {
    if (sole(c)) return const_cast<float*>(slot(c).pixels);
    RowBuffer* buffer = storage_for(c);
    set(c, buffer, buffer->data());
    return buffer->data();
}

float* Row::writable(Channel c) {
    if (sole(c)) return overwrite(c);
    RowBuffer* buffer = storage_for(c);
    std::copy_n((*this)[c], width(), buffer->data());
    set(c, buffer, buffer->data());
    return buffer->data();
}

void Row::refer(Channel c, const float* pixels) {
    set(c, nullptr, pixels);
}

void Row::set_zero(Channel c) {
    set(c, nullptr, zeros());
}

void Row::share(const Row& other, ChannelSet channels) {
    assert(other.x_ <= x_ && other.r_ >= r_);
    for (const Channel c : channels) {
        if (!other.present_.has(c)) {
            clear(c);
            continue;
        }
        const Slot from = other.slot(c);
        if (from.buffer != nullptr) ++from.buffer->references;
        set(c, from.buffer, from.pixels + (x_ - other.x_));
    }
}

}  // namespace Zo::Image
