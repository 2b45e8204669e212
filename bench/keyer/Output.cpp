#include "keyer/OutputKernel.h"
#include "support/Kernel.h"
#include "support/PlainCounts.h"

namespace bench {

std::vector<Kernel> output_kernels() {
    Material& m = material();
    const OverlayParams tint{OverlayMode::kScreen, false, {0.58f, 0.07f, 0.22f, 0.5f}, kOutputPivot};
    return {{"opacity", plain::kOpacity, [&m] { opacity(m.matte.data(), m.out[0].data(), kSpan); }},
            {"linear_opacity", plain::kLinearOpacity,
             [&m] { linear_opacity(m.matte.data(), m.out[0].data(), kSpan); }},
            {"output_colour", plain::kComposite,
             [&m] {
                 output_colour(OutputMode::kComposite, m.fg[0].data(), m.background.data(), m.opacity.data(),
                               m.out[0].data(), kSpan);
             }},
            {"added_colour", plain::kAddedComposite,
             [&m] {
                 added_colour(OutputMode::kComposite, m.fg[0].data(), m.background.data(), m.opacity.data(),
                              m.opacity.data(), m.out[0].data(), kSpan);
             }},
            {"overlay", plain::kOverlay,
             [&m, tint] {
                 overlay(tint, m.region.data(), {m.fg[0].data(), m.fg[1].data(), m.fg[2].data()},
                         {m.out[0].data(), m.out[1].data(), m.out[2].data()}, kSpan);
             }},
            {"holdout_colour", plain::kHoldoutColour,
             [&m] { holdout_colour(m.opacity.data(), m.fg[0].data(), m.out[0].data(), kSpan); }},
            {"holdout_alpha", plain::kHoldoutAlpha,
             [&m] { holdout_alpha(m.opacity.data(), m.out[0].data(), kSpan); }}};
}

}  // namespace bench
