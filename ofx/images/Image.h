// An image that the host lends for the length of an action.
#pragma once

#include <memory>
#include <string>

#include "abi/OfxImageEffect.h"
#include "images/Coordinates.h"
#include "images/PixelView.h"

namespace veloxa::ofx {

class Image {
  public:
    // Borrows the clip's image; a null region lets the host choose. Empty when the host has none there, which
    // stands for black. Throws Failure when it fails for another reason, when the image is of a depth or of
    // components that the keyer does not take, and when its scale is not the action's.
    Image(OfxImageClipHandle clip, OfxTime time, const OfxRectD* region, const RenderScale& scale);

    bool empty() const { return view_.empty(); }
    const PixelView& view() const { return view_; }
    // All pixels that the clip has at this time; those of the view are part of it. Pixel coordinates.
    const Zo::Image::Box& frame() const { return frame_; }
    // Names the picture; empty where the host gives none.
    const std::string& identifier() const { return identifier_; }

  private:
    struct Release {
        void operator()(OfxPropertySetHandle image) const;
    };
    std::unique_ptr<OfxPropertySetStruct, Release> handle_;
    PixelView view_;
    Zo::Image::Box frame_;
    std::string identifier_;
};

}  // namespace veloxa::ofx
