// Small vector and shape arithmetic of the procedural plate, and its random numbers.
//
// Lengths are in picture heights: u runs to the right from the middle of the frame, v down from its top.
// A shape is a signed distance, negative inside.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace plate {

struct Vec2 {
    float x = 0.0f, y = 0.0f;
};
inline Vec2 operator+(Vec2 a, Vec2 b) {
    return {a.x + b.x, a.y + b.y};
}
inline Vec2 operator-(Vec2 a, Vec2 b) {
    return {a.x - b.x, a.y - b.y};
}
inline Vec2 operator*(Vec2 a, float s) {
    return {a.x * s, a.y * s};
}
inline float dot(Vec2 a, Vec2 b) {
    return a.x * b.x + a.y * b.y;
}
inline float length(Vec2 a) {
    return std::sqrt(dot(a, a));
}

inline Vec2 rotate(Vec2 a, float radians) {
    const float c = std::cos(radians), s = std::sin(radians);
    return {c * a.x - s * a.y, s * a.x + c * a.y};
}

// A colour, or a direction with z toward the camera.
struct Vec3 {
    float x = 0.0f, y = 0.0f, z = 0.0f;
};
inline Vec3 operator+(Vec3 a, Vec3 b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline Vec3 operator*(Vec3 a, float s) {
    return {a.x * s, a.y * s, a.z * s};
}
inline Vec3 operator*(Vec3 a, Vec3 b) {
    return {a.x * b.x, a.y * b.y, a.z * b.z};
}
inline float dot(Vec3 a, Vec3 b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline Vec3 normalize(Vec3 a) {
    return a * (1.0f / std::sqrt(std::max(dot(a, a), 1e-12f)));
}

inline float mix(float a, float b, float t) {
    return a + (b - a) * t;
}
inline Vec3 mix(Vec3 a, Vec3 b, float t) {
    return a * (1.0f - t) + b * t;
}
inline float saturate(float x) {
    return std::clamp(x, 0.0f, 1.0f);
}
inline float square(float x) {
    return x * x;
}

// 0 at `from` and before, 1 at `to` and after; `from` may be the larger one.
inline float smooth(float from, float to, float x) {
    const float t = saturate((x - from) / (to - from));
    return t * t * (3.0f - 2.0f * t);
}

inline float bell(float x, float width) {
    return std::exp(-square(x / width));
}
inline float bell(float x, float y, float width, float height) {
    return std::exp(-square(x / width) - square(y / height));
}

// The share of a pixel inside a shape whose edge is `soft` wide to either side: exactly 1 and 0 beyond.
inline float coverage(float distance, float soft) {
    return smooth(soft, -soft, distance);
}

// Where along a line from a to b (0 to 1) the point comes nearest.
inline float along(Vec2 p, Vec2 a, Vec2 b) {
    const Vec2 ab = b - a;
    return saturate(dot(p - a, ab) / std::max(dot(ab, ab), 1e-12f));
}

// A line with round ends, its radius running from ra to rb.
inline float capsule(Vec2 p, Vec2 a, Vec2 b, float ra, float rb) {
    const float t = along(p, a, b);
    return length(p - a - (b - a) * t) - mix(ra, rb, t);
}

inline float round_box(Vec2 p, Vec2 half, float radius) {
    const Vec2 q{std::abs(p.x) - half.x + radius, std::abs(p.y) - half.y + radius};
    const Vec2 outside{std::max(q.x, 0.0f), std::max(q.y, 0.0f)};
    return length(outside) + std::min(std::max(q.x, q.y), 0.0f) - radius;
}

// Union whose inner corners are rounded over a width of about k.
inline float blend_union(float a, float b, float k) {
    const float h = std::max(k - std::abs(a - b), 0.0f) / k;
    return std::min(a, b) - h * h * k * 0.25f;
}

// What one layer shows at a pixel. Spill is a weight for the light that the backing throws on it.
struct Shade {
    Vec3 colour;
    float spill = 0.0f;
};

// What makes a layer's coverage partial where it is.
enum class Part { kEdge, kHair, kMotion, kVeil, kCount };

// Layers laid over one another, back to front; colour and spill are premultiplied.
struct Stack {
    Vec3 colour;
    float spill = 0.0f;
    float alpha = 0.0f;
    std::array<float, static_cast<std::size_t>(Part::kCount)> shares{};  // of alpha, by the layers' parts

    void over(const Shade& shade, float cover, Part part = Part::kEdge) {
        if (cover <= 0.0f) return;
        const float rest = 1.0f - cover;
        colour = colour * rest + shade.colour * cover;
        spill = spill * rest + shade.spill * cover;
        // Exactly 1 under a solid layer and over one, whatever the rounding in between.
        alpha = cover >= 1.0f || alpha >= 1.0f ? 1.0f : alpha * rest + cover;
        for (float& share : shares) share *= rest;
        shares[static_cast<std::size_t>(part)] += cover;
    }
};

// Random numbers are functions of a key and a counter, so that any thread may draw any of them.

// The mixing step of SplitMix64.
inline std::uint64_t scramble(std::uint64_t x) {
    x += 0x9e3779b97f4a7c15u;
    x = (x ^ (x >> 30)) * 0xbf58476d1ce4e5b9u;
    x = (x ^ (x >> 27)) * 0x94d049bb133111ebu;
    return x ^ (x >> 31);
}

inline std::uint64_t key_of(std::uint64_t seed, std::uint64_t purpose) {
    return scramble(scramble(seed) ^ (purpose * 0xd1342543de82ef95u));
}

// From 0 to just below 1.
inline float uniform(std::uint64_t key, std::uint64_t counter) {
    return static_cast<float>(scramble(key ^ scramble(counter)) >> 40) * 0x1p-24f;
}

// Mean 0, deviation 1, never beyond 3.5: the sum of four uniform numbers.
inline float normal(std::uint64_t key, std::uint64_t counter) {
    const std::uint64_t bits = scramble(key ^ (counter * 0x9e3779b97f4a7c15u));
    const auto sum = static_cast<std::uint32_t>((bits & 0xffff) + ((bits >> 16) & 0xffff) +
                                                ((bits >> 32) & 0xffff) + (bits >> 48));
    return (static_cast<float>(sum) * 0x1p-16f - 2.0f) * 1.7320508f;
}

// Smooth noise from -1 to 1 over a lattice of spacing 1.
inline float noise(std::uint64_t key, float x, float y) {
    const float fx = std::floor(x), fy = std::floor(y);
    const auto at = [&](int dx, int dy) {
        const auto ix = static_cast<std::uint64_t>(static_cast<std::int64_t>(fx) + dx);
        const auto iy = static_cast<std::uint64_t>(static_cast<std::int64_t>(fy) + dy);
        return static_cast<float>(scramble(key ^ (ix * 0x8da6b343u + (iy << 32))) >> 40) * 0x1p-23f - 1.0f;
    };
    const float tx = x - fx, ty = y - fy;
    const float sx = tx * tx * (3.0f - 2.0f * tx), sy = ty * ty * (3.0f - 2.0f * ty);
    const float top = at(0, 0) + (at(1, 0) - at(0, 0)) * sx;
    const float bottom = at(0, 1) + (at(1, 1) - at(0, 1)) * sx;
    return top + (bottom - top) * sy;
}

// A run of numbers for building a scene, which happens on one thread.
class Draw {
  public:
    explicit Draw(std::uint64_t key) : key_(key) {}
    float operator()() { return uniform(key_, counter_++); }
    float between(float low, float high) { return low + (high - low) * (*this)(); }
    float sign() { return (*this)() < 0.5f ? -1.0f : 1.0f; }
    int below(int n) { return static_cast<int>((*this)() * static_cast<float>(n)); }

  private:
    std::uint64_t key_;
    std::uint64_t counter_ = 0;
};

}  // namespace plate
