#include "ZoImage/KnobDisplay.h"

#include <array>
#include <cctype>
#include <charconv>
#include <cstdint>
#include <utility>

#include "Text.h"

namespace Zo::Image {

namespace {

constexpr std::array<std::pair<std::string_view, std::string_view>, 6> kNames{
    {{"lt", "<"}, {"gt", ">"}, {"amp", "&"}, {"quot", "\""}, {"apos", "'"}, {"nbsp", " "}}};

void append_utf8(std::string& text, std::uint32_t code) {
    const auto byte = [&](std::uint32_t bits) { text += static_cast<char>(bits); };
    if (code < 0x80) return byte(code);
    if (code < 0x800) {
        byte(0xC0 | code >> 6);
    } else {
        if (code < 0x10000) {
            byte(0xE0 | code >> 12);
        } else {
            byte(0xF0 | code >> 18);
            byte(0x80 | (code >> 12 & 0x3F));
        }
        byte(0x80 | (code >> 6 & 0x3F));
    }
    byte(0x80 | (code & 0x3F));
}

// Appends what stands between & and ; when it names a character.
bool append_character(std::string& text, std::string_view name) {
    for (const auto& [known, character] : kNames) {
        if (known != name) continue;
        text += character;
        return true;
    }
    if (!name.starts_with('#')) return false;
    const bool hexadecimal = name.substr(1).starts_with('x');
    const std::string_view digits = name.substr(hexadecimal ? 2 : 1);
    std::uint32_t code = 0;
    const char* const end = digits.data() + digits.size();
    const auto [at, error] = std::from_chars(digits.data(), end, code, hexadecimal ? 16 : 10);
    if (error != std::errc() || at != end || code == 0 || code > 0x10FFFF) return false;
    append_utf8(text, code);
    return true;
}

// What a tag leaves in its place.
std::string_view mark_of(std::string_view tag) {
    if (tag == "li") return "\n- ";
    return tag == "br" || tag == "br/" || tag == "p" || tag == "/ul" || tag == "/ol" ? "\n" : "";
}

bool keeps_floats(const Knob& knob) {
    const Knob::Kind kind = knob.target().kind();
    return kind == Knob::Kind::kFloat || kind == Knob::Kind::kColor || kind == Knob::Kind::kColorAlpha;
}

}  // namespace

double shown(const Knob& knob, double value) {
    if (!keeps_floats(knob)) return value;
    const auto kept = static_cast<float>(value);
    std::array<char, 32> text;
    const char* const end = std::to_chars(text.data(), text.data() + text.size(), kept).ptr;
    double result = 0.0;
    std::from_chars(text.data(), end, result);
    // The decimal may lie so near the middle of two floats that the double is the middle.
    return static_cast<float>(result) == kept ? result : value;
}

std::string plain_text(std::string_view markup) {
    std::string text;
    while (!markup.empty()) {
        const std::size_t end = markup[0] == '<' ? markup.find('>') : markup[0] == '&' ? markup.find(';') : 0;
        const std::string_view inner =
            end == std::string_view::npos || end < 2 ? "" : markup.substr(1, end - 1);
        const bool tag = markup[0] == '<' && !inner.empty() &&
                         (inner[0] == '/' || std::isalpha(static_cast<unsigned char>(inner[0])));
        if (tag) text += mark_of(inner.substr(0, inner.find(' ')));
        if (tag || (markup[0] == '&' && append_character(text, inner))) {
            markup.remove_prefix(end + 1);
        } else {
            text += markup[0];
            markup.remove_prefix(1);
        }
    }
    while (text.ends_with('\n') || text.ends_with(' ')) text.pop_back();
    return text;
}

ToolLabel tool_label(std::string_view label) {
    const std::size_t end = label.find(';');
    if (end == std::string_view::npos) return {{}, std::string(trim(label))};
    std::string_view icon = trim(label.substr(0, end));
    if (icon.starts_with('@')) icon.remove_prefix(1);
    return {std::string(icon), std::string(trim(label.substr(end + 1)))};
}

}  // namespace Zo::Image
