// A half-open rectangle of pixels: columns x <= column < r, rows y <= row < t. y grows upward.
#pragma once

#include <algorithm>

namespace Zo::Image {

struct Box {
    int x = 0;
    int y = 0;
    int r = 0;
    int t = 0;

    constexpr int width() const { return r - x; }
    constexpr int height() const { return t - y; }
    constexpr bool empty() const { return r <= x || t <= y; }

    // True when every pixel of `other` is inside; an empty box is inside any box.
    constexpr bool contains(const Box& other) const {
        return other.empty() || (other.x >= x && other.y >= y && other.r <= r && other.t <= t);
    }

    // The smallest box that holds both; an empty box adds nothing.
    constexpr void merge(const Box& other) {
        if (other.empty()) return;
        if (empty()) {
            *this = other;
            return;
        }
        x = std::min(x, other.x);
        y = std::min(y, other.y);
        r = std::max(r, other.r);
        t = std::max(t, other.t);
    }

    // The pixels in both boxes; may be empty.
    constexpr void intersect(const Box& other) {
        x = std::max(x, other.x);
        y = std::max(y, other.y);
        r = std::min(r, other.r);
        t = std::min(t, other.t);
    }

    friend constexpr bool operator==(const Box&, const Box&) = default;
};

}  // namespace Zo::Image
