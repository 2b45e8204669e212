#include "tools/StrokeAreas.h"

#include <algorithm>

#include "panel/VeloxaSample.h"

using namespace Zo::Image;

namespace {

// The columns that the boxes cover, as boxes of those rows that neither overlap nor touch.
std::vector<Box> covered(std::vector<Box> boxes, int y, int t) {
    std::ranges::sort(boxes, {}, &Box::x);
    std::vector<Box> spans;
    for (const Box& box : boxes) {
        if (spans.empty() || box.x > spans.back().r) {
            spans.push_back({box.x, y, box.r, t});
        } else {
            spans.back().r = std::max(spans.back().r, box.r);
        }
    }
    return spans;
}

bool same_columns(const Box& a, const Box& b) {
    return a.x == b.x && a.r == b.r;
}

}  // namespace

StrokeAreas::StrokeAreas(const std::vector<Box>& areas) {
    if (!areas.empty()) around_ = areas.front();
    std::vector<Box> waiting;
    std::vector<int> edges;
    for (const Box& area : areas) {
        if (area.empty()) continue;
        around_.merge(area);
        waiting.push_back(area);
        edges.insert(edges.end(), {area.y, area.t});
    }
    std::ranges::sort(waiting, std::ranges::greater(), &Box::y);
    std::ranges::sort(edges);
    std::vector<Box> here, below;
    for (std::size_t i = 0; i + 1 < edges.size(); ++i) {
        const int y = edges[i];
        const int t = edges[i + 1];
        if (y == t) continue;
        std::erase_if(here, [&](const Box& box) { return box.t <= y; });
        for (; !waiting.empty() && waiting.back().y <= y; waiting.pop_back()) here.push_back(waiting.back());
        std::vector<Box> spans = covered(here, y, t);
        if (std::ranges::equal(spans, below, same_columns)) {
            for (std::size_t n = 0; n < spans.size(); ++n) (parts_.end() - 1 - static_cast<int>(n))->t = t;
        } else {
            parts_.insert(parts_.end(), spans.begin(), spans.end());
        }
        below = std::move(spans);
    }
}

std::int64_t StrokeAreas::pixels() const {
    std::int64_t pixels = 0;
    for (const Box& part : parts_)
        pixels += (std::int64_t{part.r} - part.x) * (std::int64_t{part.t} - part.y);
    return pixels;
}

bool StrokeAreas::contains(int x, int y) const {
    return std::ranges::any_of(
        parts_, [&](const Box& part) { return x >= part.x && x < part.r && y >= part.y && y < part.t; });
}

StrokeGrid::StrokeGrid(const StrokeAreas& areas) : corner_(areas.around()) {
    const std::vector<Box>& parts = areas.parts();
    if (parts.size() == 1) {
        decimate(corner_.x, corner_.y, corner_.r, corner_.t, step_x_, step_y_);
        return;
    }
    const auto positions = [&] {
        std::uint64_t sum = 0;
        for (const Box& part : parts) {
            sum += static_cast<std::uint64_t>(columns(part)) * static_cast<std::uint64_t>(rows(part));
        }
        return sum;
    };
    for (bool rows_next = true; positions() >= kMostPositions; rows_next = !rows_next) {
        ++(rows_next ? step_y_ : step_x_);
    }
}
