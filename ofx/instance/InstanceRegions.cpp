// What an instance tells of its output and asks of its inputs before a render.
#include <algorithm>

#include "host/Host.h"
#include "host/Properties.h"
#include "instance/Instance.h"

namespace veloxa::ofx {

using namespace Zo::Image;

namespace {

// The pixels of `frame` that stand for `box`, where pixels beyond the frame are those of its edge.
Box nearest(const Box& box, const Box& frame) {
    Box result;
    result.x = std::clamp(box.x, frame.x, frame.r - 1);
    result.y = std::clamp(box.y, frame.y, frame.t - 1);
    result.r = std::clamp(box.r - 1, frame.x, frame.r - 1) + 1;
    result.t = std::clamp(box.t - 1, frame.y, frame.t - 1) + 1;
    return result;
}

}  // namespace

OfxStatus Instance::region_of_definition(OfxPropertySetHandle in, OfxPropertySetHandle out) {
    OfxRectD region;
    if (!extent(kForeground, Properties(in).number(kOfxPropTime), region)) return kOfxStatReplyDefault;
    Properties(out).set(kOfxImageEffectPropRegionOfDefinition, region);
    return kOfxStatOK;
}

// Asks the wired graph: it is requested the region, and each input is asked of its clip as it was requested.
OfxStatus Instance::regions_of_interest(OfxPropertySetHandle in, OfxPropertySetHandle out) {
    const Properties arguments(in);
    const OfxTime time = arguments.number(kOfxPropTime);
    const RenderScale scale = arguments.scale();
    OfxRectD region;
    OfxRectD whole;
    if (!arguments.rectangle(kOfxImageEffectPropRegionOfInterest, region)) return kOfxStatReplyDefault;
    if (!extent(kForeground, time, whole)) return kOfxStatReplyDefault;

    Box window = PixelGrid{scale, aspect(kForeground)}.pixels(region);
    Box foreground = PixelGrid{scale, aspect(kForeground)}.pixels(whole);
    if (is_endless(foreground)) foreground = window;
    window.intersect(foreground);
    if (window.empty()) return kOfxStatReplyDefault;

    NodePool::Lease node = planners_.take({});
    node->set(editor_.parameters().values(time), scale, connections());
    std::array<Box, kInputs> frames{};
    for (std::size_t n = 0; n < kInputs; ++n) {
        if (extent(n, time, whole)) frames[n] = PixelGrid{scale, aspect(n)}.pixels(whole);
        if (is_endless(frames[n])) frames[n] = foreground;
        node->input(n).outline(frames[n], foreground);
        node->input(n).forget_requests();
    }
    node->root(editor_.own().view(time)).request(window.x, window.y, window.r, window.t, kMaskRgba, 1);
    for (std::size_t n = 0; n < kInputs; ++n) {
        const Box& wanted = node->input(n).wanted();
        if (frames[n].empty() || wanted.empty()) continue;
        const OfxRectD asked = PixelGrid{scale, aspect(n)}.canonical(nearest(wanted, frames[n]));
        Properties(out).set((kOfxImageClipPropRoI_ + std::string(inputs_[n].name)).c_str(), asked);
    }
    return kOfxStatOK;
}

// Until a screen colour is chosen the foreground passes.
OfxStatus Instance::is_identity(OfxPropertySetHandle in, OfxPropertySetHandle out) {
    if (!connected(kForeground)) return kOfxStatReplyDefault;
    const OfxTime time = Properties(in).number(kOfxPropTime);
    if (!is_black(editor_.parameters().value(screen_color_, time))) return kOfxStatReplyDefault;
    if (editor_.own().view(time) != kResultView) return kOfxStatReplyDefault;
    Properties(out).set(kOfxPropName, inputs_[kForeground].name);
    return kOfxStatOK;
}

}  // namespace veloxa::ofx
