// What --stats prints.
#pragma once

#include <string>

#include "shot/sequence/KeyStats.h"

namespace veloxa {

// One line an operator: name, class, rows, rows over the frames' rows, milliseconds a frame (of all threads);
// then milliseconds a frame of reading, keying and writing, and the most memory that the program has had at a
// time.
std::string table_of(const KeyStats& stats);

}  // namespace veloxa
