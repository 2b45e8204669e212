// Values by their rank. Both take their own copy, which they reorder; it must not be empty.
#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace unmix {

template <class T>
T value_of_rank(std::vector<T> values, std::size_t rank) {
    const auto at = values.begin() + static_cast<std::ptrdiff_t>(rank);
    std::nth_element(values.begin(), at, values.end());
    return *at;
}

// The one in the middle, of two the greater.
template <class T>
T median(std::vector<T> values) {
    const std::size_t rank = values.size() / 2;
    return value_of_rank(std::move(values), rank);
}

// `share` from 0, the least, to 1, the greatest.
template <class T>
T quantile(std::vector<T> values, double share) {
    const auto rank = static_cast<std::size_t>(share * static_cast<double>(values.size() - 1));
    return value_of_rank(std::move(values), rank);
}

}  // namespace unmix
