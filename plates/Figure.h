// The parts of the figure but for its hair: jacket, neck, veil, the waving arm, and the head.
#pragma once

#include "plates/Look.h"

namespace plate {

// Below the head. Points are in the figure's own frame: heights, mirrored so that the waving arm is on the
// left.
class Body {
  public:
    Body(const Look& look, const Pose& pose, float pixel) : look_(look), pose_(pose), pixel_(pixel) {}

    // The jacket's outline, for whatever falls on or behind it.
    float outline(Vec2 p) const;
    void torso(Vec2 p, Stack& stack) const;
    void neck(Vec2 p, Stack& stack) const;
    // Sheer cloth from the neck over the far shoulder and out.
    void veil(Vec2 p, Stack& stack) const;
    // Averaged over the time that the shutter is open.
    void arm(Vec2 p, Stack& stack) const;

  private:
    Vec3 cloth(Vec2 p, Vec2 along) const;
    Vec3 normal_at(Vec2 p, float depth) const;
    void details(Vec2 p, Shade& shade) const;
    float arm_at(Vec2 p, float angle, float soft, Shade& shade) const;

    Look look_;
    Pose pose_;
    float pixel_;
};

constexpr float kHeadWidth = 0.112f, kHeadHeight = 0.158f;  // half sizes, in heights
constexpr float kHeadAspect = kHeadHeight / kHeadWidth;

// The head's shape is a height field over the face. Points are in head units: x in half widths, y in half
// heights, from -1 at the crown to 1 at the chin.
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
