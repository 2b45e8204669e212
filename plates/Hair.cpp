#include "plates/Hair.h"

#include "plates/Figure.h"

namespace plate {

namespace {

constexpr float kQuarter = 1.57079633f;

// Widths are given for a picture 1080 pixels high.
struct Grower {
    const Look& look;
    const Pose& pose;
    const Placement& place;
    float unit;  // of a pixel at 1080, in pixels of this picture

    Grower(const Look& l, const Pose& p, const Placement& at)
        : look(l), pose(p), place(at), unit(at.height / 1080.0f) {}

    void colour(Strand& strand, Draw& draw, float depth) const {
        const float level = draw.between(0.72f, 1.18f) * (1.0f - 0.45f * depth);
        const float light = draw.between(0.0f, 0.55f);
        strand.root = look.hair * (level * 0.75f);
        strand.tip = mix(look.hair, look.hair_light, light) * level;
        strand.spill = 0.012f + 0.02f * draw() + 0.03f * look.vary.spill;
    }

    float swing(float t, float phase) const {
        return 0.030f * t * t * std::sin(0.19f * pose.time + phase) +
               0.012f * t * t * std::sin(0.43f * pose.time + 2.3f * phase);
    }

    // From the parting over the skull to the ear, then down. `layer` 0 lies on the brow, 1 outermost.
    Strand lock(Draw& draw, float side, float layer, bool behind) const {
        Strand strand;
        const float ex =
            behind ? draw.between(0.30f, 1.16f) : mix(0.93f, 1.17f, layer) + draw.between(-0.03f, 0.03f);
        const float ey = behind ? 1.12f : mix(0.62f, 1.13f, layer) + draw.between(-0.03f, 0.03f);
        const float droop = behind ? 0.0f : 0.20f * (1.0f - layer);
        const float parting = look.parting + 0.04f * draw.between(-1.0f, 1.0f);
        const float turn = 0.50f + 0.06f * draw.between(-1.0f, 1.0f);  // share of the length above the ear
        const float end = look.hair_length + draw.between(-0.22f, 0.12f) - (behind ? 0.0f : 0.10f);
        const float flare = (behind ? 0.16f : 0.10f) + draw.between(-0.14f, 0.22f);
        const float wave = look.curl * draw.between(0.5f, 1.3f), waves = draw.between(4.0f, 5.2f);
        const float phase = look.fold_phase + 0.6f * draw() + (side > 0.0f ? 1.5f : 0.0f);
        for (std::size_t k = 0; k < Strand::kPoints; ++k) {
            const float t = static_cast<float>(k) / static_cast<float>(Strand::kPoints - 1);
            Vec2 q;
            if (t < turn) {
                const float angle = kQuarter * t / turn;
                q = {parting + (side * ex - parting) * std::sin(angle),
                     0.06f - (ey + 0.06f) * std::cos(angle) + droop * std::sin(2.0f * angle)};
            } else {
                const float fall = (t - turn) / (1.0f - turn);
                q = {side * (ex + flare * fall * fall), 0.06f + (end - 0.06f) * fall};
            }
            const float grown = smooth(0.25f, 1.0f, t);
            q.x += wave * grown * std::sin(waves * 3.0f * t + phase) + swing(grown, phase);
            strand.points[k] = place.from_head(q);
        }
        const bool thick = draw() < 0.40f;
        strand.root_width = unit * (thick ? draw.between(1.8f, 4.6f) : draw.between(0.6f, 1.7f));
        strand.tip_width = unit * draw.between(0.2f, 0.9f);
        strand.taper_from = draw.between(0.45f, 0.75f);
        colour(strand, draw, behind ? 0.75f : 0.45f * (1.0f - layer) * draw());
        strand.shine_at = turn * (0.46f + 0.10f * draw()) - 0.10f * side * 0.5f;
        return strand;
    }

