// The lit screen behind the figure, what stands before it, and the picture that replaces it.
#pragma once

#include <vector>

#include "plates/Look.h"

namespace plate {

class Backing {
  public:
    // half_width: of the frame, in heights.
    Backing(const Look& look, float half_width);

    // The empty set: light falling off from a hot spot, soft folds, marks, a light stand wrapped in
    // screen tape.
    // u is that of the set, never mirrored.
    Vec3 colour(Vec2 p) const;
    // 1 over the strip where the stand is, a soft border across from it, 0 around the figure and in narrow
    // frames.
    float garbage(Vec2 p) const;

  private:
    // Something on the cloth, of a hue of its own.
    struct Mark {
        enum class Kind { kCross, kTape, kSeam, kFold } kind;
        Vec2 at;
        float turn, size;
        Vec3 tint;  // times the cloth
        float distance(Vec2 p) const;
    };

    float light(Vec2 p) const;
    void lay_marks();

    Look look_;
    float half_width_;
    std::vector<Mark> marks_;
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
