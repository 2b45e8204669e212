#include "plates/Figure.h"

namespace plate {

namespace {

// The distance from the outline, in half widths: skull above, narrowing to the chin below.
float outline(Vec2 q) {
    const float x = std::abs(q.x) / (1.0f - 0.24f * smooth(-0.1f, 1.05f, q.y));
    return std::pow(std::pow(x, 2.25f) + std::pow(std::abs(q.y), 2.25f), 1.0f / 2.25f) - 1.0f;
}

// A hump or hollow of the face; those off the middle come in pairs.
struct Bump {
    float x, y, width, height, amount;
};
constexpr Bump kBumps[] = {
    {0.0f, 0.13f, 0.10f, 0.24f, 0.125f},                                               // bridge of the nose
    {0.0f, 0.315f, 0.115f, 0.085f, 0.15f},                                             // its tip
    {0.115f, 0.345f, 0.060f, 0.055f, 0.055f}, {0.37f, -0.15f, 0.26f, 0.075f, 0.045f},  // brow
    {0.37f, 0.00f, 0.22f, 0.100f, -0.080f},                                            // socket
    {0.37f, 0.045f, 0.15f, 0.075f, 0.050f},                                            // eyeball
    {0.50f, 0.27f, 0.24f, 0.17f, 0.080f},                                              // cheek
    {0.60f, 0.60f, 0.20f, 0.18f, -0.040f},    {0.0f, 0.525f, 0.19f, 0.040f, 0.045f},   // lips
    {0.0f, 0.635f, 0.17f, 0.048f, 0.060f},    {0.30f, 0.58f, 0.06f, 0.05f, -0.030f},
    {0.0f, 0.735f, 0.15f, 0.045f, -0.040f},   {0.0f, 0.455f, 0.035f, 0.050f, -0.018f},
    {0.0f, 0.86f, 0.19f, 0.11f, 0.070f}};  // chin

}  // namespace

// Bare skin.
Shade Head::surface(Vec2 q) const {
    Vec2 slope;
    for (const Bump& b : kBumps) {
        for (const float side : {-1.0f, 1.0f}) {
            if (b.x == 0.0f && side > 0.0f) continue;
            const float dx = q.x - side * b.x, dy = q.y - b.y;
            const float h = b.amount * bell(dx, dy, b.width, b.height);
            slope.x -= 2.0f * dx / square(b.width) * h;
            slope.y -= 2.0f * dy / square(b.height) * h / kHeadAspect;
        }
    }
    const float x = q.x / (1.0f - 0.24f * smooth(-0.1f, 1.05f, q.y));
    const float z = std::sqrt(std::max(1.0f - 0.92f * x * x - 0.80f * q.y * q.y, 0.03f));
    const float pore = 0.02f * noise(key_of(look_.seed, 40), q.x * 95.0f, q.y * 130.0f);
    const Vec3 n = normalize({x * 0.92f - slope.x * z + pore, q.y * 0.62f - slope.y * z + pore, z});

    const float ax = std::abs(q.x);
    const float occlusion = 1.0f - 0.20f * bell(ax - 0.27f, q.y - 0.0f, 0.15f, 0.07f) -
                            0.26f * bell(q.x - 0.07f, q.y - 0.425f, 0.13f, 0.04f) -
                            0.55f * bell(ax - 0.068f, q.y - 0.385f, 0.034f, 0.018f) -
                            0.16f * bell(q.x, q.y - 0.715f, 0.14f, 0.028f) -
                            0.40f * smooth(-0.30f, -0.72f, q.y) - 0.30f * smooth(0.74f, 1.0f, ax);
    Vec3 albedo = look_.skin * (1.0f + 0.025f * noise(key_of(look_.seed, 41), q.x * 11.0f, q.y * 15.0f));
    const float flush =
        0.36f * bell(ax - 0.52f, q.y - 0.32f, 0.24f, 0.17f) + 0.4f * bell(q.x, q.y - 0.33f, 0.12f, 0.10f);
    albedo = albedo * mix(Vec3{1.0f, 1.0f, 1.0f}, Vec3{1.02f, 0.84f, 0.83f}, flush);
    return skin(albedo, n, occlusion);
}

void Head::eye(Vec2 q, Shade& shade) const {
    const float side = q.x < 0.0f ? -1.0f : 1.0f;
    const Vec2 e{std::abs(q.x) - 0.375f, (q.y - 0.035f) * kHeadAspect};
    const float s = std::clamp(e.x / 0.165f, -1.0f, 1.0f);
    const float arch = 1.0f - s * s;
    const float tilt = -0.012f * s;
    const float upper = tilt - 0.082f * std::pow(arch, 0.75f), lower = tilt + 0.056f * arch;
    const float open = std::max(std::max(upper - e.y, e.y - lower), std::abs(e.x) - 0.165f);
    const float fine = std::max(0.8f * pixel_, 0.006f);

    // The fold of the lid, then the eye, then the lashes along its rim.
    shade.colour = shade.colour * (1.0f - 0.34f * bell(e.y - upper + 0.040f, 0.011f) *
                                              smooth(1.15f, 0.6f, std::abs(e.x / 0.165f)));
    const float inside = coverage(open, fine);
    if (inside > 0.0f) {
        const Vec2 gaze{e.x - 0.012f * side, e.y + 0.010f};
        const float r = length(gaze);
        Vec3 c = Vec3{0.84f, 0.80f, 0.78f} * (0.90f - 0.30f * square(s));
        const float spokes =
            0.82f + 0.18f * noise(key_of(look_.seed, 42), 9.0f * std::atan2(gaze.y, gaze.x), r * 20.0f);
        const Vec3 iris = look_.iris * (spokes * (1.35f - 0.9f * smooth(0.045f, 0.076f, r)) +
                                        0.8f * smooth(-0.01f, 0.06f, gaze.y));
        c = mix(c, iris, coverage(r - 0.074f, fine));
        c = mix(c, Vec3{0.02f, 0.018f, 0.02f}, coverage(r - 0.033f, fine));
        c = c * (1.0f - 0.55f * smooth(0.060f, 0.0f, e.y - upper));
        const float glint = length({gaze.x + 0.026f * side, gaze.y + 0.028f}) - 0.013f;
        c = mix(c, Vec3{1.30f, 1.28f, 1.25f}, coverage(glint, fine));
        shade.colour = mix(shade.colour, c, inside);
        shade.spill = mix(shade.spill, 0.02f, inside);
    }
    const float reach = smooth(1.12f, 0.9f, std::abs(e.x / 0.165f));
    const float lash = bell(std::abs(e.y - upper + 0.004f), 0.011f + 0.008f * saturate(s)) * reach;
    const float lower_lash = 0.35f * bell(e.y - lower, 0.008f) * reach;
    shade.colour = mix(shade.colour, look_.hair * 0.45f, saturate(0.95f * lash + lower_lash));

    // Brows, drawn hair by hair with a streak.
    const float b = (std::abs(q.x) - 0.17f) / 0.42f;
    if (b > -0.1f && b < 1.1f) {
        const float rise = -0.165f - 0.050f * std::sin(2.4f * saturate(b)) + 0.055f * square(b);
        const float thick = 0.030f * smooth(1.08f, 0.35f, b) * smooth(-0.08f, 0.12f, b) + 0.002f;
        const float streak =
            noise(key_of(look_.seed, 43), (q.x - 0.55f * side * (q.y - rise)) * 85.0f, q.y * 30.0f);
        const float body = smooth(1.08f, 0.92f, b) *
                           smooth(1.25f, 0.35f, std::abs(q.y - rise) / (thick * (1.0f + 0.16f * streak)));
        shade.colour = mix(shade.colour, look_.hair * 0.75f, 0.86f * body * (0.80f + 0.20f * streak));
    }
}

void Head::mouth(Vec2 q, Shade& shade) const {
    const float s = q.x / 0.285f;
    if (std::abs(s) > 1.3f) return;
    const float arch = std::max(1.0f - s * s, 0.0f);
    const float smile = 0.580f - 0.020f * s * s + 0.006f * std::cos(9.0f * s) * arch;
    const float top = smile - 0.056f * arch + 0.020f * bell(s, 0.16f) - 0.004f;
    const float bottom = smile + 0.078f * std::pow(arch, 0.7f);
    const float edge = std::max(std::max(top - q.y, q.y - bottom), 0.0f);
    const float lips = bell(edge, 0.010f) * smooth(1.02f, 0.86f, std::abs(s));
    const float lines = 1.0f + 0.05f * noise(key_of(look_.seed, 44), q.x * 70.0f, q.y * 6.0f);
    const float light = dot(shade.colour, Vec3{0.3f, 0.5f, 0.2f}) / dot(look_.skin, Vec3{0.3f, 0.5f, 0.2f});
    shade.colour = mix(shade.colour, look_.lips * (light * lines), 0.75f * lips);
    shade.colour =
        shade.colour + Vec3{0.10f, 0.09f, 0.09f} * (bell(q.x + 0.05f, q.y - 0.632f, 0.09f, 0.014f));
    const float line = bell(q.y - smile, 0.0095f) * smooth(1.10f, 0.85f, std::abs(s));
    shade.colour = mix(shade.colour, look_.lips * 0.28f, 0.80f * line);
    shade.colour = shade.colour * (1.0f - 0.18f * bell(std::abs(s) - 1.07f, q.y - 0.562f, 0.10f, 0.03f));
}

void Head::face(Vec2 q, Stack& stack) const {
    if (std::abs(q.x) > 1.3f || std::abs(q.y) > 1.2f) return;
    const Vec2 ear{std::abs(q.x) - 1.00f, (q.y - 0.10f) * kHeadAspect};
    const float lobe = length({ear.x / 0.12f, ear.y / 0.27f}) - 1.0f;
    const float ear_cover = coverage(0.14f * lobe, 0.7f * pixel_);
    if (ear_cover > 0.0f) {
        const float fold = 0.45f * bell(lobe + 0.45f, 0.16f);
        const Vec3 n = normalize({(q.x < 0.0f ? -0.5f : 0.5f) + 2.0f * ear.x, 1.0f * ear.y, 0.8f});
        stack.over(skin(look_.skin * Vec3{1.0f, 0.88f, 0.86f}, n, 0.85f - fold), ear_cover);
    }
    const float cover = coverage(outline(q), 0.7f * pixel_);
    if (cover <= 0.0f) return;
    Shade shade = surface(q);
    mouth(q, shade);
    eye(q, shade);
    stack.over(shade, cover);
}

void Head::glasses(Vec2 q, Stack& stack) const {
    if (q.y < -0.4f || q.y > 0.6f || std::abs(q.x) > 1.15f) return;
    const float x = std::abs(q.x);
    const Vec2 lens{x - 0.415f, (q.y - 0.075f) * kHeadAspect};
    const float d = round_box(lens, {0.295f, 0.225f}, 0.15f);
    const float half = std::max(0.0130f, 0.35f * pixel_);
    const float fine = 0.7f * pixel_;

    // The lens tints a little, mirrors a window high up and the screen low down.
    const float inside = coverage(d, fine);
    if (inside > 0.0f) {
        const float streak = lens.x + 0.55f * lens.y;
        const float window =
            smooth(-0.20f, -0.17f, streak) * smooth(-0.07f, -0.10f, streak) * smooth(0.10f, -0.15f, lens.y);
        const float sheen = 0.05f + 0.05f * smooth(0.1f, -0.2f, lens.y) + 0.20f * window;
        stack.over({{0.95f, 0.97f, 1.0f}, 0.30f * smooth(0.0f, 0.20f, lens.y)}, sheen * inside, Part::kVeil);
    }
    // A thin shadow below the rim, then the rim with its glint.
    stack.over({{0.08f, 0.04f, 0.03f}, 0.0f},
               0.22f * bell(round_box({lens.x - 0.015f, lens.y - 0.035f}, {0.295f, 0.225f}, 0.15f), 0.020f));
    const float bridge =
        std::max(std::abs(q.y + 0.005f + 0.35f * (0.12f - x) * 0.3f) * kHeadAspect - half, x - 0.14f);
    const float temple = std::max(std::abs(q.y + 0.02f) * kHeadAspect - half, std::max(0.70f - x, x - 1.04f));
    const float rim = std::min(std::abs(d) - half, std::min(bridge, temple));
    const float cover = coverage(rim, fine);
    if (cover <= 0.0f) return;
    const float glint = bell(lens.x + 0.16f, lens.y + 0.225f, 0.07f, 0.02f);
    const Vec3 c = look_.rim * (1.0f + 0.8f * saturate(-lens.y * 3.0f)) + Vec3{1.15f, 1.12f, 1.05f} * glint;
    stack.over({c, 0.05f}, cover);
}

}  // namespace plate
