// Packs: the pixels that a form of a kernel works on at once.
//
// Kernels that mix precisions or need integers are written over packs: Floats, Doubles and Ints of kPack
// pixels, and masks. A form's pack is four of its vectors, so that while one waits for a result the other
// three keep the processor busy. The scalar form's pack is one pixel, a plain float, double or int.
//
// Besides + - * / and the comparisons: choose(mask, a, b), max_of, min_of, wide, narrow, truncated, whole
// (see lanes/KernelMath.h for what each means), all_of(mask), load and store.
#pragma once

#if LANE_BITS == 0
#include "lanes/ScalarPack.h"
#else
#include "lanes/VectorPack.h"
#endif
