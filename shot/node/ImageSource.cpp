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

void NodeInputs::connect(Iop& node, const std::array<bool, kInputCount>& used) {
    for (int n = 0; n < node.inputs(); ++n) {
        const auto input = static_cast<std::size_t>(n);
        if (!used[input]) {
            node.set_input(n, node.default_input(n));
            sources_[input].reset();
        } else {
            sources_[input] = std::make_unique<ImageSource>(NodeContext{kInputNames[input]});
            node.set_input(n, sources_[input].get());
        }
    }
}

void NodeInputs::set(const FrameInputs& inputs) {
    for (std::size_t n = 0; n < kInputCount; ++n) {
        if (inputs[n].image) sources_[n]->set(inputs[n].image, inputs[n].identity);
    }
}

void NodeInputs::clear() {
    for (const auto& source : sources_) {
        if (source) source->clear();
    }
}

}  // namespace veloxa
