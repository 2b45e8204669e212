#include "shot/files/EncodingGuess.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <string_view>

namespace veloxa {

namespace {

std::string lower(std::string text) {
    std::ranges::transform(text, text.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

bool among(const std::string& text, std::initializer_list<std::string_view> names) {
    return std::ranges::find(names, text) != names.end();
}

}  // namespace

EncodingGuess guess_encoding(const OIIO::ImageSpec& header, const std::string& file) {
    const std::string space = header.get_string_attribute("oiio:ColorSpace");
    const std::string tag = lower(space);
    const std::string extension = lower(std::filesystem::path(file).extension().string());
    const std::string type = header.format.c_str();
    const std::string as_tagged = type + ", tagged " + space;
    const bool film = among(extension, {".dpx", ".cin"});
    const bool whole = header.format == OIIO::TypeUInt8 || header.format == OIIO::TypeUInt16;
    if (!film && !whole) return {"as stored", type};
    if (among(tag, {"linear", "scene_linear", "lin_srgb", "lin_rec709"})) return {"as stored", as_tagged};
    if (!film) return {"sRGB", type + " without a linear tag"};
    if (among(tag, {"srgb", "rec709"})) return {"sRGB", as_tagged};
    return {"logarithmic", extension.substr(1) + " without a linear tag"};
}

}  // namespace veloxa
