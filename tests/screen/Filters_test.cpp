// The filters of the matte against naive loops.
#include <gtest/gtest.h>

#include "screen/VlxBlurCU.h"
#include "screen/VlxShadowBlur.h"
#include "screen/VlxShrink.h"
#include "screen/VlxShrinkCU.h"
#include "screen/VlxShrinkS.h"
#include "support/StageControls.h"

using namespace Zo::Image;
using namespace test;

namespace {

constexpr int kHuge = std::numeric_limits<int>::max();

// A window longer than twice the picture holds nothing but more edge pixels.
int enough(const Plane& in, int radius) {
    return std::min(radius, 2 * (in.box.width() + in.box.height()));
}

Plane naive_shrink(const Plane& in, int radius, int dx, int dy) {
    if (radius < 1) return in;
    return Plane(in.box, [&](int x, int y) {
        for (int k = -enough(in, radius); k <= enough(in, radius); ++k) {
            if (in.at(x + k * dx, y + k * dy) == 0.0f) return 0.0f;
        }
        return in.at(x, y);
    });
}

Plane naive_shrink_cu(const Plane& in, int tenths, int dx, int dy) {
    const float radius = static_cast<float>(tenths) / 10.0f;
    const int whole = static_cast<int>(radius);
    const int h = enough(in, whole + 1);
    if (h < 1) return in;
    return Plane(in.box, [&](int x, int y) {
        float result = 0.0f;
        for (int k = -h; k <= h; ++k) {
            const float weight = k == -h || k == h ? radius - static_cast<float>(whole) : 1.0f;
            const float v = weight * in.at(x + k * dx, y + k * dy);
            if (v > result) result = v;
        }
        return result;
    });
}

Plane naive_blur(const Plane& in, int radius, int dx, int dy) {
    if (radius < 1) return in;
    const float scale = 1.0f / static_cast<float>(2 * radius + 1);
    return Plane(in.box, [&](int x, int y) {
        float sum = 0.0f;
        for (int k = -radius; k <= radius; ++k) sum += in.at(x + k * dx, y + k * dy);
        return scale * sum;
    });
}

// Notes whether alpha of its input was there.
class Probe final : public Iop {
  public:
    explicit Probe(Iop& source) : Iop(NodeContext{}) {
        inputs(1);
        set_input(0, &source);
    }
    const char* class_name() const override { return "Probe"; }
    bool written = true;

  protected:
    void engine(int y, int, int, const ChannelSet& channels, Row& row) override {
        row.get(input(0), y, channels);
        written = row.channels().has(kAlpha);
    }
};

template <class Naive>
void expect_equal(VlxIop& op, const Plane& alpha, const Naive& naive, int h, int v) {
    const Plane expected = naive(naive(alpha, h, 1, 0), v, 0, 1);
    for (const int threads : {1, 2}) {
        test::FunctionSource source(alpha.box, kMaskRgba, test::pixels_of(alpha));
        op.set_input(0, &source);
        const test::Picture out = test::render(op, threads);
        EXPECT_EQ(test::bits(out.planes[kAlpha]), test::bits(expected.values)) << h << ' ' << v;
        EXPECT_EQ(out.at(kGreen, alpha.box.x, alpha.box.y), 2.0f);
        if (threads == 1) {
            EXPECT_EQ(source.rows(), alpha.box.height());
        }
    }
}

struct Radii {
    int h, v;
};

const std::vector<Box> kBoxes{{0, 0, 1, 1}, {-9, 4, 24, 15}, {7, -30, 60, 2}};

}  // namespace

