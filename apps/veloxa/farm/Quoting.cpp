#include "farm/Quoting.h"

#include <cstddef>

namespace veloxa {

namespace {

bool is_plain(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           std::string_view("_@%+=:,./-").find(c) != std::string_view::npos;
}

bool is_control(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7f;
}

std::string escaped(unsigned char byte) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    return {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15]};
}

// The bytes of the character that the text begins with, 0 where it begins with none.
std::size_t character(std::string_view text) {
    const auto byte = [&](std::size_t n) { return static_cast<unsigned char>(text[n]); };
    if (byte(0) < 0x80) return 1;
    const std::size_t length = byte(0) >= 0xf0 ? 4 : byte(0) >= 0xe0 ? 3 : 2;
    if (byte(0) < 0xc2 || byte(0) > 0xf4 || text.size() < length) return 0;
    for (std::size_t n = 1; n < length; ++n) {
        if ((byte(n) & 0xc0) != 0x80) return 0;
    }
    // Forms longer than they need be, surrogates, numbers beyond the last.
    if ((byte(0) == 0xe0 && byte(1) < 0xa0) || (byte(0) == 0xed && byte(1) > 0x9f)) return 0;
    if ((byte(0) == 0xf0 && byte(1) < 0x90) || (byte(0) == 0xf4 && byte(1) > 0x8f)) return 0;
    return length;
}

}  // namespace

bool is_utf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = character(text);
        if (length == 0) return false;
        text.remove_prefix(length);
    }
    return true;
}

std::string shell_word(std::string_view text) {
    bool plain = !text.empty();
    bool quotable = is_utf8(text) && text.find("{{") == std::string_view::npos;
    for (const char c : text) {
        plain = plain && is_plain(c);
        quotable = quotable && c != '\'' && !is_control(c);
    }
    if (plain) return std::string(text);
    if (quotable) return "'" + std::string(text) + "'";
    std::string word = "$'";
    for (std::size_t n = 0; n < text.size();) {
        const std::size_t length = character(text.substr(n));
        const char c = text[n];
        if (length == 0 || is_control(c) || (c == '{' && word.ends_with('{'))) {
            word += escaped(static_cast<unsigned char>(c));
            ++n;
            continue;
        }
        if (c == '\'' || c == '\\') word += '\\';
        word += text.substr(n, length);
        n += length;
    }
    return word + "'";
}

std::string shell_words(const std::vector<std::string>& words, std::string_view between) {
    std::string line;
    bool option = false;
    for (const std::string& word : words) {
        const bool dashed = word.starts_with('-') && word != "-";
        if (!line.empty()) line += option && !dashed ? std::string_view(" ") : between;
        line += shell_word(word);
        option = dashed;
    }
    return line;
}

std::string make_recipe(std::string_view line) {
    std::string recipe;
    for (const char c : line) recipe += c == '$' ? "$$" : std::string(1, c);
    return recipe;
}

}  // namespace veloxa
