// What can make a plate harder than its seed alone does. The defaults leave a plate as it is.
#pragma once

#include <cstdint>

namespace plate {

enum class VeilTone { kOwn, kWarm, kNeutral, kDark };

// Pixels are those of a picture 1080 lines high.
struct Variation {
    VeilTone veil_tone = VeilTone::kOwn;  // kOwn: the seed's
    float veil_density = 0.62f;           // the veil's largest alpha, 0 to 1
    float spill = 0.0f;                   // of the screen's colour added at the subject's rims; less inside
    float grain = 1.0f;                   // times the plate's own
    float defocus = 0.0f;                 // of the whole subject: radius in pixels
    int marks = 0;                        // crosses, tape, seams and odd folds on the backing
    float hair = 1.0f;                    // times as many loose hairs, from 1; the mass below them thins
    float speed = 1.0f;                   // of the arm, by which its blur grows
    bool details = false;                 // a brooch and a stripe of a muted screen hue on the jacket
    float flicker = 0.0f;                 // how far a frame's light strays from the mean, as a share
    bool moving = false;                  // the camera pans and tilts a few pixels a frame
};

// One of everything but flicker and a moving camera, drawn by the seed.
Variation varied(std::uint64_t seed);

}  // namespace plate
