// What is known of a stream of frames beside its pixels.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace veloxa {

struct Ratio {
    int num = 0;
    int den = 1;

    bool operator==(const Ratio&) const = default;
};

// When a frame is shown and for how long, in units of StreamInfo::time_base.
struct FrameTime {
    std::int64_t start = 0;
    std::int64_t duration = 1;

    bool operator==(const FrameTime&) const = default;
};

struct StreamInfo {
    using Tags = std::vector<std::pair<std::string, std::string>>;

    Ratio time_base{1, 24};  // seconds
    Ratio frame_rate;        // frames a second; 0 where it is not known
    Tags video_tags;         // of the pictures, such as "timecode"
    Tags tags;               // of all of it, such as "title"
};

}  // namespace veloxa
