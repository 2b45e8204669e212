// Where a picture lies in the area of the window that shows it.
//
// Picture coordinates: x to the right, y upward, pixel (0, 0) covers 0 to 1. Area coordinates: device pixels,
// x to the right, y downward from the top left corner. A picture's pixel aspect widens it.
#pragma once

#include "ZoImage/Box.h"
#include "ZoImage/Info.h"

namespace veloxa::viewer {

struct Point {
    double x = 0.0;
    double y = 0.0;
    friend bool operator==(const Point&, const Point&) = default;
};

struct Geometry {
    int width = 0;  // of the area
    int height = 0;
    double zoom = 1.0;    // device pixels per row of the picture
    double aspect = 1.0;  // of the picture's pixels
    Point centre;         // of the picture, in the middle of the area

    Point to_picture(Point area) const;
    Point to_area(Point picture) const;
    // The pixels of `whole` that the area shows, those cut by its edges too; may be empty.
    Zo::Image::Box visible(const Zo::Image::Box& whole) const;
    // The whole frame in the middle of the area.
    Geometry fitted(const Zo::Image::Format& format) const;
    // With another zoom (clamped to 1/64 to 64), the same picture point under that place of the area.
    Geometry zoomed(double zoom, Point area) const;
    Geometry panned(double right, double down) const;  // the picture moves by so many device pixels

    friend bool operator==(const Geometry&, const Geometry&) = default;
};

inline constexpr double kLeastZoom = 1.0 / 64.0;
inline constexpr double kMostZoom = 64.0;

}  // namespace veloxa::viewer
