#include "unmix/Islands.h"

#include <algorithm>
#include <vector>

#include "unmix/Components.h"
#include "unmix/Morphology.h"

namespace unmix {

namespace {

constexpr float kOpaque = 0.98f;
constexpr float kHalfClear = 0.5f;
constexpr float kAlmostClear = 0.15f;
constexpr double kLargestHole = 0.01;  // of the frame
constexpr double kLargestDetail = 0.0025;
constexpr float kHairGap = 3.0f;  // a length: half of its width

constexpr float kSeen = 0.01f;
constexpr float kFaint = 0.6f;
constexpr double kLargestMark = 0.01;
constexpr float kFarFromSolid = 30.0f;  // a length

template <class Visit>
void each_cell(int width, int height, const ParallelLoop& loop, const Visit& visit) {
    loop(0, height, 16, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            for (int x = 0; x < width; ++x) visit(x, y);
        }
    });
}

template <class Visit>
void each_pixel(const FrameScale& scale, Floats& alpha, int x, int y, const Visit& visit) {
    const int side = scale.fine();
    for (int py = y * side; py < std::min((y + 1) * side, scale.height); ++py) {
        float* const row = alpha.row(py);
        for (int px = x * side; px < std::min((x + 1) * side, scale.width); ++px) visit(row[px]);
    }
}

// What is known of each part.
struct Part {
    double size = 0.0;
    float least = 1.0f;
    float most = 0.0f;
    float farthest = 0.0f;
    float nearest = 1e9f;
};

// Of the cells of each part.
std::vector<Part> parts_of(const Plane<std::int32_t>& labels, int count, const Floats& value,
                           const Floats& away) {
    std::vector<Part> parts(static_cast<std::size_t>(count) + 1);
    for (std::size_t i = 0; i < labels.size(); ++i) {
        if (labels[i] == 0) continue;
        Part& part = parts[static_cast<std::size_t>(labels[i])];
        part.size += 1.0;
        part.least = std::min(part.least, value[i]);
        part.most = std::max(part.most, value[i]);
        part.farthest = std::max(part.farthest, away[i]);
        part.nearest = std::min(part.nearest, away[i]);
    }
    return parts;
}

float cells_of(const FrameScale& scale, float length, int side) {
    return length * scale.pixels / static_cast<float>(side);
}

}  // namespace

void drop_marks(const FrameScale& scale, const Segmentation& segmentation, Floats& alpha,
                const ParallelLoop& loop) {
    const int width = segmentation.solid.width();
    const int height = segmentation.solid.height();
    Bytes seen(width, height);
    Floats mean(width, height);
    each_cell(width, height, loop, [&](int x, int y) {
        float sum = 0.0f;
        float most = 0.0f;
        float count = 0.0f;
        each_pixel(scale, alpha, x, y, [&](float v) {
            sum += v;
            most = std::max(most, v);
            count += 1.0f;
        });
        seen(x, y) = most > kSeen ? 1 : 0;
        mean(x, y) = sum / count;
    });
    // How far solids are, by the coarse grid.
    Bytes clear((width + 1) / 2, (height + 1) / 2);
    clear.fill(1);
    for (int y = 0; y < height; ++y) {
        const std::uint8_t* const solid = segmentation.solid.row(y);
        for (int x = 0; x < width; ++x) {
            if (solid[x] != 0) clear(x / 2, y / 2) = 0;
        }
    }
    const float far = cells_of(scale, kFarFromSolid, scale.coarse());
    Floats coarse_away;
    distance(clear, far + 1.0f, coarse_away, loop);
    Floats away(width, height);
    each_cell(width, height, loop, [&](int x, int y) { away(x, y) = coarse_away(x / 2, y / 2); });

    Plane<std::int32_t> labels;
    const int count = label_components(seen, labels);
    const std::vector<Part> parts = parts_of(labels, count, mean, away);
    const double largest = kLargestMark * static_cast<double>(seen.size());
    each_cell(width, height, loop, [&](int x, int y) {
        const Part& part = parts[static_cast<std::size_t>(labels(x, y))];
        if (labels(x, y) == 0 || part.most >= kFaint || part.nearest < far || part.size >= largest) return;
        each_pixel(scale, alpha, x, y, [](float& v) { v = 0.0f; });
    });
}

void fill_holes(const FrameScale& scale, Floats& alpha, const ParallelLoop& loop) {
    const int width = scale.cells_across(scale.fine());
    const int height = scale.cells_up(scale.fine());
    Floats least(width, height);
    Bytes low(width, height);
    each_cell(width, height, loop, [&](int x, int y) {
        float value = 1.0f;
        each_pixel(scale, alpha, x, y, [&](float v) { value = std::min(value, v); });
        least(x, y) = value;
        low(x, y) = value < kOpaque ? 1 : 0;
    });
    const float gap = cells_of(scale, kHairGap, scale.fine());
    Floats depth;
    distance(low, gap + 1.0f, depth, loop);
    Plane<std::int32_t> labels;
    const int count = label_components(low, labels);
    const std::vector<Part> parts = parts_of(labels, count, least, depth);
    const auto all = static_cast<double>(low.size());
    each_cell(width, height, loop, [&](int x, int y) {
        const Part& part = parts[static_cast<std::size_t>(labels(x, y))];
        const bool hole = part.least > kHalfClear && part.size < kLargestHole * all;
        const bool detail =
            part.farthest > gap && part.least > kAlmostClear && part.size < kLargestDetail * all;
        if (labels(x, y) == 0 || !(hole || detail)) return;
        each_pixel(scale, alpha, x, y, [](float& v) { v = v < kOpaque ? 1.0f : v; });
    });
}

}  // namespace unmix
