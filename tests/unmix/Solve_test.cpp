// Alpha of mixtures whose parts are known, and its noise taken out again.
#include <gtest/gtest.h>

#include "unmix/CleanFrame.h"
#include "unmix/Islands.h"
#include "unmix/Picture.h"

using namespace unmix;
using namespace test;

namespace {

using Vector = std::array<double, 3>;
using Matrix = std::array<Vector, 3>;

double dot(const Vector& a, const Vector& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Matrix matrix(const Covariance& n, const Covariance& q, double share) {
    const auto at = [&](std::size_t i) { return double{n[i]} + share * double{q[i]}; };
    return {{{at(0), at(1), at(2)}, {at(1), at(3), at(4)}, {at(2), at(4), at(5)}}};
}

// S w = v by elimination; `det` gets the determinant.
Vector solved(Matrix s, Vector v, double& det) {
    det = s[0][0];
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            const double f = j == i ? 0.0 : s[j][i] / s[i][i];
            for (std::size_t n = 0; n < 3; ++n) s[j][n] -= f * s[i][n];
            v[j] -= f * v[i];
        }
        if (i < 2) det *= s[i + 1][i + 1];
    }
    return {v[0] / s[0][0], v[1] / s[1][1], v[2] / s[2][2]};
}

// Three rounds of weighted least squares: x = alpha d, noise N + alpha^2 Q.
TEST(Solve, TheKernelIsTheFormula) {
    std::mt19937 random(1);
    const auto real = [&] { return static_cast<float>(random() % 10000) / 10000.0f; };
    const auto spread = [&](float size) {  // positive definite: what lies off the diagonal is less than half
        Covariance q{1.0f + real(), 0.9f * real() - 0.5f, 0.9f * real() - 0.5f,
                     1.0f + real(), 0.9f * real() - 0.5f, 1.0f + real()};
        for (float& v : q) v *= size;
        return q;
    };
    for (int n = 0; n < 300; ++n) {
        const UnmixNoise noise{spread(1e-3f)};
        const CommonColour common{{real(), real(), real()}, 0.2f, spread(1e-2f)};
        const Colour behind{0.1f * real(), 1.2f + real(), 0.2f * real()};
        Colour beyond{}, mean{};
        Vector x{}, d{};
        for (std::size_t c = 0; c < 3; ++c) {
            mean[c] = common.mean[c] + common.share * behind[c];
            const float share = static_cast<float>(n) / 250.0f - 0.1f;
            beyond[c] = share * (mean[c] - behind[c]) + 0.05f * (real() - 0.5f);
            x[c] = double{beyond[c]};
            d[c] = double{mean[c]} - double{behind[c]};
        }
        const float guess = real();
        std::array<double, 4> expected{double{guess}, 0.0, 0.0, 0.0};
        for (int round = 0; round < kSolveRounds; ++round) {
            double& a = expected[0];
            const Matrix s = matrix(noise.covariance, common.covariance, a * a);
            const Matrix by = matrix(noise.covariance, {}, 0.0);
            double det = 0.0;
            const Vector w = solved(s, d, det);
            a = std::clamp(dot(w, x) / dot(w, d), 0.0, 1.0);
            const Vector left{x[0] - a * d[0], x[1] - a * d[1], x[2] - a * d[2]};
            expected[1] = dot(left, solved(s, left, det)) + std::log(det);
            expected[2] = dot(w, {dot(by[0], w), dot(by[1], w), dot(by[2], w)}) / (dot(w, d) * dot(w, d));
            expected[3] = 1.0 / dot(w, d);
        }
        const auto& q = common.covariance;
        const UnmixPixels pixels{
            {&beyond[0], &beyond[1], &beyond[2]}, {&behind[0], &behind[1], &behind[2]}, &guess};
        std::array<float, 4> a{}, b{};
        solve_common(noise, pixels, common, {&a[0], &a[1], &a[2], &a[3]}, 1);
        solve_own(noise, pixels, {{&mean[0], &mean[1], &mean[2]}, {&q[0], &q[1], &q[2], &q[3], &q[4], &q[5]}},
                  {&b[0], &b[1], &b[2], &b[3]}, 1);
        for (std::size_t i = 0; i < 4; ++i) {
            const double e = expected[i];
            const double tolerance = i < 2 ? 2e-4 * std::max(1.0, std::abs(e)) : 1e-3 * e;
            ASSERT_NEAR(double{a[i]}, e, tolerance) << n << ' ' << i;
            ASSERT_NEAR(double{b[i]}, e, tolerance) << n << ' ' << i;
        }
    }
}

