// Messages of the image library for people.
#pragma once

#include <string>
#include <string_view>

namespace veloxa {

// The first line, without the file's name, which the program's own message already has. `otherwise` stands
// in for an empty message.
std::string tidy_message(std::string_view message, std::string_view path, std::string_view otherwise);

}  // namespace veloxa
