// The part of a sequence that one of several processes keys.
#pragma once

#include <optional>
#include <string>

#include "shot/frames/FramePattern.h"

namespace veloxa {

struct Chunk {
    int index = 0;  // counted from 0
    int count = 1;
};

// Reads "I/N", or takes it from the environment of a Slurm array's task for "slurm". Throws UsageError.
Chunk parse_chunk(const std::string& text);

// Contiguous. Over the chunks of one count each frame is in exactly one, and they differ by one frame at
// most; nothing where there are more chunks than frames and this one has none.
std::optional<FrameRange> part_of(const FrameRange& frames, const Chunk& chunk);

// The chunk of so many that has the nth frame.
int chunk_of(const FrameRange& frames, int n, int count);

}  // namespace veloxa
