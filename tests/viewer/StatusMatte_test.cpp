#include "picture/StatusMatte.h"

#include <limits>
#include <random>
#include <set>
#include <vector>

#include "ZoImage/StatusColour.h"
#include "shot/Files.h"

using namespace veloxa;
using namespace veloxa::viewer;
using namespace Zo::Image;

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

// Looks at every neighbour of every pixel.
StatusCounts plainly(const Image& image) {
    const Box& box = image.info.box;
    StatusCounts counts;
    for (int y = box.y; y < box.t; ++y) {
        for (int x = box.x; x < box.r; ++x) {
            const float a = image.line(kAlpha, y)[x - box.x];
            const bool between = a > 0.0f && a < 1.0f;
            ++(std::isnan(a) ? counts.broken
               : a == 0.0f   ? counts.clear
               : a == 1.0f   ? counts.solid
               : between     ? counts.between
                             : counts.beyond);
            if (!between) continue;
            bool high = false, low = false;
            for (int v = std::max(y - kEdgeReach, box.y); v <= std::min(y + kEdgeReach, box.t - 1); ++v) {
                for (int u = std::max(x - kEdgeReach, box.x); u <= std::min(x + kEdgeReach, box.r - 1); ++u) {
                    high = high || image.line(kAlpha, v)[u - box.x] > 0.5f;
                    low = low || image.line(kAlpha, v)[u - box.x] <= 0.5f;
                }
            }
            counts.leaks += a <= 0.5f && !high ? 1 : 0;
            counts.holes += a > 0.5f && !low ? 1 : 0;
        }
    }
    return counts;
}

TEST(StatusMatte, CountsWhatALookAtEveryNeighbourCounts) {
    std::mt19937 random(7);
    for (const Box box : {Box{-3, 2, 64, 51}, Box{0, 0, 17, 1}, Box{0, 0, 1, 40}, Box{5, 5, 13, 12}}) {
        // Solid and clear halves, with specks few enough that some are far from all others.
        const Image image = test::image_of(box, box, kMaskAlpha, [&](Channel, int x, int) {
            const float values[]{0.25f, 0.5f, 0.75f, 1.5f, -0.5f, kNan};
            const bool solid = x < box.x + box.width() / 2;
            if (random() % 40 != 0) return solid ? 1.0f : 0.0f;
            return values[random() % 6];
        });
        const StatusCounts counts = status_counts(image), wanted = plainly(image);
        for (const auto field :
             {&StatusCounts::clear, &StatusCounts::solid, &StatusCounts::between, &StatusCounts::beyond,
              &StatusCounts::broken, &StatusCounts::leaks, &StatusCounts::holes}) {
            EXPECT_EQ(counts.*field, wanted.*field) << box.width() << " by " << box.height();
        }
    }
    const Box box{0, 0, 7, 3};
    EXPECT_EQ(status_counts(test::image_of(box, box, kMaskRgb, [](Channel, int, int) { return 1.0f; })).clear,
              21);
}

TEST(StatusMatte, EveryStateHasAColourOfItsOwn) {
    EXPECT_EQ(status_colour(0.0f), 0xff000000U);
    EXPECT_EQ(status_colour(-0.0f), 0xff000000U);
    EXPECT_EQ(status_colour(1.0f), 0xffffffffU);
    std::set<std::uint32_t> colours;
    for (const float alpha : {0.0f, 1e-6f, 0.25f, 0.5f, 0.75f, 0.999999f, 1.0f, -1e-6f, 1.000001f, kNan}) {
        EXPECT_TRUE(colours.insert(status_colour(alpha)).second) << alpha;
    }
}

}  // namespace
