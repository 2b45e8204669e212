#include "render/PictureCache.h"

#include <algorithm>
#include <iterator>

namespace veloxa::viewer {

using Zo::Image::Hash;

std::size_t PictureCache::bytes(const Entry& entry) {
    return entry.picture->width() * entry.picture->height() * 4 * sizeof(float);
}

std::shared_ptr<const Image> PictureCache::find(const Hash& identity) {
    const std::lock_guard lock(mutex_);
    const auto found = std::ranges::find(entries_, identity, &Entry::identity);
    if (found == entries_.end()) return nullptr;
    entries_.splice(entries_.begin(), entries_, found);
    return entries_.front().picture;
}

void PictureCache::keep(const Hash& identity, const Hash& frame, std::shared_ptr<const Image> picture) {
    std::list<Entry> gone;  // whose memory goes after the lock
    const std::lock_guard lock(mutex_);
    std::size_t sum = 0;
    int of_frame = 0;
    entries_.push_front({identity, frame, std::move(picture)});
    for (auto entry = entries_.begin(); entry != entries_.end();) {
        const auto here = entry++;
        const bool first = here == entries_.begin();
        const bool known = !first && here->identity == identity;
        const bool many = here->frame == frame && ++of_frame > kOfOneFrame;
        if (known || many || (!first && sum + bytes(*here) > budget_)) {
            gone.splice(gone.end(), entries_, here);
        } else {
            sum += bytes(*here);
        }
    }
}

bool PictureCache::has(const Hash& identity) const {
    const std::lock_guard lock(mutex_);
    return std::ranges::find(entries_, identity, &Entry::identity) != entries_.end();
}

void PictureCache::clear() {
    const std::lock_guard lock(mutex_);
    entries_.clear();
}

}  // namespace veloxa::viewer
