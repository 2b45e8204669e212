#include "stages/FilmKernel.h"

#include "controls/Controls.h"
#include "framework/FoldLines.h"
#include "stages/KernelMath.h"

using namespace kernel;

namespace {

// The correction of one pixel. Its last form rounds otherwise than the bare weighted sum, and is meant.
double correction(double strength, double low, double high, double r) {
    const double up = high - r;
    const double down = r - low;
    const double big = down > up ? down : up;
    const double small = up <= down ? up : down;
    return r - (r - ((1.0 - strength) * small + strength * big));
}

float corrected(double v) {
    return static_cast<float>(clamp_to(0.0, 255.0, v));
}

}  // namespace

FilmParams film_params(const ControlBlock& controls) {
    const auto percent = [&](int index) { return controls.get(index) / 100.0; };
    return {percent(controls::kFilmStrength), percent(controls::kFilmCorrectionBlue),
            percent(controls::kFilmCorrectionGreen), percent(controls::kFilmCorrectionRed)};
}

void film_lowest(std::span<const float* const> lines, float* lowest, std::size_t n) {
    fold_lines(lines, lowest, n, [](float m, float v) { return v < m ? v : m; });
}

void film_highest(std::span<const float* const> lines, float* highest, std::size_t n) {
    fold_lines(lines, highest, n, [](float m, float v) { return v > m ? v : m; });
}

void film_correct(const FilmParams& params, const float* lowest, const float* highest, const float* matte,
                  const FilmSource& image, const FilmResult& result, std::size_t n) {
    float* __restrict red = result.red;
    float* __restrict green = result.green;
    float* __restrict blue = result.blue;
    for (std::size_t i = 0; i < n; ++i) {
        const float r = image.red[i];
        const float g = image.green[i];
        const float b = image.blue[i];
        const double c = correction(params.strength, static_cast<double>(lowest[i]),
                                    static_cast<double>(highest[i]), static_cast<double>(r));
        const bool wanted = matte[i] == 0.0f;
        red[i] = wanted ? corrected(static_cast<double>(r) - c * params.red) : r;
        green[i] = wanted ? corrected(static_cast<double>(g) + c * params.green) : g;
        blue[i] = wanted ? corrected(static_cast<double>(b) + c * params.blue) : b;
    }
}
