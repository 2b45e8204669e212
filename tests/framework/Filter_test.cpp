#include <gtest/gtest.h>

#include "framework/VlxFilter_t.h"
#include "support/Plane.h"

using namespace Zo::Image;

namespace {

constexpr int kHuge = std::numeric_limits<int>::max();
constexpr int kFar = (1 << 30) - 1;  // the farthest coordinate that a pass grows to

// Marks alpha with what ran: twice what it reads, plus a number of its own, plus its radius.
template <bool kHorizontal>
class MarkPass final : public VlxBaseFilter {
  public:
    MarkPass() : VlxBaseFilter(NodeContext{}) {}
    explicit MarkPass(const NodeContext& context) : VlxBaseFilter(context) {}
    bool horizontal() const override { return kHorizontal; }

  protected:
    void engine(int y, int, int, const ChannelSet& channels, Row& row) override {
        row.get(input(0), y, channels);
        float* alpha = row.writable(kAlpha);
        const auto mark = static_cast<float>((kHorizontal ? 100 : 1000) + radius());
        for (std::size_t i = 0; i < row.width(); ++i) alpha[i] = alpha[i] * 2.0f + mark;
    }
};

class MarkFilter final : public VlxFilter_t<MarkPass<true>, MarkPass<false>> {
  public:
    MarkFilter(int h, int v) : VlxFilter_t({}, nullptr, {"MarkFilter", {{kMaskAlpha}}, {}}), h_(h), v_(v) {}
    void configure() override {
        horizontal().set_radius(h_);
        vertical().set_radius(v_);
    }

  private:
    int h_, v_;
};

constexpr Box kBox{-3, 5, 6, 9};

test::FunctionSource constant(const Box& box, float v) {
    return {box, kMaskRgba, [v](Channel c, int, int) { return c == kAlpha ? v : 3.0f; }};
}

}  // namespace

TEST(BaseFilter, GrowsBoxAndRequestAlongItsDirectionOnly) {
    struct Case {
        int radius;
        Box horizontal, vertical, requested;
    };
    for (const Case& c :
         {Case{2, {-5, 5, 8, 9}, {-3, 3, 6, 11}, {-2, 4, 4, 9}}, Case{-4, kBox, kBox, {0, 6, 2, 7}},
          Case{kHuge, {-kFar, 5, kFar, 9}, {-3, -kFar, 6, kFar}, {-3, -kFar, 6, kFar}},
          Case{-kHuge - 1, kBox, kBox, {0, 6, 2, 7}}}) {
        test::FunctionSource source = constant(kBox, 1);
        MarkPass<true> h;
        MarkPass<false> v;
        for (VlxBaseFilter* pass : std::initializer_list<VlxBaseFilter*>{&h, &v}) {
            pass->set_input(0, &source);
            pass->set_radius(c.radius);
            pass->request(0, 6, 2, 7, kMaskAlpha, 1);
            EXPECT_EQ(pass->info().box, pass->horizontal() ? c.horizontal : c.vertical) << c.radius;
            EXPECT_EQ(pass->out_channels(), c.radius > 0 ? kMaskAll : kMaskNone) << c.radius;
        }
        EXPECT_EQ(source.requested().box, c.requested) << c.radius;
        h.set_input(0, nullptr);
        v.set_input(0, &h);
        v.validate(true);
        EXPECT_TRUE(v.info().box.empty()) << "nothing grows to nothing";
        EXPECT_STREQ(v.class_name(), typeid(MarkPass<false>).name());
    }
}

TEST(Filter, SkipsPassesWithoutRadiusAndFollowsItsInput) {
    struct Case {
        int h, v;
        float gain, offset;
    };
    for (const Case& c : {Case{0, 0, 1, 0}, Case{-7, -kHuge, 1, 0}, Case{2, -1, 2, 102}, Case{0, 3, 2, 1003},
                          Case{1, 4, 4, 2 * 101 + 1004}}) {
        MarkFilter filter(c.h, c.v);
        float value = 10;
        for (const Box& box : {kBox, Box{0, 0, 2, 1}}) {
            test::FunctionSource source = constant(box, value);
            filter.set_input(0, &source);
            const test::Picture out = test::render(filter);
            EXPECT_EQ(out.box, box);
            EXPECT_EQ(filter.out_channels(), c.gain == 1 ? kMaskNone : kMaskAll);
            EXPECT_EQ(out.at(kAlpha, box.r - 1, box.y), c.gain * value + c.offset) << c.h << ' ' << c.v;
            EXPECT_EQ(out.at(kBlue, box.x, box.t - 1), 3.0f);
            value += 1;
        }
    }
}

TEST(Filter, ClosesItsPassesWithItsLastUser) {
    test::FunctionSource source = constant(kBox, 1);
    MarkFilter filter(1, 1);
    filter.set_input(0, &source);
    filter.open();
    filter.open();
    test::render(filter);
    for (const bool open : {true, false}) {
        filter.close();
        for (const char* name : {"horizontal", "vertical"}) EXPECT_EQ(filter.child(name)->valid(), open);
    }
}
