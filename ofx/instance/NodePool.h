// The render nodes of one instance: as many as renders ran at once, each used by one render at a time.
//
// A node is handed out again for the state that it worked on last, where that is known: frames that it had to
// compute whole then serve the next tile. Any thread.
//
// What the user edits is rendered again and again: the same region of the same picture. Its rows are kept
// from the second such render on, under one budget for the pool; another picture, as when frames play, lets
// go of them. One render at a time has the rows, others beside it do without.
#pragma once

#include <cstddef>
#include <list>
#include <mutex>

#include "ZoImage/Hash.h"
#include "ZoImage/RowCache.h"
#include "instance/RenderNode.h"

namespace veloxa::ofx {

class NodePool {
    struct Entry {
        RenderNode node;
        Zo::Image::Hash state;
    };

  public:
    // The right to use a node; gives it back.
    class Lease {
      public:
        ~Lease();
        // The kept rows, for this lease alone; null when there are none to have.
        Zo::Image::RowCache* rows() const { return rows_; }
        Lease(const Lease&) = delete;
        Lease& operator=(const Lease&) = delete;
        RenderNode* operator->() { return &entry_.front().node; }

      private:
        friend class NodePool;
        Lease(NodePool& pool, std::list<Entry>&& entry, const Zo::Image::Hash& picture);

        NodePool& pool_;
        std::list<Entry> entry_;  // a list of one goes back without asking for memory
        Zo::Image::Hash picture_;
        Zo::Image::RowCache* rows_ = nullptr;
    };

    // Makes a node when all are in use. `picture` names the foreground and the region to render, the empty
    // hash none, so that no rows are kept.
    Lease take(const Zo::Image::Hash& state, const Zo::Image::Hash& picture = {});
    // Drops the nodes that are not in use, but for so many that were in use last, and the rows with them.
    void purge(std::size_t kept = 0);

  private:
    // Holds what an edit of HD pictures needs and, of larger ones, what saves most.
    static constexpr std::size_t kRowBudget = std::size_t{512} << 20U;

    std::mutex mutex_;
    std::list<Entry> idle_;  // the longest idle first
    Zo::Image::RowCache rows_{kRowBudget};
    bool rows_lent_ = false;
    Zo::Image::Hash picture_;  // of the latest lease
};

}  // namespace veloxa::ofx
