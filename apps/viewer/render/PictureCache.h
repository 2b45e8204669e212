// Rendered pictures of whole frames, kept under a byte budget. Any thread.
#pragma once

#include <cstddef>
#include <list>
#include <memory>
#include <mutex>

#include "ZoImage/Hash.h"
#include "shot/image/Image.h"

namespace veloxa::viewer {

class PictureCache {
  public:
    explicit PictureCache(std::size_t budget) : budget_(budget) {}

    // Null where it is not kept.
    std::shared_ptr<const Image> find(const Zo::Image::Hash& identity);
    void keep(const Zo::Image::Hash& identity, std::shared_ptr<const Image> picture);
    bool has(const Zo::Image::Hash& identity) const;
    void clear();

  private:
    struct Entry {
        Zo::Image::Hash identity;
        std::shared_ptr<const Image> picture;
    };
    static std::size_t bytes(const Entry& entry);

    const std::size_t budget_;
    mutable std::mutex mutex_;
    std::list<Entry> entries_;  // the one that was used last in front
};

}  // namespace veloxa::viewer
