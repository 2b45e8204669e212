// What a pixel takes in the kernels that are plain loops over floats, whose packs the compiler makes: nothing
// counts these, so here is the arithmetic term by term.
#pragma once

#include "support/Counts.h"

namespace bench::plain {

constexpr Counts floats(double divisions, double operations, double planes) {
    return {.float_divisions = divisions, .float_operations = operations, .bytes = 4.0 * planes};
}

inline constexpr double kOneNan = 2;  // compare, choose

// v - 0.5, * 0.5, + 1, infinity: compare, choose; + 0.5, straight: compare, choose; * 255
inline constexpr Counts kNormalize = floats(1, 9, 2);
// two bounds, 255 - v
inline constexpr Counts kOutputMatte = floats(0, 3, 2);

// * 1/255, - pivot, / (1 - pivot), 1 - t, + pivot, infinity: compare, choose; straight: compare, choose
inline constexpr double kDecode = 9;  // and a division
// 1 - v, two bounds
inline constexpr Counts kOpacity = floats(1, kDecode + 3, 2);
// / 255, 1 - v, two bounds
inline constexpr Counts kLinearOpacity = floats(1, 3, 2);
// * k, 1 - k, * background, +
inline constexpr Counts kComposite = floats(1, kDecode + 4 + kOneNan, 4);
// the largest half float: the smaller; 1 - k, * background, +
inline constexpr Counts kAddedComposite = floats(1, kDecode + 1 + 3 + kOneNan, 4);
// covered: compare, choose; a channel: * rest, + tint, choose
inline constexpr Counts kOverlay = floats(1, kDecode + 2 + 3 * (3 + kOneNan), 7);
// * h, 1 - h, * out, +, compare, choose
inline constexpr Counts kHoldoutColour = floats(0, 6 + kOneNan, 4);
inline constexpr Counts kHoldoutAlpha = floats(0, 1, 3);

// Lines folded into one that is read and written: a step a line.
constexpr Counts fold(double lines, double step) {
    return floats(0, lines * step, lines + 2);
}
inline constexpr double kExtreme = 1;    // the larger or smaller
inline constexpr double kZeroStays = 2;  // compare, choose
inline constexpr double kSum = 1;

// Six samples to 0..1, - tolerance, four differences, the smaller, compare, choose
inline constexpr Counts kCrudeMatte = floats(2, 6 + 1 + 4 + 1 + 2, 7);
// zeros of a column: 3 compares, 2 +; of three columns: 2 +; disagreeing: compare, -, choose; flipped:
// choose; against the threshold: compare, choose
inline constexpr Counts kIslands = floats(0, 5 + 2 + 3 + 1 + 2, 4);
// Radius 2: is it 0: compare, choose; the largest of 5 from windows of 2 and 4: 3; result: compare, choose
inline constexpr Counts kShrinkRow = floats(0, 2 + 3 + 2, 2);
// Radius 2: from 0 up, the largest of 5: 3; two ends: *, larger
inline constexpr Counts kShrinkCuRow = floats(0, 1 + 3 + 4, 2);
inline constexpr Counts kShrinkCuEnd = floats(0, 2, 3);
inline constexpr Counts kBlurFinish = floats(0, 1, 2);

// What clean-up pushes: - threshold, into an integer and back, from 0 up; in double * strength, bound.
inline constexpr Counts kPush{.float_operations = 2, .double_operations = 2, .conversions = 2};
// 255 - push, * colour, / 255; into double and back
inline constexpr Counts kCleanupColour =
    kPush + Counts{.double_divisions = 1, .double_operations = 2, .conversions = 2, .bytes = 4 * 3};
// 255 - a, * push, / 255, + a; into double and back
inline constexpr Counts kCleanupMatte =
    kPush + Counts{.double_divisions = 1, .double_operations = 3, .conversions = 2, .bytes = 4 * 2};

// Three colours: * plate, * 0.5, +, bound. Their brightness: 2 + of two colours; * 0.5; is it black: compare,
// +; in double * 255, +, bound, 255 - v; into double thrice and back
inline constexpr Counts kClearFrame =
    3 * floats(1, 4 + kOneNan, 0) + Counts{.double_divisions = 1,
                                           .float_operations = 4 + 1 + 2 + kOneNan,
                                           .double_operations = 4,
                                           .conversions = 4,
                                           .bytes = 4 * 13};

// Radius 3, each along rows and along columns: two extremes of 7 (3 each), is it backing: compare, choose;
// in double: two ends, range, - low, range 0: compare, choose; -, *, +. Planes once a direction.
inline constexpr Counts kMatteCorrect{.double_divisions = 2,
                                      .float_operations = 2 * (6 + 2) + 1,
                                      .double_operations = 2 * 9,
                                      .conversions = 2 * 4,
                                      .bytes = 4 * 7};
// The nearest clear pixel: about 8 integer operations along the row, 8 on the walk up and 10 on the walk
// down. Windows along rows and columns, three colours: +, -, + half, / count.
inline constexpr Counts kSmartInterpol = floats(2 * 3, 26 + 2 * 3 * 3, 7);

}  // namespace bench::plain
