#include "instance/NodePool.h"

#include <algorithm>
#include <iterator>

namespace veloxa::ofx {

using namespace Zo::Image;

NodePool::Lease::Lease(NodePool& pool, std::list<Entry>&& entry, const Hash& picture)
    : pool_(pool), entry_(std::move(entry)), picture_(picture) {
    const std::lock_guard hold(pool_.mutex_);
    const bool again = picture != Hash() && picture == pool_.picture_;
    pool_.picture_ = picture;
    if (pool_.rows_lent_) return;
    if (again) {
        rows_ = &pool_.rows_;
        pool_.rows_lent_ = true;
    } else {
        pool_.rows_.clear();
    }
}

NodePool::Lease::~Lease() {
    entry_.front().node.release();
    const std::lock_guard hold(pool_.mutex_);
    pool_.idle_.splice(pool_.idle_.end(), entry_);
    if (rows_ == nullptr) return;
    pool_.rows_lent_ = false;
    if (picture_ != pool_.picture_) pool_.rows_.clear();
}

NodePool::Lease NodePool::take(const Hash& state, const Hash& picture) {
    std::list<Entry> entry;
    {
        const std::lock_guard hold(mutex_);
        // Else the one that has been idle longest, for the others may still be of use to their states; but in
        // an edit the latest, which has the rows.
        auto chosen =
            std::find_if(idle_.begin(), idle_.end(), [&](const Entry& idle) { return idle.state == state; });
        if (chosen == idle_.end() && !idle_.empty()) {
            chosen = picture == picture_ ? std::prev(idle_.end()) : idle_.begin();
        }
        if (chosen != idle_.end()) entry.splice(entry.end(), idle_, chosen);
    }
    if (entry.empty()) entry.emplace_back();
    entry.front().state = state;
    return {*this, std::move(entry), picture};
}

void NodePool::purge(std::size_t kept) {
    std::list<Entry> dropped;
    const std::lock_guard hold(mutex_);
    if (kept != 0 && idle_.size() <= kept) return;
    // Rows of the nodes that go may be among those kept. Whoever has them lets go at the end.
    picture_ = {};
    if (!rows_lent_) rows_.clear();
    const auto end = std::prev(idle_.end(), static_cast<std::ptrdiff_t>(kept));
    dropped.splice(dropped.end(), idle_, idle_.begin(), end);
}

}  // namespace veloxa::ofx
