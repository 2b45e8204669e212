#include <gtest/gtest.h>

#include <cmath>

#include "stages/VlxFilmCorrection.h"
#include "support/StageControls.h"

using namespace Zo::Image;
using test::Plane;

namespace {

// The first of three samples unless a later one lies strictly beyond; sign -1 looks for the lowest.
float extreme(float sign, float a, float b, float c) {
    if (sign * b > sign * a) a = b;
    return sign * c > sign * a ? c : a;
}

Plane rows_extreme(const Plane& in, float sign) {
    const Plane line(
        in.box, [&](int x, int y) { return extreme(sign, in.at(x - 1, y), in.at(x, y), in.at(x + 1, y)); });
    return Plane(in.box, [&](int x, int y) {
        return extreme(sign, line.at(x, y - 1), line.at(x, y), line.at(x, y + 1));
    });
}

}  // namespace

TEST(Film, EqualsTheNaiveLoop) {
    constexpr std::array<double, 3> kShares{-0.8, 0.15, 0.5};
    for (const Box& box : {Box{0, 0, 1, 1}, Box{-6, 3, 31, 22}, Box{5, 5, 6, 30}}) {
        const Plane planes[] = {test::awkward_plane(box, 1), test::awkward_plane(box, 2),
                                test::awkward_plane(box, 3)};
        const auto in = [&](Channel c) -> const Plane& { return planes[c - kRed]; };
        const std::array mattes{0.0f, 3.0f, -0.0f, NAN, 0.0f, -1e-30f};
        const Plane matte(box, [&](int x, int y) { return mattes[static_cast<unsigned>(x * 3 + y) % 6]; });
        const Plane lowest = rows_extreme(in(kRed), -1);
        const Plane highest = rows_extreme(in(kRed), 1);
        test::FunctionSource image(
            box, kMaskRgba, [&](Channel c, int x, int y) { return c == kAlpha ? 9.0f : in(c).at(x, y); });
        test::FunctionSource alpha(box, kMaskRgba, test::pixels_of(matte));
        const test::StageControls controls{{10, 30}, {11, 80}, {12, 15}, {13, 50}};
        VlxFilmCorrection film(NodeContext{}, &controls.block);
        film.set_input(0, &image);
        film.set_input(1, &alpha);
        for (const int threads : {1, 2}) {
            const test::Picture out = test::render(film, threads);
            EXPECT_EQ(out.at(kAlpha, box.x, box.y), 9.0f);
            for (const Channel c : kMaskRgb) {
                const Plane expected(box, [&](int x, int y) {
                    const float v = in(c).at(x, y);
                    if (matte.at(x, y) != 0.0f) return v;
                    const double r = static_cast<double>(in(kRed).at(x, y));
                    const double up = static_cast<double>(highest.at(x, y)) - r;
                    const double down = r - static_cast<double>(lowest.at(x, y));
                    const double big = down > up ? down : up;
                    const double small = up <= down ? up : down;
                    const double correction = r - (r - ((1 - 0.3) * small + 0.3 * big));
                    const double shifted =
                        static_cast<double>(v) + correction * kShares[static_cast<std::size_t>(c - kRed)];
                    return static_cast<float>(shifted < 0.0 ? 0.0 : shifted > 255.0 ? 255.0 : shifted);
                });
                EXPECT_EQ(test::bits(out.planes[c]), test::bits(expected.values)) << c;
            }
        }
    }
}
