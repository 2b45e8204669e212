#include "render/NodeRenderer.h"

#include <algorithm>
#include <utility>

#include "render/Pictures.h"
#include "render/Proxy.h"
#include "shot/Errors.h"
#include "shot/sequence/KeyOutput.h"

namespace veloxa::viewer {

using namespace Zo::Image;

Hash Keyed::identity() const {
    return identity(settings_identity(), *frame);
}

Hash Keyed::identity(Hash settings, const Frame& frame) {
    settings.append(frame.identity);
    return settings;
}

Hash Keyed::settings_identity() const {
    Hash hash;
    settings.append_to(hash);
    hash.append(std::string_view(mattes_script(mattes)));
    hash.append(std::string_view(picture));
    return hash;
}

FrameInputs with_mattes(FrameInputs inputs, const DrawnMattes& mattes, DrawnInputs& drawn) {
    if (!inputs[kFg].image) return inputs;
    const Format& format = inputs[kFg].image->info.format;
    drawn.set(mattes);
    inputs[kGm] = drawn.over(DrawnMatte::Kind::kGarbage, inputs[kGm], format);
    inputs[kHm] = drawn.over(DrawnMatte::Kind::kHoldout, inputs[kHm], format);
    return inputs;
}

NodeRenderer::NodeRenderer(int scale, std::size_t row_budget, PlanePool& planes, const AbortFlag& abort)
    : scale_(scale), planes_(planes), abort_(abort), rows_(row_budget), renderer_(0, &abort) {
    inputs_.connect(node_.image());
    renderer_.use_cache(&rows_);
}

const FrameInputs& NodeRenderer::inputs_for(const Keyed& keyed) {
    if (frame_ == keyed.frame && mattes_ == keyed.mattes) return loaded_;
    frame_ = keyed.frame;
    mattes_ = keyed.mattes;
    FrameInputs inputs = with_mattes(frame_->inputs, mattes_, drawn_);
    for (std::size_t n = 0; n < kInputCount && scale_ > 1; ++n) {
        // Stills are the same in every frame.
        const bool same = std::exchange(whole_[n], inputs[n].image) == inputs[n].image;
        if (!inputs[n].image) continue;
        inputs[n].image = same ? loaded_[n].image : shrunk(*inputs[n].image, scale_);
        inputs[n].identity.append(std::int32_t{scale_});
    }
    loaded_ = std::move(inputs);
    return loaded_;
}

Box NodeRenderer::prepare(const Keyed& keyed) {
    const FrameInputs& inputs = inputs_for(keyed);
    inputs_.set(inputs);
    keyed.settings.give(node_.panel());
    if (scale_ > 1) shrink_knobs(node_.panel(), scale_);
    if (keyed.picture == kSubject) turn_to(node_, veloxa::Picture::kCut);
    node_.image().validate(true);
    if (!node_.image().error().empty()) throw Error(node_.image().error());
    root_ = is_stage(keyed.picture) ? &node_.member(keyed.picture) : &node_.image();
    return node_.image().info().box;
}

std::shared_ptr<const Image> NodeRenderer::render(const Box& region) {
    Info info = node_.image().info();
    info.format = loaded_[kFg].image->info.format;
    info.box = region;
    info.channels = kMaskRgba;
    auto image = std::make_shared<Image>(planes_.image(info));
    const bool whole = renderer_.render(*root_, region, kMaskRgba, [&](int y, const Row& row) {
        for (const Channel c : kMaskRgba) std::copy_n(row[c], row.width(), image->line(c, y));
    });
    if (!whole) return nullptr;
    return image;
}

void NodeRenderer::clear() {
    inputs_.clear();
    rows_.clear();
    frame_ = nullptr;
    loaded_ = {};
    whole_ = {};
}

}  // namespace veloxa::viewer
