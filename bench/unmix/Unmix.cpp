#include <algorithm>

#include "support/Kernel.h"
#include "support/PlainCounts.h"
#include "unmix/BoxKernel.h"
#include "unmix/CleanKernel.h"
#include "unmix/SolveKernel.h"
#include "unmix/SpillKernel.h"
#include "unmix/UnknownKernel.h"

namespace bench {

namespace {

using plain::floats;

// A round: alpha squared, 6 sums of two; 6 cofactors of 3; the determinant, not 0: 6; three weights of 6;
// their sum, not 0: 6, and that of the pixel: 5; two bounds. Then what is left: 6, chi squared: 19, the
// variance by noise: 19, the logarithm: 12. Before all of it three differences of 2.
constexpr Counts kSolve =
    floats(kSolveRounds * 2 + 3, kSolveRounds*(1 + 12 + 18 + 6 + 18 + 6 + 5 + 2) + 6 + 19 + 19 + 12 + 6, 11);
// Three channels: 8 +, / 9, -, size: 2, - noise; the brightest: 2, * share; the farthest: 2, compare, choose
constexpr Counts kOdd = floats(0, 3 * 13 + 3 + 2 + 2, 7);
constexpr Counts kBoxOfSeven = floats(0, 12, 2);
// The deviation: 4 and a root; the prior: 5; an exponential: 22 and its density: 3; another: 22, 4; the pull:
// 6
constexpr Counts kPull = floats(5, 4 + 5 + 25 + 26 + 6, 5);
// The colour looked at: 15; rel: 3; hue: 3; places of three: 18, a root; between 8 points: 21; its own part:
// 3; gain: 3; light: 5, beyond: 4; the amount: 3; three channels of 2
constexpr Counts kSpill{.float_divisions = 5,
                        .float_operations = 15 + 3 + 3 + 18 + 21 + 3 + 3 + 9 + 3 + 6,
                        .conversions = 6,
                        .bytes = 4 * 11};
// 1 - alpha, * backing, -, * most, two bounds, two choices
constexpr Counts kTake = floats(0, 8, 4);

constexpr std::size_t kSide = 64;

}  // namespace

std::vector<Kernel> unmix_kernels() {
    Material& m = material();
    static std::vector<float> table(SpillGrid::kSize, 0.01f);
    static std::vector<float> column(kSide + 6);
    const std::array<const float*, 3> plate{m.fg[0].data(), m.fg[1].data(), m.fg[2].data()};
    const std::array<const float*, 3> backing{m.plate[0].data(), m.plate[1].data(), m.plate[2].data()};
    const auto solve = [&m, plate, backing] {
        const UnmixNoise noise{{25e-6f, 0.0f, 0.0f, 25e-6f, 0.0f, 25e-6f}};
        const CommonColour colour{{0.4f, 0.4f, 0.4f}, 0.0f, {0.01f, 0.005f, 0.005f, 0.01f, 0.005f, 0.01f}};
        solve_common(noise, {plate, backing, m.opacity.data()}, colour,
                     {m.out[0].data(), m.out[1].data(), m.out[2].data(), m.out[3].data()}, kSpan);
    };
    const auto odd = [&m, plate, backing] {
        const OddParams params{{0.005f, 0.005f, 0.005f}, 0.012f};
        odd_pixels(params,
                   {{{plate[0], plate[0], plate[0]},
                     {plate[1], plate[1], plate[1]},
                     {plate[2], plate[2], plate[2]}}},
                   backing, m.out[0].data(), kSpan);
    };
    const auto box = [&m] {
        box_sum(m.raw.all().data(), 3, column.data(), m.out[0].data(), kSide - 6, kSpan / kSide - 6);
    };
    const auto pull = [&m] {
        std::copy_n(m.opacity.data(), kSpan, m.out[0].data());
        pull_to_clear({1.0f, 1.0f}, m.lines[0].data(), m.raw.data(), m.opacity.data(), m.out[0].data(),
                      kSpan);
    };
    const auto spill = [&m, plate] {
        const UnspillParams params{table.data(), {1, 0, 2}, {0.2f, 1.0f, 0.3f}, 1.0f};
        for (std::size_t c = 0; c < 3; ++c) std::copy_n(plate[c], kSpan, m.out[c].data());
        remove_spill(params, {plate[0], plate[1], plate[2], m.opacity.data()}, m.opacity.data(),
                     {m.out[0].data(), m.out[1].data(), m.out[2].data()}, kSpan);
    };
    const auto take = [&m, plate, backing] {
        take_backing(plate[0], backing[0], m.opacity.data(), m.out[0].data(), kSpan);
    };
    return {{"solve_common", kSolve, solve},         {"odd_pixels", kOdd, odd},
            {"box_sum, radius 3", kBoxOfSeven, box}, {"pull_to_clear", kPull, pull},
            {"remove_spill", kSpill, spill},         {"take_backing", kTake, take}};
}

}  // namespace bench
