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

void NodeInputs::connect(Iop& node) {
    node_ = &node;
    for (std::size_t n = 0; n < kInputCount; ++n) use(n, false);
}

void NodeInputs::use(std::size_t input, bool used) {
    const int number = static_cast<int>(input);
    std::unique_ptr<ImageSource> source;
    if (used) source = std::make_unique<ImageSource>(NodeContext{kInputNames[input]});
    node_->set_input(number, used ? source.get() : node_->default_input(number));
    sources_[input] = std::move(source);
}

void NodeInputs::set(const FrameInputs& inputs) {
    for (std::size_t n = 0; n < kInputCount; ++n) {
        const bool used = inputs[n].image != nullptr;
        if (used != (sources_[n] != nullptr)) use(n, used);
        if (used) sources_[n]->set(inputs[n].image, inputs[n].identity);
    }
}

void NodeInputs::clear() {
    for (const auto& source : sources_) {
        if (source) source->clear();
    }
}

}  // namespace veloxa
