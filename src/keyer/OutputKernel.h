// What the node does with the finished colour and matte of a span: output rule, overlay, holdout.
//
// Colour and matte come in on the working scale (0 to 255 with a soft knee above the pivot), background,
// foreground and holdout as the host delivers them. Everything is single precision.
// All pointers address n floats. Outputs may be the very array that an input points to, not overlap it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "lanes/LaneKernel.h"
#include "unmix/UnmixParams.h"

enum class OutputMode : std::int32_t { kComposite = 0, kPremultiplied = 1, kUnpremultiplied = 2 };
enum class OverlayMode : std::int32_t { kOff = 0, kScreen = 1, kSubject = 2 };

// The pivot of the output passes: where the working scale leaves the straight line.
inline constexpr float kOutputPivot = 0.5f;

// Foreground opacity, 0 to 1, from the matte (255 on backing); a NaN stays one.
using Opacity = void(const float* matte, float* k, std::size_t n);
LANE_KERNEL(Opacity, opacity);

// The same where the matte counts over its whole range: 1 - matte / 255.
LANE_KERNEL(Opacity, linear_opacity);

// The share of the foreground that the processed colour of such a matte holds. On the straight half of the
// scale it is `opacity` to the bit, beyond it more.
LANE_KERNEL(Opacity, colour_share);

// The output rule for one colour channel.
using OutputColour = void(OutputMode mode, const float* colour, const float* background, const float* k,
                          float* out, std::size_t n);
LANE_KERNEL(OutputColour, output_colour);

// The output rule where the colour counts as premultiplied, by `share`: it is added to what k leaves of the
// background, and divided by its share for the unpremultiplied output. Where a later stage or the knee
// lowered k below the share the colour is lowered with it; what a later stage adds to the matte finds no
// colour there. So where k is 0 the composite is the background's bits and the other outputs are 0, and where
// k is 1 nothing of the background is in it. Colours beyond the largest half float become that one: there is
// nothing left that could take an infinity out of the picture.
using AddedColour = void(OutputMode mode, const float* colour, const float* background, const float* k,
                         const float* share, float* out, std::size_t n);
LANE_KERNEL(AddedColour, added_colour);

// The working scale's colour as the plate stores it, at most the largest half float.
using DecodedColour = void(const float* colour, float* out, std::size_t n);
LANE_KERNEL(DecodedColour, decoded_colour);

// Raises the opacity k to that of another stage.
LANE_KERNEL(DecodedColour, larger_opacity);

struct UnmixedParams {
    OutputMode mode;
    Encoding encoding;  // of the plate and of the background
};

// The output rule for the unmixed subject: its colour as the plate stores it, times `share`, its opacity
// then. Composites mix light; what a later stage adds to k finds no colour there. With k and share 1 the
// composite is the colour's bits, with k 0 the background's. Premultiplied is k times the colour,
// unpremultiplied the colour alone, at most the largest half float; both are 0 where k or the share is.
using UnmixedColour = void(const UnmixedParams& params, const float* colour, const float* background,
                           const float* k, const float* share, float* out, std::size_t n);
LANE_KERNEL(UnmixedColour, unmixed_colour);

// How much of the foreground's own values the highlights keep: 0 up to where its greatest channel is 1, all
// from 2 on. `subject` is the opacity of the subject alone, k with what else is in it, as shadow.
// Where a pixel is no highlight or nothing of the subject it is 0.
using HighlightShare = void(const std::array<const float*, 3>& fg, const float* subject, const float* k,
                            float* keep, std::size_t n);
LANE_KERNEL(HighlightShare, highlight_share);

// Goes over from the finished colour, `out`, to the foreground's own by `keep`; infinities count as the
// largest half float. Where `keep` is 0 no bit changes.
using KeepHighlights = void(OutputMode mode, const float* keep, const float* fg, const float* background,
                            const float* k, float* out, std::size_t n);
LANE_KERNEL(KeepHighlights, keep_highlights);

struct OverlayParams {
    OverlayMode mode;
    bool mono;                    // grey foreground under the overlay
    std::array<float, 4> colour;  // red, green, blue; alpha is the overlay's opacity
    float pivot;                  // of the region's scale
};

// The foreground with the screen or the subject area tinted; `region` is the screen area's alpha. Channels
// of `out` that are null are not written.
using Overlay = void(const OverlayParams& params, const float* region, const std::array<const float*, 3>& fg,
                     const std::array<float*, 3>& out, std::size_t n);
LANE_KERNEL(Overlay, overlay);

// Puts the foreground back where the holdout matte is; `out` is read and written.
using HoldoutColour = void(const float* holdout, const float* fg, float* out, std::size_t n);
LANE_KERNEL(HoldoutColour, holdout_colour);
using HoldoutAlpha = void(const float* holdout, float* out, std::size_t n);
LANE_KERNEL(HoldoutAlpha, holdout_alpha);
