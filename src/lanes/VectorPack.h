// The packs of the vector forms: four vectors each. See lanes/Pack.h.
#pragma once

#include <cstddef>
#include <cstdint>

#include LANE_VECTOR

#define LANES_INLINE [[gnu::always_inline]] inline

namespace LANES {

inline constexpr int kVectors = 4;
inline constexpr std::size_t kPack = kVectors * kVectorWidth;

template <class Vector>
struct Four {
    Vector v[kVectors];
};

// result.v[i] = operation(a.v[i], ...) for each vector.
template <class Result, class Operation, class... Packs>
LANES_INLINE Result each(Operation operation, const Packs&... packs) {
    Result result;
    for (int i = 0; i < kVectors; ++i) result.v[i] = operation(packs.v[i]...);
    return result;
}

struct Floats : Four<FloatVector> {
    Floats() = default;
    LANES_INLINE Floats(float all) {  // NOLINT: constants mix with packs as they do with single values
        for (FloatVector& one : v) one = splat(all);
    }
};
struct Doubles : Four<DoubleVector> {
    Doubles() = default;
    LANES_INLINE Doubles(double all) {  // NOLINT: as above
        for (DoubleVector& one : v) one = splat(all);
    }
};
struct Ints : Four<IntVector> {
    Ints() = default;
    LANES_INLINE Ints(std::int32_t all) {  // NOLINT: as above
        for (IntVector& one : v) one = splat(all);
    }
};
// The bits of Doubles.
using LongVector = std::uint64_t __attribute__((vector_size(8 * kVectorWidth)));
struct Longs : Four<LongVector> {};
struct FloatMask : Four<FloatMaskVector> {};
struct DoubleMask : Four<DoubleMaskVector> {};

// What both floating-point packs can do.
#define LANES_ARITHMETIC(Pack, Mask)                                                           \
    LANES_INLINE Pack operator+(Pack a, Pack b) {                                              \
        return each<Pack>([](auto x, auto y) { return x + y; }, a, b);                         \
    }                                                                                          \
    LANES_INLINE Pack operator-(Pack a, Pack b) {                                              \
        return each<Pack>([](auto x, auto y) { return x - y; }, a, b);                         \
    }                                                                                          \
    LANES_INLINE Pack operator*(Pack a, Pack b) {                                              \
        return each<Pack>([](auto x, auto y) { return x * y; }, a, b);                         \
    }                                                                                          \
    LANES_INLINE Pack operator/(Pack a, Pack b) {                                              \
        return each<Pack>([](auto x, auto y) { return x / y; }, a, b);                         \
    }                                                                                          \
    LANES_INLINE Mask operator<(Pack a, Pack b) {                                              \
        return each<Mask>([](auto x, auto y) { return less(x, y); }, a, b);                    \
    }                                                                                          \
    LANES_INLINE Mask operator<=(Pack a, Pack b) {                                             \
        return each<Mask>([](auto x, auto y) { return less_equal(x, y); }, a, b);              \
    }                                                                                          \
    LANES_INLINE Mask operator>(Pack a, Pack b) {                                              \
        return b < a;                                                                          \
    }                                                                                          \
    LANES_INLINE Mask operator>=(Pack a, Pack b) {                                             \
        return b <= a;                                                                         \
    }                                                                                          \
    LANES_INLINE Mask operator==(Pack a, Pack b) {                                             \
        return each<Mask>([](auto x, auto y) { return equal(x, y); }, a, b);                   \
    }                                                                                          \
    LANES_INLINE Mask operator!=(Pack a, Pack b) {                                             \
        return each<Mask>([](auto x, auto y) { return unequal(x, y); }, a, b);                 \
    }                                                                                          \
    LANES_INLINE Mask operator&(Mask a, Mask b) {                                              \
        return each<Mask>([](auto x, auto y) { return both(x, y); }, a, b);                    \
    }                                                                                          \
    LANES_INLINE Mask operator|(Mask a, Mask b) {                                              \
        return each<Mask>([](auto x, auto y) { return either(x, y); }, a, b);                  \
    }                                                                                          \
    LANES_INLINE Pack choose(Mask mask, Pack a, Pack b) {                                      \
        return each<Pack>([](auto m, auto x, auto y) { return select(m, x, y); }, mask, a, b); \
    }                                                                                          \
    LANES_INLINE Pack max_of(Pack a, Pack b) {                                                 \
        return each<Pack>([](auto x, auto y) { return larger(x, y); }, a, b);                  \
    }                                                                                          \
    LANES_INLINE Pack min_of(Pack a, Pack b) {                                                 \
        return each<Pack>([](auto x, auto y) { return smaller(x, y); }, a, b);                 \
    }                                                                                          \
    LANES_INLINE bool all_of(Mask mask) {                                                      \
        return all_bits(both(both(mask.v[0], mask.v[1]), both(mask.v[2], mask.v[3])));         \
    }

LANES_ARITHMETIC(Floats, FloatMask)
LANES_ARITHMETIC(Doubles, DoubleMask)
#undef LANES_ARITHMETIC

LANES_INLINE Ints minus(Ints a, Ints b) {
    return each<Ints>([](auto x, auto y) { return difference(x, y); }, a, b);
}

LANES_INLINE Doubles wide(Floats a) {
    return each<Doubles>([](auto x) { return widened(x); }, a);
}
LANES_INLINE Doubles wide(Ints a) {
    return each<Doubles>([](auto x) { return widened(x); }, a);
}
LANES_INLINE Floats narrow(Doubles a) {
    return each<Floats>([](auto x) { return narrowed(x); }, a);
}
LANES_INLINE Floats narrow(Ints a) {
    return each<Floats>([](auto x) { return single(x); }, a);
}
LANES_INLINE Ints truncated(Doubles a) {
    return each<Ints>([](auto x) { return converted(x); }, a);
}
LANES_INLINE Doubles whole(Doubles a) {
    return wide(truncated(a));
}
LANES_INLINE Floats one_nan(Floats a) {
    return choose(a == a, a, Floats(__builtin_nanf("")));
}

LANES_INLINE Longs bits_of(Doubles a) {
    return each<Longs>([](auto x) { return LongVector(x); }, a);
}
LANES_INLINE Doubles from_bits(Longs a) {
    return each<Doubles>([](auto x) { return DoubleVector(x); }, a);
}
LANES_INLINE Longs operator+(Longs a, std::uint64_t b) {
    return each<Longs>([b](auto x) { return x + b; }, a);
}
LANES_INLINE Longs operator&(Longs a, std::uint64_t b) {
    return each<Longs>([b](auto x) { return x & b; }, a);
}
LANES_INLINE Longs operator|(Longs a, std::uint64_t b) {
    return each<Longs>([b](auto x) { return x | b; }, a);
}
LANES_INLINE Longs operator>>(Longs a, unsigned by) {
    return each<Longs>([by](auto x) { return x >> by; }, a);
}
LANES_INLINE Longs operator<<(Longs a, unsigned by) {
    return each<Longs>([by](auto x) { return x << by; }, a);
}

LANES_INLINE Floats load(const float* from) {
    Floats result;
    for (int i = 0; i < kVectors; ++i) result.v[i] = load_vector(from + i * kVectorWidth);
    return result;
}
LANES_INLINE void store(float* to, Floats a) {
    for (int i = 0; i < kVectors; ++i) store_vector(to + i * kVectorWidth, a.v[i]);
}

}  // namespace LANES
