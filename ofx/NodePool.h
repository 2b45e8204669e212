// The render nodes of one instance: as many as renders ran at once, each used by one render at a time.
//
// A node is handed out again for the state that it worked on last, where that is known: frames that it had to
// compute whole then serve the next tile. Any thread.
#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "RenderNode.h"
#include "ZoImage/Hash.h"

namespace veloxa::ofx {

class NodePool {
  public:
    // The right to use a node; gives it back.
    class Lease {
      public:
        Lease(NodePool& pool, std::unique_ptr<RenderNode> node, const Zo::Image::Hash& state)
            : pool_(pool), node_(std::move(node)), state_(state) {}
        ~Lease();
        Lease(const Lease&) = delete;
        Lease& operator=(const Lease&) = delete;
        RenderNode* operator->() const { return node_.get(); }

      private:
        NodePool& pool_;
        std::unique_ptr<RenderNode> node_;
        Zo::Image::Hash state_;
    };

    // Makes a node when all are in use.
    Lease take(const Zo::Image::Hash& state);
    // Drops the nodes that are not in use.
    void purge();

  private:
    struct Idle {
        std::unique_ptr<RenderNode> node;
        Zo::Image::Hash state;
    };

    std::mutex mutex_;
    std::vector<Idle> idle_;
};

}  // namespace veloxa::ofx
