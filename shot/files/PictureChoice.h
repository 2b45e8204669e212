// What of a file is read.
#pragma once

#include <string>

namespace veloxa {

struct PictureChoice {
    std::string part{};     // by name, or by number from 0
    std::string layer{};    // what stands before a channel's letter, without the dot
    std::string view{};     // of a stereo file, as left
    std::string channel{};  // the one channel to read, by its name in the file or in the layer
    std::string space{};    // the colour space that the values are in
    bool invert = false;    // 1 - value, for mattes

    bool empty() const { return !names_channels() && space.empty() && !invert; }
    // Whether it says which of the file's channels are read.
    bool names_channels() const {
        return !(part.empty() && layer.empty() && view.empty() && channel.empty());
    }
};

}  // namespace veloxa
