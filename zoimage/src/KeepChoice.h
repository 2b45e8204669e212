// Which operators' rows a cache keeps when its budget does not hold all.
#pragma once

#include <cstddef>
#include <vector>

namespace Zo::Image {

struct KeepOption {
    const std::vector<std::size_t>* reads = nullptr;  // options of the operators that this one reads
    double cost = 0.0;                                // nanoseconds to make its rows, without those
    std::size_t bytes = 0;                            // to keep them; 0: they cannot be kept
    bool changed = false;                             // since the render before
    bool ready = false;                               // rows are there already
};

// True for the options to keep, option 0 being the root, which never is.
//
// One after the other those are taken that save the most time per byte, where an operator's rows save the
// making of everything behind them up to the rows that are kept already. What will probably be made again
// next time counts little: what changed now. What stood still beside it counts most, for it is read by what
// is being changed. Rows that are there give way only to what saves clearly more, so that two renders of the
// same kind in a row keep the same.
std::vector<bool> choose_kept(const std::vector<KeepOption>& options, std::size_t budget);

}  // namespace Zo::Image
