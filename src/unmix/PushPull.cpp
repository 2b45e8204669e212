#include "unmix/PushPull.h"

#include <algorithm>

namespace unmix {

namespace {

constexpr float kGround = 0.1f;  // weight of what the coarser level says
constexpr float kLeast = 1e-6f;

// Halves both sides with the kernel 1 3 3 1; the ends repeat.
void halve(const Floats& from, Floats& to) {
    const int width = from.width();
    std::vector<float> line(static_cast<std::size_t>(width) + 3);
    float* const x0 = line.data() + 1;
    for (int y = 0; y < to.height(); ++y) {
        const auto row = [&](int n) { return from.row(std::clamp(n, 0, from.height() - 1)); };
        const float* const a = row(2 * y - 1);
        const float* const b = row(2 * y);
        const float* const c = row(2 * y + 1);
        const float* const d = row(2 * y + 2);
        for (int x = 0; x < width; ++x) x0[x] = 0.375f * (b[x] + c[x]) + 0.125f * (a[x] + d[x]);
        x0[-1] = x0[0];
        x0[width] = x0[width - 1];
        x0[width + 1] = x0[width - 1];
        float* const out = to.row(y);
        for (int x = 0; x < to.width(); ++x) {
            const float* const at = x0 + 2 * x;
            out[x] = 0.375f * (at[0] + at[1]) + 0.125f * (at[-1] + at[2]);
        }
    }
}

// One row of the picture at twice its size.
void double_row(const Floats& from, int y, float* line, float* out, int width) {
    const int last = from.height() - 1;
    const float* const near = from.row(y / 2);
    const float* const far = from.row(std::clamp(y / 2 + ((y & 1) != 0 ? 1 : -1), 0, last));
    for (int x = 0; x < from.width(); ++x) line[x] = 0.75f * near[x] + 0.25f * far[x];
    for (int x = 0; x < width; ++x) {
        const int n = x / 2;
        const int beside = std::clamp(n + ((x & 1) != 0 ? 1 : -1), 0, from.width() - 1);
        out[x] = 0.75f * line[n] + 0.25f * line[beside];
    }
}

}  // namespace

void PushPull::resize(int width, int height) {
    std::vector<std::array<int, 2>> sizes{{width, height}};
    while (std::min(sizes.back()[0], sizes.back()[1]) > 2) {
        sizes.push_back({(sizes.back()[0] + 1) / 2, (sizes.back()[1] + 1) / 2});
    }
    const auto fit = [&](std::vector<Floats>& planes) {
        planes.resize(sizes.size());
        for (std::size_t n = 0; n < sizes.size(); ++n) planes[n].resize(sizes[n][0], sizes[n][1]);
    };
    for (auto& planes : levels_) fit(planes);
    for (auto& planes : filled_) fit(planes);
}

void PushPull::run(const Colours& values, const Bytes& mask, int from, Colours& out, const ParallelLoop& loop) {
    resize(mask.width(), mask.height());
    loop(0, 4, 1, [&](int begin, int end) {
        for (auto c = static_cast<std::size_t>(begin); c < static_cast<std::size_t>(end); ++c) {
            std::vector<Floats>& sums = levels_[c];
            for (std::size_t i = 0; i < mask.size(); ++i) {
                const float weight = mask[i] != 0 ? 1.0f : 0.0f;
                sums[0][i] = c == kWeight ? weight : (mask[i] != 0 ? values[c][i] : 0.0f);
            }
            for (std::size_t n = 1; n < sums.size(); ++n) halve(sums[n - 1], sums[n]);
        }
    });
    loop(0, 3, 1, [&](int begin, int end) {
        for (auto c = static_cast<std::size_t>(begin); c < static_cast<std::size_t>(end); ++c) {
            std::vector<Floats>& filled = filled_[c];
            const std::vector<Floats>& weights = levels_[kWeight];
            const std::size_t top = filled.size() - 1;
            for (std::size_t i = 0; i < filled[top].size(); ++i) {
                filled[top][i] = levels_[c][top][i] / std::max(weights[top][i], kLeast);
            }
            std::vector<float> line(static_cast<std::size_t>(mask.width()));
            for (std::size_t n = top; n-- > 0;) {
                Floats& level = filled[n];
                for (int y = 0; y < level.height(); ++y) {
                    float* const row = level.row(y);
                    double_row(filled[n + 1], y, line.data(), row, level.width());
                    if (static_cast<int>(n) < from) continue;
                    const float* const weight = weights[n].row(y);
                    const float* const sum = levels_[c][n].row(y);
                    for (int x = 0; x < level.width(); ++x) {
                        const float own = weight[x] / (weight[x] + kGround);
                        row[x] += own * (sum[x] / std::max(weight[x], kLeast) - row[x]);
                    }
                }
            }
            out[c].resize(mask.width(), mask.height());
            std::copy(filled[0].begin(), filled[0].end(), out[c].begin());
        }
    });
}

}  // namespace unmix
