#include <algorithm>

#include "lanes/ForPacks.h"
#include "lanes/LogExp.h"
#include "unmix/EncodingKernel.h"

using namespace kernel;

namespace LANES {

namespace {

constexpr std::size_t kChunk = 256;
constexpr float kLargestHalf = 65504.0f;
constexpr double kLn10 = 2.302585092994046;

// Printing density: a code's share of a factor of ten, the code of white, what shines through at black.
constexpr double kCodes = 1023.0;
constexpr double kWhite = 685.0;
constexpr double kDecade = 0.002 / 0.6;
constexpr double kBlackLight = 0.0107977516232771;  // 10 ^ ((95 - kWhite) * kDecade)
// The least light above full black that still has a code.
constexpr double kLeast = 1e-6;

// What is no number, or too large, out of the way.
[[gnu::always_inline]] inline Floats finite(Floats v) {
    return choose(v == v, clamp_to(-kLargestHalf, kLargestHalf, v), Floats(0.0f));
}

[[gnu::always_inline]] inline Floats finite(Doubles v) {
    return finite(narrow(v));
}

[[gnu::always_inline]] inline Doubles power(Doubles v, double exponent) {
    return exp_of(log_of(v) * exponent);
}

[[gnu::always_inline]] inline Floats from_srgb(Floats value) {
    const Doubles v = wide(value);
    const Doubles bent = power(max_of((v + 0.055) / 1.055, Doubles(0.01)), 2.4);
    return finite(choose(v <= 0.04045, v / 12.92, bent));
}

[[gnu::always_inline]] inline Floats to_srgb(Floats light) {
    const Doubles v = wide(light);
    const Doubles bent = power(max_of(v, Doubles(0.001)), 1.0 / 2.4) * 1.055 - 0.055;
    return finite(choose(v <= 0.0031308, v * 12.92, bent));
}

[[gnu::always_inline]] inline Floats from_density(Floats value) {
    const Doubles shines = exp_of((wide(value) * kCodes - kWhite) * (kDecade * kLn10));
    return finite((shines - kBlackLight) / (1.0 - kBlackLight));
}

[[gnu::always_inline]] inline Floats to_density(Floats light) {
    const Doubles shines = max_of(wide(light) * (1.0 - kBlackLight) + kBlackLight, Doubles(kLeast));
    return finite((log_of(shines) / (kDecade * kLn10) + kWhite) / kCodes);
}

// `out` may be `in`, which packs must not overlap.
template <class Recoded>
[[gnu::always_inline]] inline void recode(const float* in, float* out, std::size_t n,
                                          const Recoded& recoded) {
    float values[kChunk];
    for (std::size_t begin = 0; begin < n; begin += kChunk) {
        const std::size_t count = n - begin < kChunk ? n - begin : kChunk;
        std::copy_n(in + begin, count, values);
        for_packs({values}, {out + begin}, count,
                  [&recoded](const Inputs& from, const Outputs& to) { to.put(0, recoded(finite(from[0]))); });
    }
}

}  // namespace

void to_light(Encoding encoding, const float* in, float* out, std::size_t n) {
    if (encoding == Encoding::kSrgb) return recode(in, out, n, [](Floats v) { return from_srgb(v); });
    if (encoding == Encoding::kLogarithmic)
        return recode(in, out, n, [](Floats v) { return from_density(v); });
    recode(in, out, n, [](Floats v) { return v; });
}

void from_light(Encoding encoding, const float* in, float* out, std::size_t n) {
    if (encoding == Encoding::kSrgb) return recode(in, out, n, [](Floats v) { return to_srgb(v); });
    if (encoding == Encoding::kLogarithmic) return recode(in, out, n, [](Floats v) { return to_density(v); });
    recode(in, out, n, [](Floats v) { return v; });
}

}  // namespace LANES
