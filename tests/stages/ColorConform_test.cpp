#include <gtest/gtest.h>

#include <cmath>

#include "lanes/LogExp.h"
#include "stages/ColorConformKernel.h"
#include "support/StageControls.h"

using test::Span;
using test::StageControls;

namespace {

struct Tone {
    int darks, brights, mid_tones;
};

struct Setting {
    std::array<Tone, 3> tones{Tone{0, 100, 0}, Tone{0, 100, 0}, Tone{0, 100, 0}};
    int hue = 0, saturation = 0, brightness = 0;
};

ConformParams params_for(const Setting& s) {
    StageControls controls{{234, s.hue}, {235, s.saturation}, {236, s.brightness}};
    for (std::size_t role = 0; role < 3; ++role) {
        const int first = 202 + 5 * static_cast<int>(role);
        controls.block.set(first, s.tones[role].darks);
        controls.block.set(first + 1, s.tones[role].brights);
        controls.block.set(first + 2, s.tones[role].mid_tones);
    }
    return conform_params(controls.block);
}

std::array<float, 3> conformed(const Setting& s, const std::array<float, 3>& c, float alpha) {
    std::array<float, 3> out;
    conform_colour(params_for(s), {&c[0], &c[1], &c[2]}, &alpha, {&out[0], &out[1], &out[2]}, 1);
    return out;
}

float clamped(double v) {
    const float f = static_cast<float>(v);
    return f < 0 ? 0 : f > 255 ? 255 : f;
}

float naive_tone(const Tone& k, float alpha, float c) {
    const double lo = -k.darks / 100.0;
    const double hi = 1 / (k.brights >= 1 ? k.brights / 100.0 : 0.01) + lo;
    double m = 0.5 - k.mid_tones / 100.0 * 0.66;
    m = m < 0 ? 0.0001 : m > 1 ? 0.9999 : m;
    const double b = (0.5 / m - m) / (1 - m), x0 = (0.5 - lo) / (hi - lo);
    const double t = static_cast<double>((255.0f - alpha) / 255.0f);
    const double x = (static_cast<double>(c / 255.0f) + 0.5 * t - lo) / (hi - lo);
    double y = ((1 - x) * b + x) * x - ((1 - x0) * b + x0) * x0 * t;
    if (y > 8323072) y = 8323072;
    if (y < -8323072) y = -8323072;
    return clamped(y * 255);
}

// Brightest role first, by sextant of the hue circle.
constexpr int kOrders[6][3]{{0, 1, 2}, {1, 0, 2}, {1, 2, 0}, {2, 1, 0}, {2, 0, 1}, {0, 2, 1}};

// With the library's logarithm, a search for the order and one turn at a time.
std::array<float, 3> naive_adjustment(const Setting& s, const std::array<float, 3>& c) {
    const auto log1 = [](float v) { return std::log(static_cast<double>(v) + 1); };
    const double L = std::log(256.0);
    auto [lo, mid, hi] = c;
    if (lo > mid) std::swap(lo, mid);
    if (mid > hi) std::swap(mid, hi);
    if (lo > mid) std::swap(lo, mid);
    double hue = 0;
    if (const double range = log1(hi) - log1(lo); range != 0) {
        const double f = (log1(mid) - log1(lo)) / range;
        const double hues[6]{f, 2 - f, 2 + f, 4 - f, 4 + f, 6 - f};
        for (std::size_t i = 0; i < 6; ++i) {
            const auto at = [&](int k) { return c[static_cast<std::size_t>(kOrders[i][k])]; };
            if (at(0) >= at(1) && at(1) >= at(2)) hue = hues[i];
        }
    }
    hue += s.hue / 100.0;
    while (hue > 6) hue -= 6;
    while (hue < 0) hue += 6;
    const double x1 = (log1(hi) / L + s.brightness / 100.0 / L) * L;
    const double x2 = x1 - (log1(hi) - log1(lo)) / L * std::exp(s.saturation / 100.0) * L;
    std::array<float, 3> out{};
    for (int k = 0; k < 6; ++k) {
        if (!(hue >= k && hue <= k + 1)) continue;
        const double g = k % 2 == 0 ? hue - k : k + 1 - hue;
        const double values[3]{x1, (x1 - x2) * g + x2, x2};
        for (int i = 0; i < 3; ++i) {
            out[static_cast<std::size_t>(kOrders[k][i])] = clamped(std::exp(values[i]) - 1);
        }
    }
    return out;
}

}  // namespace

