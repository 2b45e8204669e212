#include "stages/ColorConformKernel.h"
#include "stages/FilmKernel.h"
#include "stages/MatteCorrectKernel.h"
#include "stages/MatteKernel.h"
#include "stages/NormalizeKernel.h"
#include "stages/OutputMatteKernel.h"
#include "stages/ProcessedForegroundKernel.h"
#include "stages/SpillKernel.h"
#include "support/Frames.h"
#include "support/Kernel.h"
#include "support/PlainCounts.h"

COUNTED_FORM(MatteConstant, matte_constant)
COUNTED_FORM(MatteCleanPlate, matte_clean_plate)
COUNTED_FORM(UnveilConstant, unveil_constant)
COUNTED_FORM(UnveilCleanPlate, unveil_clean_plate)
COUNTED_FORM(SuppressSpill, suppress_spill)
COUNTED_FORM(ConformColour, conform_colour)
COUNTED_FORM(FilmCorrect, film_correct)

namespace bench {

std::vector<Kernel> stages_kernels() {
    Material& m = material();
    const ControlBlock& usual = controls_of([](KnobStorage&) {});
    const ControlBlock& special = controls_of([](KnobStorage& k) {
        k.film = k.color_conformance = true;
        k.film_strength = 50.0f;
        k.color_hue = 20.0f;
        k.color_saturation = 10.0f;
    });
    std::vector<Kernel> list;
    const auto plain = [&](const char* name, const Counts& pixel, const std::function<void()>& run) {
        list.push_back({name, pixel, run});
    };
    // `call` takes the kernel or its counted form.
    const auto add = [&](const char* name, double planes, const auto& kernel, auto* form, const auto& call) {
        list.push_back({name, counts_of(planes, [&] { call(form); }), [=, &kernel] { call(kernel); }});
    };

    plain("normalize", plain::kNormalize, [&m] { normalize(m.raw.data(), m.out[0].data(), kSpan); });
    plain("output_matte", plain::kOutputMatte,
          [&m] { output_matte(m.matte.data(), m.out[0].data(), kSpan); });

    const MatteParams matte = matte_params(usual);
    add("matte_constant", 4, matte_constant, counted_form::matte_constant,
        [&m, matte](const auto& f) { f(matte, m.fg_pixels(), m.out[0].data(), kSpan); });
    add("matte_clean_plate", 7, matte_clean_plate, counted_form::matte_clean_plate,
        [&m, matte](const auto& f) { f(matte, m.fg_pixels(), m.plate_pixels(), m.out[0].data(), kSpan); });

    // No pixel is certain backing here, which is the worst case.
    const VeilParams veil = veil_params(usual);
    add("unveil_constant", 9, unveil_constant, counted_form::unveil_constant, [&m, veil](const auto& f) {
        f(veil, m.fg_pixels(), {m.matte.data(), m.none.data()}, m.colour(), m.out[3].data(), kSpan);
    });
    add("unveil_clean_plate", 12, unveil_clean_plate, counted_form::unveil_clean_plate,
        [&m, veil](const auto& f) {
            f(veil, m.fg_pixels(), m.plate_pixels(), {m.matte.data(), m.none.data()}, m.colour(),
              m.out[3].data(), kSpan);
        });
    const SpillParams spill = spill_params(usual);
    add("suppress_spill", 8, suppress_spill, counted_form::suppress_spill, [&m, spill](const auto& f) {
        f(spill, m.fg_pixels(), m.alpha.data(), m.none.data(), m.colour(), kSpan);
    });

    const ConformParams tone = conform_params(usual);
    const ConformParams turn = conform_params(special);
    for (const auto& [name, params] : {std::pair{"conform_colour, tone", tone}, {"conform_colour", turn}}) {
        add(name, 7, conform_colour, counted_form::conform_colour, [&m, params = params](const auto& f) {
            f(params, m.fg_pixels(), m.alpha.data(), m.colour(), kSpan);
        });
    }

    static const std::array<const float*, 4> lines{m.fg[0].data(), m.fg[1].data(), m.lit[0].data(),
                                                   m.plate[0].data()};
    plain("film_lowest, 4 lines", plain::fold(4, plain::kExtreme),
          [&m] { film_lowest(lines, m.out[0].data(), kSpan); });
    plain("film_highest, 4 lines", plain::fold(4, plain::kExtreme),
          [&m] { film_highest(lines, m.out[0].data(), kSpan); });
    const FilmParams film = film_params(special);
    add("film_correct", 9, film_correct, counted_form::film_correct, [&m, film](const auto& f) {
        f(film, m.plate[0].data(), m.fg[2].data(), m.none.data(),
          {m.fg[0].data(), m.fg[1].data(), m.fg[2].data()},
          {m.out[0].data(), m.out[1].data(), m.out[2].data()}, kSpan);
    });

    list.push_back({"matte_correct, radius 3", plain::kMatteCorrect, [&m] {
                        matte_correct(MatteLimit::kAbove, 3, kFrameWidth, kFrameHeight, m.matte.data(),
                                      m.none.data(), m.out[0].data(), run_loop);
                    }});
    return list;
}

}  // namespace bench
