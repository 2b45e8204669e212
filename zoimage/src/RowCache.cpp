#include "ZoImage/RowCache.h"

#include "CachedRender.h"

namespace Zo::Image {

RowCache::RowCache(std::size_t budget) : impl_(std::make_unique<Impl>(budget)) {}

RowCache::~RowCache() = default;

std::size_t RowCache::bytes() const {
    return impl_->store.bytes();
}

void RowCache::clear() {
    impl_->entries.clear();
    impl_->store.set_aside(0);
    impl_->store.trim(0);
}

}  // namespace Zo::Image
