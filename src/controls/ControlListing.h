// Every control of a block as text, for people to read: one line a control in index order, its value as it is
// stored, a tab and its name as it stands, trailing blanks included.
#pragma once

#include <optional>
#include <string>

#include "controls/ControlBlock.h"

std::string control_listing(const ControlBlock& controls);

// Writes the listing to a file, over what was there. Returns what closing the file returned, nothing when it
// could not be opened; failing writes are not looked for.
std::optional<int> list_controls(const ControlBlock& controls, const char* path);
