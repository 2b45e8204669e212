// The region that is opaque by a rough look: by how little of the screen's colour is left, and by what no
// colour of a subject can be, darker than black or brighter than white.
#pragma once

#include <utility>

#include "framework/ParallelLoop.h"
#include "unmix/BackingModel.h"

namespace unmix {

class Region {
  public:
    enum class Grid { kFine, kCoarse };

    Region(const BackingModel& backing, Grid grid, const ParallelLoop& loop);

    // Finds the parts above `solid` that are quite opaque somewhere. `own`: coarse, what the subject's own
    // colours lead by, at most 0; null: 0.
    void find(const Floats* own, float solid);

    const Bytes& region() const { return region_; }
    const Floats& rough() const { return rough_; }  // the opacity
    Floats take_rough() { return std::move(rough_); }
    const Floats& lead() const { return lead_; }  // of the plate
    int width() const { return lead_.width(); }
    int height() const { return lead_.height(); }

    static constexpr float kOpaque = 0.90f;  // rough opacity that a region must hold somewhere

  private:
    const BackingModel& backing_;
    bool fine_;
    const ParallelLoop& loop_;
    Floats lead_;
    Floats backing_lead_;
    Floats bound_;
    Floats rough_;
    Bytes region_;
};

// What the inside of a coarse region leads by nearby: skin and fair hair lack the screen's colour, and their
// edges would look solid too early. The least lacking of it counts. Empty without an inside.
Floats own_lead(const BackingModel& backing, const Region& region, const ParallelLoop& loop);

}  // namespace unmix
