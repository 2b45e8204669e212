#include "ZoImage/Row.h"

#include <algorithm>
#include <cassert>

#include "BufferPool.h"
#include "ZoImage/Iop.h"

namespace Zo::Image {

Row::Row(Row&& other) noexcept : x_(other.x_), r_(other.r_), present_(other.present_) {
    for (const Channel c : present_) slot(c) = other.slot(c);
    other.present_ = kMaskNone;
}

Row& Row::operator=(Row&& other) noexcept {
    if (this == &other) return *this;
    clear(present_);
    x_ = other.x_;
    r_ = other.r_;
    present_ = other.present_;
    for (const Channel c : present_) slot(c) = other.slot(c);
    other.present_ = kMaskNone;
    return *this;
}

void Row::get(Iop& source, int y, ChannelSet channels) {
    source.get(y, x_, r_, channels, *this);
}

const float* Row::zeros() const {
    return Image::zeros(width());
}

void Row::set(Channel c, RowBuffer* buffer, const float* pixels) {
    Slot& s = slot(c);
    if (present_.has(c) && s.buffer != nullptr) BufferPool::release(s.buffer);
    s = {buffer, pixels};
    present_ += c;
}

void Row::clear(ChannelSet channels) {
    for (const Channel c : channels& present_) {
        if (slot(c).buffer != nullptr) BufferPool::release(slot(c).buffer);
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
    return counted(c) && slot(c).buffer->references == 1;
}

float* Row::overwrite(Channel c) {
    if (present_.has(c)) {
        Slot& s = slot(c);
        if (s.buffer != nullptr && s.buffer->references == 1) {
            return s.buffer->data() + (s.pixels - s.buffer->data());
        }
    }
    RowBuffer* buffer = storage_for(c);
    set(c, buffer, buffer->data());
    return buffer->data();
}

float* Row::writable(Channel c) {
    if (present_.has(c) && slot(c).buffer != nullptr && slot(c).buffer->references == 1) return overwrite(c);
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
