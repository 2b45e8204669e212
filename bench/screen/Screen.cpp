#include "screen/CleanupKernel.h"
#include "screen/ClearFrameKernel.h"
#include "screen/ClearRegionKernel.h"
#include "screen/CombineShadowKernel.h"
#include "screen/ComputeShadowKernel.h"
#include "screen/CrudeMatteKernel.h"
#include "screen/IslandKernel.h"
#include "screen/ShrinkCUKernel.h"
#include "screen/ShrinkKernel.h"
#include "screen/SmartInterpolKernel.h"
#include "screen/SubRegionKernel.h"
#include "support/Frames.h"
#include "support/Kernel.h"
#include "support/PlainCounts.h"

COUNTED_FORM(ClearRegion, clear_region)
COUNTED_FORM(SubRegion, sub_region)
COUNTED_FORM(ComputeShadow, compute_shadow)
COUNTED_FORM(CombineShadow, combine_shadow)

namespace bench {

std::vector<Kernel> screen_kernels() {
    Material& m = material();
    const ControlBlock& usual = controls_of([](KnobStorage&) {});
    const ControlBlock& special = controls_of([](KnobStorage& k) {
        k.film = k.shadow = k.cleanup = true;
        k.shadows_tint = {0.1f, 0.1f, 0.2f};
    });
    std::vector<Kernel> list;
    const auto plain = [&](const char* name, const Counts& pixel, const std::function<void()>& run) {
        list.push_back({name, pixel, run});
    };
    const auto add = [&](const char* name, double planes, const auto& kernel, auto* form, const auto& call) {
        list.push_back({name, counts_of(planes, [&] { call(form); }), [=, &kernel] { call(kernel); }});
    };

    const ClearRegionParams region = clear_region_params(usual);
    add("clear_region", 4, clear_region, counted_form::clear_region, [&m, region](const auto& f) {
        f(region, m.fg_pixels(), nullptr, {nullptr, nullptr, nullptr}, m.out[0].data(), kSpan);
    });
    add("clear_region, clean plate", 8, clear_region, counted_form::clear_region,
        [&m, region](const auto& f) {
            const RolePixels plate = m.plate_pixels();
            f(region, m.fg_pixels(), &plate, {nullptr, m.none.data(), nullptr}, m.out[0].data(), kSpan);
        });
    const CrudeMatteParams crude = crude_matte_params(usual);
    plain("crude_matte", plain::kCrudeMatte,
          [&m, crude] { crude_matte(crude, m.fg_pixels(), m.plate_pixels(), m.out[0].data(), kSpan); });
    const SubRegionParams film = sub_region_params(special);
    add("sub_region", 4, sub_region, counted_form::sub_region,
        [&m, film](const auto& f) { f(film, m.fg_pixels(), m.out[0].data(), kSpan); });

    static const auto lines = m.column_lines();
    plain("remove_islands", plain::kIslands,
          [&m] { remove_islands(4, lines[0] - 1, lines[1] - 1, lines[2] - 1, m.out[0].data(), kSpan); });
    plain("shrink_row, radius 2", plain::kShrinkRow,
          [&m] { shrink_row(m.region.data(), 2, m.out[1].data(), m.out[0].data(), kSpan); });
    plain("shrink_lines, 5 lines", plain::fold(5, plain::kZeroStays),
          [&m] { shrink_lines(lines, m.out[0].data(), kSpan); });
    plain("shrink_cu_row, radius 2", plain::kShrinkCuRow,
          [&m] { shrink_cu_row(m.matte.data(), 3, 0.5f, m.out[1].data(), m.out[0].data(), kSpan); });
    plain("shrink_cu_lines, 5 lines", plain::fold(5, plain::kExtreme),
          [&m] { shrink_cu_lines(lines, m.out[0].data(), kSpan); });
    plain("shrink_cu_end", plain::kShrinkCuEnd,
          [&m] { shrink_cu_end(m.matte.data(), 0.5f, m.out[0].data(), kSpan); });

    const CleanupParams cleanup = cleanup_params(special);
    plain("cleanup_colour", plain::kCleanupColour,
          [&m, cleanup] { cleanup_colour(cleanup, m.matte.data(), m.fg[0].data(), m.out[0].data(), kSpan); });
    plain("cleanup_matte", plain::kCleanupMatte,
          [&m, cleanup] { cleanup_matte(cleanup, m.matte.data(), m.out[0].data(), kSpan); });

    const ComputeShadowParams density = compute_shadow_params(special);
    add("compute_shadow", 4, compute_shadow, counted_form::compute_shadow,
        [&m, density](const auto& f) { f(density, m.plate_pixels(), m.out[0].data(), kSpan); });
    plain("clear_frame", plain::kClearFrame, [&m] {
        clear_frame(m.fg_pixels(), m.plate_pixels(), m.lit_pixels(), 0.0f, m.colour(), m.out[3].data(),
                    kSpan);
    });
    const CombineShadowParams shadow = combine_shadow_params(special);
    add("combine_shadow", 9, combine_shadow, counted_form::combine_shadow, [&m, shadow](const auto& f) {
        f(shadow, m.fg_pixels(), m.matte.data(), m.alpha.data(), m.colour(), m.out[3].data(), kSpan);
    });

    const SmartInterpolParams interpol = smart_interpol_params(special);
    plain("smart_interpol", plain::kSmartInterpol, [&m, interpol] {
        SmartInterpol frame(kFrameWidth, kFrameHeight);
        run_loop(0, kFrameHeight, 16, [&](int begin, int end) {
            for (int y = begin; y < end; ++y) {
                frame.add_row(y, m.region.data() + static_cast<std::size_t>(y) * kFrameWidth);
            }
        });
        frame.run(interpol, {m.out[0].data(), m.out[1].data(), m.out[2].data()}, run_loop);
    });
    return list;
}

}  // namespace bench
