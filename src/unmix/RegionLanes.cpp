#include "unmix/FloatMath.h"
#include "unmix/RegionKernel.h"

namespace LANES {

namespace {

using kernel::larger;
using kernel::less;
using std::size_t;

constexpr float kWhite = 1.05f;
constexpr float kLeastLead = 0.02f;
constexpr float kDark = 0.05f;
constexpr float kLit = 0.9f;

[[gnu::always_inline]] inline float beyond_white(float plate, float backing) {
    return (plate - backing) / (kWhite - less(backing, 1.0f));
}

}  // namespace

void rough_leads(const std::array<const float*, 3>& plate, const std::array<const float*, 3>& backing,
                 const RoughRows& out, size_t n) {
    const auto [s_k, s_o, s_p] = plate;
    const auto [b_k, b_o, b_p] = backing;
    const RoughRows to = out;
#pragma GCC ivdep
    for (size_t i = 0; i < n; ++i) {
        to.lead[i] = s_k[i] - larger(s_o[i], s_p[i]);
        to.backing_lead[i] = larger(b_k[i] - larger(b_o[i], b_p[i]), kLeastLead);
        const float dark = (b_k[i] - s_k[i]) / larger(b_k[i], kDark);
        const float others = larger(beyond_white(s_o[i], b_o[i]), beyond_white(s_p[i], b_p[i]));
        const float bright = larger(others, beyond_white(s_k[i], b_k[i]));
        // What leads as much as the backing is backing in more light.
        to.bound[i] = larger(dark, to.lead[i] > kLit * to.backing_lead[i] ? 0.0f : bright);
    }
}

void rough_opacity(const RoughRows& rows, const float* own, float* __restrict rough, size_t n) {
    const RoughRows in = rows;
#pragma GCC ivdep
    for (size_t i = 0; i < n; ++i) {
        const float lack = less(larger(own[i], -in.backing_lead[i]), 0.0f);
        const float clear = (in.lead[i] - lack) / (in.backing_lead[i] - lack);
        rough[i] = larger(1.0f - clear, in.bound[i]);
    }
}

void above(const float* v, float limit, std::uint8_t* __restrict out, size_t n) {
    for (size_t i = 0; i < n; ++i) out[i] = v[i] > limit ? 1 : 0;
}

}  // namespace LANES
