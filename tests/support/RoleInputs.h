// Flat images on an operator's inputs, their colours where the screen has its roles, for tests of plumbing.
#pragma once

#include <algorithm>
#include <array>
#include <memory>
#include <vector>

#include "support/TestImages.h"

namespace test {

using RolePixel = std::array<float, 4>;  // role order, alpha

inline constexpr Box kRoleBox{-2, 1, 5, 4};
inline constexpr auto kDepth = static_cast<Channel>(7);  // one that no operator knows; 77 everywhere
inline constexpr Channel kRoles[3][4]{
    {kRed, kGreen, kBlue, kAlpha}, {kRed, kBlue, kGreen, kAlpha}, {kBlue, kGreen, kRed, kAlpha}};

using RoleInputs = std::vector<std::unique_ptr<FunctionSource>>;

inline RoleInputs connect_role_inputs(Op& op, const std::vector<RolePixel>& pixels, int color_index) {
    RoleInputs sources;
    for (const RolePixel& pixel : pixels) {
        const auto value = [pixel, color_index](Channel c, int, int) {
            const auto* role = std::find(kRoles[color_index], kRoles[color_index] + 4, c);
            return c == kDepth ? 77.0f : pixel[static_cast<std::size_t>(role - kRoles[color_index])];
        };
        sources.push_back(std::make_unique<FunctionSource>(kRoleBox, kMaskRgba + kDepth, value));
        op.set_input(static_cast<int>(sources.size()) - 1, sources.back().get());
    }
    return sources;
}

// A row from the middle of the box.
inline Row fetch_row(Iop& op, ChannelSet channels) {
    op.request(kRoleBox.x, 2, kRoleBox.r, 3, channels, 1);
    Row row(kRoleBox.x, kRoleBox.r);
    row.get(op, 2, channels);
    return row;
}

}  // namespace test
