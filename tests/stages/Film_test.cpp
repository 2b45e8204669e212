#include <gtest/gtest.h>

#include <cmath>

#include "stages/VlxFilmCorrection.h"
#include "support/Plane.h"

using namespace Zo::Image;
using test::Plane;

namespace {

struct Controls {
    std::vector<std::int32_t> values = std::vector<std::int32_t>(ControlBlock::kCount);
    ControlBlock block{values.data(), 1};

    Controls(int strength, int red, int green, int blue) {
        block.set(10, strength);
        block.set(11, red);
        block.set(12, green);
        block.set(13, blue);
    }
};

float clamped(double v) {
    return static_cast<float>(v < 0.0 ? 0.0 : v > 255.0 ? 255.0 : v);
}

// Running extreme along three samples.
float extreme(bool low, float a, float b, float c) {
    float m = a;
    for (const float v : {b, c}) {
        if (low ? v < m : v > m) m = v;
    }
    return m;
}

}  // namespace

// Red extremes 40 and 100 around a red of 60: 40 up, 20 down.
TEST(FilmKernel, WorkedExamples) {
    struct Case {
        int strength, red, green, blue;
        float matte;
        float expect_r, expect_g, expect_b;
    };
    for (const Case& c :
         {Case{0, 0, 0, 50, 0.0f, 60, 80, 100},         // c = 20; blue 90 + 10
          Case{100, 100, 0, 0, 0.0f, 20, 80, 90},       // c = 40
          Case{50, 100, 10, 0, -0.0f, 30, 83, 90},      // c = 30
          Case{200, 100, 100, 300, 0.0f, 0, 140, 255},  // c = 60; red 0, blue 270
          Case{200, 200, 0, -300, 0.0f, 0, 80, 0},      // red -60, blue -90
          Case{100, 100, 100, 100, 1e-30f, 60, 80, 90}, Case{100, 100, 100, 100, 255.0f, 60, 80, 90},
          Case{100, 100, 100, 100, std::nanf(""), 60, 80, 90}}) {
        const Controls controls(c.strength, c.red, c.green, c.blue);
        const float low = 40, high = 100, red = 60, green = 80, blue = 90;
        float r, g, b;
        film_correct(film_params(controls.block), &low, &high, &c.matte, {&red, &green, &blue}, {&r, &g, &b},
                     1);
        EXPECT_FLOAT_EQ(r, c.expect_r);
        EXPECT_FLOAT_EQ(g, c.expect_g);
        EXPECT_FLOAT_EQ(b, c.expect_b);
    }
}

TEST(Film, EqualsTheNaiveLoop) {
    for (const Box& box : {Box{0, 0, 1, 1}, Box{-6, 3, 31, 22}, Box{5, 5, 6, 30}}) {
        const Plane red = test::awkward_plane(box, 1);
        const Plane green = test::awkward_plane(box, 2);
        const Plane blue = test::awkward_plane(box, 3);
        const Plane matte(box, [](int x, int y) { return (x * 3 + y) % 4 == 0 ? 3.0f : 0.0f; });
        const Plane lowest(box, [&](int x, int y) {
            return extreme(true, red.at(x - 1, y), red.at(x, y), red.at(x + 1, y));
        });
        const Plane highest(box, [&](int x, int y) {
            return extreme(false, red.at(x - 1, y), red.at(x, y), red.at(x + 1, y));
        });
        Plane expected[3];
        for (int channel = 0; channel < 3; ++channel) {
            expected[channel] = Plane(box, [&](int x, int y) {
                const Plane& plane = channel == 0 ? red : channel == 1 ? green : blue;
                const float v = plane.at(x, y);
                if (matte.at(x, y) != 0.0f) return v;
                const double r = static_cast<double>(red.at(x, y));
                // Rows below, here and above; beyond the picture its edge row again.
                const double lo = static_cast<double>(
                    extreme(true, lowest.at(x, y - 1), lowest.at(x, y), lowest.at(x, y + 1)));
                const double hi = static_cast<double>(
                    extreme(false, highest.at(x, y - 1), highest.at(x, y), highest.at(x, y + 1)));
                const double up = hi - r, down = r - lo;
                const double big = down > up ? down : up;
                const double small = up <= down ? up : down;
                const double c = r - (r - ((1 - 0.3) * small + 0.3 * big));
                const double share = channel == 0 ? -0.8 : channel == 1 ? 0.15 : 0.5;
                return clamped(static_cast<double>(v) + c * share);
            });
        }
        for (const int threads : {1, 2}) {
            const Controls controls(30, 80, 15, 50);
            test::FunctionSource image(box, kMaskRgba, [&](Channel c, int x, int y) {
                return c == kRed     ? red.at(x, y)
                       : c == kGreen ? green.at(x, y)
                       : c == kBlue  ? blue.at(x, y)
                                     : 9.0f;
            });
            test::FunctionSource alpha(box, kMaskRgba, test::pixels_of(matte));
            VlxFilmCorrection film(NodeContext{}, &controls.block);
            film.set_input(0, &image);
            film.set_input(1, &alpha);
            film.setup();
            const test::Picture out = test::render(film, threads);
            EXPECT_EQ(out.box, box);
            EXPECT_EQ(out.at(kAlpha, box.x, box.y), 9.0f);
            for (const Channel c : kMaskRgb) {
                EXPECT_EQ(test::bits(out.planes[c]), test::bits(expected[c - kRed].values)) << c;
            }
        }
    }
}

TEST(Film, HashesItsControlsAndBothInputs) {
    Controls controls(1, 2, 3, 4);
    test::FunctionSource image({0, 0, 2, 2}, kMaskRgba, [](Channel, int, int) { return 1.0f; });
    test::FunctionSource matte({0, 0, 2, 2}, kMaskRgba, [](Channel, int, int) { return 0.0f; });
    VlxFilmCorrection film(NodeContext{}, &controls.block);
    EXPECT_STREQ(film.class_name(), "VlxFilmCorrection");
    film.set_input(0, &image);
    film.set_input(1, &matte);
    const auto changed_by = [&](auto change) {
        film.setup();
        const Hash before = film.hash();
        change();
        film.setup();
        return film.hash() != before;
    };
    for (int i = 0; i < ControlBlock::kCount; ++i) {
        const bool changed = changed_by([&] { controls.values[static_cast<std::size_t>(i)] += 1; });
        EXPECT_EQ(changed, i >= 10 && i <= 13) << i;
    }
    EXPECT_TRUE(changed_by([&] { image.invalidate(); }));
    EXPECT_TRUE(changed_by([&] { matte.invalidate(); }));
}
