// The pixels of a stroke, which consists of one area or several that may overlap.
#pragma once

#include <cstdint>
#include <vector>

#include "ZoImage/Box.h"

class StrokeAreas {
  public:
    StrokeAreas() = default;
    explicit StrokeAreas(const std::vector<Zo::Image::Box>& areas);

    // The box around them; a single area as it is, even where it is empty.
    const Zo::Image::Box& around() const { return around_; }
    // Boxes that hold each pixel of the areas once, bottom rows first.
    const std::vector<Zo::Image::Box>& parts() const { return parts_; }
    std::int64_t pixels() const;
    bool contains(int x, int y) const;

  private:
    Zo::Image::Box around_;
    std::vector<Zo::Image::Box> parts_;
};

// Every so manieth column and row from the corner of the box around the areas on, so far apart that fewer
// than kMostPositions are on one of the areas; of a single one as decimate has it.
class StrokeGrid {
  public:
    explicit StrokeGrid(const StrokeAreas& areas);

    int step_x() const { return step_x_; }
    int step_y() const { return step_y_; }
    // The first of its columns and rows from there on.
    int column_from(int x) const { return from(x, corner_.x, step_x_); }
    int row_from(int y) const { return from(y, corner_.y, step_y_); }
    int columns(const Zo::Image::Box& part) const { return count(column_from(part.x), part.r, step_x_); }
    int rows(const Zo::Image::Box& part) const { return count(row_from(part.y), part.t, step_y_); }

  private:
    static int from(int at, int corner, int step) { return at + (step - (at - corner) % step) % step; }
    static int count(int first, int end, int step) { return first < end ? (end - 1 - first) / step + 1 : 0; }

    Zo::Image::Box corner_;
    int step_x_ = 1;
    int step_y_ = 1;
};
