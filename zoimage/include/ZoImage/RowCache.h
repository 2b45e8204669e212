// Rows kept from one render to the next, so that after a change only what depends on it is made again.
//
// For each operator of a render, the root apart, the cache holds planes of the rows that were computed,
// whole frames or as much of them as was wanted. They stand for the operator's state: its hash and box, and
// those of everything that it reads. When one of these changed, its planes are free for others. A row that
// an aborted or failed render left half made is not taken over.
//
// A cache serves one render at a time, of any graph, and outlives the renderers that use it.
#pragma once

#include <cstddef>
#include <memory>

namespace Zo::Image {

class RowCache {
  public:
    // Holds at most `budget` bytes, less what the operators hold themselves (Iop::hold). Where that is too
    // little for all operators of a render, those are kept whose rows save the most time per byte; see
    // KeepChoice.h.
    explicit RowCache(std::size_t budget);
    ~RowCache();
    RowCache(const RowCache&) = delete;
    RowCache& operator=(const RowCache&) = delete;

    // The memory that the cache has taken together with the frames that the operators of the last render hold
    // themselves; above the budget only where those frames alone are. Any thread.
    std::size_t bytes() const;
    // Gives all memory back. Not during a render.
    void clear();

  private:
    friend class CachedRender;
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace Zo::Image
