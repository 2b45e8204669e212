// The settings of a block as a script of "set" commands, one a line: the engine's command language, whose
// words and order never change. Values are those that ControlBlock::get returns.
#pragma once

#include <cstddef>

#include "controls/ControlBlock.h"

// Bytes that hold any trace and the NUL behind it, whatever the values.
std::size_t trace_capacity();

// Appends the script to the NUL-terminated text in the buffer, which must have trace_capacity() bytes from
// that NUL on: nothing is checked.
void write_trace(const ControlBlock& controls, char* buffer);

// The same within `size` bytes: appends the lines that fit with the NUL behind them, up to the first that
// does not. Returns whether all of them did. A buffer without a NUL in it stays as it is.
bool write_trace(const ControlBlock& controls, char* buffer, std::size_t size);
