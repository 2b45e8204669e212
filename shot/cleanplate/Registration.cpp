#include "shot/cleanplate/Registration.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace veloxa {

using namespace Zo::Image;

namespace {

constexpr int kBlocks = 160;       // to the longer side
constexpr int kSmallest = 4;       // pixels to a block
constexpr int kLeast = 50;         // equations
constexpr int kRounds = 12;        // of fitting and weighing anew
constexpr double kInFull = 1.0;    // deviations within which an equation counts in full
constexpr double kNotAtAll = 4.7;  // and beyond which it does not count, once the fit has settled
constexpr double kSignificance = 4.0;
constexpr std::size_t kUnknowns = 4;  // shift right, shift up, change of gain, change of level

using Vector = std::array<double, kUnknowns>;
using Matrix = std::array<Vector, kUnknowns>;

struct Equation {
    Vector a;
    double b;
    double weight;
};

// The inverse of a symmetric matrix by elimination; false when it has none worth the name.
bool invert(Matrix m, Matrix& inverse) {
    inverse = {};
    for (std::size_t i = 0; i < kUnknowns; ++i) inverse[i][i] = 1.0;
    Vector scale;
    for (std::size_t i = 0; i < kUnknowns; ++i) scale[i] = m[i][i];
    for (std::size_t i = 0; i < kUnknowns; ++i) {
        const double pivot = m[i][i];
        if (!(pivot > 1e-9 * scale[i])) return false;
        for (std::size_t j = 0; j < kUnknowns; ++j) {
            m[i][j] /= pivot;
            inverse[i][j] /= pivot;
        }
        for (std::size_t k = 0; k < kUnknowns; ++k) {
            const double factor = m[k][i];
            if (k == i || factor == 0.0) continue;
            for (std::size_t j = 0; j < kUnknowns; ++j) {
                m[k][j] -= factor * m[i][j];
                inverse[k][j] -= factor * inverse[i][j];
            }
        }
    }
    return true;
}

// A block that moved by (x, y) shows what lay there before: other = gain * (first - x * slope - y * slope) +
// level. The unknowns are the shift times the gain.
std::vector<Equation> equations(const BackingDetail& first, const BackingDetail& other) {
    std::vector<Equation> result;
    const auto at = [&first](int column, int row) {
        return first.level[static_cast<std::size_t>(row * first.columns + column)];
    };
    for (int row = 1; row + 1 < first.rows; ++row) {
        for (int column = 1; column + 1 < first.columns; ++column) {
            const double level = at(column, row);
            const double right = (at(column + 1, row) - at(column - 1, row)) / 2.0;
            const double up = (at(column, row + 1) - at(column, row - 1)) / 2.0;
            const double change = other.level[static_cast<std::size_t>(row * first.columns + column)] - level;
            if (std::isfinite(right) && std::isfinite(up) && std::isfinite(change)) {
                result.push_back({{-right, -up, level, 1.0}, change, 1.0});
            }
        }
    }
    return result;
}

double residual(const Equation& e, const Vector& x) {
    double r = e.b;
    for (std::size_t i = 0; i < kUnknowns; ++i) r -= e.a[i] * x[i];
    return r;
}

// At first what is off counts less, so that the fit finds its way; then not at all, so that it does not pull.
double weight_of(double deviations, bool settled) {
    if (!settled) return deviations > kInFull ? kInFull / deviations : 1.0;
    const double part = deviations / kNotAtAll;
    return part < 1.0 ? (1.0 - part * part) * (1.0 - part * part) : 0.0;
}

// Weighted least squares; the inverse of the normal matrix tells how sure the unknowns are.
bool solve(const std::vector<Equation>& system, Vector& x, Matrix& inverse) {
    Matrix normal{};
    Vector right{};
    for (const Equation& e : system) {
        for (std::size_t i = 0; i < kUnknowns; ++i) {
            for (std::size_t j = 0; j < kUnknowns; ++j) normal[i][j] += e.weight * e.a[i] * e.a[j];
            right[i] += e.weight * e.a[i] * e.b;
        }
    }
    if (!invert(normal, inverse)) return false;
    for (std::size_t i = 0; i < kUnknowns; ++i) {
        x[i] = 0.0;
        for (std::size_t j = 0; j < kUnknowns; ++j) x[i] += inverse[i][j] * right[j];
    }
    return true;
}

}  // namespace

double Shift::length() const {
    return std::hypot(x, y);
}

bool Shift::above_bound() const {
    return known && length() > kShiftBound && length() > kSignificance * error;
}

BackingDetail backing_detail(const Image& image, Channel channel, const std::vector<std::uint8_t>& clear) {
    const Box& box = image.info.box;
    BackingDetail detail;
    detail.size = std::max(kSmallest, std::max(box.width(), box.height()) / kBlocks);
    detail.columns = box.width() / detail.size;
    detail.rows = box.height() / detail.size;
    for (int row = 0; row < detail.rows; ++row) {
        for (int column = 0; column < detail.columns; ++column) {
            double sum = 0.0;
            bool whole = image.has(channel);
            for (int y = row * detail.size; whole && y < (row + 1) * detail.size; ++y) {
                const float* line = image.line(channel, box.y + y);
                const std::uint8_t* mask = clear.data() + static_cast<std::size_t>(y) * image.width();
                for (int x = column * detail.size; x < (column + 1) * detail.size; ++x) {
                    whole = whole && mask[x] != 0;
                    sum += static_cast<double>(line[x]);
                }
            }
            detail.level.push_back(whole ? sum / (detail.size * detail.size)
                                         : std::numeric_limits<double>::quiet_NaN());
        }
    }
    return detail;
}

Shift shift_between(const BackingDetail& first, const BackingDetail& other) {
    Shift shift;
    if (first.columns != other.columns || first.rows != other.rows) return shift;
    std::vector<Equation> system = equations(first, other);
    if (system.size() < kLeast) return shift;
    Vector x{};
    Matrix inverse{};
    std::vector<double> sizes(system.size());
    double deviation = 0.0;
    for (int round = 0; round < kRounds; ++round) {
        if (!solve(system, x, inverse)) return shift;
        for (std::size_t i = 0; i < system.size(); ++i) sizes[i] = std::fabs(residual(system[i], x));
        const auto middle = sizes.begin() + static_cast<std::ptrdiff_t>(sizes.size() / 2);
        std::nth_element(sizes.begin(), middle, sizes.end());
        deviation = *middle / 0.6745;  // of a normal distribution with this median
        deviation = std::max(deviation, 1e-12);
        for (Equation& e : system) {
            e.weight = weight_of(std::fabs(residual(e, x)) / deviation, round >= kRounds / 2);
        }
    }
    const double scale = first.size / (1.0 + x[2]);
    shift.x = x[0] * scale;
    shift.y = x[1] * scale;
    shift.error = deviation * std::sqrt(std::max(inverse[0][0], inverse[1][1])) * std::fabs(scale);
    shift.known = std::isfinite(shift.x) && std::isfinite(shift.y);
    return shift;
}

}  // namespace veloxa
