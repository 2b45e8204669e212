// Memory for one rendered picture after the other: what one leaves, the next of its size takes, as fresh
// pages cost more than keying does. Any thread.
#pragma once

#include <cstddef>
#include <memory>

#include "shot/image/Image.h"

namespace veloxa::viewer {

class PlanePool {
  public:
    // Pictures may outlive the pool.
    PlanePool();

    // Of the given channels, with undefined pixels.
    Image image(const Zo::Image::Info& info);

    static constexpr std::size_t kSpare = std::size_t{256} << 20;  // bytes that wait for pictures at most

  private:
    struct Spare;
    std::shared_ptr<Spare> spare_;
};

}  // namespace veloxa::viewer
