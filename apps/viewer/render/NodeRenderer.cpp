#include "render/NodeRenderer.h"

#include <algorithm>

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

FrameInputs with_mattes(const FrameInputs& inputs, const DrawnMattes& mattes) {
    FrameInputs result = inputs;
    if (mattes.empty() || !inputs[kFg].image) return result;
    using Kind = DrawnMatte::Kind;
    for (const auto& [input, kind] : {std::pair{kGm, Kind::kGarbage}, std::pair{kHm, Kind::kHoldout}}) {
        const auto drawn = draw(mattes, kind, inputs[kFg].image->info.format, inputs[input].image);
        if (!drawn) continue;
        result[input].image = drawn;
        result[input].identity.append(std::string_view(mattes_script(mattes)));
    }
    return result;
}

NodeRenderer::NodeRenderer(int scale, std::size_t row_budget, const AbortFlag& abort)
    : scale_(scale), abort_(abort), rows_(row_budget), renderer_(0, &abort) {
    renderer_.use_cache(&rows_);
}

const FrameInputs& NodeRenderer::inputs_for(const Keyed& keyed) {
    if (frame_ == keyed.frame && mattes_ == keyed.mattes) return loaded_;
    frame_ = keyed.frame;
    mattes_ = keyed.mattes;
    loaded_ = with_mattes(frame_->inputs, mattes_);
    if (scale_ == 1) return loaded_;
    for (LoadedInput& input : loaded_) {
        if (!input.image) continue;
        input.image = shrunk(*input.image, scale_);
        input.identity.append(std::int32_t{scale_});
    }
    return loaded_;
}

Box NodeRenderer::prepare(const Keyed& keyed) {
    const FrameInputs& inputs = inputs_for(keyed);
    std::array<bool, kInputCount> used{};
    for (std::size_t n = 0; n < kInputCount; ++n) used[n] = inputs[n].image != nullptr;
    if (used != used_) inputs_.connect(node_.image(), used);
    used_ = used;
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
    auto image = std::make_shared<Image>(info);
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
}

}  // namespace veloxa::viewer
