// How a kernel over whole frames asks for its loops to be run: for consecutive pieces of [begin, end), each
// at most `grain` long, on whatever threads there are. Pieces must not depend on each other. A plain loop
// will do; a kernel's result does not depend on how a range is cut or by whom its pieces are run.
// A loop that leaves pieces out, because nobody wants the result any more, ends the kernel by an exception of
// its own. So loops are asked for by the kernel's thread, never within a piece.
#pragma once

#include <functional>

using ParallelLoop =
    std::function<void(int begin, int end, int grain, const std::function<void(int begin, int end)>& body)>;
