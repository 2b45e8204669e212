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

// Sets one of the pointers for a scope.
template <typename T>
class Use {
  public:
    Use(T* ThisThread::*place, T& value)
        : place_(place), before_(std::exchange(this_thread().*place, &value)) {}
    ~Use() { this_thread().*place_ = before_; }
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;

  private:
    T* ThisThread::*place_;
    T* before_;
};

}  // namespace Zo::Image
