// The subject's colour: what is taken out of it as spill, and what stays.
#include <gtest/gtest.h>

#include <bit>
#include <limits>

#include "unmix/ColourFrame.h"
#include "unmix/Picture.h"
#include "unmix/SpillTable.h"

using namespace unmix;
using namespace test;

namespace {

// A disc of grey and of skin; its outer 30 pixels hold up to so much of the screen's light.
struct Spilled {
    static Colour own(int x) { return x < 150 ? kGrey : Colour{0.6f, 0.45f, 0.35f}; }

    explicit Spilled(float most)
        : alpha(300, 300), picture(300, 300, [&](int x, int y) {
              const float away = away_from(x, y, 150, 150);
              alpha(x, y) = away > 110.0f ? 0.0f : 1.0f;
              if (away > 110.0f) return kGreen;
              Colour c = own(x);
              for (std::size_t i = 0; i < 3; ++i)
                  c[i] += most * std::max(0.0f, (away - 80.0f) / 30.0f) * kGreen[i];
              return c;
          }) {
        picture.fit();
    }
    void unspill(float amount, Encoding encoding = Encoding::kStored) {
        const auto table = learn_spill(picture.backing, alpha, {0.05f, {}, {}}, backward_loop);
        const UnspillParams params{table.data(), {1, 0, 2}, picture.backing.colour, amount};
        colour_frame(picture.backing, alpha, params, encoding, colour, backward_loop);
    }

    Floats alpha;
    Picture picture;
    Colours colour;
};

TEST(Colour, WhatIsBrokenTeachesNothing) {
    Spilled s(0.15f);
    const auto table = learn_spill(s.picture.backing, s.alpha, {0.05f, {}, {}}, backward_loop);
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInf = std::numeric_limits<float>::infinity();
    const std::vector<Colour> broken{{kNan, 0.1f, 0.1f}, {0.1f, kNan, 0.1f}, {kInf, 0.1f, -kInf}};
    EXPECT_EQ(learn_spill(s.picture.backing, s.alpha, {0.05f, broken, {}}, backward_loop), table);
}

// A fifth of the spill may be left, or as much be taken beyond it.
TEST(Colour, SpillGoesAndTheSubjectsOwnStays) {
    for (const float most : {0.0f, 0.05f, 0.15f, 0.3f}) {
        Spilled s(most);
        s.unspill(1.0f);
        for (const int x : {44, 60, 90, 130, 170, 220, 240, 256}) {
            for (std::size_t c = 0; c < 3; ++c)
                EXPECT_NEAR(s.colour[c](x, 150), Spilled::own(x)[c], 0.012f + 0.2f * most * kGreen[c])
                    << most << ' ' << x << ' ' << c;
        }
        EXPECT_EQ(s.colour[1](5, 5), 0.0f);
    }
}

TEST(Colour, WithoutSuppressionOpaquePixelsKeepTheirBits) {
    Spilled s(0.2f);
    s.unspill(0.0f);
    for (std::size_t c = 0; c < 3; ++c) {
        for (std::size_t i = 0; i < s.alpha.size(); ++i) {
            const float plate = s.alpha[i] > 0.0f ? s.picture.backing.light[c][i] : 0.0f;
            ASSERT_EQ(std::bit_cast<std::uint32_t>(s.colour[c][i]), std::bit_cast<std::uint32_t>(plate));
        }
    }
}

TEST(Colour, HighlightsStayNeutralAndFinite) {
    for (const Encoding encoding : {Encoding::kStored, Encoding::kSrgb}) {
        Spilled s(0.1f);
        const float levels[] = {1.0f, 3.0f, 100.0f, 1000.0f, 65504.0f};
        for (int n = 0; n < 5; ++n) {
            for (Floats& plane : s.picture.backing.light) plane(100 + 20 * n, 150) = levels[n];
        }
        s.unspill(1.0f, encoding);
        for (int n = 0; n < 5; ++n) {
            const float bent = 1.055f * std::pow(levels[n], 1.0f / 2.4f) - 0.055f;
            const float stored = encoding == Encoding::kStored ? levels[n] : bent;
            for (const Floats& plane : s.colour)
                EXPECT_NEAR(plane(100 + 20 * n, 150), stored, 0.015f * stored) << levels[n];
        }
    }
}

}  // namespace
