#include <cmath>

#include "unmix/FloatMath.h"
#include "unmix/SpillKernel.h"

namespace LANES {

namespace {

using kernel::clamped;
using kernel::larger;
using std::size_t;

constexpr float kLeastAlpha = 0.12f;
constexpr float kOwnColour = 0.9f;  // alphas from which a pixel's own colour is looked at
constexpr float kMostColour = 1.2f;
constexpr float kMostOwn =
    1.5f;  // of what is almost clear: what is beyond is of a backing that the model missed
constexpr float kLeastGain = 0.3f;

[[gnu::always_inline]] inline float looked_at(bool own, float here, float around) {
    return clamped(0.0f, kMostColour, own ? here : around);
}

struct Place {
    int below;
    float share;
};

// Between two of `count` points of the grid.
[[gnu::always_inline]] inline Place place(float at, int count) {
    const float v = clamped(0.0f, static_cast<float>(count - 1), at);
    const float most = static_cast<float>(count - 2);
    const float floor = v < most ? v : most;
    const int below = static_cast<int>(floor);
    return {below, v - static_cast<float>(below)};
}

[[gnu::always_inline]] inline float mixed(float a, float b, float share) {
    return a + share * (b - a);
}

[[gnu::always_inline]] inline float expected(const float* table, float first, float second, float rel) {
    using G = SpillGrid;
    const float sum = first + second;
    const float hue = (first + 0.01f) / larger(sum + 0.02f, 1e-4f);
    const Place h =
        place((hue - G::kLowHue) * (static_cast<float>(G::kHues - 1) / (G::kHighHue - G::kLowHue)), G::kHues);
    const Place l = place(
        std::sqrt(clamped(0.0f, 1.0f, sum * (1.0f / G::kBrightest))) * static_cast<float>(G::kLevels - 1),
        G::kLevels);
    const Place r =
        place((rel - G::kLowRel) * (static_cast<float>(G::kRels - 1) / (G::kHighRel - G::kLowRel)), G::kRels);
    const int at = (h.below * G::kLevels + l.below) * G::kRels + r.below;
    constexpr int kUp = G::kRels;
    constexpr int kOn = G::kLevels * G::kRels;
    const float low = mixed(mixed(table[at], table[at + 1], r.share),
                            mixed(table[at + kUp], table[at + kUp + 1], r.share), l.share);
    const float high = mixed(mixed(table[at + kOn], table[at + kOn + 1], r.share),
                             mixed(table[at + kOn + kUp], table[at + kOn + kUp + 1], r.share), l.share);
    return mixed(low, high, h.share);
}

}  // namespace

void take_backing(const float* plate, const float* backing, const float* alpha, float* __restrict colour,
                  size_t n) {
#pragma GCC ivdep
    for (size_t i = 0; i < n; ++i) {
        const float clear = 1.0f - alpha[i];
        const float left = plate[i] - clear * backing[i];
        const float most = kMostOwn * alpha[i] / larger(clear, 1e-6f);
        const float whole = clear > 0.0f ? clamped(0.0f, most, left) : left;
        colour[i] = alpha[i] > 0.0f ? whole : 0.0f;
    }
}

void remove_spill(const UnspillParams& params, const std::array<const float*, 4>& sums, const float* alpha,
                  const std::array<float*, 3>& colour, size_t n) {
    const auto [k, o, p] = params.channels;
    const float* const table = params.table;
    float* const c_k = colour[k];
    float* const c_o = colour[o];
    float* const c_p = colour[p];
    if (table == nullptr) {
        for (size_t i = 0; i < n; ++i) {
            const float limit = larger(c_o[i], c_p[i]);
            const float beyond = larger(c_k[i] - limit, 0.0f);
            c_k[i] -= clamped(0.0f, 1.0f, params.amount) * beyond;
        }
        return;
    }
    const float* const s_k = sums[k];
    const float* const s_o = sums[o];
    const float* const s_p = sums[p];
    const float* const s_a = sums[3];
    const float screen_k = params.screen[k];
    const float screen_o = params.screen[o];
    const float screen_p = params.screen[p];
    const float full = params.amount;
    const float screen_lead = screen_k - 0.5f * (screen_o + screen_p);
    const float screen_sum = screen_o + screen_p;
#pragma GCC ivdep
    for (size_t i = 0; i < n; ++i) {
        const bool own_colour = alpha[i] > kOwnColour;
        const float scale = 1.0f / larger(s_a[i] * (1.0f / 9.0f), kLeastAlpha) * (1.0f / 9.0f);
        const float f_k = looked_at(own_colour, c_k[i], s_k[i] * scale);
        const float f_o = looked_at(own_colour, c_o[i], s_o[i] * scale);
        const float f_p = looked_at(own_colour, c_p[i], s_p[i] * scale);
        const float f_sum = f_o + f_p;
        const float rel = (f_k - 0.5f * f_sum) / larger(f_sum, 0.02f);
        const float spill = expected(table, f_o, f_p, rel);
        const float own = (rel < SpillGrid::kHighRel ? rel : SpillGrid::kHighRel) - spill;
        const float gain = larger(screen_lead - own * screen_sum, kLeastGain);
        const float sum = larger(c_o[i] + c_p[i], 0.0f);
        // Light of the screen does not grow with a highlight of the subject.
        const float lit = spill * (sum < 2.0f * kMostColour ? sum : 2.0f * kMostColour);
        const float beyond = larger(c_k[i] - 0.5f * sum - own * sum, 0.0f);
        const float amount = full * ((rel > SpillGrid::kHighRel ? beyond : lit) / gain);
        c_k[i] -= amount * screen_k;
        c_o[i] -= amount * screen_o;
        c_p[i] -= amount * screen_p;
    }
}

void sum_rows(const std::array<const float*, 3>& rows, float* __restrict sum, size_t n) {
    const auto [a, b, c] = rows;
    for (size_t i = 0; i < n; ++i) {
        const float left = (a[i] + b[i]) + c[i];
        const float middle = (a[i + 1] + b[i + 1]) + c[i + 1];
        const float right = (a[i + 2] + b[i + 2]) + c[i + 2];
        sum[i] = (left + middle) + right;
    }
}

}  // namespace LANES
