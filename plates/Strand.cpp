#include "plates/Hair.h"

namespace plate {

namespace {

// The share of a tent two pixels wide that lies below x. A box would leave thin slanting hairs beaded.
float tent_below(float x) {
    const float t = std::clamp(x, -1.0f, 1.0f);
    return t < 0.0f ? 0.5f * square(1.0f + t) : 1.0f - 0.5f * square(1.0f - t);
}

}  // namespace

void Strand::measure() {
    top = bottom = points[0].y;
    for (const Vec2 p : points) {
        top = std::min(top, p.y);
        bottom = std::max(bottom, p.y);
    }
    const float reach = std::max(root_width, tip_width) + 1.0f;
    top -= reach;
    bottom += reach;
}

float Strand::half_width(float t) const {
    const float near_root = 0.7f + 0.3f * smooth(0.0f, 0.15f, t);
    return mix(root_width, tip_width, saturate((t - taper_from) / (1.0f - taper_from))) * near_root;
}

Shade Strand::shade(float t, float across) const {
    const Vec3 base = mix(root, tip, smooth(0.05f, 0.95f, t));
    // A lock is round: dark at its sides, bright where it turns through the light.
    const float round = 1.0f - 0.42f * across * across;
    const float shine = bell(t - shine_at, 0.10f) * (0.4f + 0.6f * bell(across + 0.2f, 0.6f));
    Shade s;
    s.colour = base * round + (tip * 0.55f + Vec3{0.085f, 0.075f, 0.07f}) * shine;
    s.spill = spill * (1.0f + across * across);
    return s;
}

void StrandPainter::paint(const std::vector<Strand>& strands, int row, std::vector<Stack>& pixels) {
    const float y = static_cast<float>(row) + 0.5f;
    const float last = static_cast<float>(pixels.size()) - 1.0f;
    for (const Strand& strand : strands) {
        if (y < strand.top || y > strand.bottom) continue;
        const float reach = std::max(strand.root_width, strand.tip_width) + 1.0f;
        int low = static_cast<int>(pixels.size()), high = -1;
        for (std::size_t k = 0; k + 1 < Strand::kPoints; ++k) {
            const Vec2 a = strand.points[k], b = strand.points[k + 1];
            if (y < std::min(a.y, b.y) - reach || y > std::max(a.y, b.y) + reach) continue;
            const float left = std::max(std::min(a.x, b.x) - reach - 0.5f, 0.0f);
            const float right = std::min(std::max(a.x, b.x) + reach - 0.5f, last);
            if (left > right) continue;
            for (int x = static_cast<int>(left); x <= static_cast<int>(right); ++x) {
                const Vec2 p{static_cast<float>(x) + 0.5f, y};
                const float s = along(p, a, b);
                const Vec2 off = p - a - (b - a) * s;
                const float t = (static_cast<float>(k) + s) / static_cast<float>(Strand::kPoints - 1);
                const float d = length(off), half = strand.half_width(t);
                const auto i = static_cast<std::size_t>(x);
                if (d - half >= 1.0f || (cover_[i] > 0.0f && d - half >= hit_[i].distance)) continue;
                cover_[i] = tent_below(half - d) - tent_below(-half - d);
                const float turn = (b.x - a.x) * off.y - (b.y - a.y) * off.x;
                hit_[i] = {d - half, t,
                           std::clamp((turn < 0.0f ? -d : d) / std::max(half, 0.5f), -1.0f, 1.0f)};
                low = std::min(low, x);
                high = std::max(high, x);
            }
        }
        for (int x = low; x <= high; ++x) {
            const auto i = static_cast<std::size_t>(x);
            if (cover_[i] <= 0.0f) continue;
            pixels[i].over(strand.shade(hit_[i].t, hit_[i].across), cover_[i]);
            cover_[i] = 0.0f;
        }
    }
}

}  // namespace plate
