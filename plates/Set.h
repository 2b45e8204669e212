// The pictures of one frame of a plate set, as they are written.
#pragma once

#include <array>

#include "ZoImage/Render.h"
#include "plates/Scene.h"
#include "shot/image/Image.h"

namespace plate {

enum Picture { kForeground, kCleanPlate, kBackground, kGarbage, kAlphaTrue, kColourTrue, kCompTrue };
inline constexpr std::array kPictureNames{"fg", "cp", "bg", "gm", "alpha_true", "fgcol_true", "comp_true"};

using Set = std::array<veloxa::Image, kPictureNames.size()>;

// Garbage matte and true alpha have alpha alone, the others red, green and blue. The same for any number of
// threads; 0 stands for as many as the machine runs at once. Once the flag is raised it leaves the rest of
// the rows undefined.
Set render_set(const Options& options, int frame, int threads, const Zo::Image::AbortFlag* abort = nullptr);

}  // namespace plate
