// Channels of an image and sets of them.
#pragma once

#include <bit>
#include <cstdint>

namespace Zo::Image {

// Channel numbers. Red, green, blue and alpha are 1 to 4; 5 up to kChannelLimit - 1 are free for others.
enum Channel : int { kRed = 1, kGreen = 2, kBlue = 3, kAlpha = 4 };

inline constexpr int kChannelLimit = 16;

// A set of channels, a plain value. Range-for goes upward.
class ChannelSet {
  public:
    constexpr ChannelSet() = default;
    constexpr ChannelSet(Channel c) : bits_(bit(c)) {}  // a channel is a set of one

    static constexpr ChannelSet from_bits(std::uint32_t bits) {
        ChannelSet set;
        set.bits_ = bits & kAllBits;
        return set;
    }
    constexpr std::uint32_t bits() const { return bits_; }

    constexpr bool empty() const { return bits_ == 0; }
    constexpr explicit operator bool() const { return bits_ != 0; }
    constexpr int size() const { return std::popcount(bits_); }
    constexpr bool has(Channel c) const { return (bits_ & bit(c)) != 0; }
    constexpr bool contains(ChannelSet other) const { return (other.bits_ & ~bits_) == 0; }
    constexpr bool intersects(ChannelSet other) const { return (bits_ & other.bits_) != 0; }

    constexpr ChannelSet& operator+=(ChannelSet other) { return *this = *this + other; }
    constexpr ChannelSet& operator-=(ChannelSet other) { return *this = *this - other; }
    constexpr ChannelSet& operator&=(ChannelSet other) { return *this = *this & other; }

    friend constexpr ChannelSet operator+(ChannelSet a, ChannelSet b) { return from_bits(a.bits_ | b.bits_); }
    friend constexpr ChannelSet operator-(ChannelSet a, ChannelSet b) {
        return from_bits(a.bits_ & ~b.bits_);
    }
    friend constexpr ChannelSet operator&(ChannelSet a, ChannelSet b) { return from_bits(a.bits_ & b.bits_); }
    friend constexpr bool operator==(ChannelSet, ChannelSet) = default;

    class Iterator {
      public:
        constexpr explicit Iterator(std::uint32_t bits) : bits_(bits) {}
        constexpr Channel operator*() const { return static_cast<Channel>(std::countr_zero(bits_)); }
        constexpr Iterator& operator++() {
            bits_ &= bits_ - 1;
            return *this;
        }
        friend constexpr bool operator==(Iterator, Iterator) = default;

      private:
        std::uint32_t bits_;
    };
    constexpr Iterator begin() const { return Iterator(bits_); }
    constexpr Iterator end() const { return Iterator(0); }

  private:
    static constexpr std::uint32_t kAllBits = (1U << kChannelLimit) - 2U;  // channel 0 is no channel
    static constexpr std::uint32_t bit(Channel c) { return (1U << static_cast<unsigned>(c)) & kAllBits; }

    std::uint32_t bits_ = 0;
};

inline constexpr ChannelSet kMaskNone{};
inline constexpr ChannelSet kMaskRgb = ChannelSet(kRed) + kGreen + kBlue;
inline constexpr ChannelSet kMaskAlpha{kAlpha};
inline constexpr ChannelSet kMaskRgba = kMaskRgb + kMaskAlpha;
inline constexpr ChannelSet kMaskAll = ChannelSet::from_bits(~0U);

}  // namespace Zo::Image
