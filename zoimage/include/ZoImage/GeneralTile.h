// Rectangles of an operator's image.
//
// GeneralTile holds several rows at once for an engine that looks up and down. Its rows are shared with
// the source, not copied; it belongs to the thread that made it and lives within one engine call.
// RawGeneralTile owns a copy of the pixels in contiguous planes, for work on whole frames; it may be kept.
// Beyond the source's box both repeat its nearest edge pixel.
#pragma once

#include <array>
#include <cstddef>
#include <utility>
#include <vector>

#include "ZoImage/Box.h"
#include "ZoImage/ChannelSet.h"
#include "ZoImage/Row.h"

namespace Zo::Image {

class Iop;
class Lock;

class GeneralTile {
  public:
    GeneralTile(Iop& source, const Box& box, ChannelSet channels);
    ~GeneralTile();
    GeneralTile(const GeneralTile&) = delete;
    GeneralTile& operator=(const GeneralTile&) = delete;

    const Box& box() const { return box_; }
    // False when the render was aborted before all rows were there.
    bool valid() const { return valid_; }

    // Pixels of row y (inside the box) of a channel, from column box().x on.
    const float* line(Channel c, int y) const { return rows_[static_cast<std::size_t>(y - box_.y)][c]; }
    float at(Channel c, int x, int y) const { return line(c, y)[x - box_.x]; }

  private:
    Box box_;
    std::vector<Row> rows_;  // borrowed from a store of the thread, so that a tile allocates nothing
    bool valid_ = true;
};

class RawGeneralTile {
  public:
    // Fetches the box. With a lock that the caller holds, threads that wait for it help.
    RawGeneralTile(Iop& source, const Box& box, ChannelSet channels, Lock* helpers = nullptr);

    const Box& box() const { return box_; }
    bool valid() const { return valid_; }  // false when the render was aborted on the way

    // Row y of a channel from column box().x on; null for a channel that was not fetched.
    const float* line(Channel c, int y) const;
    // The whole plane, row box().y first; empty for a channel that was not fetched. take() moves it out.
    const std::vector<float>& plane(Channel c) const { return planes_[static_cast<std::size_t>(c)]; }
    std::vector<float> take(Channel c) { return std::move(planes_[static_cast<std::size_t>(c)]); }

  private:
    Box box_;
    std::array<std::vector<float>, kChannelLimit> planes_;
    bool valid_ = true;
};

}  // namespace Zo::Image
