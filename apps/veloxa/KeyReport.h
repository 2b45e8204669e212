// What `veloxa key --stats` prints of a run.
#pragma once

#include <string>

#include "shot/sequence/KeyPipeline.h"

namespace veloxa {

// One line an operator with its name, class, rows, rows over the frames' rows, milliseconds a frame (of all
// threads); then milliseconds a frame of reading, keying and writing, and the most memory that the program
// has had at a time.
std::string stats_table(const KeyStats& stats);

// {"operators": [{"name", "class", "rows", "ratio", "ms"}], "frames", "made", "kept", "stale",
// "failed", "read_ms", "key_ms", "write_ms", "peak_memory_mb"}.
std::string stats_json(const KeyStats& stats);

// The most memory that the program has had at a time, in MiB.
long peak_memory();

}  // namespace veloxa
