// The sequence that a file belongs to.
#pragma once

#include <string>

namespace veloxa::viewer {

struct FoundSequence {
    std::string name;    // with #### where the frame's number stands; the file itself for a still
    std::string frames;  // "1001-1048"; empty for a still
};

// By the last number in the file's name and what lies beside it: from the first to the last number there is,
// by the step that most of them have. A file alone of its kind is a still. Reads the folder; never throws.
FoundSequence find_sequence(const std::string& file);

// Whether there is any frame of a name with a frame's number in it; of a still, whether it is there.
bool is_there(const std::string& name);

}  // namespace veloxa::viewer
