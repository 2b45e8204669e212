// The protocol of whole-frame operators, on one that adds 1000 to red and green.
#include "framework/VlxFilter.h"

#include <gtest/gtest.h>

#include <thread>

#include "ZoImage/GeneralTile.h"
#include "support/StageControls.h"

using namespace Zo::Image;

namespace {

constexpr Box kBox{-7, 5, 93, 65};
constexpr ChannelSet kOwn = ChannelSet(kRed) + kGreen;

float pixel(Channel c, int x, int y) {
    return static_cast<float>(c * 100000 + y * 100 + x);
}

class AddThousand final : public VlxFilter {
  public:
    explicit AddThousand(const ControlBlock* controls)
        : VlxFilter({}, controls, {"AddThousand", {{kOwn}}, {}}, kOwn) {}

    bool active = true;
    int failures = 0;            // computations that fail before one succeeds
    AbortFlag* raise = nullptr;  // raised in the middle of a computation
    std::atomic<int> computed{0};
    int pieces = 0;
    int ends = 0;

  protected:
    bool is_active() const override { return active; }
    bool compute_frame(Lock& lock) override {
        ++computed;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        if (failures > 0) return --failures, false;
        const Box& box = info().box;
        const auto columns = static_cast<std::size_t>(box.width());
        for (const Channel c : kOwn) frame(c).resize(columns * static_cast<std::size_t>(box.height()));
        const auto keep = [&](std::size_t, int y, const Row& row) {
            for (const Channel c : kOwn)
                std::copy_n(row[c], columns, frame(c).data() + static_cast<std::size_t>(y - box.y) * columns);
        };
        const RowSource from{&input(0), kOwn};
        if (!fetch_rows({&from, 1}, box, &lock, keep)) return false;
        return run_kernel(*this, lock, [&](const ParallelLoop& loop) {
            const int width = info().box.width();
            loop(0, info().box.height(), raise != nullptr ? 1000 : 1, [&](int begin, int end) {
                for (const Channel c : kOwn) {
                    for (int i = begin * width; i < end * width; ++i)
                        frame(c)[static_cast<std::size_t>(i)] += 1000.0f;
                }
                if (raise != nullptr) raise->raise();
            });
            loop(0, 1, 1, [&](int, int) { ++pieces; });
            ++ends;
        });
    }
};

class VlxFilterTest : public testing::Test {
  protected:
    VlxFilterTest() { op.set_input(0, &source); }

    // Every pixel, with own channels raised by `added`.
    void expect_rendered(float added, int threads, ChannelSet channels = kMaskRgba) {
        const test::Picture picture = test::render(op, kBox, threads, channels);
        ASSERT_TRUE(picture.complete);
        for (const Channel c : channels) {
            const float more = kOwn.has(c) ? added : 0.0f;
            const test::Plane expected(kBox, [&](int x, int y) { return pixel(c, x, y) + more; });
            ASSERT_EQ(picture.planes[c], expected.values) << c;
        }
    }

    test::StageControls controls;
    test::FunctionSource source{kBox, kMaskRgba, pixel};
    AddThousand op{&controls.block};
};

TEST_F(VlxFilterTest, ComputesOnceForAllThreadsAndRenders) {
    expect_rendered(1000.0f, 3);
    EXPECT_EQ(op.held_bytes(), 2U * 100 * 60 * sizeof(float));
    const int rows = source.rows();
    expect_rendered(1000.0f, 2, kOwn);
    EXPECT_EQ(op.computed, 1);
    EXPECT_EQ(source.rows(), rows) << "served from the frame alone";
    op.invalidate();
    expect_rendered(1000.0f, 1);
    EXPECT_EQ(op.computed, 2);
    op.close();
    expect_rendered(1000.0f, 1);
    EXPECT_EQ(op.computed, 3);
}

TEST_F(VlxFilterTest, FailureLeavesTheRowUnwrittenAndIsRetried) {
    op.failures = 1;
    op.request(kBox.x, kBox.y, kBox.r, kBox.t, kMaskRgba, 1);
    Row row(kBox.x, kBox.r);
    op.get(kBox.y, kBox.x, kBox.r, kMaskRgba, row);
    EXPECT_TRUE(row.channels().empty());
    expect_rendered(1000.0f, 2);
    EXPECT_EQ(op.computed, 2);
}

TEST_F(VlxFilterTest, AbortLeavesPiecesOutAndNothingIsKept) {
    AbortFlag abort;
    op.raise = &abort;
    Renderer renderer(1, &abort);
    const auto sink = [](int, const Row&) { FAIL() << "a row of an aborted render"; };
    EXPECT_FALSE(renderer.render(op, kBox, kMaskRgba, sink));
    EXPECT_EQ(op.pieces, 0);
    EXPECT_EQ(op.ends, 0) << "a kernel went on without what a piece was to make";
    op.raise = nullptr;
    expect_rendered(1000.0f, 1);
    EXPECT_EQ(op.computed, 2);
    const int rows = source.rows();
    EXPECT_FALSE(renderer.render(op, kBox, kMaskRgba, sink));  // the flag is still up
    EXPECT_EQ(source.rows(), rows);
}

TEST_F(VlxFilterTest, InactivePassesThroughAndAsksForTheAskedAreaAlone) {
    op.active = false;
    op.request(3, 10, 9, 12, kMaskRgba, 1);
    EXPECT_EQ(source.requested().box, (Box{3, 10, 9, 12}));
    expect_rendered(0.0f, 2);
    EXPECT_EQ(op.computed, 0);
}

TEST_F(VlxFilterTest, ActiveAsksForTheWholeBoxAndItsOwnChannels) {
    op.request(3, 10, 9, 12, kMaskAlpha, 1);
    EXPECT_EQ(source.requested().box, kBox);
    EXPECT_EQ(source.requested().channels, kOwn + kAlpha);
}

TEST_F(VlxFilterTest, OtherChannelsDoNotCompute) {
    expect_rendered(1000.0f, 2, ChannelSet(kBlue) + kAlpha);
    EXPECT_EQ(op.computed, 0);
}

}  // namespace
