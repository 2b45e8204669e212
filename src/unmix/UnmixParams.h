// What the operators of the unmixing matte are told by the node. Lengths are pixels of a frame 1080 high.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

struct ShotModel;

// How the values of the plate stand for light. Mixing is linear in light alone.
enum class Encoding : std::int32_t { kStored = 0, kSrgb = 1, kLogarithmic = 2 };

// A colour that the user pointed at, as the plate stores it, and for see-through things how opaque it is
// there.
struct TaughtColour {
    std::array<float, 3> colour{};
    float alpha = 1.0f;
};

struct UnmixParams {
    std::int32_t screen = 1;  // the screen's primary: 0 red, 1 green, 2 blue
    Encoding encoding = Encoding::kStored;
    float veil = 0.7f;     // of the screen's colour that see-through things hold: see Candidates.cpp
    float solid = 0.66f;   // rough opacity that a solid's region reaches down to
    float detail = 1.0f;   // how readily fine detail is kept apart from noise
    float denoise = 1.0f;  // how far what noise explains is smoothed and pulled to 0 and 1
    float folds = 1.0f;    // how much darker and brighter backing may be than around it
    float spill = 1.0f;    // how much of the expected spill is taken out

    std::vector<TaughtColour> backing;
    std::vector<TaughtColour> solids;
    std::vector<TaughtColour> see_through;
    std::vector<TaughtColour> own;          // colours that hold no spill
    std::shared_ptr<const ShotModel> shot;  // measured over the shot; null: from this frame
};
