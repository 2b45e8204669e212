#include "shot/compare/AlphaErrors.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace veloxa {

namespace {

constexpr double kSigma = 1.4;
constexpr int kReach = 4;  // pixels to either side; the Gaussian is below a hundredth beyond
constexpr int kSteps = 10;
constexpr float kLoose = 0.15f;

using Taps = std::array<double, 2 * kReach + 1>;

Taps normalized(Taps taps) {
    const double norm = std::sqrt(std::inner_product(taps.begin(), taps.end(), taps.begin(), 0.0));
    for (double& tap : taps) tap /= norm;
    return taps;
}

Taps gaussian(bool derivative) {
    Taps taps;
    for (std::size_t i = 0; i < taps.size(); ++i) {
        const int n = static_cast<int>(i) - kReach;
        const double value = std::exp(-n * n / (2.0 * kSigma * kSigma));
        taps[i] = derivative ? n * value : value;
    }
    return normalized(taps);
}

Matte filtered(const Matte& in, const Taps& along_x, const Taps& along_y) {
    const auto pass = [](const Matte& from, const Taps& taps, int dx, int dy) {
        Matte to{from.width, from.height, std::vector<float>(from.values.size())};
        std::size_t i = 0;
        for (int y = 0; y < from.height; ++y) {
            for (int x = 0; x < from.width; ++x) {
                double sum = 0.0;
                for (std::size_t t = 0; t < taps.size(); ++t) {
                    const int n = static_cast<int>(t) - kReach;
                    sum += taps[t] * from.at(std::clamp(x + n * dx, 0, from.width - 1),
                                             std::clamp(y + n * dy, 0, from.height - 1));
                }
                to.values[i++] = static_cast<float>(sum);
            }
        }
        return to;
    };
    return pass(pass(in, along_x, 1, 0), along_y, 0, 1);
}

// The lengths of the gradients.
std::vector<float> steepness(const Matte& matte) {
    const Taps smooth = gaussian(false), slope = gaussian(true);
    const Matte across = filtered(matte, slope, smooth), up = filtered(matte, smooth, slope);
    std::vector<float> lengths(matte.values.size());
    std::ranges::transform(across.values, up.values, lengths.begin(),
                           [](float x, float y) { return std::sqrt(x * x + y * y); });
    return lengths;
}

// Areas of 4-connected pixels, as trees whose roots are their first pixels.
class Areas {
  public:
    explicit Areas(std::size_t pixels) : parent_(pixels), size_(pixels) {}

    // Finds the areas of the pixels that are in.
    void find(const std::vector<char>& in, int width) {
        const auto row = static_cast<std::size_t>(width);
        std::iota(parent_.begin(), parent_.end(), std::size_t{0});
        std::ranges::fill(size_, std::size_t{1});
        for (std::size_t i = 0; i < in.size(); ++i) {
            if (!in[i]) continue;
            if (i % row != 0 && in[i - 1]) join(i, i - 1);
            if (i >= row && in[i - row]) join(i, i - row);
        }
    }

    std::size_t root(std::size_t i) {
        while (parent_[i] != i) i = parent_[i] = parent_[parent_[i]];
        return i;
    }
    std::size_t size(std::size_t root) const { return size_[root]; }

  private:
    void join(std::size_t a, std::size_t b) {
        a = root(a);
        b = root(b);
        if (a == b) return;
        parent_[std::max(a, b)] = std::min(a, b);
        size_[std::min(a, b)] += size_[std::max(a, b)];
    }

    std::vector<std::size_t> parent_;
    std::vector<std::size_t> size_;  // of the areas, at their roots
};

}  // namespace

std::vector<float> gradient_errors(const Matte& result, const Matte& truth) {
    std::vector<float> errors = steepness(result);
    std::ranges::transform(errors, steepness(truth), errors.begin(),
                           [](float a, float b) { return (a - b) * (a - b); });
    return errors;
}

std::vector<float> connectivity_errors(const Matte& result, const Matte& truth) {
    const std::size_t pixels = truth.values.size();
    constexpr float kConnected = 1.0f;
    std::vector<float> level(pixels, kConnected);
    std::vector<char> in(pixels), left(pixels, 0);
    Areas areas(pixels);
    for (int step = 1; step <= kSteps; ++step) {
        const float threshold = static_cast<float>(step) / kSteps;
        for (std::size_t i = 0; i < pixels; ++i)
            in[i] = result.values[i] >= threshold && truth.values[i] >= threshold;
        areas.find(in, truth.width);
        std::size_t largest = pixels;  // none
        for (std::size_t i = 0; i < pixels; ++i) {
            if (in[i] && areas.root(i) == i && (largest == pixels || areas.size(i) > areas.size(largest)))
                largest = i;
        }
        for (std::size_t i = 0; i < pixels; ++i) {
            if (left[i] || (in[i] && areas.root(i) == largest)) continue;
            left[i] = 1;
            level[i] = static_cast<float>(step - 1) / kSteps;
        }
    }
    const auto connected = [](float alpha, float steady) {
        const float above = alpha - steady;
        return 1.0f - (above >= kLoose ? above : 0.0f);
    };
    std::vector<float> errors(pixels);
    for (std::size_t i = 0; i < pixels; ++i)
        errors[i] = std::abs(connected(result.values[i], level[i]) - connected(truth.values[i], level[i]));
    return errors;
}

}  // namespace veloxa
