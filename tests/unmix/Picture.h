// A small picture taken through the steps of the unmixing matte, lengths as on a frame 1080 high.
#pragma once

#include <functional>
#include <random>

#include "support/Loops.h"
#include "unmix/BackingFit.h"
#include "unmix/Candidates.h"
#include "unmix/Reduce.h"
#include "unmix/SolidsFit.h"
#include "unmix/SolveFrame.h"

namespace test {

using Colour = std::array<float, 3>;

inline constexpr Colour kGreen{0.1f, 0.6f, 0.15f};
inline constexpr Colour kGrey{0.4f, 0.4f, 0.4f};

inline Colour mix(const Colour& subject, const Colour& backing, float alpha) {
    Colour c{};
    for (std::size_t i = 0; i < 3; ++i) c[i] = alpha * subject[i] + (1.0f - alpha) * backing[i];
    return c;
}

// From 1 to 0 over this width; half way at `edge`.
inline float ramp(float away, float edge, float width) {
    return std::clamp(0.5f + (edge - away) / std::max(width, 1e-3f), 0.0f, 1.0f);
}

inline float away_from(int x, int y, int from_x, int from_y) {
    return std::hypot(static_cast<float>(x - from_x), static_cast<float>(y - from_y));
}

struct Picture {
    template <class At>
    Picture(int width, int height, const At& at) {
        backing.scale = {width, height};
        backing.scale.pixels = 1.0f;
        paint(backing.light, at);
    }
    template <class At>
    void paint(unmix::Colours& colours, const At& at) const {
        unmix::resize(colours, backing.scale.width, backing.scale.height);
        each(backing.scale.width, backing.scale.height, [&](int x, int y) {
            const Colour colour = at(x, y);
            for (std::size_t c = 0; c < 3; ++c) colours[c](x, y) = colour[c];
        });
    }
    void fit(const unmix::BackingSettings& settings = {}) {
        for (std::size_t c = 0; c < 3; ++c) {
            unmix::cell_means(backing.light[c], backing.scale.fine(), backing.fine[c], backward_loop);
            unmix::cell_means(backing.fine[c], 2, backing.means[c], backward_loop);
        }
        unmix::fit_backing(backing, {}, settings, backward_loop);
    }
    void segment(const unmix::Floats& garbage = {}, const unmix::Floats& holdout = {},
                 const unmix::SolidsSettings& settings = {}) {
        fit();
        unmix::find_solids(backing, garbage, holdout, settings, segmentation, backward_loop);
        unmix::find_unknown(backing, garbage, segmentation, backward_loop);
    }
    void solve() {
        segment();
        const auto candidates = unmix::find_candidates(backing, segmentation, {}, backward_loop);
        unmix::solve_frame(backing, segmentation, candidates, solution, backward_loop);
    }
    Colour behind(int x, int y) const {
        Colour c{};
        backing.row(y, x, x + 1, {&c[0], &c[1], &c[2]});
        return c;
    }

    unmix::BackingModel backing;
    unmix::Segmentation segmentation;
    unmix::Solution solution;
};

}  // namespace test
