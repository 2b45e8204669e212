#include <gtest/gtest.h>

#include "stages/SpillKernel.h"
#include "support/StageControls.h"

using namespace test;
using Zo::Image::to_int;

namespace {

struct Setting {
    ControlTriple backing, ambiance;
    int darks, cool, warm, mid_tones, brights, strength;
};

StageControls controls_for(const Setting& s) {
    return {{75, s.backing[0]},   {76, s.backing[1]},   {77, s.backing[2]}, {115, s.ambiance[0]},
            {116, s.ambiance[1]}, {117, s.ambiance[2]}, {105, s.darks},     {106, s.cool},
            {107, s.warm},        {110, s.mid_tones},   {111, s.brights},   {118, s.strength}};
}

std::int64_t wrapped(std::int64_t v) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(v));
}

double above0(double v) {
    return v > 0 ? v : 0;
}

// One pixel, channel by channel in arrays; integers in 64 bits, wrapped where they are kept.
std::array<float, 3> naive(const Setting& k, const std::array<float, 3>& c, float alpha) {
    const double s = static_cast<double>(1.0f / 255.0f), bp = k.backing[2];
    const auto middle = [](int whole, float level) { return std::min(whole, to_int(255.0f - level)); };
    const double brights = k.brights / 100.0, mid = k.mid_tones / 100.0;
    const double q = bp * brights + middle(k.backing[2], static_cast<float>(k.backing[2])) * mid;
    const double total = middle(to_int(c[2]), c[2]) * mid + static_cast<double>(c[2]) * brights;
    const double z = static_cast<double>(255.0f - alpha) * (k.darks / 100.0 * s);
    std::array<double, 2> u{};
    for (std::size_t i = 0; i < 2; ++i) {
        const std::int64_t b = k.backing[i];
        const std::int32_t h = to_int(z * (static_cast<double>(wrapped(k.backing[2] - b)) / bp * 255));
        const double d = static_cast<double>(wrapped(b - h));
        const float hf = static_cast<float>(h);
        const double n = (static_cast<double>(c[i] - hf) * q - d * total) /
                         (static_cast<double>(255.0f - hf) * (q * s) - d);
        const std::int32_t kept = to_int(n);
        u[i] = (total - (kept < 0 ? 0 : kept)) * (1.0 / q);
    }
    const double um = u[0] > u[1] ? u[1] : u[0];
    double f = um + k.cool / 100.0 * above0(u[0] - u[1]) + k.warm / 100.0 * above0(u[1] - u[0]);
    if (f < -127.5) f = -127.5;
    if (f > 127.5) f = 127.5;
    const std::int64_t plain = std::max(to_int(um * 255), 0);
    const std::int64_t full = std::clamp(to_int(255 * f), 0, 255);
    const double st = k.strength / 100.0;
    const double blend = to_int((1 - st) * static_cast<double>(plain) + st * static_cast<double>(full));
    double most = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        const double left =
            (static_cast<double>(c[i] * 255.0f) - k.backing[i] * static_cast<double>(plain)) * s;
        if (left > most) most = left;
    }
    most *= 255;
    std::array<float, 3> out{};
    for (std::size_t i = 0; i < 3; ++i) {
        const double whole = k.backing[i] * static_cast<double>(i == 2 ? full : plain) + most;
        if (whole == 0) continue;
        out[i] = static_cast<float>((k.ambiance[i] * blend + most) * static_cast<double>(c[i]) / whole);
    }
    std::int64_t level = to_int(out[1]);
    if (static_cast<double>(out[0]) > static_cast<double>(level)) level = to_int(out[0]);
    level = wrapped(level - std::min<std::int64_t>(full - plain, 0));
    const std::int64_t above = wrapped(std::int64_t{k.ambiance[2]} - std::max(k.ambiance[0], k.ambiance[1]));
    const double limit = static_cast<double>(level) + above0(static_cast<double>(above) * s) * 255;
    if (static_cast<double>(out[2]) > limit) out[2] = static_cast<float>(limit);
    for (float& v : out) {
        if (v < 0) v = 0;
        if (v > 255) v = 255;
    }
    return out;
}

}  // namespace

TEST(SpillKernel, EqualsTheNaiveLoop) {
    constexpr int kCount = 6001, kMax = 2147483647, kMin = -kMax - 1;
    const Span in(kCount, 21);
    std::vector<float> pre(kCount);
    pre[5] = std::numeric_limits<float>::quiet_NaN();
    pre[6] = -1.0f;
    for (const Setting& s : {
             Setting{{30, 80, 200}, {128, 128, 128}, 0, 50, 100, 0, 100, 50},
             Setting{{90, 20, 140}, {10, 60, 250}, 70, -30, 160, 45, 80, 20},
             Setting{{90, 20, 140}, {200, 60, 90}, -40, 250, 10, 30, 120, 130},
             Setting{{30, 80, 0}, {128, 0, 128}, 50, 50, 100, 0, 100, 50},
             Setting{{255, 255, 255}, {0, 0, 0}, 20, 50, 100, 100, 0, 0},
             Setting{{kMin, kMax, 1}, {kMax, 5, kMin}, 9000, 50, 100, 10, 100, 50},
             Setting{{kMax, kMin, kMax}, {kMin, kMin, kMax}, 900, kMax, kMin, kMax, kMax, kMin},
         }) {
        const StageControls controls = controls_for(s);
        Span out(kCount), expected(kCount);
        suppress_spill(spill_params(controls.block), in.in(), in.alpha(), pre.data(), out.out(), kCount);
        for (std::size_t i = 0; i < kCount; ++i) {
            const auto v = naive(s, {in.planes[0][i], in.planes[1][i], in.planes[2][i]}, in.planes[3][i]);
            for (std::size_t c = 0; c < 3; ++c)
                expected.planes[c][i] = pre[i] == 0.0f ? v[c] : in.planes[c][i];
        }
        for (std::size_t c = 0; c < 3; ++c) {
            EXPECT_EQ(test::bits(out.planes[c]), test::bits(expected.planes[c])) << s.backing[0] << ' ' << c;
        }
    }
}
