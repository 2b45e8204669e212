// The lit screen behind the figure, what stands before it, and the picture that replaces it.
#pragma once

#include "plates/Look.h"

namespace plate {

class Backing {
  public:
    // half_width: of the frame, in heights.
    Backing(const Look& look, float half_width);

    // The empty set: light falling off from a hot spot, soft folds, a light stand wrapped in screen tape.
    // u is that of the frame, never mirrored.
    Vec3 colour(Vec2 p) const;
    // 1 over the strip where the stand is, a soft border across from it, 0 around the figure and in narrow
    // frames.
    float garbage(Vec2 p) const;

  private:
    float light(Vec2 p) const;

    Look look_;
    float half_width_;
    bool stand_;  // narrow frames have no room for it
};

// A landscape at dusk, out of focus.
class Background {
  public:
    explicit Background(const Look& look);
    Vec3 colour(Vec2 p) const;

  private:
    struct Lamp {
        Vec2 at;
        float radius, strength;
        Vec3 colour;
    };
    static constexpr int kLamps = 90;

    float ridge(int n, float u) const;

    Look look_;
    Lamp lamps_[kLamps];
};

}  // namespace plate
