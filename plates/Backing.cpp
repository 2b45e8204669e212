#include "plates/Backing.h"

namespace plate {

namespace {

constexpr float kStandInset = 0.055f;  // of the pole from the edge of the frame
constexpr float kStripWidth = 0.11f;
constexpr float kRoomForStand = 0.80f;  // least half width

}  // namespace

Backing::Backing(const Look& look, float half_width)
    : look_(look), half_width_(half_width), stand_(half_width >= kRoomForStand) {
    lay_marks();
}

void Backing::lay_marks() {
    constexpr Mark::Kind kKinds[] = {Mark::Kind::kCross, Mark::Kind::kTape, Mark::Kind::kCross,
                                     Mark::Kind::kFold, Mark::Kind::kSeam};
    Draw draw(key_of(look_.seed, 12));
    for (int n = 0; n < look_.vary.marks; ++n) {
        Mark mark{kKinds[n % 5],
                  {draw.between(-0.9f, 0.9f) * half_width_, draw.between(0.04f, 0.80f)},
                  draw.between(-0.5f, 0.5f),
                  draw.between(0.7f, 1.3f),
                  {}};
        // Toward the two other primaries or away from them, never far.
        mark.tint = {draw.between(0.75f, 1.6f), draw.between(0.78f, 1.1f), draw.between(0.75f, 1.5f)};
        marks_.push_back(mark);
    }
}

float Backing::Mark::distance(Vec2 p) const {
    const Vec2 q = rotate(p - at, turn) * (1.0f / size);
    const Vec2 a{std::abs(q.x), std::abs(q.y)};
    switch (kind) {
        case Kind::kCross:
            return size *
                   std::min(round_box(q, {0.022f, 0.0032f}, 0.0f), round_box(q, {0.0032f, 0.022f}, 0.0f));
        case Kind::kTape:
            return size * round_box(q, {0.055f, 0.012f}, 0.001f);
        case Kind::kSeam:
            return size * (a.x - 0.0016f);  // from top to bottom
        case Kind::kFold:
            break;
    }
    return size * (a.x + 0.015f - 0.035f * smooth(0.30f, 0.0f, a.y));
}

float Backing::light(Vec2 p) const {
    const Vec2 q = p - look_.hot_spot;
    const float spot = std::exp(-(q.x * q.x * 2.2f + q.y * q.y * 3.4f));
    const float lean = p.x + look_.fold_lean * p.y;
    const float wobble = 0.6f * noise(key_of(look_.seed, 10), lean * 2.1f, p.y * 1.3f);
    const float fold = std::sin(lean * look_.fold_count + look_.fold_phase + 2.0f * wobble);
    const float crease = std::sin(lean * look_.fold_count * 2.7f + p.y * 1.5f + 3.0f * wobble);
    const float depth = 0.6f + 0.4f * noise(key_of(look_.seed, 11), p.x * 1.7f, p.y * 1.1f);
    return 0.90f + 0.165f * spot + depth * (0.034f * fold + 0.020f * crease * std::abs(crease)) -
           0.03f * smooth(0.5f, 1.0f, p.y);
}

Vec3 Backing::colour(Vec2 p) const {
    const float level = light(p);
    // Brighter cloth is a little paler.
    const float pale = 0.10f * (level - 0.95f);
    Vec3 c = look_.backing * level + Vec3{pale, pale, pale};
    for (const Mark& mark : marks_)
        c = mix(c, c * mark.tint,
                coverage(mark.distance(p), mark.kind == Mark::Kind::kFold ? 0.010f : 0.0010f));
    if (!stand_) return c;
    const float x = half_width_ - kStandInset - look_.mirror * p.x;
    const float pole = std::abs(x) - (p.y > 0.47f ? 0.0085f : 0.0060f);
    const float knuckle = round_box({x, p.y - 0.47f}, {0.016f, 0.018f}, 0.006f);
    const float head = round_box({x, p.y - 0.085f}, {0.030f, 0.040f}, 0.008f);
    const float round = saturate(1.0f - square(x / 0.0095f));
    const float soft = 0.0012f;
    c = mix(c, c * (0.62f + 0.26f * round), coverage(std::max(pole, 0.09f - p.y), soft));
    c = mix(c, look_.backing * 0.42f, coverage(knuckle, soft));
    c = mix(c, look_.backing * (0.36f + 2.2f * std::max(0.0f, 0.09f - p.y)), coverage(head, soft));
    return c;
}

float Backing::garbage(Vec2 p) const {
    if (!stand_) return 0.0f;
    const float side = half_width_ - look_.mirror * p.x;   // from the edge with the stand
    const float other = half_width_ + look_.mirror * p.x;  // from the edge without
    return std::max(smooth(kStripWidth, kStripWidth - 0.02f, side), smooth(0.03f, 0.005f, other));
}

Background::Background(const Look& look) : look_(look) {
    Draw draw(key_of(look.seed, 20));
    for (Lamp& lamp : lamps_) {
        const float depth = draw();
        lamp.at = {draw.between(-1.25f, 1.25f), 0.99f - 0.30f * depth - 0.06f * draw()};
        lamp.radius = (0.010f + 0.024f * square(draw())) * (1.3f - 0.7f * depth);
        lamp.strength = draw.between(0.18f, 0.75f);
        const float hue = draw();
        lamp.colour = hue < 0.55f   ? Vec3{1.10f, 0.72f, 0.36f}
                      : hue < 0.80f ? Vec3{1.05f, 0.90f, 0.72f}
                      : hue < 0.92f ? Vec3{1.0f, 0.38f, 0.30f}
                                    : Vec3{0.55f, 0.80f, 0.95f};
    }
}

// Height of the nth range of hills, the farthest first.
float Background::ridge(int n, float u) const {
    const std::uint64_t key = key_of(look_.seed, 21 + static_cast<std::uint64_t>(n));
    const float f = 1.5f + 0.6f * static_cast<float>(n);
    const float base = 0.57f + 0.095f * static_cast<float>(n);
    return base - 0.070f * noise(key, u * f, 0.0f) - 0.025f * noise(key, u * f * 3.1f, 5.0f) -
           0.006f * noise(key, u * f * 11.0f, 9.0f);
}

Vec3 Background::colour(Vec2 p) const {
    const Vec3 zenith = mix(Vec3{0.10f, 0.13f, 0.30f}, Vec3{0.17f, 0.12f, 0.33f}, look_.dusk);
    const Vec3 middle = mix(Vec3{0.56f, 0.37f, 0.50f}, Vec3{0.68f, 0.36f, 0.40f}, look_.dusk);
    const Vec3 horizon{1.0f, 0.66f, 0.38f};
    Vec3 c = mix(zenith, middle, smooth(0.0f, 0.42f, p.y));
    c = mix(c, horizon, smooth(0.24f, 0.62f, p.y));
    const float cloud = noise(key_of(look_.seed, 27), p.x * 1.6f, p.y * 9.0f) +
                        0.5f * noise(key_of(look_.seed, 28), p.x * 3.7f, p.y * 21.0f);
    c = mix(c, Vec3{1.0f, 0.58f, 0.47f}, 0.35f * smooth(0.1f, 1.2f, cloud) * bell(p.y - 0.33f, 0.17f));
    const float sun = look_.mirror * 0.42f * (0.4f + look_.dusk);
    const Vec2 glow{p.x - sun, (p.y - 0.55f) * 1.6f};
    c = c + Vec3{0.34f, 0.20f, 0.07f} * std::exp(-dot(glow, glow) * 7.0f);
    for (int n = 0; n < 4; ++n) {
        const float t = static_cast<float>(n) / 3.0f;
        const float edge = ridge(n, p.x);
        Vec3 hill = mix(Vec3{0.52f, 0.36f, 0.43f}, Vec3{0.075f, 0.075f, 0.115f}, t);
        // Haze lies in the valleys.
        hill = mix(hill, Vec3{0.80f, 0.52f, 0.42f}, 0.35f * (1.0f - t) * smooth(0.0f, 0.12f, p.y - edge));
        c = mix(c, hill, coverage(edge - p.y, 0.006f + 0.004f * t));
    }
    for (const Lamp& lamp : lamps_) {
        const float d = length(p - lamp.at) - lamp.radius;
        if (d > 0.003f) continue;
        const float edge = 0.72f + 0.45f * bell(d, 0.005f);
        c = c + lamp.colour * (lamp.strength * edge * coverage(d, 0.003f));
    }
    return c;
}

}  // namespace plate
