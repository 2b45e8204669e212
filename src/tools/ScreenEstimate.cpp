#include "tools/ScreenEstimate.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "ZoImage/FramePlane.h"
#include "tools/StrokePixels.h"

using namespace Zo::Image;

namespace {

constexpr int kCells = 64;
constexpr double kBorder = 0.4;        // of the way from a border to the middle, where weights fall to 1
constexpr double kBorderWeight = 3.0;  // more, at the border itself
constexpr double kDark = 0.1;          // of the median brightness; darker cells show their noise
constexpr double kLeastSaturated = 0.15;
constexpr double kReach = 0.1;  // of a heap around its middle, in the other channels over the primary
constexpr int kSteps = 20;      // middles that are tried along each side of that plane

using Color = std::array<double, 3>;

struct Cell {
    Color color;
    double weight;
};

// The part of the picture that is seen.
class Picture {
  public:
    Picture(Iop& image, Renderer& renderer) {
        image.validate(true);
        frame_ = image.info().box;
        frame_.intersect(image.info().format.box);
        if (frame_.empty()) return;
        for (auto& plane : planes_) {
            plane.resize(static_cast<std::size_t>(frame_.width()) *
                         static_cast<std::size_t>(frame_.height()));
        }
        render_or_give_up(renderer, image, frame_, kMaskRgb, [&](int y, const Row& row) {
            for (std::size_t i = 0; i < 3; ++i) {
                const float* const line = row[static_cast<Channel>(kRed + static_cast<int>(i))];
                std::copy_n(line, frame_.width(), planes_[i].data() + offset(frame_.x, y));
            }
        });
    }
    const Box& frame() const { return frame_; }
    double at(std::size_t channel, int x, int y) const {
        return static_cast<double>(planes_[channel].data()[offset(x, y)]);
    }

  private:
    std::ptrdiff_t offset(int x, int y) const {
        return static_cast<std::ptrdiff_t>(y - frame_.y) * frame_.width() + (x - frame_.x);
    }

    Box frame_{};
    std::array<FramePlane<float>, 3> planes_;
};

std::optional<Color> mean_of(const Picture& picture, const Box& cell) {
    Color sum{};
    double count = 0.0;
    for (int y = cell.y; y < cell.t; ++y) {
        for (int x = cell.x; x < cell.r; ++x) {
            Color pixel{};
            bool finite = true;
            for (std::size_t i = 0; i < 3; ++i) {
                pixel[i] = picture.at(i, x, y);
                finite = finite && std::isfinite(pixel[i]);
            }
            if (!finite) continue;
            for (std::size_t i = 0; i < 3; ++i) sum[i] += pixel[i];
            ++count;
        }
    }
    if (count == 0.0) return std::nullopt;
    return Color{sum[0] / count, sum[1] / count, sum[2] / count};
}

double border_weight(const Box& frame, const Box& cell) {
    const double side = (cell.x + cell.r - 2.0 * frame.x) / frame.width();    // 0 left, 2 right
    const double depth = (2.0 * frame.t - cell.y - cell.t) / frame.height();  // 0 top, 2 bottom
    const double from_border = std::min({side, 2.0 - side, depth});
    return 1.0 + kBorderWeight * std::max(0.0, 1.0 - from_border / kBorder);
}

std::vector<Cell> cells_of(const Picture& picture) {
    const Box& frame = picture.frame();
    std::vector<Cell> cells;
    if (frame.empty()) return cells;
    const int size = (std::max(frame.width(), frame.height()) + kCells - 1) / kCells;
    for (int y = frame.y; y < frame.t; y += size) {
        for (int x = frame.x; x < frame.r; x += size) {
            const Box cell{x, y, std::min(x + size, frame.r), std::min(y + size, frame.t)};
            if (const auto color = mean_of(picture, cell))
                cells.push_back({*color, border_weight(frame, cell)});
        }
    }
    return cells;
}

// A cell that a primary dominates: the other two channels over it.
struct Dominated {
    const Cell* cell;
    double first;
    double second;

