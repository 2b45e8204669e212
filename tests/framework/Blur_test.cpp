#include "framework/VlxBlur.h"

#include <gtest/gtest.h>

#include "framework/VlxFilter_t.h"
#include "support/Plane.h"

using namespace Zo::Image;
using test::Plane;

namespace {

class Blur final : public VlxFilter_t<VlxBlurH, VlxBlurV> {
  public:
    Blur(int h, int v) : VlxFilter_t({}, nullptr, {"Blur", {{kMaskAlpha}}, {}}), h_(h), v_(v) {}
    void configure() override {
        horizontal().set_radius(h_);
        vertical().set_radius(v_);
    }

  private:
    int h_, v_;
};

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

Plane naive(const Plane& in, int radius, int dx, int dy) {
    if (radius < 1) return in;
    const float scale = 1.0f / static_cast<float>(2 * radius + 1);
    return Plane(in.box, [&](int x, int y) {
        float sum = 0.0f;
        for (int k = -radius; k <= radius; ++k) sum += in.at(x + k * dx, y + k * dy);
        return scale * sum;
    });
}

}  // namespace

TEST(Blur, EqualsTheDirectSumBitForBit) {
    struct Case {
        int h, v;
        Box box;
    };
    for (const Case& c :
         {Case{1, 1, {0, 0, 1, 1}}, Case{0, 3, {5, -20, 22, 3}}, Case{4, 0, {5, -20, 22, 3}},
          Case{50, 40, {100, 7, 133, 25}}, Case{3, 70, {0, 0, 1100, 20}}, Case{-2, 1, {-1, -1, 8, 8}}}) {
        const Plane alpha = test::awkward_plane(c.box, 1);
        const Plane expected = naive(naive(alpha, c.h, 1, 0), c.v, 0, 1);
        for (const int threads : {1, 2}) {
            test::FunctionSource source(c.box, kMaskRgba, test::pixels_of(alpha));
            Blur filter(c.h, c.v);
            filter.set_input(0, &source);
            const test::Picture out = test::render(filter, threads);
            EXPECT_EQ(test::bits(out.planes[kAlpha]), test::bits(expected.values)) << c.h << ' ' << c.v;
        }
    }
}

TEST(Blur, AbsurdRadiiCountAsTheLargest) {
    constexpr int kHuge = std::numeric_limits<int>::max();
    VlxBlurH pass(NodeContext{});
    EXPECT_EQ(pass.set_radius(2), 5);
    EXPECT_EQ(pass.scale(), 0.2f);
    EXPECT_EQ(pass.set_radius(kHuge), 2 * 4096 + 1);
    EXPECT_LT(pass.set_radius(-kHuge - 1), 0);
    test::FunctionSource source({0, 0, 9, 9}, kMaskRgba, [](Channel, int, int) { return 0.5f; });
    Blur filter(kHuge, kHuge);
    filter.set_input(0, &source);
    EXPECT_NEAR(test::render(filter).at(kAlpha, 4, 4), 0.5f, 1e-4f);
}

TEST(Blur, AbortedVerticalPassWritesNothing) {
    for (const bool aborted : {true, false}) {
        AbortFlag abort;
        test::FunctionSource source({0, 0, 4, 4}, kMaskRgba, [&](Channel, int, int) {
            if (aborted) abort.raise();
            return 1.0f;
        });
        Blur filter(0, 1);
        filter.set_input(0, &source);
        Probe probe(filter);
        const auto ignore = [](int, const Row&) {};
        EXPECT_EQ(Renderer(1, &abort).render(probe, {0, 0, 4, 4}, kMaskAlpha, ignore), !aborted);
        EXPECT_EQ(probe.written, !aborted);
    }
}
