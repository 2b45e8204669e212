#include <gtest/gtest.h>

#include "stages/NormalizeKernel.h"
#include "stages/OutputMatteKernel.h"
#include "support/Plane.h"

namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

struct Case {
    float in, expected;
};

template <class Kernel>
void check(Kernel kernel, std::initializer_list<Case> cases) {
    std::vector<float> in, expected;
    for (const Case& c : cases) {
        in.push_back(c.in);
        expected.push_back(c.expected);
    }
    std::vector<float> out(in.size());
    kernel(in.data(), out.data(), in.size());
    EXPECT_EQ(test::bits(out), test::bits(expected));
}

}  // namespace

// Above 0.5, with u = v - 0.5: (u / 2 / (u + 1) + 0.5) 255.
TEST(Normalize, IsStraightUpToHalfAndBendsToInfinity) {
    check(normalize, {{0.0f, 0.0f},
                      {-0.0f, -0.0f},
                      {-0.1f, -0.1f * 255.0f},
                      {0.25f, 63.75f},
                      {0.5f, 127.5f},
                      {1.0f, (0.25f / 1.5f + 0.5f) * 255.0f},
                      {1.5f, 191.25f},
                      {3.5f, 223.125f},
                      {3e38f, 255.0f},
                      {kInfinity, 255.0f},
                      {-kInfinity, -kInfinity},
                      {kNaN, kNaN}});
}

TEST(OutputMatte, TurnsOverAndClamps) {
    check(output_matte, {{255.0f, 0.0f},
                         {300.0f, 0.0f},
                         {kInfinity, 0.0f},
                         {0.0f, 255.0f},
                         {-3.0f, 255.0f},
                         {100.0f, 155.0f},
                         {254.5f, 0.5f},
                         {kNaN, kNaN}});
}
