// Whole numbers in what the user types.
#pragma once

#include <charconv>
#include <string_view>

namespace veloxa {

// Takes a number off the front of the text; false where none that fits stands there.
inline bool take(std::string_view& text, int& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc()) return false;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return true;
}

inline bool take(std::string_view& text, char letter) {
    if (!text.starts_with(letter)) return false;
    text.remove_prefix(1);
    return true;
}

}  // namespace veloxa