TEST(LogExp, StaysWithinOneUnitOfTheLastPlace) {
    const auto expect_close = [](double got, double exact, double at) {
        EXPECT_LE(std::abs(got - exact), std::nextafter(std::abs(exact), 1e308) - std::abs(exact)) << at;
    };
    for (int i = 0; i < 40000; ++i) {
        const double v = 1.0 + i * i * 1.6e-7;
        expect_close(kernel::log_of(v), std::log(v), v);
        expect_close(kernel::log_of(1.0 / v), std::log(1.0 / v), 1.0 / v);
        const double x = (i - 20000) * 0.034999;
        expect_close(kernel::exp_of(x), std::exp(x), x);
        expect_close(kernel::exp_of(x * 1e-3), std::exp(x * 1e-3), x * 1e-3);
    }
    EXPECT_EQ(kernel::log_of(1.0), 0.0);
    EXPECT_EQ(kernel::exp_of(0.0), 1.0);
    EXPECT_EQ(kernel::exp_of(-1e300), kernel::exp_of(-700.0));
    EXPECT_EQ(kernel::exp_of(HUGE_VAL), kernel::exp_of(700.0));
    EXPECT_TRUE(std::isnan(kernel::log_of(double{NAN})) && std::isnan(kernel::exp_of(double{NAN})));
}

TEST(ColorConformKernel, WorkedExamples) {
    const Tone none{0, 100, 0};
    struct Case {
        Setting setting;
        float alpha;
        std::array<float, 3> in, expected;
    };
    for (const Case& c : {
             Case{{}, 0, {0, 51, 300}, {0, 51, 255}},
             Case{{{Tone{20, 100, 0}, {0, 200, 0}, {0, 0, 0}}}, 255, {51, 51, 51}, {102, 102, 0.51f}},
             // Middle 0.17, bend 3.3387668: (0.8 bend + 0.2) 0.2 is 0.5742027.
             Case{{{none, Tone{0, 100, 50}, none}}, 255, {51, 51, 127.5f}, {51, 146.4217f, 127.5f}},
             // A sextant on, then half the circle: pure role 0 becomes both secondaries, then the other two.
             Case{{{none, none, none}, 100}, 255, {200, 10, 10}, {200, 200, 10}},
             Case{{{none, none, none}, 300}, 255, {200, 10, 10}, {10, 200, 200}},
             Case{{{none, none, none}, 600}, 255, {200, 50, 10}, {200, 50, 10}},
             // exp(ln 41 + 1) - 1, equal throughout; hue and saturation leave grey alone.
             Case{
                 {{none, none, none}, 0, 0, 100}, 255, {40, 40, 40}, {110.449555f, 110.449555f, 110.449555f}},
             Case{{{none, none, none}, 123, 2147483647}, 255, {40, 40, 40}, {40, 40, 40}},
             // The distance from 63 to 15, a factor of 4, to the power of exp(0.69): 64 / 15.8609 - 1.
             Case{{{none, none, none}, 0, 69}, 255, {63, 15, 15}, {63, 3.0350f, 3.0350f}},
         }) {
        const auto out = conformed(c.setting, c.in, c.alpha);
        for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(out[i], c.expected[i], 1e-3f) << i << ' ' << c.in[0];
    }
}

TEST(ColorConformKernel, EqualsTheNaiveLoop) {
    constexpr int kCount = 6001;
    const Span in(kCount, 31);
    for (const Setting& s : {
             Setting{{Tone{10, 130, 20}, {-15, 70, -30}, {0, -5, 80}}},
             Setting{{Tone{10, 110, 5}, {-5, 90, -10}, {0, 100, 0}}, 40, 15, -20},
             Setting{{Tone{0, 100, 0}, {0, 100, 0}, {0, 100, 0}}, -123457, -60, 30},
             Setting{{Tone{300, 400, 76}, {-300, 3, -76}, {2, 100, 0}}, 600, 0, 0},
         }) {
        Span out(kCount);
        conform_colour(params_for(s), in.in(), in.alpha(), out.out(), kCount);
        for (std::size_t i = 0; i < kCount; ++i) {
            std::array<float, 3> expected;
            for (std::size_t c = 0; c < 3; ++c) {
                expected[c] = naive_tone(s.tones[c], in.planes[3][i], in.planes[c][i]);
            }
            const bool adjust = s.hue != 0 || s.saturation != 0 || s.brightness != 0;
            if (adjust) expected = naive_adjustment(s, expected);
            for (std::size_t c = 0; c < 3; ++c) {
                const float got = out.planes[c][i];
                if (std::isnan(expected[c])) {
                    EXPECT_TRUE(std::isnan(got)) << i << ' ' << s.hue;
                } else {
                    EXPECT_NEAR(got, expected[c], adjust ? 1e-4f : 0.0f) << i << ' ' << s.hue;
                }
            }
        }
    }
}
