// The render nodes of one instance: as many as renders ran at once, each used by one render at a time.
//
// A node is handed out again for the state that it worked on last, where that is known: frames that it had to
// compute whole then serve the next tile. Any thread.
#pragma once

#include <cstddef>
#include <list>
#include <mutex>

#include "RenderNode.h"
#include "ZoImage/Hash.h"

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
        Lease(const Lease&) = delete;
        Lease& operator=(const Lease&) = delete;
        RenderNode* operator->() { return &entry_.front().node; }

      private:
        friend class NodePool;
        Lease(NodePool& pool, std::list<Entry>&& entry) : pool_(pool), entry_(std::move(entry)) {}

        NodePool& pool_;
        std::list<Entry> entry_;  // a list of one goes back without asking for memory
    };

    // Makes a node when all are in use.
    Lease take(const Zo::Image::Hash& state);
    // Drops the nodes that are not in use, but for so many that were in use last.
    void purge(std::size_t kept = 0);

  private:
    std::mutex mutex_;
    std::list<Entry> idle_;  // the longest idle first
};

}  // namespace veloxa::ofx
