#include "lanes/ForPacks.h"
#include "screen/ClearRegionPixel.h"

namespace LANES {

using namespace kernel;

namespace {

void decide_constant(const ClearRegionParams& params, const RolePixels& fg, float* alpha, std::size_t n) {
    const ClearRegionParams k = params;
    const auto level = [&](std::int32_t backing, std::int32_t tolerance) {
        return (static_cast<double>(backing) + static_cast<double>(tolerance)) * kByte;
    };
    const double backing = k.backingP * kByte;
    const Minor<double> minor1 = minor_of(backing, level(k.backing1, k.tolerance1), k.darks1);
    const Minor<double> minor0 = minor_of(backing, level(k.backing0, k.tolerance0), k.darks0);
    const auto decide = [&]<BackingLevel kLevel>() {
        for_packs({fg.role0, fg.role1, fg.primary}, {alpha}, n, [=](const Inputs& from, const Outputs& to) {
            to.put(0, clear_of<kLevel>(k, backing, minor0, minor1, from[0], from[1], from[2]));
        });
    };
    if (backing > 0.0) {
        decide.operator()<BackingLevel::kPositive>();
    } else {
        decide.operator()<BackingLevel::kAny>();
    }
}

void decide_against_plate(const ClearRegionParams& params, const RolePixels& fg, const RolePixels& plate,
                          float* alpha, std::size_t n) {
    const ClearRegionParams k = params;
    const auto t0 = static_cast<float>(k.tolerance0);
    const auto t1 = static_cast<float>(k.tolerance1);
    for_packs({fg.role0, fg.role1, fg.primary, plate.role0, plate.role1, plate.primary}, {alpha}, n,
              [=](const Inputs& from, const Outputs& to) {
                  const Doubles backing = wide(from[5] * kByteSingle);
                  const auto minor1 = minor_of(backing, wide((from[4] + t1) * kByteSingle), k.darks1);
                  const auto minor0 = minor_of(backing, wide((from[3] + t0) * kByteSingle), k.darks0);
                  to.put(0,
                         clear_of<BackingLevel::kAny>(k, backing, minor0, minor1, from[0], from[1], from[2]));
              });
}

// A NaN in a matte counts as not 0.
void force(const float* matte, float value, float* __restrict alpha, std::size_t n) {
    if (matte == nullptr) return;
    for (std::size_t i = 0; i < n; ++i) alpha[i] = matte[i] != 0.0f ? value : alpha[i];
}

}  // namespace

void clear_region(const ClearRegionParams& params, const RolePixels& fg, const RolePixels* plate,
                  const ClearRegionMattes& mattes, float* alpha, std::size_t n) {
    if (plate == nullptr) {
        decide_constant(params, fg, alpha, n);
    } else {
        decide_against_plate(params, fg, *plate, alpha, n);
    }
    // The strongest last.
    force(mattes.garbage, 255.0f, alpha, n);
    force(mattes.crude, 255.0f, alpha, n);
    force(mattes.holdout, 0.0f, alpha, n);
}

}  // namespace LANES
