#include <gtest/gtest.h>

#include <string>

#include "framework/VlxBlur.h"
#include "framework/VlxFilter_t.h"
#include "support/Plane.h"

using namespace Zo::Image;

namespace {

constexpr int kHuge = std::numeric_limits<int>::max();
constexpr int kNegativeHuge = std::numeric_limits<int>::min();

// Marks alpha with what ran: a pass adds its weight and its radius to what it reads.
template <bool kHorizontal>
class MarkPass final : public VlxBaseFilter {
  public:
    using VlxBaseFilter::VlxBaseFilter;
    bool horizontal() const override { return kHorizontal; }

  protected:
    void engine(int y, int, int, const ChannelSet& channels, Row& row) override {
        row.get(input(0), y, channels);
        float* alpha = row.writable(kAlpha);
        const float mark = (kHorizontal ? 100.0f : 1000.0f) + static_cast<float>(radius());
        for (std::size_t i = 0; i < row.width(); ++i) alpha[i] = alpha[i] * 2.0f + mark;
    }
};

class MarkFilter final : public VlxFilter_t<MarkPass<true>, MarkPass<false>> {
  public:
    MarkFilter(int h, int v) : VlxFilter_t(NodeContext{}, nullptr), h_(h), v_(v) {}
    const char* class_name() const override { return "MarkFilter"; }
    void setup() override {}
    void configure() override {
        horizontal().set_radius(h_);
        vertical().set_radius(v_);
    }

  private:
    int h_, v_;
};

constexpr Box kBox{-3, 5, 6, 9};
const test::Plane kAlphaPlane(kBox, [](int x, int y) { return static_cast<float>(x + 10 * y); });

}  // namespace

TEST(BaseFilter, GrowsItsBoxAlongItsDirectionOnly) {
    struct Case {
        int radius;
        Box horizontal, vertical;
    };
    constexpr int kFar = (1 << 30) - 1;
    for (const Case& c :
         {Case{2, {-5, 5, 8, 9}, {-3, 3, 6, 11}}, Case{0, kBox, kBox}, Case{-4, kBox, kBox},
          Case{kHuge, {-kFar, 5, kFar, 9}, {-3, -kFar, 6, kFar}}, Case{kNegativeHuge, kBox, kBox}}) {
        test::FunctionSource source(kBox, kMaskRgba, test::pixels_of(kAlphaPlane));
        MarkPass<true> h(NodeContext{});
        MarkPass<false> v(NodeContext{});
        for (VlxBaseFilter* pass : std::initializer_list<VlxBaseFilter*>{&h, &v}) {
            pass->set_input(0, &source);
            pass->set_radius(c.radius);
            pass->request(0, 6, 2, 7, kMaskAlpha, 1);
            EXPECT_EQ(pass->info().box, pass->horizontal() ? c.horizontal : c.vertical) << c.radius;
            EXPECT_EQ(pass->out_channels(), c.radius > 0 ? kMaskAll : kMaskNone) << c.radius;
        }
        // What the two asked for: 0, 6, 2, 7 grown sideways by one, upright by the other.
        const Box& asked = source.requested().box;
        const Box expected = c.radius == 2       ? Box{-2, 4, 4, 9}
                             : c.radius == kHuge ? Box{-kFar, -kFar, kFar, kFar}
                                                 : Box{0, 6, 2, 7};
        EXPECT_EQ(asked, expected) << c.radius;
    }
}

TEST(BaseFilter, NothingGrowsToNothing) {
    MarkPass<true> h(NodeContext{});
    MarkPass<false> v(NodeContext{});
    h.set_radius(2);
    v.set_radius(2);
    v.set_input(0, &h);
    v.validate(true);
    EXPECT_TRUE(v.info().box.empty());
}

TEST(BaseFilter, NamesItsRunTimeType) {
    MarkPass<true> pass(NodeContext{});
    EXPECT_EQ(std::string(pass.class_name()), typeid(MarkPass<true>).name());
    EXPECT_STREQ(pass.help_text(), "blur internal operator");
}

TEST(Filter, SkipsPassesWithoutRadius) {
    struct Case {
        int h, v;
        float gain, offset;  // alpha out = gain * alpha in + offset
    };
    for (const Case& c :
         {Case{0, 0, 1, 0}, Case{-7, 0, 1, 0}, Case{kNegativeHuge, -1, 1, 0}, Case{2, 0, 2, 102},
          Case{2, -1, 2, 102}, Case{0, 3, 2, 1003}, Case{1, 4, 4, 2 * 101 + 1004}}) {
        test::FunctionSource source(kBox, kMaskRgba, test::pixels_of(kAlphaPlane));
        MarkFilter filter(c.h, c.v);
        filter.set_input(0, &source);
        const test::Picture out = test::render(filter);
        EXPECT_EQ(out.box, kBox);
        EXPECT_EQ(filter.out_channels(), c.gain == 1 ? kMaskNone : kMaskAll);
        for (int y = kBox.y; y < kBox.t; ++y) {
            for (int x = kBox.x; x < kBox.r; ++x) {
                ASSERT_EQ(out.at(kAlpha, x, y), c.gain * kAlphaPlane.at(x, y) + c.offset)
                    << c.h << ' ' << c.v;
                ASSERT_EQ(out.at(kBlue, x, y), 3.0f + 0.01f * static_cast<float>(x));
            }
        }
    }
}

TEST(Filter, FollowsItsInput) {
    test::FunctionSource first(kBox, kMaskRgba, test::pixels_of(kAlphaPlane));
    test::FunctionSource second({0, 0, 4, 2}, kMaskRgba, [](Channel, int, int) { return 7.0f; });
    MarkFilter filter(1, 1);
    filter.set_input(0, &first);
    test::render(filter);
    filter.set_input(0, &second);
    const test::Picture out = test::render(filter);
    EXPECT_EQ(out.box, (Box{0, 0, 4, 2}));
    EXPECT_EQ(out.at(kAlpha, 3, 1), (7.0f * 2 + 101) * 2 + 1001);
    second.set_pixel([](Channel, int, int) { return 8.0f; });
    EXPECT_EQ(test::render(filter).at(kAlpha, 0, 0), (8.0f * 2 + 101) * 2 + 1001);
    filter.set_input(0, nullptr);
    EXPECT_EQ(test::render(filter, {0, 0, 1, 1}).at(kAlpha, 0, 0), 0.0f);
}

TEST(Filter, ClosesItsPassesWithItsLastUser) {
    test::FunctionSource source(kBox, kMaskRgba, test::pixels_of(kAlphaPlane));
    MarkFilter filter(1, 1);
    filter.set_input(0, &source);
    filter.open();
    filter.open();
    test::render(filter);
    const Op* vertical = filter.child("vertical");
    ASSERT_NE(vertical, nullptr);
    ASSERT_NE(filter.child("horizontal"), nullptr);
    filter.close();
    EXPECT_TRUE(vertical->valid());
    filter.close();
    EXPECT_FALSE(vertical->valid());
    EXPECT_FALSE(filter.child("horizontal")->valid());
}
