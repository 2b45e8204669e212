// Random numbers that are functions of a key and a counter, so that any thread may draw any of them.
#pragma once

#include <cmath>
#include <cstdint>

namespace plate {

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
