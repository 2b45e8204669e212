// What whoever calls for longer work gives it: where to tell of it, and a way to end it.
#pragma once

#include <functional>
#include <string>

#include "ZoImage/Render.h"

namespace veloxa {

// Any thread calls.
struct Caller {
    const Zo::Image::AbortFlag* abort = nullptr;  // once it is raised, the work throws Interrupted
    // Takes a line, FILE: what to know of it, or why it was left out.
    std::function<void(const std::string&)> warn = [](const std::string&) {};
    // Takes a line about something that was found out and went well.
    std::function<void(const std::string&)> tell = [](const std::string&) {};
    // Takes how many frames are done, a frame's rows as parts of one, and how many there are, 0 where nobody
    // knows.
    std::function<void(double, int)> progress = [](double, int) {};
};

}  // namespace veloxa
