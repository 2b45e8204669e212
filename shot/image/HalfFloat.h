// Half floats to floats and back, in loops that vectorise on every processor.
#pragma once

#include <cstddef>
#include <cstdint>

namespace veloxa {

// The bits of a half float, apart from 16-bit integers.
enum class Half : std::uint16_t {};

void from_half(const Half* in, float* out, std::size_t count);

// Rounds to nearest, ties to even; beyond 65504 to infinity from 65520 on. NaN stays NaN.
void to_half(const float* in, Half* out, std::size_t count);

}  // namespace veloxa
