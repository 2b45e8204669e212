#include "Text.h"

namespace Zo::Image {

std::string_view trim(std::string_view text) {
    while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
    while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);
    return text;
}

std::string quoted(std::string_view text) {
    constexpr std::size_t kLongest = 40;
    std::string out = "'";
    for (const char c : text.substr(0, kLongest)) {
        const auto byte = static_cast<unsigned char>(c);
        out += byte < 0x20 || byte == 0x7f ? '?' : c;
    }
    if (text.size() > kLongest) out += "...";
    return out + "'";
}

}  // namespace Zo::Image
