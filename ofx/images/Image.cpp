#include "images/Image.h"

#include <cmath>

#include "host/Host.h"
#include "host/Properties.h"

namespace veloxa::ofx {

namespace {

SampleDepth depth_named(const std::string& name) {
    if (name == kOfxBitDepthFloat) return SampleDepth::kFloat;
    if (name == kOfxBitDepthHalf) return SampleDepth::kHalf;
    if (name == kOfxBitDepthShort) return SampleDepth::kShort;
    if (name == kOfxBitDepthByte) return SampleDepth::kByte;
    throw Failure(kOfxStatErrImageFormat, "Veloxa cannot use images of the depth " + name);
}

int components_named(const std::string& name) {
    if (name == kOfxImageComponentRGBA) return 4;
    if (name == kOfxImageComponentRGB) return 3;
    if (name == kOfxImageComponentAlpha) return 1;
    throw Failure(kOfxStatErrImageFormat, "Veloxa cannot use images of the components " + name);
}

bool close_to(double a, double b) {
    return std::abs(a - b) <= 1e-4 * std::abs(b);
}

}  // namespace

void Image::Release::operator()(OfxPropertySetHandle image) const {
    suites().effect->clipReleaseImage(image);
}

Image::Image(OfxImageClipHandle clip, OfxTime time, const OfxRectD* region, const RenderScale& scale) {
    OfxPropertySetHandle handle = nullptr;
    const OfxStatus status = suites().effect->clipGetImage(clip, time, region, &handle);
    if (status == kOfxStatFailed) return;
    if (status != kOfxStatOK) throw NoPicture(status, "the host could not deliver an image");
    handle_.reset(handle);
    const Properties properties(handle);
    view_.data = static_cast<std::byte*>(properties.pointer(kOfxImagePropData));
    if (view_.data == nullptr || !properties.box(kOfxImagePropBounds, view_.bounds) || view_.empty()) {
        view_ = {};
        return;
    }
    view_.depth = depth_named(properties.text(kOfxImageEffectPropPixelDepth));
    view_.components = components_named(properties.text(kOfxImageEffectPropComponents));
    view_.row_bytes = properties.integer(kOfxImagePropRowBytes);
    for (int i = 0; i < 2; ++i) {
        const double wanted = scale[static_cast<std::size_t>(i)];
        if (!close_to(properties.number(kOfxImageEffectPropRenderScale, wanted, i), wanted)) {
            throw NoPicture(kOfxStatFailed, "the host delivered an image of another scale");
        }
    }
    if (!properties.box(kOfxImagePropRegionOfDefinition, frame_) || frame_.empty() || is_endless(frame_)) {
        frame_ = view_.bounds;
    }
    identifier_ = properties.text(kOfxImagePropUniqueIdentifier);
}

}  // namespace veloxa::ofx
