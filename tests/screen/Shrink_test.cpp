#include "screen/VlxShrink.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

#include "screen/SlidingMax.h"
#include "screen/VlxBlurCU.h"
#include "screen/VlxShadowBlur.h"
#include "screen/VlxShrinkCU.h"
#include "screen/VlxShrinkS.h"
#include "support/Plane.h"

using namespace Zo::Image;
using test::Plane;

namespace {

constexpr int kHuge = std::numeric_limits<int>::max();

struct Controls {
    std::vector<std::int32_t> values = std::vector<std::int32_t>(ControlBlock::kCount);
    ControlBlock block{values.data(), 1};
};

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
    std::vector<float> weights(static_cast<std::size_t>(2 * h + 1), 1.0f);
    weights.front() = weights.back() = radius - static_cast<float>(whole);
    return Plane(in.box, [&](int x, int y) {
        float result = 0.0f;
        for (int k = -h; k <= h; ++k) {
            const float v = weights[static_cast<std::size_t>(k + h)] * in.at(x + k * dx, y + k * dy);
            if (v > result) result = v;
        }
        return result;
    });
}

template <class Operator, class Naive>
void expect_equal(Operator& op, const Plane& alpha, const Naive& naive, int h, int v) {
    const Plane expected = naive(naive(alpha, h, 1, 0), v, 0, 1);
    for (const int threads : {1, 2}) {
        test::FunctionSource source(alpha.box, kMaskRgba, test::pixels_of(alpha));
        op.set_input(0, &source);
        op.setup();
        const test::Picture out = test::render(op, threads);
        EXPECT_EQ(out.box, alpha.box);
        if (threads == 1) {
            EXPECT_EQ(source.rows(), alpha.box.height());
        }
        EXPECT_EQ(test::bits(out.planes[kAlpha]), test::bits(expected.values)) << h << ' ' << v;
        EXPECT_EQ(out.at(kGreen, alpha.box.x, alpha.box.y), 2.0f + 0.01f * static_cast<float>(alpha.box.x));
    }
}

const std::vector<Box> kBoxes{{0, 0, 1, 1}, {-9, 4, 24, 15}, {7, -30, 60, 2}};

// Mostly 255 with a few zeros, as the mattes are, and the awkward values besides.
Plane matte_plane(const Box& box) {
    const Plane awkward = test::awkward_plane(box, 5);
    return Plane(box, [&](int x, int y) {
        if (x == box.x + 20 && y == box.y + 5) return 0.0f;
        const float v = awkward.at(x, y);
        return v == 0.0f && (x + y) % 5 != 0 ? 255.0f : v;
    });
}

}  // namespace

TEST(SlidingMax, EqualsTheLargestOfEachWindow) {
    const std::vector<float> in{3, 1, 4, 1, 5, 9, 2, 6, 5, 3, 5, 8, 9, 7, 9, 3, 2, 3, 8, 4, 6};
    for (std::size_t window = 1; window <= in.size(); ++window) {
        std::vector<float> out = in;
        sliding_max(out.data(), out.size(), window);
        for (std::size_t i = 0; i + window <= in.size(); ++i) {
            const auto begin = in.begin() + static_cast<std::ptrdiff_t>(i);
            EXPECT_EQ(out[i], *std::max_element(begin, begin + static_cast<std::ptrdiff_t>(window)));
        }
    }
}

TEST(Shrink, ErodesLikeTheNaiveLoop) {
    struct Case {
        int h, v;
    };
    for (const Box& box : kBoxes) {
        for (const Case& c : {Case{2, 2}, Case{0, 3}, Case{5, 0}, Case{-1, -7}, Case{1, 21}, Case{kHuge, 1},
                              Case{1, kHuge}, Case{std::numeric_limits<int>::min(), 1}}) {
            Controls controls;
            controls.block.set(controls::kShrinkSubjectOverlay, c.h);
            controls.block.subjectShrinkV = c.v;
            VlxShrinkS op(NodeContext{}, &controls.block);
            expect_equal(op, matte_plane(box), naive_shrink, c.h, c.v);
        }
    }
}

TEST(Shrink, ModeEnlargesBothRadii) {
    const Plane matte = matte_plane({0, 0, 33, 21});
    for (const int size : {0, 1, 3}) {
        for (const unsigned mode : {0U, 1U}) {
            Controls controls;
            controls.block.set(controls::kScreenOverlayShrink, size);
            controls.block.overlayShrinkV = size + 2;
            VlxShrink op(NodeContext{}, &controls.block, mode);
            const int more = static_cast<int>(mode);
            expect_equal(op, matte, naive_shrink, size + more, size + 2 + more);
        }
    }
    Controls controls;
    controls.block.set(controls::kScreenOverlayShrink, kHuge);
    controls.block.overlayShrinkV = kHuge;
    VlxShrink op(NodeContext{}, &controls.block, 1);
    expect_equal(op, matte, naive_shrink, kHuge, kHuge);
}

