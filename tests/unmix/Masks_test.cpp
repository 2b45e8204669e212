// What works on masks and grids, against loops over all pixels and in closed cases.
#include <gtest/gtest.h>

#include <set>

#include "unmix/Clusters.h"
#include "unmix/Components.h"
#include "unmix/FrameCubic.h"
#include "unmix/Morphology.h"
#include "unmix/Nearest.h"
#include "unmix/Picture.h"
#include "unmix/PushPull.h"

using namespace unmix;
using namespace test;

namespace {

// The least of what is measured to the pixels of this value, 1e4 where there is none. Of several as near the
// first, further left, then lower, gets into `where`.
template <class Measure>
double least(const Bytes& mask, int value, int x, int y, const Measure& measure, int* where = nullptr) {
    double best = 1e4;
    each(mask.height(), mask.width(), [&](int v, int u) {
        if (mask(u, v) != value || !(measure(u - x, v - y) < best)) return;
        best = measure(u - x, v - y);
        if (where != nullptr) *where = v * mask.width() + u;
    });
    return best;
}

const auto straight = [](int dx, int dy) { return std::hypot(dx, dy); };
const auto steps = [](int dx, int dy) { return static_cast<double>(std::abs(dx) + std::abs(dy)); };

// Each pixel's number spreads to its neighbours while it is less.
void check_components(const Bytes& mask) {
    const int width = mask.width();
    Plane<std::int32_t> labels;
    const int count = label_components(mask, labels);
    Plane<std::int32_t> expected(width, mask.height());
    each(width, mask.height(), [&](int x, int y) { expected(x, y) = mask(x, y) * (y * width + x + 1); });
    for (bool again = true; again;) {
        again = false;
        each(width, mask.height(), [&](int x, int y) {
            for (const auto [u, v] : {std::array{x + 1, y}, {x - 1, y}, {x, y + 1}, {x, y - 1}}) {
                if (u < 0 || v < 0 || u >= width || v >= mask.height()) continue;
                if (expected(x, y) == 0 || expected(u, v) == 0 || expected(u, v) >= expected(x, y)) continue;
                expected(x, y) = expected(u, v);
                again = true;
            }
        });
    }
    std::set<std::pair<int, int>> pairs{{0, 0}};
    for (std::size_t i = 0; i < mask.size(); ++i) pairs.emplace(labels[i], expected[i]);
    const std::set<std::int32_t> parts(expected.begin(), expected.end());
    EXPECT_EQ(pairs.size(), static_cast<std::size_t>(count) + 1);
    EXPECT_EQ(parts.size() - parts.count(0), static_cast<std::size_t>(count));
}

TEST(Masks, AgainstAllPixels) {
    std::mt19937 random(1);
    for (const auto& [width, height] : {std::array{1, 1}, {1, 9}, {37, 23}, {300, 3}}) {
        for (const unsigned rare : {1U, 2U, 9U, 60U, 2000U}) {
            SCOPED_TRACE(testing::Message() << width << " x " << height << ", one of " << rare);
            Bytes mask(width, height);
            const bool few = rare % 2 != 0;
            for (auto& v : mask) v = (random() % rare == 0) == few ? 1 : 0;
            check_components(mask);
            Floats depth;
            distance(mask, 5.5f, depth, backward_loop);
            const Bytes shrunk = eroded(mask, 2);
            const Bytes grown = dilated(mask, 3);
            const Bytes open = opened(mask, 1.6f, backward_loop);
            Bytes deep(width, height);
            each(width, height, [&](int x, int y) { deep(x, y) = least(mask, 0, x, y, straight) > 1.6; });
            Plane<std::int32_t> index;
            Floats away;
            nearest(mask, index, &away, backward_loop);
            each(width, height, [&](int x, int y) {
                ASSERT_NEAR(double{depth(x, y)}, std::min(least(mask, 0, x, y, straight), 5.5), 1e-6);
                ASSERT_EQ(shrunk(x, y) != 0, least(mask, 0, x, y, steps) > 2.0);
                ASSERT_EQ(grown(x, y) != 0, least(mask, 1, x, y, steps) <= 3.0);
                ASSERT_EQ(open(x, y) != 0, least(deep, 1, x, y, straight) <= 1.6);
                int where = -1;
                const double d = least(mask, 1, x, y, straight, &where);
                ASSERT_NEAR(double{away(x, y)}, d, 1e-5 * d);
                ASSERT_EQ(index(x, y), where);
            });
        }
    }
}

TEST(Grids, CellsAndWhatLiesBetween) {
    std::mt19937 random(2);
    for (const int n : {2, 4, 6, 8}) {
        for (const int width : {1, 2, 3, 1201}) {
            SCOPED_TRACE(testing::Message() << n << ", " << width);
            const int height = 7;
            Floats picture(width, height);
            for (float& v : picture) v = static_cast<float>(random() % 1000) / 500.0f - 1.0f;
            const auto at = [](const Floats& of, int x, int y) {
                return double{of(std::clamp(x, 0, of.width() - 1), std::clamp(y, 0, of.height() - 1))};
            };
            Floats means;
            cell_means(picture, n, means, backward_loop);
            ASSERT_EQ(means.width(), (width + n - 1) / n);
            std::vector<float> row(static_cast<std::size_t>(width));
            each(width, height, [&](int x, int y) {
                double sum = 0.0, count = 0.0;
                for (int v = y / n * n; v < std::min(y / n * n + n, height); ++v) {
                    for (int u = x / n * n; u < std::min(x / n * n + n, width); ++u, ++count)
                        sum += double{picture(u, v)};
                }
                ASSERT_NEAR(double{means(x / n, y / n)}, sum / count, 1e-6);
                if (x == 0) between_cells(means, n, y, 0, width, row.data());
                const double u = (x + 0.5) / n - 0.5, v = (y + 0.5) / n - 0.5;
                const int a = static_cast<int>(std::floor(u)), b = static_cast<int>(std::floor(v));
                const double low = std::lerp(at(means, a, b), at(means, a + 1, b), u - a);
                const double high = std::lerp(at(means, a, b + 1), at(means, a + 1, b + 1), u - a);
                ASSERT_NEAR(double{row[static_cast<std::size_t>(x)]}, std::lerp(low, high, v - b), 1e-5) << x;
            });
        }
    }
}

TEST(PushPull, ClosedCases) {
    const auto slope = [](int x, int y) { return static_cast<float>(x - 2 * y) / 100.0f; };
    const auto flat = [](int, int) { return 0.7f; };
    const auto all = [](int, int) { return true; };
    const auto hole = [](int x, int y) { return std::abs(x - 30) > 4 || std::abs(y - 25) > 4; };
    const struct {
        const char* name;
        std::function<float(int, int)> value;
        std::function<bool(int, int)> known;
        int width, height, from;
        float tolerance;
    } cases[] = {
        {"constant", flat, all, 60, 50, 0, 1e-6f},
        {"one pixel", flat, [](int x, int y) { return x == 3 && y == 40; }, 60, 50, 0, 1e-6f},
        {"every other line", flat, [](int, int y) { return y % 2 == 0; }, 61, 1, 2, 1e-6f},
        {"none", [](int, int) { return 0.0f; }, [](int, int) { return false; }, 9, 7, 0, 0.0f},
        {"slope", slope, all, 60, 50, 0, 0.004f},
        {"slope with a hole", slope, hole, 60, 50, 0, 0.03f},
        {"coarse slope", slope, all, 60, 50, 2, 0.065f},  // flat from two pixels before its corners
    };
    for (const auto& c : cases) {
        const auto colour = [&](int x, int y) {
            return c.known(x, y) ? Colour{0.0f, 0.0f, c.value(x, y)} : Colour{NAN, NAN, NAN};
        };
        const Picture values(c.width, c.height, colour);
        Bytes mask(c.width, c.height);
        each(c.width, c.height, [&](int x, int y) { mask(x, y) = c.known(x, y); });
        Colours out;
        PushPull().run(values.backing.light, mask, c.from, out, backward_loop);
        each(c.width, c.height, [&](int x, int y) {
            ASSERT_NEAR(out[2](x, y), c.value(x, y), c.tolerance) << c.name << x << ' ' << y;
        });
    }
}

// A cubic, negative in red, with a patch of something else and a hole; then too few cells for a cubic.
TEST(FrameCubic, FindsTheLightsFalloff) {
    const auto light = [](int x, int y) {
        const float u = static_cast<float>(x) / 40.0f - 1.0f, v = static_cast<float>(y) / 30.0f - 1.0f;
        return 0.4f + 0.04f * u - 0.06f * v * v + 0.04f * u * u * u - 0.02f * u * v;
    };
    Bytes mask(80, 60);
    const Picture cells(80, 60, [&](int x, int y) {
        mask(x, y) = !(x > 20 && x < 40 && y > 20);
        if (x > 50 && x < 62 && y > 8 && y < 20) return Colour{0.9f, 0.9f, 0.9f};
        const float v = mask(x, y) == 0 ? NAN : light(x, y);
        return Colour{-0.2f * v, v, 0.5f * v};
    });
    FrameCubic cubic;
    cubic.fit(cells.backing.light, mask);
    Colours out;
    resize(out, 80, 60);
    cubic.evaluate(out);
    each(80, 60, [&](int x, int y) {
        ASSERT_NEAR(out[0](x, y), -0.2f * light(x, y), 1e-3f) << x << ' ' << y;
        ASSERT_NEAR(out[1](x, y), light(x, y), 2e-3f) << x << ' ' << y;
    });
    mask.fill(0);
    for (const int x : {3, 4, 7}) mask(x, 0) = 1;
    cubic.fit(cells.backing.light, mask);
    cubic.evaluate(out);
    EXPECT_EQ(out[1](70, 50), light(4, 0));
}

TEST(Clusters, ToldApart) {
    const std::array<Colour, 3> colours{{{0.1f, 0.2f, 0.9f}, {0.8f, 0.3f, 0.2f}, {0.4f, 0.7f, 0.4f}}};
    std::vector<Colour> samples;
    for (std::size_t n = 0; n < 90; ++n) {
        samples.push_back(colours[n % 3]);
        samples.back()[0] += n / 3 % 2 == 0 ? 0.02f : -0.02f;
    }
    const Clusters found = find_clusters(samples, 3);
    ASSERT_EQ(found.means.size(), 3U);
    for (std::size_t n = 0; n < 90; ++n) {
        EXPECT_EQ(found.of[n], found.of[n % 3]);
        for (std::size_t c = 0; c < 3; ++c)
            EXPECT_NEAR(found.means[static_cast<std::size_t>(found.of[n])][c], double{colours[n % 3][c]},
                        1e-6);
    }
    EXPECT_EQ(find_clusters({colours[0], colours[1]}, 8).means.size(), 2U);
    EXPECT_TRUE(find_clusters({}, 8).means.empty());
}

}  // namespace
