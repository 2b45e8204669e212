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

void PictureCache::keep(const Hash& identity, std::shared_ptr<const Image> picture) {
    const std::lock_guard lock(mutex_);
    std::erase_if(entries_, [&](const Entry& entry) { return entry.identity == identity; });
    entries_.push_front({identity, std::move(picture)});
    std::size_t sum = 0;
    for (auto entry = entries_.begin(); entry != entries_.end(); ++entry) {
        sum += bytes(*entry);
        if (sum <= budget_ || entry == entries_.begin()) continue;
        entries_.erase(entry, entries_.end());
        return;
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
