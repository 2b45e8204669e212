#include "ZoImage/NearestName.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <vector>

#include "Text.h"

namespace Zo::Image {

namespace {

constexpr std::size_t kLongList = 10;
constexpr std::size_t kLongestName = 100;

std::string small_letters(std::string_view name) {
    std::string small(name.substr(0, kLongestName));
    for (char& c : small) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return small;
}

// Levenshtein distance, two neighbours that change places counted once.
std::size_t slips(std::string_view a, std::string_view b) {
    std::array<std::vector<std::size_t>, 3> rows;  // before the last, the last, this one
    for (auto& row : rows) row.resize(b.size() + 1);
    std::iota(rows[2].begin(), rows[2].end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::rotate(rows.begin(), rows.begin() + 1, rows.end());
        rows[2][0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t wrong = rows[1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            rows[2][j] = std::min({wrong, rows[1][j] + 1, rows[2][j - 1] + 1});
            const bool swapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
            if (swapped) rows[2][j] = std::min(rows[2][j], rows[0][j - 2] + 1);
        }
    }
    return rows[2].back();
}

}  // namespace

std::string_view nearest_name(std::string_view name, std::span<const std::string> names) {
    // A name with more than a third of it wrong is no slip of the keyboard.
    std::size_t most = name.size() / 3 + 1;
    const std::string typed = small_letters(name);
    std::string_view nearest;
    for (const std::string& candidate : names) {
        const std::size_t away = slips(typed, small_letters(candidate));
        if (away > most || (away == most && !nearest.empty())) continue;
        most = away;
        nearest = candidate;
    }
    return nearest;
}

std::string did_you_mean(std::string_view name, std::span<const std::string> names) {
    const std::string_view nearest = nearest_name(name, names);
    return nearest.empty() ? std::string() : "; did you mean " + quoted(nearest) + "?";
}

std::string choices(std::string_view name, std::span<const std::string> names) {
    std::string guess = did_you_mean(name, names);
    if (names.size() > kLongList && !guess.empty()) return guess;
    std::string list;
    for (const std::string& candidate : names) list += (list.empty() ? "; there are " : ", ") + candidate;
    return list + guess;
}

}  // namespace Zo::Image
