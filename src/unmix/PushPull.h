// Fills what is known here and there in over the whole picture: each level of a pyramid takes from the coarser
// one what its own weight does not cover (Gortler, Grzeszczuk, Szeliski, Cohen: The Lumigraph, 1996).
#pragma once

#include <vector>

#include "framework/ParallelLoop.h"
#include "unmix/Plane.h"

namespace unmix {

class PushPull {
  public:
    // Reads `values` where `mask` is set; writes every pixel of `out`. Levels below `from` are left out, which
    // smooths: level n has 2^n pixels to a side. Where nothing is known at all `out` is 0.
    void run(const Colours& values, const Bytes& mask, int from, Colours& out, const ParallelLoop& loop);

  private:
    void resize(int width, int height);

    static constexpr std::size_t kWeight = 3;
    // Sums of weight times value, channel by channel, and of weight, finest level first.
    std::array<std::vector<Floats>, 4> levels_;
    std::array<std::vector<Floats>, 3> filled_;
};

}  // namespace unmix