    // A hair that leaves the mass at its outline and bends as it likes.
    Strand stray(Draw& draw, bool bold) const {
        Strand strand;
        const float side = draw.sign();
        const bool crown = draw() < 0.36f;
        Vec2 q;
        float heading;  // radians from straight down, positive outward
        if (crown) {
            const float angle = draw.between(0.1f, 1.5f);
            q = {side * 1.05f * std::sin(angle), 0.06f - 1.07f * std::cos(angle)};
            heading = kQuarter - angle + 0.02f + (bold ? 0.5f : 0.85f) * square(draw());
        } else {
            const float down = draw();
            q = {side * (draw.between(0.92f, 1.10f) + 0.08f * down),
                 mix(-0.1f, look.hair_length - 0.30f, down)};
            heading = 0.75f * square(draw());
        }
        const float reach =
            (bold ? draw.between(0.6f, 1.25f) : draw.between(0.3f, 1.1f)) * (crown ? 0.75f : 1.0f);
        const float step = reach / static_cast<float>(Strand::kPoints - 1);
        const float bend = draw.between(-1.2f, 0.8f) / static_cast<float>(Strand::kPoints);
        const float curl = 0.26f * square(draw()), phase = draw.between(0.0f, 6.28f);
        const float frequency = draw.between(0.25f, 0.60f);
        for (std::size_t k = 0; k < Strand::kPoints; ++k) {
            const float n = static_cast<float>(k), t = n / static_cast<float>(Strand::kPoints - 1);
            strand.points[k] = place.from_head({q.x + 1.6f * swing(t, phase), q.y + 0.3f * swing(t, phase)});
            q.x += side * step * std::sin(heading);
            q.y += step * std::cos(heading) / kHeadAspect;
            heading += bend + curl * std::sin(frequency * n + phase);
        }
        strand.root_width = 0.5f * unit * (bold ? draw.between(1.8f, 4.2f) : draw.between(0.5f, 1.7f));
        strand.tip_width = 0.5f * unit * (bold ? draw.between(0.8f, 1.4f) : draw.between(0.15f, 0.6f));
        strand.taper_from = 0.2f;
        colour(strand, draw, 0.0f);
        strand.tip = strand.tip * 1.15f + look.hair_light * 0.10f;  // the rim light catches them
        strand.spill = 0.025f + 0.03f * draw() + 0.10f * look.vary.spill;
        strand.shine_at = draw.between(0.2f, 2.0f);
        return strand;
    }
};

// The share of a tent two pixels wide that lies below x. A box would leave thin slanting hairs beaded.
float tent_below(float x) {
    const float t = std::clamp(x, -1.0f, 1.0f);
    return t < 0.0f ? 0.5f * square(1.0f + t) : 1.0f - 0.5f * square(1.0f - t);
}

}  // namespace

Vec2 Placement::from_head(Vec2 q) const {
    return to_pixels(head + rotate({q.x * kHeadWidth, q.y * kHeadHeight}, tilt));
}

Hair grow_hair(const Look& look, const Pose& pose, const Placement& placement) {
    const Grower grower(look, pose, placement);
    Draw draw(key_of(look.seed, 50));
    Hair hair;
    constexpr int kBack = 200, kFront = 480, kBold = 70, kFine = 200;
    for (int i = 0; i < kBack; ++i) hair.back.push_back(grower.lock(draw, draw.sign(), draw(), true));
    for (int i = 0; i < kFront; ++i) {
        // Mostly from the inside out, so that the outer ones lie on top.
        const float layer = saturate(static_cast<float>(i) / kFront + draw.between(-0.35f, 0.35f));
        hair.front.push_back(grower.lock(draw, draw.sign(), layer, false));
    }
    for (int i = 0; i < kBold; ++i) hair.loose.push_back(grower.stray(draw, true));
    for (int i = 0; i < kFine; ++i) hair.loose.push_back(grower.stray(draw, false));
    const int more = static_cast<int>((look.vary.hair - 1.0f) * (kBold + kFine));
    for (int i = 0; i < more; ++i) hair.loose.push_back(grower.stray(draw, i % 4 == 0));
    for (auto* set : {&hair.back, &hair.front, &hair.loose}) {
        for (Strand& strand : *set) strand.measure();
    }
    return hair;
}

float hair_behind(const Look& look, Vec2 q) {
    const float skull = length({q.x / 1.09f, q.y / 1.08f}) - 1.0f;
    const float width = 1.04f - 0.10f * std::min(look.vary.hair - 1.0f, 4.0f);
    const float fall = round_box({q.x, (q.y - 0.5f * look.hair_length + 0.18f) * kHeadAspect},
                                 {width, 0.5f * (look.hair_length - 0.25f) * kHeadAspect}, 0.28f);
    return blend_union(skull, fall, 0.2f);
}

float hair_cap(const Look& look, Vec2 q) {
    const float skull = length({q.x / 1.10f, q.y / 1.10f}) - 1.0f;
    // The open face: wide below, drawn up to a point at the parting.
    const float peak = -0.60f + 0.42f * square(q.x - look.parting);
    const float sides = std::abs(q.x) - 0.93f + 0.05f * q.y;
    const float open = std::max(peak - q.y, sides);
    return std::max(skull, -open);
}

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
            pixels[i].over(strand.shade(hit_[i].t, hit_[i].across), cover_[i], Part::kHair);
            cover_[i] = 0.0f;
        }
    }
}

}  // namespace plate
