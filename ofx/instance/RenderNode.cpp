#include "instance/RenderNode.h"

#include "parameters/OwnParameters.h"

namespace veloxa::ofx {

using namespace Zo::Image;

void RenderNode::set(const Values& values, const RenderScale& scale, const std::array<bool, kInputs>& used) {
    bool changed = false;
    const std::vector<Parameter>& parameters = node_.list().parameters();
    for (std::size_t n = 0; n < parameters.size(); ++n) {
        changed = set_knob(parameters[n], values[n], scale) || changed;
    }
    if (changed) image().invalidate();
    inputs_.connect(image(), used);
}

Iop& RenderNode::root(int view) {
    image().validate(true);
    Iop* const stage =
        view < kFirstStage ? nullptr : node_.stage(static_cast<std::size_t>(view - kFirstStage));
    return stage != nullptr ? *stage : image();
}

bool RenderNode::render(OfxImageEffectHandle instance, Iop& root, const Box& region, RowCache* rows,
                        const Renderer::Sink& sink) {
    poll_.begin(instance);
    if (!renderer_ && HostThreads::offered()) renderer_.emplace(threads_, &poll_.flag());
    if (!renderer_) renderer_.emplace(0, &poll_.flag());
    renderer_->use_cache(rows);
    return renderer_->render(root, region, kMaskRgba, [&](int y, const Row& row) {
        poll_.poll();
        sink(y, row);
    });
}

void RenderNode::release() noexcept {
    for (std::size_t n = 0; n < kInputs; ++n) inputs_[n].clear();
    if (!HostThreads::offered()) renderer_.reset();
}

}  // namespace veloxa::ofx
