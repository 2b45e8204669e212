// The head: its shape as a height field over the face, features, and glasses.
//
// Points are in head units: x in half widths, y in half heights, from -1 at the crown to 1 at the chin.
#pragma once

#include "plates/Look.h"

namespace plate {

constexpr float kHeadWidth = 0.112f, kHeadHeight = 0.158f;  // half sizes, in heights

class Head {
  public:
    Head(const Look& look, float pixel) : look_(look), pixel_(pixel / kHeadWidth) {}

    void face(Vec2 q, Stack& stack) const;
    void glasses(Vec2 q, Stack& stack) const;

  private:
    Shade surface(Vec2 q) const;
    void eye(Vec2 q, Shade& shade) const;
    void mouth(Vec2 q, Shade& shade) const;

    Look look_;
    float pixel_;
};

}  // namespace plate
