#include "NodePool.h"

#include <algorithm>
#include <utility>

namespace veloxa::ofx {

using namespace Zo::Image;

NodePool::Lease::~Lease() {
    node_->release();
    const std::lock_guard hold(pool_.mutex_);
    pool_.idle_.push_back({std::move(node_), state_});
}

NodePool::Lease NodePool::take(const Hash& state) {
    std::unique_ptr<RenderNode> node;
    {
        const std::lock_guard hold(mutex_);
        // Else the one that has been idle longest: the others may still be of use to their states.
        auto chosen =
            std::find_if(idle_.begin(), idle_.end(), [&](const Idle& idle) { return idle.state == state; });
        if (chosen == idle_.end()) chosen = idle_.begin();
        if (chosen != idle_.end()) {
            node = std::move(chosen->node);
            idle_.erase(chosen);
        }
    }
    if (node == nullptr) node = std::make_unique<RenderNode>();
    return {*this, std::move(node), state};
}

void NodePool::purge() {
    std::vector<Idle> dropped;
    const std::lock_guard hold(mutex_);
    dropped.swap(idle_);
}

}  // namespace veloxa::ofx
