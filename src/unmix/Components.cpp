#include "unmix/Components.h"

#include <vector>

namespace unmix {

namespace {

// A stretch of a row that is set; those that touch are joined into trees, whose root is the earliest.
struct Run {
    int y, x, r;
    std::int32_t parent;
};

std::int32_t root_of(std::vector<Run>& runs, std::int32_t n) {
    while (runs[static_cast<std::size_t>(n)].parent != n) {
        std::int32_t& parent = runs[static_cast<std::size_t>(n)].parent;
        parent = runs[static_cast<std::size_t>(parent)].parent;
        n = parent;
    }
    return n;
}

std::vector<Run> joined_runs(const Bytes& mask) {
    std::vector<Run> runs;
    std::size_t below = 0;  // first run of the row before
    for (int y = 0; y < mask.height(); ++y) {
        const std::size_t first = runs.size();
        const std::uint8_t* const row = mask.row(y);
        std::size_t other = below;
        for (int x = 0; x < mask.width(); ++x) {
            if (row[x] == 0) continue;
            const int from = x;
            while (x < mask.width() && row[x] != 0) ++x;
            const auto own = static_cast<std::int32_t>(runs.size());
            runs.push_back({y, from, x, own});
            while (other < first && runs[other].r <= from) ++other;
            for (std::size_t n = other; n < first && runs[n].x < x; ++n) {
                const std::int32_t a = root_of(runs, own);
                const std::int32_t b = root_of(runs, static_cast<std::int32_t>(n));
                runs[static_cast<std::size_t>(std::max(a, b))].parent = std::min(a, b);
            }
        }
        below = first;
    }
    return runs;
}

}  // namespace

int label_components(const Bytes& mask, Plane<std::int32_t>& labels) {
    std::vector<Run> runs = joined_runs(mask);
    labels.resize(mask.width(), mask.height());
    labels.fill(0);
    std::vector<std::int32_t> numbers(runs.size(), 0);
    std::int32_t count = 0;
    for (std::size_t n = 0; n < runs.size(); ++n) {
        const auto root = static_cast<std::size_t>(root_of(runs, static_cast<std::int32_t>(n)));
        if (numbers[root] == 0) numbers[root] = ++count;
        std::fill(labels.row(runs[n].y) + runs[n].x, labels.row(runs[n].y) + runs[n].r, numbers[root]);
    }
    return count;
}

}  // namespace unmix
