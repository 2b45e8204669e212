// The rows of a file, interleaved and in its samples, out of an image's planes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "ZoImage/Samples.h"
#include "shot/files/ImageFile.h"
#include "shot/files/PictureFile.h"
#include "shot/image/Image.h"

namespace veloxa {

// Whether files that this writes keep alpha beside colour.
bool keeps_alpha(const PictureOutput& output, const WriteOptions& options);

class FileRows {
  public:
    // What this writer's format holds of the image: channels that it knows and needs, and the data window or,
    // where the format has none, the display window. Refers to the image.
    FileRows(const Image& image, const PictureOutput& output, const WriteOptions& options);
    // What a stream of frames holds of it: all channels that it needs, alpha apart from colour, and the
    // display window.
    FileRows(const Image& image, Alpha alpha);

    const std::vector<Zo::Image::Channel>& channels() const { return channels_; }
    const Zo::Image::Box& box() const { return box_; }
    const Zo::Image::Box& frame() const { return image_.info.format.box; }
    std::size_t width() const { return static_cast<std::size_t>(box_.width()); }
    int bits() const { return bits_; }  // used of an integer sample; 0 for all
    int height() const { return box_.height(); }
    std::size_t pitch() const { return channels_.size() * width(); }  // samples in a row

    // Row n of the file from its first; black where the image has no pixel. `samples` has room for a
    // channel's. Integers are clamped to their range and rounded to nearest; NaN becomes 0. Colour is divided
    // by alpha, and 0 where that is 0, in formats that keep them apart.
    template <class Sample>
    void fill(int n, Sample* row, Sample* samples) const;

  private:
    const Image& image_;
    std::vector<Zo::Image::Channel> channels_;
    Zo::Image::Box box_;
    bool divides_ = false;
    int bits_ = 0;
};

// Calls work(sample) with a sample of the type that rows of this type of file are made in.
template <class Work>
auto with_sample_of(const OIIO::TypeDesc& type, const Work& work) {
    if (type == OIIO::TypeDesc::UINT8) return work(std::uint8_t{});
    if (type == OIIO::TypeDesc::UINT16) return work(std::uint16_t{});
    if (type == OIIO::TypeDesc::HALF) return work(Zo::Image::Half{});
    return work(float{});
}

}  // namespace veloxa
