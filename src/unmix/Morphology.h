// Masks grown and shrunk, distances, boxes: exact, whatever the number of threads. Lengths are in pixels of
// the picture at hand. Beyond its edges a mask goes on as at the edge.
#pragma once

#include "framework/ParallelLoop.h"
#include "unmix/Plane.h"

namespace unmix {

bool any(const Bytes& mask);

// By so many steps to the four neighbours.
Bytes eroded(const Bytes& mask, int steps);
Bytes dilated(const Bytes& mask, int steps);

// The mean over (2 radius + 1)^2 pixels; the edge repeats.
void box_mean(const Floats& picture, int radius, Floats& mean, const ParallelLoop& loop);

// The greatest value within this many pixels to each side.
void box_most(Floats& picture, int radius, const ParallelLoop& loop);

// Euclidean distance of each pixel's middle to the nearest one where the mask is 0, at most `most`; that too
// where there is none. By columns, then rows (Saito and Toriwaki 1994).
void distance(const Bytes& mask, float most, Floats& out, const ParallelLoop& loop);

// What of the mask a disc of this radius covers that lies wholly inside.
Bytes opened(const Bytes& mask, float radius, const ParallelLoop& loop);

}  // namespace unmix
