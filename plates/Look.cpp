#include "plates/Look.h"

namespace plate {

namespace {

constexpr Vec3 kSkin[] = {{0.86f, 0.64f, 0.53f},
                          {0.78f, 0.55f, 0.43f},
                          {0.66f, 0.44f, 0.33f},
                          {0.48f, 0.31f, 0.23f},
                          {0.90f, 0.70f, 0.60f}};
constexpr Vec3 kHair[] = {{0.15f, 0.095f, 0.07f},
                          {0.30f, 0.15f, 0.08f},
                          {0.085f, 0.075f, 0.08f},
                          {0.46f, 0.31f, 0.17f},
                          {0.36f, 0.12f, 0.07f}};
// Jacket, accent: nothing near the backing they stand before.
constexpr Vec3 kForGreen[][2] = {{{0.45f, 0.10f, 0.15f}, {0.70f, 0.52f, 0.44f}},
                                 {{0.17f, 0.17f, 0.33f}, {0.46f, 0.44f, 0.60f}},
                                 {{0.36f, 0.17f, 0.36f}, {0.62f, 0.44f, 0.58f}},
                                 {{0.58f, 0.28f, 0.13f}, {0.32f, 0.14f, 0.10f}},
                                 {{0.29f, 0.27f, 0.28f}, {0.58f, 0.54f, 0.53f}}};
constexpr Vec3 kForBlue[][2] = {{{0.45f, 0.10f, 0.13f}, {0.70f, 0.52f, 0.40f}},
                                {{0.28f, 0.32f, 0.15f}, {0.56f, 0.52f, 0.28f}},
                                {{0.60f, 0.42f, 0.13f}, {0.36f, 0.20f, 0.08f}},
                                {{0.58f, 0.28f, 0.13f}, {0.32f, 0.14f, 0.08f}},
                                {{0.29f, 0.28f, 0.26f}, {0.58f, 0.55f, 0.49f}}};
constexpr Vec3 kVeil[] = {{0.93f, 0.80f, 0.76f}, {0.92f, 0.86f, 0.78f}, {0.88f, 0.62f, 0.60f}};
constexpr Vec3 kToned[] = {
    {0.95f, 0.74f, 0.58f}, {0.84f, 0.84f, 0.84f}, {0.10f, 0.09f, 0.11f}};  // by VeilTone
constexpr Vec3 kIris[] = {{0.30f, 0.18f, 0.10f}, {0.38f, 0.28f, 0.18f}, {0.34f, 0.36f, 0.38f}};

template <int N>
Vec3 pick(Draw& draw, const Vec3 (&from)[N]) {
    return from[draw.below(N)] * draw.between(0.94f, 1.05f);
}

Vec3 facing(float x, float y, float z) {
    return normalize({x, y, z});
}

}  // namespace

Look look_of(std::uint64_t seed, Screen screen, const Variation& vary) {
    Draw draw(key_of(seed, 1));
    Look look{};
    look.seed = seed;
    look.screen = screen;
    const Vec3 tint{draw.between(0.92f, 1.08f), draw.between(0.96f, 1.03f), draw.between(0.94f, 1.06f)};
    look.backing = (screen == Screen::kGreen ? Vec3{0.15f, 0.62f, 0.25f} : Vec3{0.10f, 0.25f, 0.65f}) * tint;
    look.skin = pick(draw, kSkin);
    look.lips = look.skin * Vec3{0.86f, 0.58f, 0.58f};
    look.iris = pick(draw, kIris);
    look.hair = pick(draw, kHair);
    look.hair_light = look.hair * 1.9f + Vec3{0.10f, 0.075f, 0.06f};
    const auto& cloths = screen == Screen::kGreen ? kForGreen : kForBlue;
    const auto& cloth = cloths[draw.below(5)];
    look.jacket = cloth[0];
    look.accent = cloth[1];
    look.shirt = draw() < 0.7f ? Vec3{0.86f, 0.83f, 0.79f} : Vec3{0.20f, 0.185f, 0.19f};
    look.veil = pick(draw, kVeil);
    look.vary = vary;
    if (vary.veil_tone != VeilTone::kOwn) look.veil = kToned[static_cast<int>(vary.veil_tone) - 1];
    look.rim = draw() < 0.6f ? Vec3{0.11f, 0.09f, 0.085f} : Vec3{0.52f, 0.40f, 0.26f};
    look.pattern = draw.below(3);
    look.mirror = draw.sign();
    look.centre = draw.between(-0.05f, 0.03f);
    look.tilt = draw.between(-0.06f, 0.06f);
    look.parting = draw.between(0.12f, 0.34f) * draw.sign();
    look.hair_length = draw.between(1.35f, 2.1f);
    look.curl = draw.between(0.06f, 0.17f);
    look.hot_spot = {draw.between(-0.45f, 0.45f), draw.between(0.2f, 0.5f)};
    look.fold_count = draw.between(5.0f, 9.0f);
    look.fold_phase = draw.between(0.0f, 6.28f);
    look.fold_lean = draw.between(-0.25f, 0.25f);
    look.dusk = draw();
    return look;
}

Pose pose_of(const Look& look, int frame) {
    Draw draw(key_of(look.seed, 2));
    const float time = static_cast<float>(frame);
    const float phase = draw.between(0.0f, 6.28f);
    Pose pose{};
    pose.time = time;
    pose.sway = {0.006f * std::sin(time * 0.11f + phase), 0.003f * std::sin(time * 0.17f + 2.0f * phase)};
    // One wave a second at 24 frames; a still shows the arm at speed. The shutter is open half a frame.
    const float rate = 0.262f, reach = 0.42f;
    const float wave = 0.35f * draw.between(-1.0f, 1.0f) + rate * time;
    pose.arm = -0.13f + 0.6f * reach * std::sin(wave);
    pose.arm_speed = 1.2f * 0.5f * rate * reach * std::cos(wave) * look.vary.speed;
    // At most three pixels a frame in 1080 lines; frame 0 lies where a locked camera's does.
    if (look.vary.moving) pose.pan = {0.055f * std::sin(time * 0.05f), 0.008f * std::sin(time * 0.07f)};
    const std::uint64_t lamps = key_of(look.seed, 5);
    pose.light = 1.0f + look.vary.flicker * (2.0f * uniform(lamps, static_cast<std::uint32_t>(frame)) - 1.0f);
    return pose;
}

Light light_on(Vec3 n) {
    constexpr float kWrap = 0.25f;
    const float key = (dot(n, facing(-0.55f, -0.55f, 0.62f)) + kWrap) / (1.0f + kWrap);
    const float fill = 0.5f + 0.5f * dot(n, facing(0.6f, 0.1f, 0.6f));
    const float edge = 1.0f - saturate(n.z);
    return {saturate(key), fill, edge * edge * edge * saturate(0.35f + 0.9f * n.x)};
}

Shade matt(Vec3 albedo, Vec3 n, float occlusion) {
    const Light light = light_on(n);
    const Vec3 sum =
        Vec3{1.02f, 0.97f, 0.90f} * (0.84f * light.key) + Vec3{0.86f, 0.90f, 1.0f} * (0.37f * light.fill);
    const float edge = 1.0f - saturate(n.z);
    Shade shade;
    shade.colour = albedo * (sum * occlusion) + Vec3{1.0f, 0.96f, 0.92f} * (0.22f * light.rim);
    shade.spill = 0.014f + 0.20f * edge * edge * edge + 0.05f * (1.0f - light.key) * occlusion;
    return shade;
}

Shade skin(Vec3 albedo, Vec3 n, float occlusion) {
    Shade shade = matt(albedo, n, occlusion);
    const float key = light_on(n).key;
    const float glow = bell(key - 0.22f, 0.22f);
    shade.colour = shade.colour + albedo * Vec3{0.16f, 0.035f, 0.02f} * (glow * occlusion);
    const float shine = saturate(dot(n, facing(-0.3f, -0.32f, 0.9f)));
    const float s4 = square(square(shine)), s16 = square(square(s4));
    shade.colour =
        shade.colour + Vec3{1.0f, 0.95f, 0.90f} * (occlusion * (0.05f * s4 * s4 + 0.13f * s16 * s16));
    return shade;
}

}  // namespace plate
