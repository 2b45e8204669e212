// The pack of the counted form: one pixel, whose operations are counted. It stands in for lanes/Pack.h of the
// sources, so that a kernel's own loop tells how much arithmetic a pixel takes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "lanes/KernelMath.h"
#include "support/Counts.h"

namespace LANES {

inline constexpr std::size_t kPack = 1;

// Single values, as the kernels mix packs with constants.
struct Floats {
    float v = 0.0f;
    Floats() = default;
    Floats(float value) : v(value) {}  // NOLINT
};
struct Doubles {
    double v = 0.0;
    Doubles() = default;
    Doubles(double value) : v(value) {}  // NOLINT
};
struct Ints {
    std::int32_t v = 0;
    Ints() = default;
    Ints(std::int32_t value) : v(value) {}  // NOLINT
};
struct Longs {
    std::uint64_t v = 0;
};
struct FloatMask {
    bool v = false;
};
struct DoubleMask {
    bool v = false;
};

#define COUNTED_ARITHMETIC(Pack, Mask, kind)        \
    inline Pack operator+(Pack a, Pack b) {         \
        bench::counted.kind##_operations += 1;      \
        return a.v + b.v;                           \
    }                                               \
    inline Pack operator-(Pack a, Pack b) {         \
        bench::counted.kind##_operations += 1;      \
        return a.v - b.v;                           \
    }                                               \
    inline Pack operator*(Pack a, Pack b) {         \
        bench::counted.kind##_operations += 1;      \
        return a.v * b.v;                           \
    }                                               \
    inline Pack operator/(Pack a, Pack b) {         \
        bench::counted.kind##_divisions += 1;       \
        return a.v / b.v;                           \
    }                                               \
    inline Mask operator<(Pack a, Pack b) {         \
        bench::counted.kind##_operations += 1;      \
        return {a.v < b.v};                         \
    }                                               \
    inline Mask operator<=(Pack a, Pack b) {        \
        bench::counted.kind##_operations += 1;      \
        return {a.v <= b.v};                        \
    }                                               \
    inline Mask operator>(Pack a, Pack b) {         \
        return b < a;                               \
    }                                               \
    inline Mask operator>=(Pack a, Pack b) {        \
        return b <= a;                              \
    }                                               \
    inline Mask operator==(Pack a, Pack b) {        \
        bench::counted.kind##_operations += 1;      \
        return {a.v == b.v};                        \
    }                                               \
    inline Mask operator!=(Pack a, Pack b) {        \
        bench::counted.kind##_operations += 1;      \
        return {a.v != b.v};                        \
    }                                               \
    inline Mask operator&(Mask a, Mask b) {         \
        bench::counted.kind##_operations += 1;      \
        return {a.v && b.v};                        \
    }                                               \
    inline Mask operator|(Mask a, Mask b) {         \
        bench::counted.kind##_operations += 1;      \
        return {a.v || b.v};                        \
    }                                               \
    inline Pack choose(Mask mask, Pack a, Pack b) { \
        bench::counted.kind##_operations += 1;      \
        return mask.v ? a : b;                      \
    }                                               \
    inline Pack max_of(Pack a, Pack b) {            \
        bench::counted.kind##_operations += 1;      \
        return kernel::max_of(a.v, b.v);            \
    }                                               \
    inline Pack min_of(Pack a, Pack b) {            \
        bench::counted.kind##_operations += 1;      \
        return kernel::min_of(a.v, b.v);            \
    }                                               \
    inline bool all_of(Mask mask) {                 \
        bench::counted.kind##_operations += 1;      \
        return mask.v;                              \
    }

COUNTED_ARITHMETIC(Floats, FloatMask, float)
COUNTED_ARITHMETIC(Doubles, DoubleMask, double)
#undef COUNTED_ARITHMETIC

inline Ints minus(Ints a, Ints b) {
    bench::counted.float_operations += 1;
    return kernel::minus(a.v, b.v);
}

#define COUNTED_CONVERSION(To, name, From) \
    inline To name(From a) {               \
        bench::counted.conversions += 1;   \
        return kernel::name(a.v);          \
    }
COUNTED_CONVERSION(Doubles, wide, Floats)
COUNTED_CONVERSION(Doubles, wide, Ints)
COUNTED_CONVERSION(Floats, narrow, Doubles)
COUNTED_CONVERSION(Floats, narrow, Ints)
COUNTED_CONVERSION(Ints, truncated, Doubles)
#undef COUNTED_CONVERSION

inline Doubles whole(Doubles a) {
    return wide(truncated(a));
}
inline Floats one_nan(Floats a) {
    return choose(a == a, a, Floats(kernel::one_nan(a.v)));
}

// Reinterpreting bits costs nothing.
inline Longs bits_of(Doubles a) {
    return {kernel::bits_of(a.v)};
}
inline Doubles from_bits(Longs a) {
    return kernel::from_bits(a.v);
}
#define COUNTED_BITS(sign, Count)                  \
    inline Longs operator sign(Longs a, Count b) { \
        bench::counted.double_operations += 1;     \
        return {a.v sign b};                       \
    }
COUNTED_BITS(+, std::uint64_t)
COUNTED_BITS(&, std::uint64_t)
COUNTED_BITS(|, std::uint64_t)
COUNTED_BITS(>>, unsigned)
COUNTED_BITS(<<, unsigned)
#undef COUNTED_BITS

inline Floats load(const float* from) {
    return *from;
}
inline void store(float* to, Floats a) {
    *to = a.v;
}

}  // namespace LANES
