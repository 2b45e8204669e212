// Groups of like colours.
#pragma once

#include <array>
#include <vector>

namespace unmix {

struct Clusters {
    std::vector<std::array<double, 3>> means;
    std::vector<int> of;  // the cluster of each sample
};

// Lloyd's k-means, eight rounds. Deterministic: each start is the sample that 98 in a hundred are nearer to the
// starts before than. No more clusters than samples.
Clusters find_clusters(const std::vector<std::array<float, 3>>& samples, int count);

}  // namespace unmix
