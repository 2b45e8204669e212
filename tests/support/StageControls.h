// Controls and spans for the tests of kernels.
#pragma once

#include <array>
#include <utility>
#include <vector>

#include "controls/ChannelRoles.h"
#include "support/Plane.h"

namespace test {

struct StageControls {
    std::vector<std::int32_t> values = std::vector<std::int32_t>(ControlBlock::kCount);
    ControlBlock block{values.data(), 1};

    StageControls() = default;
    StageControls(std::initializer_list<std::pair<int, int>> settings) {
        for (const auto& [index, value] : settings) block.set(index, value);
    }
};

// Three planes and an alpha of n pixels each.
struct Span {
    std::array<std::vector<float>, 4> planes;

    explicit Span(std::size_t n) { planes.fill(std::vector<float>(n)); }
    Span(int n, unsigned seed) {
        for (auto& plane : planes) plane = awkward_plane({0, 0, n, 1}, seed++).values;
    }
    const float* alpha() const { return planes[3].data(); }
    RolePixels in() const { return {planes[0].data(), planes[1].data(), planes[2].data()}; }
    RoleOutput out() { return {planes[0].data(), planes[1].data(), planes[2].data()}; }
};

}  // namespace test
