// What a kernel does to make one pixel, and what that takes at the least.
#pragma once

namespace bench {

struct Counts {
    double float_divisions = 0.0;
    double double_divisions = 0.0;
    // Additions, multiplications, comparisons, selections, and, or: one each.
    double float_operations = 0.0;
    double double_operations = 0.0;
    double conversions = 0.0;  // between float, double and integers
    double bytes = 0.0;        // of the planes that it reads and writes, each once
};

constexpr Counts operator+(const Counts& a, const Counts& b) {
    return {a.float_divisions + b.float_divisions,   a.double_divisions + b.double_divisions,
            a.float_operations + b.float_operations, a.double_operations + b.double_operations,
            a.conversions + b.conversions,           a.bytes + b.bytes};
}

constexpr Counts operator*(double times, const Counts& c) {
    return {times * c.float_divisions,   times * c.double_divisions, times * c.float_operations,
            times * c.double_operations, times * c.conversions,      times * c.bytes};
}

// What the counted form of the kernels (see counted/lanes/Pack.h) has done so far.
inline Counts counted;

}  // namespace bench