// Radius 1.5 weighs five values 0.5, 1, 1, 1, 0.5.
TEST(ShrinkCU, WeighsTheEndsWithTheFraction) {
    Controls controls;
    controls.block.set(controls::kCleanUpShrink, 15);
    controls.block.set(controls::kCUShrinkV, -10);
    VlxShrinkCU op(NodeContext{}, &controls.block);
    test::FunctionSource source({0, 0, 9, 1}, kMaskRgba,
                                [](Channel, int x, int) { return x == 4 ? 200.0f : -40.0f; });
    op.set_input(0, &source);
    const test::Picture out = test::render(op);
    EXPECT_EQ(out.planes[kAlpha], (std::vector<float>{0, 0, 100, 200, 200, 200, 100, 0, 0}));
}

TEST(ShrinkCU, EqualsTheNaiveMaximum) {
    struct Case {
        int h, v;
    };
    for (const Box& box : kBoxes) {
        for (const Case& c : {Case{0, 0}, Case{15, 23}, Case{10, 5}, Case{1, 99}, Case{-3, 7}, Case{-10, 4},
                              Case{30, -25}, Case{-10, -10}, Case{1234567, 3}, Case{7, kHuge}}) {
            Controls controls;
            controls.block.set(controls::kCleanUpShrink, c.h);
            controls.block.set(controls::kCUShrinkV, c.v);
            VlxShrinkCU op(NodeContext{}, &controls.block);
            expect_equal(op, test::awkward_plane(box, 9), naive_shrink_cu, c.h, c.v);
        }
    }
}

// Which values an operator takes as its radii, and that its hash follows exactly these.
TEST(ScreenFilters, ReadAndHashTheirControls) {
    struct Case {
        const char* name;
        std::function<std::unique_ptr<VlxIop>(const ControlBlock*)> make;
        int h, v;  // controls; a vertical one below 0 is a value beside them
    };
    const NodeContext context;
    const std::vector<Case> cases{
        {"VlxShrink", [&](auto* b) { return std::make_unique<VlxShrink>(context, b, 0U); }, 40, -1},
        {"VlxShrinkS", [&](auto* b) { return std::make_unique<VlxShrinkS>(context, b); }, 8, -2},
        {"VlxShrinkCU", [&](auto* b) { return std::make_unique<VlxShrinkCU>(context, b); }, 55, 56},
        {"VlxBlurCU", [&](auto* b) { return std::make_unique<VlxBlurCU>(context, b); }, 57, 58},
        {"VlxShadowBlur", [&](auto* b) { return std::make_unique<VlxShadowBlur>(context, b); }, 68, 69},
    };
    for (const Case& c : cases) {
        Controls controls;
        const auto op = c.make(&controls.block);
        test::FunctionSource source({0, 0, 40, 40}, kMaskRgba, [](Channel, int, int) { return 1.0f; });
        op->set_input(0, &source);
        EXPECT_STREQ(op->class_name(), c.name);
        EXPECT_STREQ(op->help_text(), "Veloxa Internal Operator.");
        for (int i = -2; i < ControlBlock::kCount; ++i) {
            op->setup();
            const Hash before = op->hash();
            std::int32_t& value = i == -1   ? controls.block.overlayShrinkV
                                  : i == -2 ? controls.block.subjectShrinkV
                                            : controls.values[static_cast<std::size_t>(i)];
            value += 100;
            op->setup();
            EXPECT_EQ(op->hash() != before, i == c.h || i == c.v) << c.name << ' ' << i;
            value -= 100;
        }
        // Radii of 7 and 3 pixels ask for that much around a pixel.
        const int unit = c.h == 55 ? 10 : 1;
        const int vertical = c.h == 55 ? 20 : 3;  // the clean-up shrink's window is 1 wider than its radius
        controls.block.set(c.h, c.h == 55 ? 60 : 7 * unit);
        if (c.v >= 0) controls.block.set(c.v, vertical);
        controls.block.overlayShrinkV = controls.block.subjectShrinkV = vertical;
        op->setup();
        op->request(20, 20, 21, 21, kMaskAlpha, 1);
        EXPECT_EQ(source.requested().box, (Box{13, 17, 28, 24})) << c.name;
    }
}