TEST(Shrink, ErodesLikeTheNaiveLoop) {
    for (const Box& box : kBoxes) {
        for (const Radii& c : {Radii{2, 2}, Radii{0, 3}, Radii{5, 0}, Radii{0, -1}, Radii{1, 21},
                               Radii{kHuge, 1}, Radii{1, kHuge}, Radii{-kHuge - 1, 1}}) {
            StageControls controls{{8, c.v}, {40, c.h}};
            controls.block.subjectShrinkV = c.h;
            controls.block.overlayShrinkV = c.v;
            const Plane matte = test::awkward_plane(box, 5);
            VlxShrinkS subject(NodeContext{}, &controls.block);
            expect_equal(subject, matte, naive_shrink, c.v, c.h);
            for (const unsigned mode : {0U, 1U}) {
                VlxShrink screen(NodeContext{}, &controls.block, mode);
                const auto enlarged = [mode](int r) { return r == kHuge ? r : r + static_cast<int>(mode); };
                expect_equal(screen, matte, naive_shrink, enlarged(c.h), enlarged(c.v));
            }
        }
    }
}

TEST(ShrinkCU, EqualsTheNaiveMaximum) {
    for (const Box& box : kBoxes) {
        for (const Radii& c :
             {Radii{0, 0}, Radii{15, 23}, Radii{10, 5}, Radii{1, 99}, Radii{-3, 7}, Radii{-10, 4},
              Radii{30, -25}, Radii{-10, -10}, Radii{7, kHuge}, Radii{kHuge, 3}}) {
            const StageControls controls{{55, c.h}, {56, c.v}};
            VlxShrinkCU op(NodeContext{}, &controls.block);
            expect_equal(op, test::awkward_plane(box, 9), naive_shrink_cu, c.h, c.v);
        }
    }
}

TEST(Blur, EqualsTheDirectSumBitForBit) {
    const std::pair<Radii, Box> cases[] = {{{1, 1}, {0, 0, 1, 1}},      {{0, 3}, {5, -20, 22, 3}},
                                           {{4, 0}, {5, -20, 22, 3}},   {{50, 40}, {100, 7, 133, 25}},
                                           {{3, 70}, {0, 0, 1100, 20}}, {{-2, 1}, {-1, -1, 8, 8}}};
    for (const auto& [c, box] : cases) {
        const StageControls controls{{57, c.h}, {58, c.v}, {68, c.v}, {69, c.h}};
        VlxBlurCU op(NodeContext{}, &controls.block);
        expect_equal(op, test::awkward_plane(box, 1), naive_blur, c.h, c.v);
        VlxShadowBlur shadow(NodeContext{}, &controls.block);
        expect_equal(shadow, test::awkward_plane(box, 1), naive_blur, c.v, c.h);
    }
}

TEST(Blur, AbsurdRadiiCountAsTheLargest) {
    VlxBlurH pass(NodeContext{});
    EXPECT_EQ(pass.set_radius(2), 5);
    EXPECT_EQ(pass.scale(), 0.2f);
    EXPECT_EQ(pass.set_radius(kHuge), 2 * 4096 + 1);
    EXPECT_LT(pass.set_radius(-kHuge - 1), 0);
    test::FunctionSource source({0, 0, 9, 9}, kMaskRgba, [](Channel, int, int) { return 0.5f; });
    const StageControls controls{{57, kHuge}, {58, kHuge}};
    VlxBlurCU filter(NodeContext{}, &controls.block);
    filter.set_input(0, &source);
    EXPECT_NEAR(test::render(filter).at(kAlpha, 4, 4), 0.5f, 1e-4f);
}

TEST(Blur, AbortedVerticalPassWritesNothing) {
    const StageControls controls{{58, 1}};
    for (const bool aborted : {true, false}) {
        AbortFlag abort;
        test::FunctionSource source({0, 0, 4, 4}, kMaskRgba, [&](Channel, int, int) {
            if (aborted) abort.raise();
            return 1.0f;
        });
        VlxBlurCU filter(NodeContext{}, &controls.block);
        filter.set_input(0, &source);
        Probe probe(filter);
        const auto ignore = [](int, const Row&) {};
        EXPECT_EQ(Renderer(1, &abort).render(probe, {0, 0, 4, 4}, kMaskAlpha, ignore), !aborted);
        EXPECT_EQ(probe.written, !aborted);
    }
}
