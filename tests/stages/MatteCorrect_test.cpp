// The matte correction: a literal loop over every window, and the operator.
#include <gmock/gmock.h>

#include <cmath>
#include <random>

#include "stages/MatteCorrectKernel.h"
#include "stages/VlxMatteCorrect.h"
#include "support/Loops.h"
#include "support/StageControls.h"

using namespace Zo::Image;
using Plane = std::vector<float>;

namespace {

struct Image {
    int width, height;
    Plane matte, pre;
};

Plane corrected(MatteLimit limit, int radius, const Image& in,
                const ParallelLoop& loop = test::forward_loop) {
    Plane result = in.pre;
    matte_correct(limit, radius, in.width, in.height, in.matte.data(), result.data(), result.data(), loop);
    return result;
}

// One direction for one pixel, every pixel of its window looked at.
float window_value(bool above, long radius, const Image& in, int x, int y, int dx, int dy) {
    const auto at = [&](long i, long j) { return in.matte[static_cast<std::size_t>(j * in.width + i)]; };
    const double m = static_cast<double>(at(x, y));
    double hi = -HUGE_VAL;
    double lo = HUGE_VAL;
    const long reach = std::min<long>(radius, in.width + in.height);
    for (long k = -reach; k <= reach; ++k) {
        const long i = x + k * dx;
        const long j = y + k * dy;
        if (i < 0 || j < 0 || i >= in.width || j >= in.height) continue;
        const double v = static_cast<double>(at(i, j));
        if (v > hi) hi = v;
        if (v < lo) lo = v;
    }
    const auto limit = [&](double v) { return above ? (v > 255.0 ? 255.0 : v) : (v < 0.0 ? 0.0 : v); };
    double r = m - lo;
    const double d = hi - lo;
    if (d != 0.0) r = r / d;
    return static_cast<float>(limit(lo) + (limit(hi) - limit(lo)) * r);
}

Plane naive(bool above, long radius, const Image& in) {
    Plane result = in.matte;
    for (int y = 0; y < in.height; ++y) {
        for (int x = 0; x < in.width; ++x) {
            const auto at = static_cast<std::size_t>(y * in.width + x);
            if (!(in.pre[at] <= 0.0f)) continue;
            const float row = window_value(above, radius, in, x, y, 1, 0);
            const float column = window_value(above, radius, in, x, y, 0, 1);
            result[at] = (above ? column > row : row > column) ? row : column;
        }
    }
    return result;
}

TEST(MatteCorrect, EqualsTheLiteralLoopHoweverItIsCut) {
    std::mt19937 random(7);
    const float special[] = {NAN, INFINITY, -INFINITY, -0.0f, 0.0f, 255.0f, 3.0e38f, 1.0e-42f};
    for (const auto& [w, h] :
         {std::pair{1, 1}, {1, 9}, {9, 1}, {7, 5}, {33, 19}, {70, 37}, {2100, 2}, {3, 530}}) {
        for (const int radius : {1, 2, 3, 16, std::numeric_limits<int>::max()}) {
            for (const int rare : {3, 40, 1000000}) {
                Image in{w, h, Plane(static_cast<std::size_t>(w * h)),
                         Plane(static_cast<std::size_t>(w * h))};
                for (float& v : in.matte) {
                    v = random() % static_cast<unsigned>(rare) == 0
                            ? special[random() % 8]
                            : static_cast<float>(random() % 8000) / 10.0f - 300.0f;
                }
                for (float& v : in.pre) v = random() % 5 == 0 ? 255.0f : random() % 9 == 0 ? NAN : -0.0f;
                for (const bool above : {true, false}) {
                    const MatteLimit limit = above ? MatteLimit::kAbove : MatteLimit::kBelow;
                    const Plane wanted = naive(above, radius, in);
                    for (const auto& loop : {test::forward_loop, test::backward_loop}) {
                        ASSERT_EQ(test::bits(corrected(limit, radius, in, loop)), test::bits(wanted))
                            << w << " x " << h << " radius " << radius << above;
                    }
                }
            }
        }
    }
}

TEST(MatteCorrect, Operator) {
    test::StageControls controls{{controls::kEdgeKernel, 1}};
    // Off the origin: 400 at (11, 21) stands alone, everything else is 0 but one clear pixel of 300.
    const Box box{10, 20, 13, 23};
    test::FunctionSource matte(box, kMaskRgba, [](Channel c, int x, int y) {
        if (c != kAlpha) return static_cast<float>(c * 100 + x);
        return x == 11 && y == 21 ? 400.0f : x == 12 && y == 22 ? 300.0f : 0.0f;
    });
    test::FunctionSource pre(box, kMaskAlpha,
                             [](Channel, int x, int y) { return x == 12 && y == 22 ? 1.0f : 0.0f; });
    VlxMatteCorrect op(NodeContext{}, &controls.block, 0);
    op.set_input(0, &matte);
    op.set_input(1, &pre);
    op.setup();
    for (const int threads : {1, 2}) {
        const test::Picture picture = test::render(op, threads);
        EXPECT_THAT(picture.planes[kAlpha], testing::ElementsAre(0, 0, 0, 0, 255, 0, 0, 0, 300));
        EXPECT_EQ(picture.at(kBlue, 12, 21), 312.0f);
    }
    EXPECT_EQ(pre.rows(), 3);
    controls.block.set(controls::kEdgeKernel, 0);
    op.setup();
    EXPECT_EQ(test::render(op).at(kAlpha, 11, 21), 400.0f);
    EXPECT_EQ(pre.rows(), 3);
}

}  // namespace
