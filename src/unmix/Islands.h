// Parts of a matte that stand alone: holes in the subject, marks on the backing.
#pragma once

#include "framework/ParallelLoop.h"
#include "unmix/FrameScale.h"
#include "unmix/Segmentation.h"

namespace unmix {

// What is faint, small and far from anything solid is a mark on the backing: alpha becomes 0.
void drop_marks(const FrameScale& scale, const Segmentation& segmentation, Floats& alpha,
                const ParallelLoop& loop);

// What the subject encloses and is nowhere half clear is a hole made by reflected screen colour, and so is
// what is nowhere quite clear and wider than a gap between hairs: a detail of the screen's hue. Alpha
// becomes 1.
void fill_holes(const FrameScale& scale, Floats& alpha, const ParallelLoop& loop);

}  // namespace unmix
