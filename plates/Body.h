// The solid and woven parts of the figure below the head: jacket, neck, veil and the waving arm.
//
// Points are in the figure's own frame: heights, mirrored so that the waving arm is on the left.
#pragma once

#include "plates/Look.h"

namespace plate {

class Body {
  public:
    Body(const Look& look, const Pose& pose, float pixel);

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
    float arm_at(Vec2 p, float angle, float soft, Shade& shade) const;

    Look look_;
    Pose pose_;
    float pixel_;
};

}  // namespace plate
