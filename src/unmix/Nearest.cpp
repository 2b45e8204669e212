#include "unmix/Nearest.h"

#include <cmath>
#include <limits>
#include <vector>

namespace unmix {

namespace {

constexpr int kNone = 1 << 14;  // rows away; its square still fits
constexpr float kFar = 1e4f;

// One row: of the columns' nearest rows, the one whose pixel is nearest.
class Envelope {
  public:
    explicit Envelope(int width) : at_(static_cast<std::size_t>(width)), from_(static_cast<std::size_t>(width) + 1) {}

    template <class Visit>
    void run(const std::int32_t* rows, int y, int width, const Visit& visit) {
        const auto height_at = [&](int x) {
            const double d = rows[x] - y;
            return d * d;
        };
        int n = -1;
        for (int x = 0; x < width; ++x) {
            if (rows[x] < 0) continue;
            double start = -std::numeric_limits<double>::infinity();
            while (n >= 0) {
                const int q = at_[static_cast<std::size_t>(n)];
                start = ((height_at(x) + static_cast<double>(x) * x) - (height_at(q) + static_cast<double>(q) * q)) /
                        (2.0 * (x - q));
                if (start > from_[static_cast<std::size_t>(n)]) break;
                --n;
            }
            ++n;
            at_[static_cast<std::size_t>(n)] = x;
            from_[static_cast<std::size_t>(n)] = n == 0 ? -std::numeric_limits<double>::infinity() : start;
        }
        if (n < 0) {
            for (int x = 0; x < width; ++x) visit(x, -1);
            return;
        }
        from_[static_cast<std::size_t>(n) + 1] = std::numeric_limits<double>::infinity();
        int piece = 0;
        for (int x = 0; x < width; ++x) {
            while (from_[static_cast<std::size_t>(piece) + 1] < x) ++piece;
            visit(x, at_[static_cast<std::size_t>(piece)]);
        }
    }

  private:
    std::vector<int> at_;
    std::vector<double> from_;
};

}  // namespace

void nearest(const Bytes& mask, Plane<std::int32_t>& index, Floats* away, const ParallelLoop& loop) {
    const int width = mask.width();
    const int height = mask.height();
    index.resize(width, height);
    if (away != nullptr) away->resize(width, height);
    // The nearest set row of each pixel's column.
    Plane<std::int32_t> rows(width, height);
    constexpr int kStrip = 128;
    loop(0, (width + kStrip - 1) / kStrip, 1, [&](int begin, int end) {
        const int left = begin * kStrip;
        const int right = std::min(end * kStrip, width);
        std::vector<std::int32_t> last(static_cast<std::size_t>(right - left), -kNone);
        for (int y = 0; y < height; ++y) {
            for (int x = left; x < right; ++x) {
                std::int32_t& row = last[static_cast<std::size_t>(x - left)];
                row = mask(x, y) != 0 ? y : row;
                rows(x, y) = row;
            }
        }
        std::fill(last.begin(), last.end(), kNone + height);
        for (int y = height - 1; y >= 0; --y) {
            for (int x = left; x < right; ++x) {
                std::int32_t& row = last[static_cast<std::size_t>(x - left)];
                row = mask(x, y) != 0 ? y : row;
                std::int32_t& best = rows(x, y);
                if (row - y < y - best) best = row;
                if (best < 0 || best >= height) best = -1;
            }
        }
    });
    loop(0, height, 8, [&](int begin, int end) {
        Envelope envelope(width);
        for (int y = begin; y < end; ++y) {
            const std::int32_t* const line = rows.row(y);
            std::int32_t* const to = index.row(y);
            float* const far = away != nullptr ? away->row(y) : nullptr;
            envelope.run(line, y, width, [&](int x, int at) {
                to[x] = at < 0 ? -1 : line[at] * width + at;
                if (far == nullptr) return;
                far[x] = at < 0 ? kFar : std::hypot(static_cast<float>(at - x), static_cast<float>(line[at] - y));
            });
        }
    });
}

}  // namespace unmix
