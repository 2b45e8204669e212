// The smart interpolation against a loop that follows its description pixel by pixel, and the operator.
#include <gmock/gmock.h>

#include <cmath>
#include <random>

#include "screen/SmartInterpolKernel.h"
#include "screen/VlxSmartInterpol.h"
#include "support/Loops.h"
#include "support/StageControls.h"

using namespace Zo::Image;
using Plane = std::vector<float>;
using Planes = std::array<Plane, 3>;

namespace {

constexpr std::array<float, 3> kBacking{10.0f, 200.0f, 31.0f};

struct Frame {
    int width, height;
    Plane clear;
    Planes colour;

    std::size_t at(int x, int y) const { return static_cast<std::size_t>(y * width + x); }
    std::array<float, 3> pixel(std::size_t i) const { return {colour[0][i], colour[1][i], colour[2][i]}; }
};

Planes interpolated(const Frame& in, const ParallelLoop& loop = test::forward_loop) {
    SmartInterpol interpol(in.width, in.height);
    for (int y = in.height - 1; y >= 0; --y) interpol.add_row(y, in.clear.data() + in.at(0, y));
    Planes out = in.colour;
    interpol.run({kBacking}, {out[0].data(), out[1].data(), out[2].data()}, loop);
    return out;
}

// Sweep by sweep over every row, with the run's colour carried from sweep to sweep.
struct Naive {
    const Frame& in;
    float far = static_cast<float>(in.width + in.height);
    Frame out = in;
    Plane map = Plane(in.clear.size(), 0.0f);
    Plane best = Plane(static_cast<std::size_t>(in.width), far);
    std::vector<std::array<float, 3>> colour{static_cast<std::size_t>(in.width), kBacking};
    std::array<float, 3> run_colour = kBacking;

    void row(int y, bool down) {
        for (const bool right_to_left : {false, true}) {
            float run = far;
            for (int i = 0; i < in.width; ++i) {
                const int x = right_to_left ? in.width - 1 - i : i;
                const std::size_t p = in.at(x, y);
                const auto c = static_cast<std::size_t>(x);
                run += 1.0f;
                if (in.clear[p] != 0.0f) {
                    run = 0.0f;
                    run_colour = in.pixel(p);
                }
                if (!right_to_left) best[c] += 1.0f;
                if (run < best[c]) {
                    best[c] = run;
                    colour[c] = run_colour;
                }
                if (!right_to_left) continue;
                if (!down && map[p] < best[c]) {
                    best[c] = map[p];
                    colour[c] = out.pixel(p);
                }
                map[p] = std::min(best[c], far);
                for (std::size_t k = 0; k < 3; ++k) out.colour[k][p] = colour[c][k];
            }
        }
    }

    // Walks a line whose pixels are `step` apart, from far enough before it that the window fills.
    void smooth(std::size_t first, std::size_t step, int n) {
        const auto at = [&](int i) { return first + static_cast<std::size_t>(i) * step; };
        const auto distance = [&](int i) { return static_cast<int>(map[at(std::max(i, 0))]); };
        for (Plane& plane : out.colour) {
            Plane before;
            for (int i = 0; i < n; ++i) before.push_back(plane[at(i)]);
            float sum = 0.0f;
            int count = 0;
            const auto pass = [&](int i, int sign) {
                if (i < 0 || i >= n) return;
                const float value = before[static_cast<std::size_t>(i)];
                sum = sign > 0 ? sum + value : sum - value;
                count += sign;
            };
            for (int i = -distance(0); i < n; ++i) {
                const int d = distance(i);
                const int held = distance(i - 1);
                ASSERT_LE(std::abs(d - held), 1);
                for (int k = i + held; k <= i + d; ++k) pass(k, 1);
                for (int k = i - 1 - held; k < i - d; ++k) pass(k, -1);
                if (i < 0) continue;
                plane[at(i)] =
                    count == 0 ? 0.0f : (sum + static_cast<float>(count / 2)) / static_cast<float>(count);
            }
        }
    }

    Planes run() {
        for (int y = 0; y < in.height; ++y) row(y, true);
        for (int y = in.height - 1; y >= 0; --y) row(y, false);
        for (int y = 0; y < in.height; ++y) smooth(in.at(0, y), 1, in.width);
        for (int x = 0; x < in.width; ++x) smooth(in.at(x, 0), static_cast<std::size_t>(in.width), in.height);
        return out.colour;
    }
};

TEST(SmartInterpol, EqualsTheDescriptionHoweverItIsCut) {
    std::mt19937 random(11);
    for (const auto& [w, h] :
         {std::pair{1, 1}, {1, 9}, {9, 1}, {2, 2}, {7, 5}, {21, 40}, {150, 37}, {141, 150}, {3, 29000}}) {
        for (const unsigned sparse : {1U, 3U, 30U, 200U, 100000U}) {
            if (h > 1000 && sparse > 200) continue;  // far walks before every line
            for (const bool with_nan : {false, true}) {
                const auto n = static_cast<std::size_t>(w * h);
                Frame in{w, h, Plane(n), {Plane(n), Plane(n), Plane(n)}};
                for (float& v : in.clear) {
                    v = random() % sparse != 0 ? -0.0f : with_nan && random() % 2 != 0 ? NAN : -3.0f;
                }
                for (Plane& plane : in.colour) {
                    for (float& v : plane) v = static_cast<float>(random() % 25500) / 99.0f;
                    if (with_nan) plane[random() % n] = random() % 2 != 0 ? NAN : HUGE_VALF;
                }
                const Planes wanted = Naive{in}.run();
                for (const auto& loop : {test::forward_loop, test::backward_loop}) {
                    const Planes got = interpolated(in, loop);
                    for (std::size_t k = 0; k < 3; ++k) {
                        ASSERT_EQ(test::bits(got[k]), test::bits(wanted[k]))
                            << w << " x " << h << " sparse " << sparse << " plane " << k;
                    }
                }
            }
        }
    }
}

TEST(SmartInterpol, Operator) {
    // Role order of a green screen is red, blue, green.
    test::StageControls controls{{controls::kColorIndex, 1}};
    controls.block.set(controls::kBackingColor, 11, 33, 22);
    EXPECT_THAT(smart_interpol_params(controls.block).backing, testing::ElementsAre(11.0f, 22.0f, 33.0f));

    // Only the pixel (-4, 6) is clear, so all others take its colour. Above it the row's mean is over 3
    // pixels, (270 + 1) / 3, the column's then over 2, of which the clear pixel is one.
    const Box box{-5, 6, -2, 8};
    test::FunctionSource image(box, kMaskRgba, [](Channel c, int x, int) {
        return x == -4 || c == kAlpha ? static_cast<float>(c) * 30.0f : 99.0f;
    });
    test::FunctionSource clear(box, kMaskAlpha,
                               [](Channel, int x, int y) { return x == -4 && y == 6 ? 255.0f : 0.0f; });
    VlxSmartInterpol op(NodeContext{}, &controls.block);
    op.set_input(0, &image);
    op.set_input(1, &clear);
    op.setup();
    for (const int threads : {1, 2}) {
        const test::Picture picture = test::render(op, threads);
        EXPECT_EQ(picture.at(kBlue, -4, 6), 90.0f);
        EXPECT_EQ(picture.at(kBlue, -4, 7), (90.0f + 271.0f / 3.0f + 1.0f) / 2.0f);
        EXPECT_EQ(picture.at(kAlpha, -3, 7), 120.0f);
    }
    EXPECT_EQ(clear.rows(), 2);
}

}  // namespace
