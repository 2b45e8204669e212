#include "shot/movie/MovieFile.h"

#include <cctype>
#include <string_view>

#include "shot/files/Formats.h"

namespace veloxa {

namespace {

bool is_plain(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 ||
           std::string_view("_./+:,@%=-").find(c) != std::string_view::npos;
}

}  // namespace

std::string quoted_for_shell(std::string name) {
    if (name.starts_with('-')) name.insert(0, "./");
    bool plain = true;
    for (const char c : name) plain = plain && is_plain(c);
    if (plain) return name;
    std::string result = "'";
    for (const char c : name) result += c == '\'' ? "'\\''" : std::string(1, c);
    return result + "'";
}

std::string frames_command(const std::string& movie, bool alpha) {
    return "ffmpeg -v error -i " + quoted_for_shell(movie) + " -f nut -c:v rawvideo -pix_fmt " +
           (alpha ? "rgba64le" : "rgb48le") + " -";
}

std::string movie_to_read(const std::string& path, const std::string& input) {
    return formats().movie_to_read(path, input);
}

std::string movie_to_write(const std::string& path) {
    return formats().movie_to_write(path);
}

}  // namespace veloxa
