#include "plates/Figure.h"

namespace plate {

namespace {

constexpr float kPi = 3.14159265f;
// The neck of the shirt, a rounded V.
float opening(Vec2 p) {
    return std::max(capsule(p, {0.0f, 0.590f}, {0.0f, 0.705f}, 0.069f, 0.008f), 0.560f - p.y);
}

// The far shoulder is behind the plane of focus.
float softness(Vec2 p, float pixel) {
    return 0.6f * pixel + 0.020f * square(smooth(0.14f, 0.36f, p.x));
}

}  // namespace

float Body::outline(Vec2 p) const {
    const float x = std::abs(p.x);
    const Vec2 q{x, p.y};
    const float slope = capsule(q, {0.03f, 0.640f}, {0.20f, 0.722f}, 0.062f, 0.066f);
    const float arm = capsule(q, {0.232f, 0.755f}, {0.292f, 1.12f}, 0.086f, 0.090f);
    const float trunk = round_box({x, p.y - 1.02f}, {0.245f, 0.36f}, 0.10f);
    return blend_union(blend_union(slope, arm, 0.05f), trunk, 0.06f);
}

// A cushion over the outline, `depth` from the edge to where it lies flat.
Vec3 Body::normal_at(Vec2 p, float depth) const {
    constexpr float kStep = 0.002f;
    const float d = outline(p);
    const Vec2 g{outline({p.x + kStep, p.y}) - d, outline({p.x, p.y + kStep}) - d};
    // It flattens before the shape's middle, where the outline's slope jumps from side to side.
    const float steep = square(1.0f - saturate(-d / depth));
    const float tilt = steep / std::max(length(g), 1e-6f);
    const float x = std::abs(p.x);
    // Wrinkles: long ones down the sleeve and chest, and a crease where the arm meets the body.
    const std::uint64_t key = key_of(look_.seed, 30);
    const float lean = p.x * 9.0f + 3.0f * p.y;
    const float wrinkle =
        noise(key, lean, p.y * 4.5f - 3.0f * x) + 0.5f * noise(key, lean * 2.3f, p.y * 9.0f);
    const float crease = bell(x - 0.200f - 0.10f * (p.y - 0.80f), 0.012f) * smooth(0.80f, 0.88f, p.y);
    const float side = p.x < 0.0f ? -1.0f : 1.0f;
    return normalize({g.x * tilt + 0.17f * wrinkle - 0.5f * side * crease,
                      g.y * tilt + 0.09f * wrinkle - 0.05f,
                      std::sqrt(std::max(1.0f - steep * steep, 0.02f))});
}

// Woven colour at a point; `t` runs across and down the cloth. Fine patterns fade before they alias.
Vec3 Body::cloth(Vec2 p, Vec2 t) const {
    const auto wave = [&](float x, float period) {
        return (0.5f + 0.5f * std::sin(2.0f * kPi * x / period)) * smooth(2.0f, 6.0f, period / pixel_);
    };
    float accent = 0.0f;
    if (look_.pattern == 0) {
        const float a = std::pow(wave(t.x, 0.048f), 10.0f), b = std::pow(wave(t.y, 0.048f), 10.0f);
        const float twill = 0.75f + 0.25f * wave(t.x + t.y, 0.0055f);
        accent = 0.55f * (a + b - 0.5f * a * b) * twill;
    } else if (look_.pattern == 1) {
        accent = 0.65f * std::pow(wave(t.x, 0.026f), 12.0f) * (0.7f + 0.3f * wave(t.y, 0.006f));
    } else {
        const float column = std::abs(t.x / 0.022f - std::floor(t.x / 0.022f) - 0.5f);
        accent = 0.55f * wave(t.y + 0.022f * column, 0.0085f);
    }
    const float thread = noise(key_of(look_.seed, 31), p.x * 420.0f, p.y * 420.0f);
    return mix(look_.jacket, look_.accent, accent) * (1.0f + 0.06f * thread);
}

// A brooch, and a stripe across the other side of the chest, of the screen's hue but muted.
void Body::details(Vec2 p, Shade& shade) const {
    const float brooch = length({p.x - 0.150f, p.y - 0.840f}) - 0.022f;
    const float stripe = round_box({p.x + 0.165f, p.y - 0.865f - 0.10f * p.x}, {0.050f, 0.010f}, 0.004f);
    const float cover = coverage(std::min(brooch, stripe), 0.8f * pixel_);
    const Vec3 muted = look_.backing * 0.55f + Vec3{0.14f, 0.14f, 0.14f};
    const float light = 0.85f + 0.15f * saturate((0.850f - p.y) / 0.02f);
    shade.colour = mix(shade.colour, muted * light, cover);
}

void Body::torso(Vec2 p, Stack& stack) const {
    if (p.y < 0.52f) return;
    const float d = outline(p);
    const float cover = coverage(d, softness(p, pixel_));
    if (cover <= 0.0f) return;
    const float x = std::abs(p.x);
    const Vec3 n = normal_at(p, 0.09f);
    // The head and hair shade the chest; so does the arm's side of the body.
    const float occlusion = 1.0f - 0.50f * bell(p.x, p.y - 0.61f, 0.17f, 0.075f) -
                            0.22f * bell(x - 0.205f, 0.022f) * smooth(0.82f, 0.95f, p.y);
    const float turn = 0.006f * n.x;
    Shade shade = matt(cloth(p, {p.x + turn, p.y + 0.5f * turn}), n, occlusion);

    // Shirt in the opening, then the lapels beside it.
    const float open = 0.098f * smooth(1.06f, 0.60f, p.y) + 0.004f;
    const float fine = 0.8f * pixel_;
    const float shirt = coverage(x - open, fine);
    const float collar = opening(p) - 0.016f;
    if (shirt > 0.0f) {
        const float fold = 0.10f * noise(key_of(look_.seed, 32), p.x * 30.0f, p.y * 7.0f);
        const float placket = 0.16f * bell(x - 0.013f, 0.0012f) * smooth(1.0f, 3.0f, 0.004f / pixel_);
        const float button = length({p.x, std::fmod(p.y + 0.02f, 0.085f) - 0.04f}) - 0.0052f;
        Shade linen =
            matt(look_.shirt * (1.0f - placket), normalize({0.5f * p.x / 0.1f + fold, -0.12f, 1.0f}),
                 occlusion * (1.0f - 0.35f * smooth(open - 0.03f, open, x)));
        linen.colour = mix(linen.colour, look_.accent * 0.75f, coverage(button, fine));
        // The collar lies on it, and throws a line of shadow.
        linen.colour = linen.colour *
                       (1.0f - 0.35f * bell(std::max(collar, 0.0f), 0.005f) + 0.10f * coverage(collar, fine));
        shade.colour = mix(shade.colour, linen.colour, shirt);
        shade.spill = mix(shade.spill, linen.spill * 1.3f, shirt);
    }
    const float notch = p.y - 0.762f + 0.45f * (x - open);
    const float width = 0.060f * smooth(1.05f, 0.76f, p.y);
    const float rolled = x - open - width;
    const float lapel = std::max(std::max(-(x - open), rolled), 0.13f * (rolled + 0.030f) - std::abs(notch));
    const float on_lapel = coverage(lapel, fine) * smooth(1.05f, 1.0f, p.y);
    shade.colour = shade.colour * (1.0f - 0.33f * bell(std::max(rolled, 0.0f), 0.011f) *
                                              coverage(-(x - open), fine) * (1.0f - on_lapel));
    const float sheen = 0.10f + 0.16f * bell(x - open - 0.006f, 0.008f);
    const Vec3 lift =
        mix(shade.colour, shade.colour * (1.0f + sheen) + Vec3{0.012f, 0.012f, 0.012f}, on_lapel);
    shade.colour = lift * (1.0f - 0.38f * on_lapel * bell(rolled, 0.0025f));
    if (look_.vary.details) details(p, shade);
    stack.over(shade, cover);
}

void Body::neck(Vec2 p, Stack& stack) const {
    if (p.y < 0.40f || p.y > 0.76f || std::abs(p.x) > 0.2f) return;
    const float throat = capsule(p, {0.0f, 0.44f}, {0.0f, 0.60f}, 0.056f, 0.061f);
    // The opening of the collar.
    const float chest = opening(p);
    const float d = blend_union(throat, chest, 0.035f);
    const float cover = coverage(d, 0.7f * pixel_);
    if (cover <= 0.0f) return;
    const float across = std::clamp(p.x / 0.072f, -1.0f, 1.0f);
    const float cord =
        bell(std::abs(p.x) - 0.034f + 0.16f * (p.y - 0.52f), 0.010f) * smooth(0.53f, 0.60f, p.y);
    const float bone =
        bell(p.y - 0.636f - 0.25f * std::abs(p.x), 0.008f) * smooth(0.012f, 0.03f, std::abs(p.x));
    const Vec3 n =
        normalize({across * 0.85f - 0.25f * cord * (p.x < 0.0f ? 1.0f : -1.0f), 0.10f - 0.35f * bone,
                   std::sqrt(std::max(1.0f - 0.72f * across * across, 0.05f))});
    // The chin's shadow falls down and away from the key.
    const float chin = smooth(0.585f, 0.50f, p.y - 0.12f * p.x);
    const float occlusion = 1.0f - 0.58f * chin - 0.18f * cord - 0.16f * bell(d, 0.008f);
    stack.over(skin(look_.skin * Vec3{0.97f, 0.95f, 0.95f}, n, occlusion), cover);
}

void Body::veil(Vec2 p, Stack& stack) const {
    constexpr float kStart = 0.03f, kEnd = 0.60f;
    const float s = (p.x - kStart) / (kEnd - kStart);
    if (s < -0.02f || s > 1.15f || p.y < 0.40f) return;
    const float t = pose_.time * 0.21f;
    const float phase = look_.fold_phase;
    const float middle = 0.628f + 0.145f * smooth(0.0f, 0.42f, s) -
                         0.20f * square(std::max(s - 0.40f, 0.0f)) +
                         0.022f * s * std::sin(7.0f * s - t + phase);
    const float half =
        0.030f + 0.105f * std::pow(saturate(s), 0.8f) + 0.010f * std::sin(11.0f * s - 1.3f * t + phase);
    const float v = (p.y - middle) / half;
    const float end = kEnd + 0.030f * std::sin(5.0f * v + t) + 0.035f * v - p.x;
    const float edge = smooth(1.0f, 0.90f, std::abs(v)) * smooth(0.0f, 0.022f, end) * smooth(0.0f, 0.16f, s);
    if (edge <= 0.0f) return;
    const float ripple =
        4.2f * v + 2.6f * s + 0.9f * noise(key_of(look_.seed, 33), 5.0f * s - 0.6f * t, 1.6f * v);
    const float fold = 0.5f + 0.5f * std::sin(2.0f * ripple + phase);
    const float hem = 0.14f * bell(std::abs(v) - 0.90f, 0.05f) + 0.10f * bell(end - 0.03f, 0.010f);
    const float alpha = std::min(0.62f, 0.31f + 0.22f * fold * fold + hem) * edge;
    const Vec3 n = normalize({0.30f * std::cos(2.0f * ripple + phase), 0.5f * v - 0.2f, 0.85f});
    Shade shade = matt(look_.veil, n, 0.86f + 0.14f * fold);
    shade.spill += 0.07f;  // lit from behind, too
    stack.over(shade, alpha * (look_.vary.veil_density / Variation{}.veil_density), Part::kVeil);
}

// Coverage of sleeve and hand at one instant.
float Body::arm_at(Vec2 p, float angle, float soft, Shade& shade) const {
    constexpr Vec2 kElbow{-0.375f, 1.060f};
    constexpr float kLength = 0.335f;
    Vec2 q = rotate(p - kElbow, -angle);
    q.y += kLength;  // the wrist is the origin, the fingers point up
    if (std::abs(q.x) > 0.13f + soft || q.y < -0.22f) return 0.0f;

    struct Bone {
        Vec2 a, b;
        float ra, rb;
    };
    static constexpr Bone kHand[] = {{{0.0f, 0.06f}, {0.0f, -0.005f}, 0.027f, 0.0255f},
                                     {{-0.016f, -0.028f}, {-0.020f, -0.072f}, 0.020f, 0.019f},
                                     {{0.014f, -0.026f}, {0.020f, -0.074f}, 0.022f, 0.019f},
                                     {{-0.031f, -0.076f}, {-0.047f, -0.120f}, 0.0096f, 0.0076f},
                                     {{-0.0115f, -0.084f}, {-0.017f, -0.147f}, 0.0104f, 0.0080f},
                                     {{0.0095f, -0.086f}, {0.013f, -0.156f}, 0.0107f, 0.0082f},
                                     {{0.030f, -0.080f}, {0.041f, -0.143f}, 0.0103f, 0.0080f},
                                     {{0.026f, -0.030f}, {0.062f, -0.080f}, 0.0128f, 0.0090f}};
    float blended = 1.0f, weights = 1e-12f;
    Vec2 bulge;
    for (const Bone& bone : kHand) {
        const float t = along(q, bone.a, bone.b);
        const Vec2 off = q - bone.a - (bone.b - bone.a) * t;
        const float radius = mix(bone.ra, bone.rb, t);
        const float d = length(off) - radius;
        // Bones share the surface where they meet, so that no joint shows.
        const float reach = std::max(0.012f - d, 0.0f), weight = reach * reach * reach;
        bulge = bulge + off * (weight / radius);
        weights += weight;
        blended = blended > 0.5f ? d : blend_union(blended, d, 0.012f);
    }
    bulge = bulge * (1.0f / weights);
    const float sleeve = capsule(q, {0.0f, 0.42f}, {0.0f, 0.062f}, 0.074f, 0.045f);
    const float cut = std::max(sleeve, 0.030f - 0.12f * std::abs(q.x) - q.y);
    const float hand_cover = coverage(blended, soft), sleeve_cover = coverage(cut, soft);
    if (hand_cover <= 0.0f && sleeve_cover <= 0.0f) return 0.0f;

    const auto turned = [&](Vec2 b, float flatten) {
        const Vec2 r = rotate(b, angle);
        return normalize(
            {r.x * flatten, r.y * flatten - 0.06f, std::sqrt(std::max(1.0f - dot(b, b), 0.03f))});
    };
    Stack layers;
    if (hand_cover > 0.0f) {
        const float tips = smooth(-0.115f, -0.150f, q.y);
        const Vec3 albedo = look_.skin * mix(Vec3{1.0f, 0.97f, 0.96f}, Vec3{1.03f, 0.88f, 0.87f}, tips);
        layers.over(skin(albedo, turned(bulge, 0.75f), 0.97f), hand_cover);
    }
    if (sleeve_cover > 0.0f) {
        const float w = 0.045f + 0.08f * std::max(q.y - 0.062f, 0.0f);
        const float wrinkle = noise(key_of(look_.seed, 34), q.x * 14.0f, q.y * 26.0f - q.x * 30.0f);
        const Vec2 b{std::clamp(q.x / w, -0.98f, 0.98f), 0.16f * wrinkle};
        const float cuff = bell(q.y - 0.062f, 0.0022f);
        layers.over(matt(cloth(p, {q.x, q.y}), turned(b, 0.95f), 1.0f - 0.35f * cuff), sleeve_cover);
    }
    const float inverse = 1.0f / layers.alpha;
    shade.colour = layers.colour * inverse;
    shade.spill = layers.spill * inverse;
    return layers.alpha;
}

void Body::arm(Vec2 p, Stack& stack) const {
    if (p.x > -0.06f || p.x < -0.80f || p.y < 0.42f) return;
    // Instants lie at most a pixel and a half apart at the fingertips, within what is worth the time.
    const float travel = std::abs(pose_.arm_speed) * length(p - Vec2{-0.375f, 1.06f});
    const int instants = std::clamp(static_cast<int>(travel / (1.5f * pixel_)), 4, 64);
    const float step = pose_.arm_speed / static_cast<float>(instants);
    const float soft = std::max(0.7f * pixel_, 0.6f * travel / static_cast<float>(instants));
    Vec3 colour;
    float spill = 0.0f, sum = 0.0f;
    for (int i = 0; i < instants; ++i) {
        Shade shade;
        const float a =
            arm_at(p, pose_.arm + step * (static_cast<float>(i) + 0.5f - 0.5f * static_cast<float>(instants)),
                   soft, shade);
        colour = colour + shade.colour * a;
        spill += shade.spill * a;
        sum += a;
    }
    if (sum <= 0.0f) return;
    const Part part = travel > 2.0f * pixel_ ? Part::kMotion : Part::kEdge;
    stack.over({colour * (1.0f / sum), spill / sum}, sum / static_cast<float>(instants), part);
}

}  // namespace plate
