// Rendering: every row once, edges, threads, abort.
#include "ZoImage/Render.h"

#include <gtest/gtest.h>

#include "support/Plane.h"
#include "support/Sums.h"

using namespace Zo::Image;
using namespace test;

namespace {

// The neighbourhood sum worked out from the pattern, with edge pixels repeated.
float expected_sum(const Box& box, int x, int y, int dx, int dy) {
    float sum = 0;
    for (int v = y - dy; v <= y + dy; ++v) {
        for (int u = x - dx; u <= x + dx; ++u) {
            sum += pattern(kAlpha, std::clamp(u, box.x, box.r - 1), std::clamp(v, box.y, box.t - 1));
        }
    }
    return sum;
}

TEST(Render, EdgesRepeatForAnyBoxRegionAndThreads) {
    const std::pair<Box, Box> frames[] = {{{0, 0, 1, 1}, {0, 0, 1, 1}},
                                          {{-5, 7, -4, 60}, {-5, 7, -4, 60}},
                                          {{3, -9, 40, -8}, {9, -9, 15, -8}},
                                          {{-17, -30, 46, 301}, {-17, -30, 46, 301}},
                                          {{-17, -30, 46, 301}, {5, 20, 18, 233}}};
    for (const auto& [box, region] : frames) {
        test::FunctionSource source(box, kMaskRgba, pattern);
        Sums sums("sums", {&source}, 2, 3);
        const Plane sums_expected(region, [&, b = box](int x, int y) { return expected_sum(b, x, y, 2, 3); });
        const Plane green(region, [](int x, int y) { return pattern(kGreen, x, y); });
        for (const int threads : {1, 2, 3, 8}) {
            const test::Picture picture = test::render(sums, region, threads);
            ASSERT_TRUE(picture.complete);
            ASSERT_EQ(picture.planes[kAlpha], sums_expected.values) << threads;
            ASSERT_EQ(picture.planes[kGreen], green.values) << threads;
        }
    }
}

TEST(Render, ComputesEachRowOnceWithinASeam) {
    const Box box{0, 0, 16, 1080};
    test::FunctionSource source(box, kMaskRgba, pattern);
    Sums a("a", {&source}, 1, 1);
    Sums b("b", {&a}, 1, 2);
    Sums c("c", {&source}, 0, 4);  // a second reader of the source, which nobody asks for
    Sums top("top", {&b}, 0, 1);
    for (const int threads : {1, 2}) {
        Renderer renderer(threads);
        ASSERT_TRUE(renderer.render(top, box, kMaskRgba, [](int, const Row&) {}));
        ASSERT_EQ(renderer.stats().size(), 4U);
        for (const OpStats& op : renderer.stats()) {
            EXPECT_LE(static_cast<double>(op.rows), threads == 1 ? 1080.0 : 1080.0 * 1.15)
                << op.op->context().node_name << " with " << threads;
        }
    }
    EXPECT_EQ(c.requested().count, 0);
}

TEST(Render, ChannelsNobodyHasReadAsZero) {
    test::FunctionSource source({0, 0, 9, 4}, kMaskRgb, pattern);
    const test::Picture picture = test::render(source);
    EXPECT_EQ(picture.at(kAlpha, 3, 2), 0.0f);
    EXPECT_EQ(picture.at(kBlue, 3, 2), pattern(kBlue, 3, 2));
    Row row(-4, 6);
    row.get(Iop::black(), 100, kMaskRgba);
    EXPECT_EQ(row[kRed][9], 0.0f);
}

TEST(Render, RowsSharePixelsUntilTheyAreWrittenTo) {
    test::FunctionSource source({0, 0, 64, 2}, kMaskRgba, pattern);
    Sums sums("sums", {&source}, 0, 1);
    test::FunctionSource alone({3, 0, 8, 2}, kMaskRgba, pattern);  // which nobody requests
    alone.validate(true);
    const auto expect_alone = [&](int y) {
        Row row(0, 10);
        row.get(alone, y, kMaskRgb);
        EXPECT_EQ(row[kRed][0], pattern(kRed, 3, y));
        EXPECT_EQ(row[kRed][9], pattern(kRed, 7, y));
    };
    expect_alone(0);
    Renderer(1).render(sums, {0, 0, 64, 2}, kMaskRgba, [&](int y, const Row& row) {
        Row from(0, 64);
        from.get(source, y, kMaskRgb);
        for (const Channel c : kMaskRgb) EXPECT_EQ(from[c], row[c]);
        Row beyond(60, 70);  // repeats the edge
        beyond.get(source, y, kMaskRgb);
        EXPECT_EQ(beyond[kRed][2], pattern(kRed, 62, y));
        EXPECT_EQ(beyond[kRed][9], pattern(kRed, 63, y));
        expect_alone(y);
        Row part(2, 6);
        part.share(from, kMaskRgb);
        part.writable(kRed)[1] = -1.0f;
        EXPECT_EQ(part[kRed][0], pattern(kRed, 2, y));
        EXPECT_EQ(part[kRed][1], -1.0f);
        EXPECT_EQ(from[kRed][3], pattern(kRed, 3, y));
    });
}

// Filters upon filters, each of which looks at many rows: what is asked for after the abort would be made
// once for every way that leads to it.
TEST(Render, NothingMoreIsMadeOnceAborted) {
    const Box box{0, 0, 16, 200};
    for (const int threads : {1, 2}) {
        AbortFlag abort;
        std::atomic<int> after{0};
        test::FunctionSource source(box, kMaskAlpha, [&](Channel c, int x, int y) {
            if (abort.raised()) ++after;
            if (x == 0 && y == 3) abort.raise();  // while the windows fill
            return pattern(c, x, y);
        });
        Sums a("a", {&source}, 0, 8);
        Sums b("b", {&a}, 0, 8);
        Sums c("c", {&b}, 0, 8);
        std::atomic<int> delivered{0};
        const auto sink = [&](int, const Row&) { delivered += abort.raised() ? 1 : 0; };
        EXPECT_FALSE(Renderer(threads, &abort).render(c, box, kMaskAlpha, sink));
        EXPECT_LE(after, 16 * threads);  // the row that each thread was at
        EXPECT_LT(delivered, threads);
    }
}

TEST(FetchRows, InsideTheFrameAndOutside) {
    const Box box{2, 3, 30, 50};
    test::FunctionSource source(box, kMaskRgba, pattern);
    Sums sums("sums", {&source}, 1, 1);
    const RowSource from{&sums, kMaskAlpha};
    int next = 0;
    EXPECT_TRUE(fetch_rows({&from, 1}, {0, 0, 10, 10}, nullptr, [&](std::size_t, int y, const Row& row) {
        EXPECT_EQ(y, next++);
        EXPECT_EQ(row.channels(), kMaskAlpha);
        // Beyond the box the nearest edge pixel repeats.
        EXPECT_EQ(row[kAlpha][0], expected_sum(box, 2, std::max(y, 3), 1, 1)) << y;
        EXPECT_EQ(row[kAlpha][4], expected_sum(box, 4, std::max(y, 3), 1, 1)) << y;
    }));
    EXPECT_EQ(next, 10);
}

}  // namespace
