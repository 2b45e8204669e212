#include "unmix/FrameCubic.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "unmix/Quantile.h"

namespace unmix {

namespace {

constexpr std::size_t kTerms = FrameCubic::kTerms;
constexpr int kRounds = 6;
constexpr double kOutlier = 4.0 * 1.4826;
constexpr int kBlock = 4;  // cells to a side that count as one
constexpr std::size_t kMostBlocks = 2048;
constexpr std::size_t kFewest = 64;      // blocks
constexpr std::size_t kSamples = 16384;  // cells that a range is told by

using Terms = std::array<double, kTerms>;

Terms terms(double x, double y) {
    return {1.0, x, x * x, x * x * x, y, y * x, y * x * x, y * y, y * y * x, y * y * y};
}

// From -1 to 1 over the picture.
double place(double at, int size) {
    return size < 2 ? 0.0 : 2.0 * at / (size - 1) - 1.0;
}

struct Block {
    Terms terms;
    std::array<double, 3> colour;
    bool used = true;
};

// Gaussian elimination, with so little weight on small coefficients that it decides only what data does not.
FrameCubic::Coefficients solve(const std::vector<Block>& blocks) {
    std::array<std::array<double, kTerms + 3>, kTerms> rows{};
    for (const Block& block : blocks) {
        if (!block.used) continue;
        for (std::size_t i = 0; i < kTerms; ++i) {
            for (std::size_t j = 0; j < kTerms; ++j) rows[i][j] += block.terms[i] * block.terms[j];
            for (std::size_t c = 0; c < 3; ++c) rows[i][kTerms + c] += block.terms[i] * block.colour[c];
        }
    }
    for (std::size_t i = 1; i < kTerms; ++i) rows[i][i] += 1e-6 * rows[0][0];
    for (std::size_t i = 0; i < kTerms; ++i) {
        for (std::size_t j = 0; j < kTerms; ++j) {
            if (j == i) continue;
            const double factor = rows[j][i] / rows[i][i];
            for (std::size_t n = i; n < kTerms + 3; ++n) rows[j][n] -= factor * rows[i][n];
        }
    }
    FrameCubic::Coefficients found{};
    for (std::size_t c = 0; c < 3; ++c) {
        for (std::size_t i = 0; i < kTerms; ++i) found[c][i] = rows[i][kTerms + c] / rows[i][i];
    }
    return found;
}

double value_of(const Terms& coefficients, const Terms& at) {
    double sum = 0.0;
    for (std::size_t i = 0; i < kTerms; ++i) sum += coefficients[i] * at[i];
    return sum;
}

std::vector<Block> blocks_of(const Colours& cells, const Bytes& mask) {
    std::vector<Block> blocks;
    for (int y = 0; y + kBlock <= mask.height(); y += kBlock) {
        for (int x = 0; x + kBlock <= mask.width(); x += kBlock) {
            Block block{terms(place(x + 1.5, mask.width()), place(y + 1.5, mask.height())), {}};
            bool all = true;
            for (int n = 0; n < kBlock * kBlock; ++n) {
                const int at = x + n % kBlock;
                const int up = y + n / kBlock;
                all = all && mask(at, up) != 0;
                for (std::size_t c = 0; c < 3; ++c) {
                    block.colour[c] += static_cast<double>(cells[c](at, up)) / (kBlock * kBlock);
                }
            }
            if (all) blocks.push_back(block);
        }
    }
    // Ten coefficients need no more.
    const std::size_t stride = blocks.size() / kMostBlocks + 1;
    std::size_t kept = 0;
    for (std::size_t i = 0; i < blocks.size(); i += stride) blocks[kept++] = blocks[i];
    blocks.resize(kept);
    return blocks;
}

}  // namespace

void FrameCubic::fit(const Colours& cells, const Bytes& mask) {
    form_.coefficients = {};
    const std::uint8_t* const first = std::find(mask.begin(), mask.end(), 1);
    const std::size_t stride = mask.size() / kSamples + 1;
    for (std::size_t c = 0; c < 3; ++c) {
        std::vector<float> values;
        for (std::size_t i = 0; i < mask.size(); i += stride) {
            if (mask[i] != 0) values.push_back(cells[c][i]);
        }
        if (values.empty()) values.push_back(cells[c][static_cast<std::size_t>(first - mask.begin())]);
        const float least = quantile(values, 0.01);
        const float most = quantile(values, 0.99);
        form_.low[c] = std::min(0.8f * least, 1.2f * least);
        form_.high[c] = std::max(0.8f * most, 1.2f * most);
        form_.coefficients[c][0] = static_cast<double>(quantile(values, 0.5));
    }
    std::vector<Block> blocks = blocks_of(cells, mask);
    if (blocks.size() < kFewest) return;
    for (int round = 0; round < kRounds; ++round) {
        form_.coefficients = solve(blocks);
        std::vector<double> used;
        std::vector<double> off(blocks.size(), 0.0);
        for (std::size_t i = 0; i < blocks.size(); ++i) {
            for (std::size_t c = 0; c < 3; ++c) {
                const double left = blocks[i].colour[c] - value_of(form_.coefficients[c], blocks[i].terms);
                off[i] = std::max(off[i], std::abs(left));
            }
            if (blocks[i].used) used.push_back(off[i]);
        }
        const double most = kOutlier * quantile(used, 0.5);
        for (std::size_t i = 0; i < blocks.size(); ++i) blocks[i].used = off[i] <= most;
    }
}

void FrameCubic::evaluate(Colours& cells) const {
    const int width = cells[0].width();
    std::vector<double> across(static_cast<std::size_t>(width));
    for (int x = 0; x < width; ++x) across[static_cast<std::size_t>(x)] = place(x, width);
    for (std::size_t c = 0; c < 3; ++c) {
        const Terms& k = form_.coefficients[c];
        for (int y = 0; y < cells[c].height(); ++y) {
            // A row's cubic.
            const double v = place(y, cells[c].height());
            const double a = k[0] + v * (k[4] + v * (k[7] + v * k[9]));
            const double b = k[1] + v * (k[5] + v * k[8]);
            const double d = k[2] + v * k[6];
            float* const row = cells[c].row(y);
            for (int x = 0; x < width; ++x) {
                const double u = across[static_cast<std::size_t>(x)];
                const auto value = static_cast<float>(a + u * (b + u * (d + u * k[3])));
                row[x] = std::min(std::max(value, form_.low[c]), form_.high[c]);
            }
        }
    }
}

}  // namespace unmix
