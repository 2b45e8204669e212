// Planes of a frame or of a reduced picture of it: row-major, row 0 at the bottom, undefined until written.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "unmix/PlaneMemory.h"

namespace unmix {

template <class T>
class Plane {
  public:
    Plane() = default;
    Plane(int width, int height) { resize(width, height); }

    void resize(int width, int height) {
        width_ = width;
        height_ = height;
        pixels_.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    }
    void fill(T value) { std::fill(pixels_.begin(), pixels_.end(), value); }
    // Gives the memory back.
    void free() { *this = Plane(); }

    int width() const { return width_; }
    int height() const { return height_; }
    std::size_t size() const { return pixels_.size(); }
    bool empty() const { return pixels_.empty(); }

    T* row(int y) { return pixels_.data() + at(0, y); }
    const T* row(int y) const { return pixels_.data() + at(0, y); }
    T& operator()(int x, int y) { return pixels_[at(x, y)]; }
    T operator()(int x, int y) const { return pixels_[at(x, y)]; }
    T& operator[](std::size_t i) { return pixels_[i]; }
    T operator[](std::size_t i) const { return pixels_[i]; }
    const T* begin() const { return pixels_.data(); }
    const T* end() const { return pixels_.data() + pixels_.size(); }
    T* begin() { return pixels_.data(); }
    T* end() { return pixels_.data() + pixels_.size(); }

  private:
    std::size_t at(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x);
    }

    int width_ = 0;
    int height_ = 0;
    std::vector<T, PlaneAllocator<T>> pixels_;
};

using Floats = Plane<float>;
using Bytes = Plane<std::uint8_t>;      // masks: 0 or 1
using Colours = std::array<Floats, 3>;  // red, green, blue

inline void resize(Colours& colours, int width, int height) {
    for (Floats& plane : colours) plane.resize(width, height);
}

}  // namespace unmix
