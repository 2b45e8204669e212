// The window comes first: threads that work for it step back.
#pragma once

namespace veloxa::viewer {

// Lowers the calling thread's priority, and that of the threads which it starts; a little for what the user
// waits for, to the lowest for what runs beside.
void step_back();
void step_far_back();

}  // namespace veloxa::viewer
