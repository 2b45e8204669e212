// Rendered pictures of whole frames, kept under a byte budget; of one frame no more than a few, so that the
// drag of a slider does not push all others out. Any thread.
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
    // `frame` tells the frames apart that pictures are of.
    void keep(const Zo::Image::Hash& identity, const Zo::Image::Hash& frame,
              std::shared_ptr<const Image> picture);
    bool has(const Zo::Image::Hash& identity) const;
    void clear();

    static constexpr int kOfOneFrame = 8;

  private:
    struct Entry {
        Zo::Image::Hash identity;
        Zo::Image::Hash frame;
        std::shared_ptr<const Image> picture;
    };
    static std::size_t bytes(const Entry& entry);

    const std::size_t budget_;
    mutable std::mutex mutex_;
    std::list<Entry> entries_;  // the one that was used last in front
};

}  // namespace veloxa::viewer
