// Rows of pixels whose components lie side by side, as hosts keep them, from and to a plane for each channel.
// Samples are converted by the rules of ZoImage/Samples.h.
//
// A pixel has 1, 3 or 4 components. Pixels and planes, of n each, do not overlap.
#pragma once

#include <array>
#include <cstddef>

#include "lanes/LaneKernel.h"

enum class SampleDepth { kByte, kShort, kHalf, kFloat };

// Component k goes to plane k; a plane of null is left out.
using SplitPixels = void(SampleDepth depth, int components, const void* pixels,
                         const std::array<float*, 4>& planes, std::size_t n);
LANE_KERNEL(SplitPixels, split_pixels);

// Plane k becomes component k. What is written past the caches does not drive out what is in use there, and
// the memory's old content is not read: for pictures that are larger than caches.
using JoinPixels = void(SampleDepth depth, int components, const std::array<const float*, 4>& planes,
                        void* pixels, std::size_t n, bool past_caches);
LANE_KERNEL(JoinPixels, join_pixels);
