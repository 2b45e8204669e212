#include "shot/mattes/DrawnMatte.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace veloxa {

using namespace Zo::Image;

namespace {

using Point = std::array<double, 2>;

constexpr double kMiddle = 0.5;  // of a pixel
constexpr double kFar = std::numeric_limits<double>::infinity();

// Columns from `x` on, before `r`.
struct Span {
    int x;
    int r;
};

double squared(double v) {
    return v * v;
}

// From a place to the line between two points.
double squared_distance(const Point& a, const Point& b, double x, double y) {
    const double along_x = b[0] - a[0];
    const double along_y = b[1] - a[1];
    const double length = squared(along_x) + squared(along_y);
    const double reach = (x - a[0]) * along_x + (y - a[1]) * along_y;
    const double share = length > 0.0 ? std::clamp(reach / length, 0.0, 1.0) : 0.0;
    return squared(x - (a[0] + share * along_x)) + squared(y - (a[1] + share * along_y));
}

// Where the line between two points is at that height, which it crosses.
double crossing(const Point& a, const Point& b, double y) {
    return a[0] + (y - a[1]) / (b[1] - a[1]) * (b[0] - a[0]);
}

// Draws one matte row by row.
class Outline {
  public:
    Outline(const DrawnMatte& matte, const Box& box)
        : points_(matte.points),
          outside_(matte.outside),
          width_(std::max(matte.feather, 1.0)),
          box_(box),
          distances_(static_cast<std::size_t>(box.width()), kFar) {}

    // One value a column of the box.
    void draw(int y, float* row) {
        const double middle = y + kMiddle;
        spans_.clear();
        crossings_.clear();
        for (std::size_t n = 0; n < points_.size(); ++n) {
            take_line(points_[n], points_[(n + 1) % points_.size()], middle);
        }
        fill(row);
        fade(row);
    }

  private:
    void take_line(const Point& a, const Point& b, double y) {
        const Point& low = a[1] <= b[1] ? a : b;
        const Point& high = a[1] <= b[1] ? b : a;
        // Only the upper end is left out, or two lines would cross a row where they meet.
        if (low[1] <= y && y < high[1]) crossings_.push_back(crossing(low, high, y));
        const double reach = kMiddle * width_;
        if (!(low[1] <= y + reach && high[1] >= y - reach)) return;
        // The part of the line that is near enough upward and downward bounds what is near sideways.
        const double from = low[1] < y - reach ? crossing(low, high, y - reach) : low[0];
        const double to = high[1] > y + reach ? crossing(low, high, y + reach) : high[0];
        const Span span{column(std::min(from, to) - reach), column(std::max(from, to) + reach)};
        if (span.x >= span.r) return;
        for (int x = span.x; x < span.r; ++x) {
            double& nearest = distances_[static_cast<std::size_t>(x - box_.x)];
            nearest = std::min(nearest, squared_distance(low, high, x + kMiddle, y));
        }
        spans_.push_back(span);
    }

    // The first column whose middle is there or beyond, within the box.
    int column(double x) const {
        const double inside = std::clamp(x, box_.x - 1.0, box_.r + 1.0);
        return std::clamp(static_cast<int>(std::ceil(inside - kMiddle)), box_.x, box_.r);
    }

    void fill(float* row) {
        std::fill_n(row, box_.width(), outside_ ? 1.0f : 0.0f);
        std::ranges::sort(crossings_);
        for (std::size_t n = 0; n + 1 < crossings_.size(); n += 2) {
            const int first = column(crossings_[n]);
            std::fill(row + (first - box_.x), row + (column(crossings_[n + 1]) - box_.x),
                      outside_ ? 0.0f : 1.0f);
        }
    }

    void fade(float* row) {
        for (const Span& span : spans_) {
            for (int x = span.x; x < span.r; ++x) {
                const auto i = static_cast<std::size_t>(x - box_.x);
                // What several lines are near to comes by again, and is done with.
                const double distance = std::sqrt(std::exchange(distances_[i], kFar)) / width_;
                if (distance < kMiddle) {
                    row[i] = static_cast<float>(row[i] > 0.5f ? kMiddle + distance : kMiddle - distance);
                }
            }
        }
    }

    const std::vector<Point>& points_;
    const bool outside_;
    const double width_;  // over which it fades
    const Box box_;
    std::vector<double> distances_;  // squared, of the row's pixels to the outline; kFar between rows
    std::vector<double> crossings_;  // of the outline with the row
    std::vector<Span> spans_;        // of columns that are near a line
};

std::shared_ptr<Image> copy_of(const std::shared_ptr<const Image>& under, const Format& format) {
    Info info{format.box, format, kAlpha};
    if (under) info.box.merge(under->info.box);
    auto image = std::make_shared<Image>(info);
    const Box& box = info.box;
    for (int y = box.y; y < box.t; ++y) {
        float* const row = image->line(kAlpha, y);
        if (!under || !under->has(kAlpha)) {
            std::fill_n(row, box.width(), 0.0f);
            continue;
        }
        const Box& there = under->info.box;
        const float* const line = under->line(kAlpha, std::clamp(y, there.y, there.t - 1));
        for (int x = box.x; x < box.r; ++x)
            row[x - box.x] = line[std::clamp(x, there.x, there.r - 1) - there.x];
    }
    return image;
}

}  // namespace

std::shared_ptr<const Image> draw(const DrawnMattes& mattes, DrawnMatte::Kind kind, const Format& format,
                                  const std::shared_ptr<const Image>& under) {
    const auto counts = [&](const DrawnMatte& matte) { return is_drawn(matte, kind); };
    if (std::ranges::none_of(mattes, counts)) return nullptr;
    const std::shared_ptr<Image> image = copy_of(under, format);
    const Box& box = image->info.box;
    std::vector<float> drawn(image->width());
    for (const DrawnMatte& matte : mattes) {
        if (!counts(matte)) continue;
        Outline outline(matte, box);
        for (int y = box.y; y < box.t; ++y) {
            outline.draw(y, drawn.data());
            float* const row = image->line(kAlpha, y);
            // What is no number under it stays.
            for (std::size_t i = 0; i < drawn.size(); ++i) row[i] = drawn[i] > row[i] ? drawn[i] : row[i];
        }
    }
    return image;
}

}  // namespace veloxa