    bool near(double a, double b) const {
        return std::fabs(first - a) <= kReach && std::fabs(second - b) <= kReach;
    }
};

std::vector<Dominated> dominated_by(std::size_t primary, const std::vector<Cell>& cells) {
    std::vector<double> levels;
    for (const Cell& cell : cells) levels.push_back(*std::max_element(cell.color.begin(), cell.color.end()));
    const auto middle = levels.begin() + static_cast<std::ptrdiff_t>(levels.size() / 2);
    std::nth_element(levels.begin(), middle, levels.end());
    const double dark = levels.empty() ? 0.0 : kDark * *middle;
    std::vector<Dominated> result;
    for (const Cell& cell : cells) {
        const double level = cell.color[primary];
        if (!(level > 0.0) || level < dark) continue;
        // Colours outside the gamut have components below 0.
        const double first = std::max(cell.color[(primary + 1) % 3] / level, 0.0);
        const double second = std::max(cell.color[(primary + 2) % 3] / level, 0.0);
        if (std::max(first, second) <= 1.0 - kLeastSaturated) result.push_back({&cell, first, second});
    }
    return result;
}

double weighted_median(std::vector<Dominated>& cells, std::size_t channel) {
    std::sort(cells.begin(), cells.end(), [channel](const Dominated& a, const Dominated& b) {
        return a.cell->color[channel] < b.cell->color[channel];
    });
    double half = 0.0;
    for (const Dominated& d : cells) half += d.cell->weight / 2.0;
    for (const Dominated& d : cells) {
        half -= d.cell->weight;
        if (half <= 0.0) return d.cell->color[channel];
    }
    return cells.back().cell->color[channel];
}

ScreenEstimate candidate(Channel primary, const std::vector<Cell>& cells) {
    ScreenEstimate result;
    result.primary = primary;
    std::vector<Dominated> heap = dominated_by(static_cast<std::size_t>(primary - kRed), cells);
    const auto weight_near = [&heap](double a, double b) {
        double weight = 0.0;
        for (const Dominated& d : heap) weight += d.near(a, b) ? d.cell->weight : 0.0;
        return weight;
    };
    double best = 0.0, first = 0.0, second = 0.0;
    for (int i = 0; i < kSteps; ++i) {
        for (int j = 0; j < kSteps; ++j) {
            const double a = static_cast<double>(i) / kSteps, b = static_cast<double>(j) / kSteps;
            const double weight = weight_near(a, b);
            if (weight <= best) continue;
            best = weight;
            first = a;
            second = b;
        }
    }
    std::erase_if(heap, [&](const Dominated& d) { return !d.near(first, second); });
    if (heap.empty()) return result;
    double all = 0.0;
    for (const Cell& cell : cells) all += cell.weight;
    result.share = best / all;
    for (std::size_t c = 0; c < 3; ++c) result.color[c] = weighted_median(heap, c);
    return result;
}

}  // namespace

ScreenEstimate estimate_screen(Iop& image, std::optional<Channel> primary, Renderer& renderer) {
    const Picture picture(image, renderer);
    const std::vector<Cell> cells = cells_of(picture);
    ScreenEstimate best;
    if (primary) {
        best = candidate(*primary, cells);
    } else {
        for (const Channel c : {kGreen, kBlue, kRed}) {
            ScreenEstimate one = candidate(c, cells);
            if (one.share > best.share) std::swap(one, best);
            best.rival = std::max(best.rival, one.share);
        }
    }
    best.needed = primary ? kConfidenceNeededNamed : kConfidenceNeeded;
    best.frame = picture.frame();
    return best;
}

const char* screen_name(Channel primary) {
    return primary == kGreen ? "green" : primary == kBlue ? "blue" : "red";
}

std::optional<Channel> screen_named(const std::string& name) {
    for (const Channel c : {kGreen, kBlue, kRed}) {
        if (name == screen_name(c)) return c;
    }
    return std::nullopt;
}
