// A square brush that marks areas of a picture along a path, for front ends.
//
// A dab is a square of `size` pixels around the one under the pointer. Dabs follow each other at half a
// brush's distance; what lies outside of the frame is cut off, and an area that is there already is left out.
#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include "ZoImage/Box.h"
#include "ZoImage/Convert.h"

namespace Zo::Image {

class BrushStroke {
  public:
    // The square around a place of the picture, in pixels.
    static Box square(double x, double y, int size) {
        const int left = to_int(std::floor(x)) - size / 2;
        const int bottom = to_int(std::floor(y)) - size / 2;
        return {left, bottom, left + size, bottom + size};
    }

    void begin(double x, double y, int size, const Box& frame) {
        size_ = size;
        frame_ = frame;
        areas_.clear();
        dab(x, y);
    }
    // False when that marks nothing new.
    bool move(double x, double y) {
        const double spacing = std::max(1.0, 0.5 * size_);
        const std::size_t before = areas_.size();
        const double from_x = x_, from_y = y_;
        const double length = std::hypot(x - from_x, y - from_y);
        const double dabs = std::min(std::floor(length / spacing), kMostDabs);
        for (int n = 1; n <= dabs; ++n) {
            const double share = n * spacing / length;
            dab(from_x + (x - from_x) * share, from_y + (y - from_y) * share);
        }
        return areas_.size() != before;
    }
    void clear() { areas_.clear(); }
    const std::vector<Box>& areas() const { return areas_; }

  private:
    static constexpr double kMostDabs = 1 << 16;  // of a move; one that has more leads nowhere

    void dab(double x, double y) {
        x_ = x;
        y_ = y;
        Box area = square(x, y, size_);
        area.intersect(frame_);
        if (!area.empty() && std::ranges::find(areas_, area) == areas_.end()) areas_.push_back(area);
    }

    int size_ = 1;
    Box frame_;
    std::vector<Box> areas_;
    double x_ = 0.0, y_ = 0.0;  // of the last dab
};

}  // namespace Zo::Image
