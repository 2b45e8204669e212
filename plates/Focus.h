// The subject out of focus: its layers averaged over a disc.
#pragma once

#include <vector>

#include "plates/Math.h"

namespace plate {

// Rows of a sharp subject in, blurred ones out. Keeps the rows around the last one; one for each thread.
class Focus {
  public:
    // radius: of the disc, in pixels; 0 leaves rows as they are.
    Focus(float radius, int width);

    // The row y of the picture that `paint(y, row)` paints sharply, rows above and below the frame too.
    // Beside the frame its columns repeat.
    template <class Paint>
    const std::vector<Stack>& row(int y, const Paint& paint) {
        for (int n = y - reach_; n <= y + reach_; ++n) {
            Held& held = held_at(n);
            if (held.filled && held.y == n) continue;
            paint(n, held.row);
            held.y = n;
            held.filled = true;
        }
        if (reach_ == 0) return held_at(y).row;
        blur(y);
        return blurred_;
    }

  private:
    struct Held {
        int y = 0;
        bool filled = false;
        std::vector<Stack> row;
    };
    struct Tap {
        int dx, dy;
        double weight;
    };

    Held& held_at(int y);
    void blur(int y);

    int reach_;
    std::vector<Tap> taps_;  // of weights that add up to 1
    std::vector<Held> held_;
    std::vector<Stack> blurred_;
};

}  // namespace plate
