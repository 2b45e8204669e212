// What the work on a thread refers to, where no parameter can bring it. Each pointer is set for a scope and
// put back at its end, so that nothing is left on a thread: threads may be anybody's, and a module that has
// the engine linked in can be unloaded under them.
#pragma once

#include <utility>

namespace Zo::Image {

class BufferPool;
class RequestPass;
class RowPath;

struct ThisThread {
    RowPath* path = nullptr;          // of the render that the thread works for
    BufferPool* buffers = nullptr;    // where its rows take their memory
    RequestPass* requests = nullptr;  // that it walks
};

// Read for every row, so that the ways to it differ: see ThisThread.cpp.
ThisThread& this_thread();

// Sets a variable for a scope.
template <typename T>
class Scoped {
  public:
    Scoped(T& place, T value) : place_(place), before_(std::exchange(place, value)) {}
    ~Scoped() { place_ = before_; }
    Scoped(const Scoped&) = delete;
    Scoped& operator=(const Scoped&) = delete;

  private:
    T& place_;
    T before_;
};

}  // namespace Zo::Image
