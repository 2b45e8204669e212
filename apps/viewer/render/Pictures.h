// The pictures that a session can show, by name: what the node makes, its inputs, the rows of its inner
// operators.
#pragma once

#include <string>
#include <vector>

#include "picture/View.h"
#include "shot/node/Node.h"

namespace veloxa::viewer {

inline constexpr const char* kResult = "result";    // what the node puts out
inline constexpr const char* kSubject = "subject";  // cut out, premultiplied
inline constexpr const char* kMatte = "matte";      // the result's alpha
inline constexpr const char* kStatus = "status";    // the same, with what is exactly 0 and 1 told apart
inline constexpr const char* kPlate = "plate";
inline constexpr const char* kCleanPlate = "clean plate";
inline constexpr const char* kBackground = "background";

// Those and the node's operators, by their names.
std::vector<std::string> picture_names(const Node& node);

// The input that a picture shows as it was read; -1 for one that is rendered.
int input_of(const std::string& picture);
// Whether the values are an operator's: no colour, on a scale of 0 to 255.
bool is_stage(const std::string& picture);
// Which rendered picture holds it: the result for matte and status.
std::string rendered_as(const std::string& picture);
// The view as this picture needs it.
View view_of(const std::string& picture, View view);

}  // namespace veloxa::viewer
