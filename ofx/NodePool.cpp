#include "NodePool.h"

#include <algorithm>
#include <iterator>

namespace veloxa::ofx {

using namespace Zo::Image;

NodePool::Lease::~Lease() {
    entry_.front().node.release();
    const std::lock_guard hold(pool_.mutex_);
    pool_.idle_.splice(pool_.idle_.end(), entry_);
}

NodePool::Lease NodePool::take(const Hash& state) {
    std::list<Entry> entry;
    {
        const std::lock_guard hold(mutex_);
        // Else the one that has been idle longest: the others may still be of use to their states.
        auto chosen =
            std::find_if(idle_.begin(), idle_.end(), [&](const Entry& idle) { return idle.state == state; });
        if (chosen == idle_.end()) chosen = idle_.begin();
        if (chosen != idle_.end()) entry.splice(entry.end(), idle_, chosen);
    }
    if (entry.empty()) entry.emplace_back();
    entry.front().state = state;
    return {*this, std::move(entry)};
}

void NodePool::purge(std::size_t kept) {
    std::list<Entry> dropped;
    const std::lock_guard hold(mutex_);
    if (idle_.size() <= kept) return;
    const auto end = std::prev(idle_.end(), static_cast<std::ptrdiff_t>(kept));
    dropped.splice(dropped.end(), idle_, idle_.begin(), end);
}

}  // namespace veloxa::ofx
