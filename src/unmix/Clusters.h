// Groups of like colours.
#pragma once

#include <array>
#include <vector>

namespace unmix {

struct Clusters {
    std::vector<std::array<double, 3>> means;
    std::vector<int> of;  // the cluster of each sample
};

// Some colours' number, mean and covariance: rr, rg, rb, gg, gb, bb.
struct ColourGroup {
    double count = 0.0;
    std::array<double, 3> mean{};
    std::array<double, 6> covariance{};
};

// Joins those first that so spread least, until there are no more than this.
void join_groups(std::vector<ColourGroup>& groups, std::size_t most);

// Lloyd's k-means, eight rounds. Deterministic: each start is the sample that 98 in a hundred are nearer to
// the starts before than. No more clusters than samples.
Clusters find_clusters(const std::vector<std::array<float, 3>>& samples, int count);

// The nearest of these means to each sample.
Clusters nearest_clusters(const std::vector<std::array<float, 3>>& samples,
                          std::vector<std::array<double, 3>> means);

}  // namespace unmix
