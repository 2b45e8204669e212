// File names with a frame number in them, and ranges of frames.
//
// A name holds the number as printf writes it (%04d, %d) or as a run of # as wide as the number, padded with
// zeros; it may stand in it more than once. Where a name has a number, %% stands for one %.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace veloxa {

class FramePattern {
  public:
    FramePattern() = default;
    explicit FramePattern(std::string_view name);

    const std::string& name() const { return name_; }
    bool empty() const { return name_.empty(); }
    // Whether the name depends on the frame.
    bool has_frame() const { return has_frame_; }
    // Whether it stands for standard input or output, which carries a stream of frames.
    bool is_stream() const { return name_ == "-"; }
    // The name of a frame's file; every frame's is the same where the pattern has no number.
    std::string at(int frame) const;

  private:
    // Text, then a number padded to `width`; width 0 for no number, as behind the last one.
    struct Piece {
        std::string text;
        int width = 0;
        bool zeros = false;
    };

    std::string name_;
    bool has_frame_ = false;
    std::vector<Piece> pieces_;
};

inline constexpr int kMostFrames = 100'000'000;  // of a range

// first, first + step, ... up to last.
struct FrameRange {
    int first = 0;
    int last = 0;
    int step = 1;
    bool open = false;  // the last is that of a stream, whichever it be

    int count() const { return static_cast<int>((static_cast<std::int64_t>(last) - first) / step) + 1; }
    int at(int n) const { return static_cast<int>(first + static_cast<std::int64_t>(n) * step); }
};

// Reads A, A-B or A-BxN; A and B may be negative, A is not above B and N is at least 1. Throws UsageError.
FrameRange parse_frames(const std::string& text);

}  // namespace veloxa
