// A bounded list of colour samples: what a viewer tool's strokes collected, newest last.
//
// Validation thread only; sampling an image renders the box asked for.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <ostream>
#include <span>
#include <string_view>
#include <vector>

#include "ZoImage/ChannelSet.h"
#include "ZoImage/Iop.h"

class VeloxaSample {
  public:
    using Sample = std::array<float, 4>;  // red, green, blue, alpha

    static constexpr std::size_t kCapacity = 100;

    explicit VeloxaSample(Zo::Image::Op* owner) : owner_(owner) {}
    virtual ~VeloxaSample() = default;
    VeloxaSample(const VeloxaSample&) = delete;
    VeloxaSample& operator=(const VeloxaSample&) = delete;

    // A full list drops its oldest sample first.
    void append(const Sample& sample);
    // The sample once for each pixel of the box, so at most kCapacity copies stay. Returns 0, and nothing
    // happens, when the box is empty, else 1.
    int add_point(const Sample& sample, int x, int y, int r, int t);
    // The mean of the box of the image. Returns 0, and nothing happens, when the box is empty or the render
    // was aborted, else 1.
    int add_area(Zo::Image::Iop& source, int x, int y, int r, int t);
    // The same of all pixels of several boxes, of which no two overlap.
    int add_areas(Zo::Image::Iop& source, std::span<const Zo::Image::Box> areas);
    void clear() { samples_->clear(); }

    int count() const { return static_cast<int>(samples_->size()); }
    const std::vector<Sample>& samples() const { return *samples_; }
    // The same, as it is at any time, for those who outlive this.
    std::shared_ptr<const std::vector<Sample>> shared() const { return samples_; }
    // The mean red, green, blue with alpha 0; all 0 for an empty list.
    Sample average() const;

    // Four numbers a sample, each followed by a blank, the whole in braces when `quote`.
    void write(std::ostream& out, bool quote) const;
    // Replaces the list. False when the words are not groups of four (the list stays) or one of them is no
    // number (the samples before it stay).
    bool read(std::string_view text);

    Zo::Image::Op* owner() const { return owner_; }  // the keyer node

  protected:
    // Called before and after samples are added.
    virtual void begin_change() {}
    virtual void end_change() {}

  private:
    std::shared_ptr<std::vector<Sample>> samples_ = std::make_shared<std::vector<Sample>>();
    Zo::Image::ChannelSet channels_{Zo::Image::kMaskRgba};  // asked for when an image is sampled
    Zo::Image::Op* owner_;
};

// A stroke is thinned out to fewer positions than this.
inline constexpr std::uint64_t kMostPositions = 16386;

// Steps that thin a large box out to fewer than kMostPositions. Returns the pixel count when the box is
// small enough as it is, else the count along the axis that was thinned last: callers use the steps.
int decimate(int x, int y, int r, int t, int& step_x, int& step_y);
