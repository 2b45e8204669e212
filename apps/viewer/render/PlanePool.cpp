#include "render/PlanePool.h"

#include <algorithm>
#include <deque>
#include <mutex>
#include <utility>

namespace veloxa::viewer {

using namespace Zo::Image;

struct PlanePool::Spare {
    struct Piece {
        Plane plane;
        std::size_t pixels;
    };
    std::mutex mutex;
    std::deque<Piece> pieces;  // that was left last behind
    std::size_t pixels = 0;

    Plane take(std::size_t wanted) {
        const std::lock_guard lock(mutex);
        const auto same = std::ranges::find(pieces.rbegin(), pieces.rend(), wanted, &Piece::pixels);
        if (same == pieces.rend()) return nullptr;
        Plane plane = std::move(same->plane);
        pieces.erase(std::next(same).base());
        pixels -= wanted;
        return plane;
    }

    void give(Plane plane, std::size_t of) {
        std::deque<Piece> gone;  // whose memory goes after the lock
        const std::lock_guard lock(mutex);
        pieces.push_back({std::move(plane), of});
        pixels += of;
        while (pixels * sizeof(float) > kSpare) {
            pixels -= pieces.front().pixels;
            gone.push_back(std::move(pieces.front()));
            pieces.pop_front();
        }
    }
};

PlanePool::PlanePool() : spare_(std::make_shared<Spare>()) {}

Image PlanePool::image(const Info& info) {
    Image image;
    image.info = info;
    const std::size_t pixels = image.width() * image.height();
    for (const Channel c : info.channels& kMaskRgba) {
        Plane plane = spare_->take(pixels);
        if (!plane) plane = make_plane(pixels);
        float* const values = plane.get();
        // The picture's last user gives it back.
        image.plane(c) = Plane(values, [spare = spare_, kept = std::move(plane), pixels](float*) mutable {
            spare->give(std::move(kept), pixels);
        });
    }
    return image;
}

}  // namespace veloxa::viewer
