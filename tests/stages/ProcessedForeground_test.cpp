#include <gtest/gtest.h>

#include "stages/ProcessedForegroundKernel.h"
#include "support/StageControls.h"

using namespace test;

TEST(ProcessedForegroundKernel, EqualsTheNaiveLoop) {
    constexpr int kCount = 6001;
    const Span fg(kCount, 11), plate(kCount, 15);
    const std::vector<float> pre = test::awkward_plane({0, 0, kCount, 1}, 19).values;
    constexpr std::array<int, 3> kBacking{33, 71, 219}, kShare{110, 100, 87};
    for (const bool clean : {false, true}) {
        for (const int screen_correct : {0, 1}) {
            StageControls controls{{123, screen_correct}};
            Span out(kCount), expected(kCount);
            std::vector<float> sparse;  // mostly 0
            for (std::size_t i = 0; i < kCount; ++i) sparse.push_back(i % 4 == 0 ? pre[i] : 0.0f);
            for (std::size_t role = 0; role < 3; ++role) {
                controls.block.set(75 + static_cast<int>(role), kBacking[role]);
                controls.block.set(173 + static_cast<int>(role), kShare[role]);
                for (std::size_t i = 0; i < kCount; ++i) {
                    const float m = fg.planes[3][i];
                    const double k = static_cast<double>(m) * static_cast<double>(1.0f / 255.0f);
                    const double veil =
                        clean ? static_cast<double>(plate.planes[role][i]) * k * (kShare[role] / 100.0)
                              : k * (kShare[role] / 100.0 * kBacking[role]);
                    float v = fg.planes[role][i], a = 255.0f;
                    if (m > 0.0f) {
                        v = static_cast<float>(static_cast<double>(v) - veil);
                        if (v < 0.0f) v = 0.0f;
                        if (v > 255.0f) v = 255.0f;
                        a = m > 255.0f ? 0.0f : 255.0f - m;
                    }
                    if (!(sparse[i] == 0.0f) && (clean || screen_correct != 0)) v = a = 0.0f;
                    expected.planes[role][i] = v;
                    expected.planes[3][i] = a;
                }
            }
            const VeilParams params = veil_params(controls.block);
            const VeilMattes mattes{fg.alpha(), sparse.data()};
            float* alpha = out.planes[3].data();
            if (clean) {
                unveil_clean_plate(params, fg.in(), plate.in(), mattes, out.out(), alpha, kCount);
            } else {
                unveil_constant(params, fg.in(), mattes, out.out(), alpha, kCount);
            }
            for (std::size_t c = 0; c < 4; ++c) {
                EXPECT_EQ(test::bits(out.planes[c]), test::bits(expected.planes[c])) << c << clean;
            }
        }
    }
}
