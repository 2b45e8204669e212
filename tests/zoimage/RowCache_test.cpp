// Rows kept between renders: what is computed again after a change, budgets, aborts, threads.
#include "ZoImage/RowCache.h"

#include <gtest/gtest.h>

#include <random>

#include "support/Sums.h"

using namespace Zo::Image;
using namespace test;

namespace {

// source -> a -> b -> root and source, a -> c -> root
struct Graph {
    Sums& op(char name) { return name == 'a' ? a : name == 'b' ? b : name == 'c' ? c : root; }

    Box box{-3, 2, 30, 203};
    FunctionSource source{box, kMaskRgba, pattern};
    Sums a{"a", {&source}, 0, 1};
    Sums b{"b", {&a}, 0, 1};
    Sums c{"c", {&source, &a}, 0, 1};
    Sums root{"r", {&b, &c}, 0, 1};
};

// A renderer with a cache, and what it computed last: one letter an operator, s for the source.
struct Cached {
    explicit Cached(std::size_t bytes, int threads = 2, AbortFlag* abort = nullptr)
        : budget(bytes), cache(budget), renderer(threads, abort) {
        renderer.use_cache(&cache);
    }
    test::Picture render(Graph& graph, const Box& region) {
        test::Picture picture = test::render(renderer, graph.root, region);
        EXPECT_LE(cache.bytes(), budget);
        computed.clear();
        rows = 0;
        for (const OpStats& op : renderer.stats()) {
            if (op.rows == 0) continue;
            computed += op.op == &graph.source ? "s" : op.op->context().node_name;
            rows += op.rows;
        }
        std::sort(computed.begin(), computed.end());
        return picture;
    }
    test::Picture render(Graph& graph) { return render(graph, graph.box); }

