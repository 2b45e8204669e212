#include "lanes/FoldLines.h"
#include "lanes/ForPacks.h"
#include "lanes/KernelMath.h"
#include "stages/FilmKernel.h"

using namespace kernel;

namespace LANES {

namespace {

// The correction of a pixel. Its last form rounds otherwise than the bare weighted sum, and is meant.
[[gnu::always_inline]] inline Doubles correction(double strength, Doubles low, Doubles high, Doubles r) {
    const Doubles up = high - r;
    const Doubles down = r - low;
    const Doubles big = max_of(down, up);
    const Doubles small = choose(up <= down, up, down);
    return r - (r - ((1.0 - strength) * small + strength * big));
}

[[gnu::always_inline]] inline Floats corrected(Doubles v) {
    return one_nan(narrow(clamp_to(0.0, 255.0, v)));
}

}  // namespace

void film_lowest(std::span<const float* const> lines, float* lowest, std::size_t n) {
    fold_lines(lines, lowest, n, [](auto m, auto v) { return v < m ? v : m; });
}

void film_highest(std::span<const float* const> lines, float* highest, std::size_t n) {
    fold_lines(lines, highest, n, [](auto m, auto v) { return v > m ? v : m; });
}

void film_correct(const FilmParams& params, const float* lowest, const float* highest, const float* matte,
                  const FilmSource& image, const FilmResult& result, std::size_t n) {
    const FilmParams p = params;
    for_packs({lowest, highest, matte, image.red, image.green, image.blue},
              {result.red, result.green, result.blue}, n, [p](const Inputs& from, const Outputs& to) {
                  const Floats r = from[3];
                  const Floats g = from[4];
                  const Floats b = from[5];
                  const auto wanted = from[2] == 0.0f;
                  // Subject comes in large areas.
                  if (all_of(from[2] != 0.0f)) {
                      to.put(0, r);
                      to.put(1, g);
                      to.put(2, b);
                      return;
                  }
                  const Doubles c = correction(p.strength, wide(from[0]), wide(from[1]), wide(r));
                  to.put(0, choose(wanted, corrected(wide(r) - c * p.red), r));
                  to.put(1, choose(wanted, corrected(wide(g) + c * p.green), g));
                  to.put(2, choose(wanted, corrected(wide(b) + c * p.blue), b));
              });
}

}  // namespace LANES
