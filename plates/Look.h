// What a seed decides: palette, proportions and layout of one plate; and what a frame adds: the pose.
#pragma once

#include <cstdint>

#include "plates/Math.h"
#include "plates/Variation.h"

namespace plate {

enum class Screen { kGreen, kBlue };

struct Look {
    std::uint64_t seed;
    Screen screen;
    Vec3 backing;  // at its mean level
    Vec3 skin, lips, iris;
    Vec3 hair, hair_light;
    Vec3 jacket, accent, shirt, veil, rim;
    int pattern;         // of the jacket: 0 check, 1 stripe, 2 herringbone
    float mirror;        // 1, or -1 for the other way round
    float centre, tilt;  // of the figure, in heights; of the head, in radians
    float parting, hair_length, curl;
    Vec2 hot_spot;
    float fold_count, fold_phase, fold_lean;
    float dusk;  // hue of the evening sky
    Variation vary;
};

Look look_of(std::uint64_t seed, Screen screen, const Variation& vary);

struct Pose {
    float time;            // frames
    Vec2 sway;             // of head and torso
    float arm, arm_speed;  // angle of the forearm, and how far it turns while the shutter is open; radians
    Vec2 pan;              // of the camera over the set
    float light;           // on the set, 1 on average
};

Pose pose_of(const Look& look, int frame);

// Light on a surface that faces n: a warm key from the upper left, a cool fill, a rim from behind.
struct Light {
    float key, fill, rim;
};
Light light_on(Vec3 n);

// A matt surface; spill gathers where the surface turns from the camera and where little light falls.
Shade matt(Vec3 albedo, Vec3 n, float occlusion);
// The same with light that has gone through the skin around the terminator, and a soft shine.
Shade skin(Vec3 albedo, Vec3 n, float occlusion);

}  // namespace plate
