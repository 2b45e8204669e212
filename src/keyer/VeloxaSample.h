// A bounded list of colour samples: what a viewer tool's strokes collected, newest last.
#pragma once

#include <array>
#include <cstddef>
#include <ostream>
#include <string_view>
#include <vector>

#include "ZoImage/ChannelSet.h"
#include "ZoImage/Op.h"

class VeloxaSample {
  public:
    using Sample = std::array<float, 4>;  // red, green, blue, alpha

    static constexpr std::size_t kCapacity = 100;

    explicit VeloxaSample(Zo::Image::Op* owner) : owner_(owner) {}
    VeloxaSample(const VeloxaSample&) = delete;
    VeloxaSample& operator=(const VeloxaSample&) = delete;

  protected:
    virtual void begin_change() {}
    virtual void end_change() {}

  public:
    virtual ~VeloxaSample() = default;

    // A full list drops its oldest sample first.
    void append(const Sample& sample);
    // The sample once for each pixel of the box, so at most kCapacity copies stay. Returns 0, and nothing
    // happens, when the box is empty, else 1.
    int add_point(const Sample& sample, int x, int y, int r, int t);
    void clear() { samples_.clear(); }

    int count() const { return static_cast<int>(samples_.size()); }
    const std::vector<Sample>& samples() const { return samples_; }
    // The mean red, green, blue with alpha 0; all 0 for an empty list.
    Sample average() const;

    // Four numbers a sample, each followed by a blank, the whole in braces when `quote`.
    void write(std::ostream& out, bool quote) const;
    // Replaces the list. False when the words are not groups of four (the list stays) or one of them is no
    // number (the samples before it stay).
    bool read(std::string_view text);

    // The keyer node, and the channels that sampling an image asks for.
    Zo::Image::Op* owner() const { return owner_; }
    const Zo::Image::ChannelSet& channels() const { return channels_; }

  private:
    std::vector<Sample> samples_;
    Zo::Image::ChannelSet channels_{Zo::Image::kMaskRgba};
    Zo::Image::Op* owner_;
};
