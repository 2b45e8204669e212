#include <gtest/gtest.h>

#include "stages/MatteKernel.h"
#include "support/StageControls.h"

using namespace test;

namespace {

struct Density {
    int brights, darks, cool, warm;
};

StageControls controls_for(const ControlTriple& backing, const Density& k) {
    return {{75, backing[0]}, {76, backing[1]}, {77, backing[2]}, {79, k.brights},
            {80, k.darks},    {81, k.cool},     {82, k.warm}};
}

// The content of a secondary channel that shows s where the backing shows p.
double content(double darks, float p, float s, float c, float cp) {
    const double d = static_cast<double>(p - s), P = static_cast<double>(p);
    double a = d * darks / P * 255.0;
    if (a > static_cast<double>(s)) a = static_cast<double>(s);
    if (255.0f > p) {
        const double lift = d * 255.0 / static_cast<double>(p - 255.0f);
        if (lift > a) a = lift;
    }
    const double share = static_cast<double>(s) - a;
    const double m = (P * (static_cast<double>(c) - a) - static_cast<double>(cp) * share) /
                     ((255.0 - a) * P / 255.0 - share);
    return 0.0 > m ? 0.0 : m;
}

float naive(const Density& k, const std::array<float, 3>& backing, const std::array<float, 3>& c) {
    const double P = static_cast<double>(backing[2]), cp = static_cast<double>(c[2]);
    const double m0 = content(k.darks / 100.0, backing[2], backing[0], c[0], c[2]);
    const double m1 = content(k.darks / 100.0, backing[2], backing[1], c[1], c[2]);
    const double mi = std::min(Zo::Image::to_int(m0), Zo::Image::to_int(m1));
    const double t1 = (cp - k.brights / 100.0 * m1 - k.cool / 100.0 * (m1 - mi)) / P;
    double v = (cp - k.brights / 100.0 * m0 - k.warm / 100.0 * (m0 - mi)) / P;
    if (v > t1) v = t1;
    if (v < -127.5) v = -127.5;
    if (v > 127.5) v = 127.5;
    return static_cast<float>(v * 255.0);
}

}  // namespace

TEST(MatteKernel, EqualsTheNaiveLoop) {
    constexpr int kCount = 6001;
    const Span fg(kCount, 1), plate(kCount, 5);
    for (const Density& k : {Density{100, 0, 0, 0}, Density{130, 35, 60, -20}, Density{80, -15, 10, 90}}) {
        for (const ControlTriple& b :
             {ControlTriple{30, 60, 200}, {90, 10, 255}, {-4, 300, 0}, {7, 8, 290}}) {
            const StageControls controls = controls_for(b, k);
            const MatteParams params = matte_params(controls.block);
            std::vector<float> constant(kCount), clean(kCount), expect_constant, expect_clean;
            matte_constant(params, fg.in(), constant.data(), kCount);
            matte_clean_plate(params, fg.in(), plate.in(), clean.data(), kCount);
            for (std::size_t i = 0; i < kCount; ++i) {
                const auto at = [i](const Span& s) {
                    return std::array{s.planes[0][i], s.planes[1][i], s.planes[2][i]};
                };
                const std::array backing{static_cast<float>(b[0]), static_cast<float>(b[1]),
                                         static_cast<float>(b[2])};
                expect_constant.push_back(naive(k, backing, at(fg)));
                expect_clean.push_back(naive(k, at(plate), at(fg)));
            }
            EXPECT_EQ(test::bits(constant), test::bits(expect_constant)) << b[0];
            EXPECT_EQ(test::bits(clean), test::bits(expect_clean)) << k.darks;
        }
    }
}