    std::size_t budget;
    RowCache cache;
    Renderer renderer;
    std::string computed;
    std::int64_t rows = 0;
};

// The same graph with the same offsets, made for this, without a cache.
test::Picture fresh(Graph& graph, const Box& region) {
    Graph other;
    for (const char name : {'a', 'b', 'c', 'r'}) other.op(name).set_offset(graph.op(name).offset());
    return test::render(other.root, region, 1);
}

constexpr std::size_t kAmple = std::size_t{1} << 26U;

TEST(RowCache, OnlyWhatDependsOnAChangeIsComputedAgain) {
    // What changed, and what is computed. A source that computes its rows is kept like any other operator;
    // the root never is. From the second change in a row on rows are not kept, until one comes without.
    const std::pair<std::string, const char*> steps[] = {
        {"", "abcrs"}, {"", "r"},   {"r", "r"},    {"b", "br"}, {"c", "cr"},    {"", "r"},
        {"bc", "bcr"}, {"", "r"},   {"a", "abcr"}, {"", "r"},   {"s", "abcrs"}, {"", "r"},
        {"b", "br"},   {"b", "br"}, {"r", "br"},   {"r", "r"},  {"a", "abcr"}};
    for (const int threads : {1, 2, 5}) {
        Graph graph;
        Cached cached(kAmple, threads);
        float offset = 1.0f;
        for (const auto& [changed, computed] : steps) {
            for (const char name : changed) {
                if (name == 's') {
                    graph.source.set_pixel(pattern);
                } else {
                    graph.op(name).set_offset(offset += 1.0f);
                }
            }
            const test::Picture now = cached.render(graph);
            EXPECT_EQ(cached.computed, computed) << "after " << changed << ", threads " << threads;
            ASSERT_EQ(now.planes, fresh(graph, graph.box).planes) << "after " << changed;
        }
    }
}

TEST(RowCache, RegionsUseWhatTheFrameLeft) {
    Graph graph;
    Cached cached(kAmple);
    cached.render(graph);
    const Box part{0, 50, 20, 70};
    EXPECT_EQ(cached.render(graph, part).planes, fresh(graph, part).planes);
    EXPECT_EQ(cached.computed, "r");
    cached.cache.clear();
    EXPECT_EQ(cached.cache.bytes(), 0U);
    // Now the part alone is kept, which does not do for the frame.
    cached.render(graph, part);
    cached.render(graph, part);
    EXPECT_EQ(cached.computed, "r");
    EXPECT_EQ(cached.render(graph).planes, fresh(graph, graph.box).planes);
    EXPECT_EQ(cached.computed, "abcrs");
}

TEST(RowCache, AnotherInputAnotherNodeAndADeletedInputAreNoticed) {
    Graph graph;
    Cached cached(kAmple);
    cached.render(graph);
    auto other = std::make_unique<test::FunctionSource>(
        graph.box, kMaskRgba, [](Channel, int x, int) { return static_cast<float>(x); });
    graph.c.set_input(1, other.get());
    cached.render(graph);
    EXPECT_EQ(cached.computed, "cr");
    other.reset();
    Graph without;
    without.c.set_input(1, nullptr);
    EXPECT_EQ(cached.render(graph).planes, test::render(without.root, without.box).planes);
    EXPECT_EQ(cached.computed, "cr");
    // A new graph, possibly at the old one's addresses and with equal hashes.
    std::optional<Graph> again(std::in_place);
    cached.render(*again);
    again.emplace();
    again->source.set_pixel([](Channel, int, int y) { return static_cast<float>(y); });
    const test::Picture picture = cached.render(*again);
    EXPECT_EQ(picture.at(kBlue, 0, 7), 7.0f);
}

TEST(RowCache, AnyBudgetGivesTheSamePixelsAndASettledChoice) {
    const std::size_t plane = std::size_t{203} * 256 + 8192;  // about one of the graph's
    for (const std::size_t budget : {std::size_t{0}, plane, 2 * plane, 4 * plane, 6 * plane, kAmple}) {
        std::mt19937 random(5);
        Graph graph;
        Cached cached(budget);
        for (int step = 0; step < 30; ++step) {
            graph.op("abcr"[random() % 4]).set_offset(static_cast<float>(random() % 50));
            const Box region = random() % 4 == 0 ? Box{0, 20, 11, 90} : graph.box;
            ASSERT_EQ(cached.render(graph, region).planes, fresh(graph, region).planes) << "step " << step;
        }
        // While one knob moves, each render finds kept what the one before left.
        std::string settled;
        for (int step = 0; step < 8; ++step) {
            graph.b.set_offset(static_cast<float>(step));
            cached.render(graph);
            if (step <= 4) settled = cached.computed;
            EXPECT_EQ(cached.computed, settled) << "budget " << budget;
        }
        // Room for what b is made from and what stands beside it, and for the source only with more.
        if (budget == 0) {
            EXPECT_EQ(settled, "abcrs");
        } else if (budget >= 4 * plane) {
            EXPECT_EQ(settled, budget == kAmple ? "br" : "brs");
        }
    }
}

TEST(RowCache, WhatOperatorsHoldThemselvesCounts) {
    Graph graph;
    Cached cached(kAmple);
    cached.render(graph);
    const std::size_t rows = cached.cache.bytes();
    cached.render(graph);
    EXPECT_EQ(cached.computed, "r");
    for (Op* op : {&graph.a, &graph.c}) op->parent(&graph.root, "inner");
    graph.c.frame = kAmple - rows;
    cached.render(graph);
    EXPECT_EQ(cached.computed, "r");
    EXPECT_EQ(cached.cache.bytes(), kAmple);
    graph.b.frame = rows;
    cached.render(graph);
    EXPECT_EQ(cached.computed, "abcrs");
    // One that is wired out keeps its memory.
    for (const int n : {0, 1}) graph.root.set_input(n, &graph.a);
    cached.render(graph);
    EXPECT_GT(cached.cache.bytes(), kAmple - rows);
}

TEST(RowCache, WhatIsReadAheadIsMadeOnceThoughItMoves) {
    Graph graph;
    graph.c.ahead = true;
    Cached cached(kAmple, 1);
    for (int step = 0; step < 5; ++step) {
        graph.a.set_offset(static_cast<float>(step));
        cached.render(graph);
        for (const OpStats& op : cached.renderer.stats()) {
            if (op.op != &graph.a) continue;
            EXPECT_EQ(op.rows, graph.box.height()) << step;
        }
    }
}

TEST(RowCache, NothingHalfMadeIsKept) {
    for (const int threads : {1, 3}) {
        for (const bool lost : {false, true}) {
            AbortFlag abort;
            std::atomic<bool> armed{true};
            std::atomic<bool> throws{false};
            const auto pixel = [&](Channel c, int x, int y) {
                if (y == 120 && armed && throws) throw 120;
                if (y == 120 && armed) abort.raise();
                return pattern(c, x, y);
            };
            Graph graph;
            graph.source.set_pixel(pixel);
            if (lost) graph.a.lost_flag = &abort;
            Cached cached(kAmple, threads, &abort);
            EXPECT_FALSE(cached.render(graph).complete);
            abort.clear();
            throws = true;
            graph.b.set_offset(1.0f);
            EXPECT_THROW(cached.render(graph), int);
            armed = false;
            graph.a.lost_flag = nullptr;
            EXPECT_EQ(cached.render(graph).planes, fresh(graph, graph.box).planes);
            // What was whole before serves: without it the five operators make about 1000 rows.
            EXPECT_LT(cached.rows, 950);
        }
    }
}

}  // namespace
