// The lines that a filter looks along, a group at a time.
#pragma once

#include <array>
#include <cstddef>
#include <span>

// Calls use(lines) for consecutive groups of line_of(first) to line_of(last), so that a filter of any height
// needs no memory of its own.
template <class LineOf, class Use>
void in_groups(int first, int last, LineOf&& line_of, Use&& use) {
    std::array<const float*, 64> lines;
    std::size_t count = 0;
    for (int k = first; k <= last; ++k) {
        lines[count++] = line_of(k);
        if (count < lines.size() && k < last) continue;
        use(std::span<const float* const>(lines.data(), count));
        count = 0;
    }
}
