// Small helpers for text that people write: trimming, and quoting it in messages.
#pragma once

#include <string>
#include <string_view>

namespace Zo::Image {

// Blanks of a line; never depends on the locale.
constexpr bool is_blank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f' || c == '\v';
}

std::string_view trim(std::string_view text);

// 'text', shortened when long, with bytes that a terminal could act on shown as '?'.
std::string quoted(std::string_view text);

}  // namespace Zo::Image
