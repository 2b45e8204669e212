#include "unmix/Region.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "unmix/Components.h"
#include "unmix/Morphology.h"
#include "unmix/Nearest.h"
#include "unmix/Reduce.h"
#include "unmix/RegionKernel.h"

namespace unmix {

namespace {

// Lengths.
constexpr float kInside = 10.0f;  // deeper than this the own colour is looked for,
constexpr float kRim = 12.0f;     // the less so the deeper
constexpr float kAround = 24.0f;

}  // namespace

Region::Region(const BackingModel& backing, Grid grid, const ParallelLoop& loop)
    : backing_(backing), fine_(grid == Grid::kFine), loop_(loop) {
    const Colours& means = fine_ ? backing.fine : backing.means;
    for (Floats* plane : {&lead_, &backing_lead_, &bound_, &rough_}) {
        plane->resize(means[0].width(), means[0].height());
    }
    const std::array<std::size_t, 3> channels{static_cast<std::size_t>(backing.screen),
                                              static_cast<std::size_t>(backing.others[0]),
                                              static_cast<std::size_t>(backing.others[1])};
    loop_(0, height(), 8, [&](int begin, int end) {
        std::array<std::vector<float>, 3> lines;
        for (auto& line : lines) line.resize(static_cast<std::size_t>(width()));
        for (int y = begin; y < end; ++y) {
            std::array<const float*, 3> plate{};
            std::array<const float*, 3> behind{};
            for (std::size_t n = 0; n < 3; ++n) {
                const std::size_t c = channels[n];
                plate[n] = means[c].row(y);
                behind[n] = backing.coarse[c].row(std::min(y, backing.coarse[c].height() - 1));
                if (!fine_) continue;
                between_cells(backing.coarse[c], 2, y, 0, width(), lines[n].data());
                behind[n] = lines[n].data();
            }
            rough_leads(plate, behind, {lead_.row(y), backing_lead_.row(y), bound_.row(y)},
                        static_cast<std::size_t>(width()));
        }
    });
}

void Region::find(const Floats* own, float solid) {
    Bytes seeds(width(), height());
    region_.resize(width(), height());
    loop_(0, height(), 8, [&](int begin, int end) {
        std::vector<float> line(static_cast<std::size_t>(width()), 0.0f);
        for (int y = begin; y < end; ++y) {
            if (own != nullptr && fine_) between_cells(*own, 2, y, 0, width(), line.data());
            if (own != nullptr && !fine_) std::copy_n(own->row(y), width(), line.data());
            const auto n = static_cast<std::size_t>(width());
            rough_opacity({lead_.row(y), backing_lead_.row(y), bound_.row(y)}, line.data(), rough_.row(y), n);
            if (!backing_.found) std::fill_n(rough_.row(y), n, 1.0f);
            above(rough_.row(y), kOpaque, seeds.row(y), n);
            above(rough_.row(y), solid, region_.row(y), n);
        }
    });
    const int steps = fine_ ? 2 : 1;
    seeds = dilated(eroded(seeds, steps), steps);
    Plane<std::int32_t> labels;
    const int count = label_components(region_, labels);
    std::vector<std::uint8_t> seeded(static_cast<std::size_t>(count) + 1, 0);
    for (std::size_t i = 0; i < seeds.size(); ++i) seeded[static_cast<std::size_t>(labels[i])] |= seeds[i];
    seeded[0] = 0;
    for (std::size_t i = 0; i < region_.size(); ++i) region_[i] = seeded[static_cast<std::size_t>(labels[i])];
    if (fine_) region_ = dilated(eroded(region_, 1), 1);
}

Floats own_lead(const BackingModel& backing, const Region& region, const ParallelLoop& loop) {
    const auto cells = [&](float length) {
        return length * backing.scale.pixels / static_cast<float>(backing.scale.coarse());
    };
    const auto radius = [&](float length) {
        return std::max(1, static_cast<int>(std::lround(cells(length))));
    };
    // A plateau that is half clear must not vouch for itself.
    Bytes opaque(region.width(), region.height());
    for (std::size_t i = 0; i < opaque.size(); ++i) {
        opaque[i] = region.region()[i] != 0 && region.rough()[i] > Region::kOpaque ? 1 : 0;
    }
    Floats depth;
    const float most = cells(kInside + 4.0f * kRim);
    distance(opaque, most, depth, loop);
    Floats weight(region.width(), region.height());
    Floats weighted(region.width(), region.height());
    for (std::size_t i = 0; i < opaque.size(); ++i) {
        // From the middle of a cell its region's edge is half a cell nearer than the next cell's middle.
        const float beyond = depth[i] - 0.5f - cells(kInside);
        const bool deep = beyond > 0.0f && depth[i] < most;
        weight[i] = deep ? std::exp(-beyond / cells(kRim)) : 0.0f;
        weighted[i] = deep ? weight[i] * region.lead()[i] : 0.0f;
        opaque[i] = deep ? 1 : 0;
    }
    if (!any(opaque)) return {};
    Floats mean;
    Floats mass;
    box_mean(weighted, radius(kRim), mean, loop);
    box_mean(weight, radius(kRim), mass, loop);
    Plane<std::int32_t> index;
    nearest(opaque, index, nullptr, loop);
    Floats carried(region.width(), region.height());
    for (std::size_t i = 0; i < carried.size(); ++i) {
        const auto at = static_cast<std::size_t>(index[i]);
        carried[i] = mean[at] / std::max(mass[at], 1e-6f);
    }
    box_most(carried, radius(kAround), loop);
    box_mean(carried, radius(kRim), mean, loop);
    return mean;
}

}  // namespace unmix
