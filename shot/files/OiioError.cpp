#include "shot/files/OiioError.h"

#include <algorithm>

namespace veloxa {

namespace {

void erase_all(std::string& text, const std::string& part) {
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at)) {
        text.erase(at, part.size());
    }
}

}  // namespace

std::string tidy_message(std::string_view message, std::string_view path, std::string_view otherwise) {
    const std::string name(path);
    std::string text(message);
    if (text.find("could not find a format reader") != std::string::npos)
        return "is no image file of a known format";
    if (text.find("could not find a format writer") != std::string::npos) {
        return "has no extension of a format that can be written";
    }
    for (const char* before : {" for \"", " (\"", " \"", "\"", ""}) {
        for (const char* after : {"\")", "\": ", "\"", ": "}) erase_all(text, before + name + after);
    }
    // One cause often gives many lines, one for each block of rows.
    const std::size_t start = std::min(text.find_first_not_of("\r\n "), text.size());
    std::string line = text.substr(start, text.find_first_of("\r\n", start) - start);
    while (!line.empty() && (line.back() == ' ' || line.back() == '.')) line.pop_back();
    return line.empty() ? std::string(otherwise) : line;
}

}  // namespace veloxa