// A soft disc, and a soft line where nothing is solid; rims near solids hold a little of the screen's light.
TEST(Solve, MixturesGiveTheirAlphaBack) {
    const struct {
        const char* name;
        Colour subject;
        float spill;
        bool line;
        Colour behind;
    } cases[] = {{"near a solid", {0.6f, 0.3f, 0.2f}, 0.04f, false, kGreen},
                 {"nowhere solid", {0.4725f, 0.45f, 0.4275f}, 0.0f, true, kGreen},
                 {"backing below zero", {0.6f, 0.3f, 0.2f}, 0.04f, false, {-0.1f, 0.6f, 0.1f}}};
    for (const auto& c : cases) {
        Floats truth(300, 300);
        Picture p(300, 300, [&](int x, int y) {
            const float along = std::abs(static_cast<float>(10 * y + x) / 10.0f - 165.0f);
            const float alpha =
                c.line ? ramp(along, 2.0f, 6.0f) : ramp(away_from(x, y, 150, 150), 90.0f, 14.0f);
            truth(x, y) = alpha;
            Colour subject = c.subject;
            for (std::size_t i = 0; i < 3 && alpha < 1.0f; ++i) subject[i] += c.spill * c.behind[i];
            return mix(subject, c.behind, alpha);
        });
        p.solve();
        int mixed = 0;
        each(300, 300, [&](int x, int y) {
            const bool unknown = p.segmentation.unknown(x, y) != 0;
            ASSERT_NEAR(p.solution.alpha(x, y), truth(x, y), 0.012f) << c.name << ' ' << x << ' ' << y;
            ASSERT_EQ(p.solution.candidate(x, y) != 0, unknown) << c.name;
            mixed += unknown && truth(x, y) > 0.1f && truth(x, y) < 0.9f ? 1 : 0;
        });
        EXPECT_GT(mixed, 800) << c.name;
    }
}

// Clear with a strand of one pixel, half, opaque: a third each, with noise.
TEST(Clean, NoiseGoesAndDetailStays) {
    std::mt19937 random(1);
    std::normal_distribution<float> normal(0.0f, 0.03f);
    const FrameScale scale{150, 90};
    Segmentation all{Bytes(75, 45), {}, {}, Bytes(150, 90)};
    all.solid.fill(0);
    all.unknown.fill(1);
    Solution solution{Floats(150, 90), Floats(150, 90), Floats(150, 90), {}};
    solution.variance.fill(0.03f * 0.03f);
    solution.deviation.fill(0.06f);
    each(150, 90, [&](int x, int y) {
        const float truth = x == 25 ? 0.6f : x < 50 ? 0.0f : x < 100 ? 0.5f : 1.0f;
        solution.alpha(x, y) = std::clamp(truth + normal(random), 0.0f, 1.0f);
    });
    Floats alpha;
    clean_frame(scale, all, solution, {1.0f, 1.0f}, alpha, backward_loop);
    each(150, 90, [&](int x, int y) {
        const float v = alpha(x, y);
        const bool clear = x < 16 || (x > 34 && x < 40);
        ASSERT_TRUE(!clear || v < 0.004f) << x << ' ' << y;
        ASSERT_TRUE(x != 25 || std::abs(v - solution.alpha(x, y)) < 0.01f) << y;
        ASSERT_TRUE(x < 60 || x > 90 || std::abs(v - 0.5f) < 0.03f) << x << ' ' << y;
        ASSERT_TRUE(x < 110 || v > 0.996f) << x << ' ' << y;
    });
    clean_frame(scale, all, solution, {0.0f, 1.0f}, alpha, backward_loop);
    for (std::size_t i = 0; i < alpha.size(); ++i) ASSERT_NEAR(alpha[i], solution.alpha[i], 1e-6f);
}

// A rectangle of one value in a frame of another. Cells are 2 x 2 pixels, and a hundredth of them is 100.
TEST(Clean, HolesAreFilledAndMarksDropped) {
    const struct {
        const char* name;
        float around, inside;
        int width, height, solid_at;  // the rectangle is 30 pixels from 70 on
        float then;
    } cases[] = {
        {"a hole of reflected screen", 1.0f, 0.6f, 12, 12, 80, 1.0f},
        {"a large one", 1.0f, 0.6f, 30, 30, 80, 0.6f},
        {"half clear", 1.0f, 0.4f, 12, 12, 80, 0.4f},
        {"a detail of the screen's hue", 1.0f, 0.2f, 8, 8, 80, 1.0f},
        {"almost clear", 1.0f, 0.1f, 8, 8, 80, 0.1f},
        {"a gap between hairs", 1.0f, 0.2f, 2, 20, 80, 0.2f},
        {"opaque enough", 1.0f, 0.985f, 12, 12, 80, 0.985f},
        {"a mark", 0.0f, 0.3f, 8, 8, 20, 0.0f},
        {"one near the subject", 0.0f, 0.3f, 8, 8, 80, 0.3f},
        {"a bright one", 0.0f, 0.7f, 8, 8, 20, 0.7f},
        {"a large mark", 0.0f, 0.3f, 30, 30, 20, 0.3f},
        {"too faint to see", 0.0f, 0.009f, 8, 8, 20, 0.009f},
    };
    for (const auto& c : cases) {
        FrameScale scale{200, 200};
        scale.pixels = 1.0f;
        Segmentation segmentation{Bytes(100, 100), {}, {}, {}};
        segmentation.solid.fill(0);
        segmentation.solid(c.solid_at / 2, 50) = 1;
        Floats alpha(200, 200);
        alpha.fill(c.around);
        for (int y = 100; y < 100 + c.height; ++y) std::fill_n(alpha.row(y) + 100, c.width, c.inside);
        drop_marks(scale, segmentation, alpha, backward_loop);
        fill_holes(scale, alpha, backward_loop);
        EXPECT_EQ(alpha(100, 100), c.then) << c.name;
        EXPECT_EQ(alpha(99 + c.width, 99 + c.height), c.then) << c.name;
        EXPECT_EQ(alpha(97, 97), c.around) << c.name;
    }
}

}  // namespace
