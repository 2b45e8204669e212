#include <gtest/gtest.h>

#include <cmath>

#include "stages/NormalizeKernel.h"
#include "stages/OutputMatteKernel.h"
#include "support/Plane.h"

// Above 0.5, with u = v - 0.5, the normaliser gives (u / 2 / (u + 1) + 0.5) 255.
TEST(Levels, WorkedExamples) {
    struct Case {
        const LaneKernel<Normalize>& kernel;
        std::vector<float> in, expected;
    };
    for (const Case& c : {
             Case{normalize, {0, -0.0f, 0.25f, -2, -INFINITY}, {0, -0.0f, 63.75f, -510, -INFINITY}},
             Case{normalize, {0.5f, 1, 1.5f, 3.5f}, {127.5f, (0.25f / 1.5f + 0.5f) * 255, 191.25f, 223.125f}},
             Case{normalize, {3e38f, INFINITY, NAN}, {255, 255, NAN}},
             Case{output_matte, {255, 300, INFINITY, 254.5f, 100}, {0, 0, 0, 0.5f, 155}},
             Case{output_matte, {0, -3, NAN}, {255, 255, NAN}},
         }) {
        std::vector<float> out(c.in.size());
        c.kernel(c.in.data(), out.data(), out.size());
        EXPECT_EQ(test::bits(out), test::bits(c.expected));
    }
}
