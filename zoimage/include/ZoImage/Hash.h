// A 64-bit running hash that names the state an operator's results were computed from.
//
// Not cryptographic. The same values appended in the same order give the same hash in every process.
#pragma once

#include <bit>
#include <cstdint>
#include <string_view>

namespace Zo::Image {

class Hash {
  public:
    constexpr Hash() = default;

    constexpr void append(std::int32_t v) { mix(static_cast<std::uint32_t>(v)); }
    constexpr void append(std::uint64_t v) { mix(v); }
    constexpr void append(double v) { mix(std::bit_cast<std::uint64_t>(v)); }
    constexpr void append(const Hash& other) { mix(other.value_); }
    constexpr void append(std::string_view text) {
        for (const char c : text) mix(static_cast<unsigned char>(c));
        mix(text.size());
    }

    constexpr std::uint64_t value() const { return value_; }
    friend constexpr bool operator==(const Hash&, const Hash&) = default;

  private:
    // The finaliser of SplitMix64 (Steele, Lea, Flood 2014) over the running value; order matters.
    constexpr void mix(std::uint64_t v) {
        std::uint64_t z = (value_ ^ v) + 0x9e3779b97f4a7c15ULL;
        z = (z ^ (z >> 30U)) * 0xbf58476d1ce4e5b9ULL;
        z = (z ^ (z >> 27U)) * 0x94d049bb133111ebULL;
        value_ = std::rotl(value_, 5) ^ z ^ (z >> 31U);
    }

    std::uint64_t value_ = 0;
};

}  // namespace Zo::Image
