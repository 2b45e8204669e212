// Rectangles of an operator's image.
//
// GeneralTile holds several rows at once for an engine that looks up and down. Its rows are shared with
// the source, not copied; it belongs to the thread that made it and lives within one engine call.
// fetch_rows hands out the rows of several sources as they come, for work that keeps them in its own form.
// Beyond a source's box both repeat its nearest edge pixel.
#pragma once

#include <cstddef>
#include <functional>
#include <span>
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

struct RowSource {
    Iop* image;
    ChannelSet channels;
};
// Receives row y of the source with this number; with helpers from any thread, in no particular order.
using RowSink = std::function<void(std::size_t source, int y, const Row& row)>;

// Fetches the box of every source. A row is fetched from all sources before the next, so that what they
// share upstream is made once. With a lock that the caller holds, threads that wait for it help. Returns
// false when the render was aborted on the way.
bool fetch_rows(std::span<const RowSource> sources, const Box& box, Lock* helpers, const RowSink& sink);

}  // namespace Zo::Image
