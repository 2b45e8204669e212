#include "shot/node/ImageSource.h"

#include <utility>

namespace veloxa {

using namespace Zo::Image;

void ImageSource::set(std::shared_ptr<const Image> image, const Hash& identity) {
    image_ = std::move(image);
    invalidate(identity);
}

void ImageSource::_validate(bool /*for_real*/) {
    if (image_) info_ = image_->info;
}

void ImageSource::engine(int y, int x, int /*r*/, const ChannelSet& channels, Row& row) {
    for (const Channel c : channels) {
        if (kMaskRgba.has(c) && image_->has(c)) {
            row.refer(c, image_->line(c, y) + (x - info_.box.x));
        } else {
            row.set_zero(c);
        }
    }
}

}  // namespace veloxa
