// Channel roles: keying works on a primary (backing) channel and two secondary roles, never on red, green
// and blue by name, so one kernel keys blue, green and red screens.
//
//   "ColorIndex"   role 0   role 1   primary
//   0 (blue)       red      green    blue
//   1 (green)      red      blue     green
//   2 (red)        blue     green    red
//   any other      as 0
#pragma once

#include <cstdint>

// Channel slot (0 red, 1 green, 2 blue, 3 alpha) of a role 0 to 2; a role outside that is returned as is.
constexpr int ChannelForRole(std::int32_t color_index, int role) {
    if (color_index == 1) return role == 1 ? 2 : role == 2 ? 1 : role;
    if (color_index == 2) return role == 0 ? 2 : role == 2 ? 0 : role;
    return role;
}

// The colour planes of one span in role order, to read and to write.
struct RolePixels {
    const float* role0;
    const float* role1;
    const float* primary;
};

struct RoleOutput {
    float* role0;
    float* role1;
    float* primary;
};
