#include "unmix/Islands.h"

#include <algorithm>
#include <array>
#include <vector>

#include "unmix/Components.h"
#include "unmix/Morphology.h"
#include "unmix/MorphologyKernel.h"

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

// Least, greatest and mean alpha of the cells of a row of the fine grid.
class CellRow {
  public:
    explicit CellRow(const FrameScale& scale) : scale_(scale) {
        // Whole cells: beyond the frame its last column repeats.
        const int width = scale.cells_across(scale.fine()) * scale.fine();
        for (auto& line : lines_) line.resize(static_cast<std::size_t>(width));
        row_.resize(static_cast<std::size_t>(width));
    }

    template <class Visit>
    void run(const Floats& alpha, int y, const Visit& visit) {
        const int side = scale_.fine();
        const ColumnFolds folds{lines_[0].data(), lines_[1].data(), lines_[2].data()};
        std::ranges::fill(lines_[0], 1.0f);
        std::ranges::fill(lines_[1], 0.0f);
        std::ranges::fill(lines_[2], 0.0f);
        const int top = std::min((y + 1) * side, scale_.height);
        for (int py = y * side; py < top; ++py) {
            std::copy_n(alpha.row(py), scale_.width, row_.data());
            std::fill(row_.begin() + scale_.width, row_.end(),
                      row_[static_cast<std::size_t>(scale_.width) - 1]);
            fold_row(row_.data(), folds, row_.size());
        }
        std::size_t left = row_.size();
        for (int n = side; n > 1 && n % 2 == 0; n /= 2, left /= 2) fold_pairs(folds, left);
        const auto apart = left / static_cast<std::size_t>(scale_.cells_across(side));
        const float share = 1.0f / static_cast<float>(side * (top - y * side));
        for (int x = 0; x < scale_.cells_across(side); ++x) {
            const std::size_t from = static_cast<std::size_t>(x) * apart;
            float least = folds.least[from];
            float most = folds.most[from];
            float sum = folds.sum[from];
            for (std::size_t n = from + 1; n < from + apart; ++n) {
                least = std::min(least, folds.least[n]);
                most = std::max(most, folds.most[n]);
                sum += folds.sum[n];
            }
            visit(x, least, most, sum * share);
        }
    }

  private:
    const FrameScale& scale_;
    std::array<std::vector<float>, 3> lines_;
    std::vector<float> row_;
};

template <class Visit>
void each_cell_row(const FrameScale& scale, const Floats& alpha, const ParallelLoop& loop,
                   const Visit& visit) {
    loop(0, scale.cells_up(scale.fine()), 16, [&](int begin, int end) {
        CellRow cells(scale);
        for (int y = begin; y < end; ++y) {
            cells.run(alpha, y,
                      [&](int x, float least, float most, float mean) { visit(x, y, least, most, mean); });
        }
    });
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

// Shows `set` every pixel of the parts that `changes` picks.
template <class Changes, class Set>
void set_parts(const FrameScale& scale, const Plane<std::int32_t>& labels, const std::vector<Part>& parts,
               Floats& alpha, const ParallelLoop& loop, const Changes& changes, const Set& set) {
    if (std::none_of(parts.begin() + 1, parts.end(), changes)) return;
    each_cell(labels.width(), labels.height(), loop, [&](int x, int y) {
        if (labels(x, y) == 0 || !changes(parts[static_cast<std::size_t>(labels(x, y))])) return;
        each_pixel(scale, alpha, x, y, set);
    });
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
    each_cell_row(scale, alpha, loop, [&](int x, int y, float, float most, float cell) {
        seen(x, y) = most > kSeen ? 1 : 0;
        mean(x, y) = cell;
    });
    // How far solids are, by the coarse grid.
    Bytes clear((width + 1) / 2, (height + 1) / 2);
    each_cell(clear.width(), clear.height(), loop, [&](int x, int y) {
        const std::uint8_t* const low = segmentation.solid.row(2 * y);
        const std::uint8_t* const high = segmentation.solid.row(std::min(2 * y + 1, height - 1));
        const int right = std::min(2 * x + 1, width - 1);
        clear(x, y) = (low[2 * x] | low[right] | high[2 * x] | high[right]) != 0 ? 0 : 1;
    });
    const float far = cells_of(scale, kFarFromSolid, scale.coarse());
    Floats coarse_away;
    distance(clear, far + 1.0f, coarse_away, loop);
    Floats away(width, height);
    each_cell(width, height, loop, [&](int x, int y) { away(x, y) = coarse_away(x / 2, y / 2); });

    Plane<std::int32_t> labels;
    const int count = label_components(seen, labels);
    const double largest = kLargestMark * static_cast<double>(seen.size());
    set_parts(
        scale, labels, parts_of(labels, count, mean, away), alpha, loop,
        [&](const Part& part) { return part.most < kFaint && part.nearest >= far && part.size < largest; },
        [](float& v) { v = 0.0f; });
}

void fill_holes(const FrameScale& scale, Floats& alpha, const ParallelLoop& loop) {
    const int width = scale.cells_across(scale.fine());
    const int height = scale.cells_up(scale.fine());
    Floats least(width, height);
    Bytes low(width, height);
    each_cell_row(scale, alpha, loop, [&](int x, int y, float value, float, float) {
        least(x, y) = value;
        low(x, y) = value < kOpaque ? 1 : 0;
    });
    const float gap = cells_of(scale, kHairGap, scale.fine());
    Floats depth;
    distance(low, gap + 1.0f, depth, loop);
    Plane<std::int32_t> labels;
    const int count = label_components(low, labels);
    const auto all = static_cast<double>(low.size());
    set_parts(
        scale, labels, parts_of(labels, count, least, depth), alpha, loop,
        [&](const Part& part) {
            const bool hole = part.least > kHalfClear && part.size < kLargestHole * all;
            return hole ||
                   (part.farthest > gap && part.least > kAlmostClear && part.size < kLargestDetail * all);
        },
        [](float& v) { v = v < kOpaque ? 1.0f : v; });
}

}  // namespace unmix
