// An operator that serves a loaded image to the node's inputs.
//
// Rows refer to the image's planes; nothing is copied. The hash is that of the image's identity, so a still
// that is set again for every frame keeps what was computed from it.
#pragma once

#include <array>
#include <memory>

#include "ZoImage/Iop.h"
#include "shot/frames/FrameLoader.h"
#include "shot/image/Image.h"

namespace veloxa {

class ImageSource final : public Zo::Image::Iop {
  public:
    explicit ImageSource(const Zo::Image::NodeContext& context) : Iop(context) {}

    // Takes an image to serve until the next one is set; `identity` names its pixels. Not while rendering.
    void set(std::shared_ptr<const Image> image, const Zo::Image::Hash& identity);
    // Lets the image go, and serves nothing until the next one.
    void clear() { image_.reset(); }

    const char* class_name() const override { return "ImageSource"; }
    Zo::Image::ChannelSet kept_channels() const override { return Zo::Image::kMaskNone; }

  protected:
    void _validate(bool for_real) override;
    void _request(int, int, int, int, Zo::Image::ChannelSet, int) override {}
    void engine(int y, int x, int r, const Zo::Image::ChannelSet& channels, Zo::Image::Row& row) override;

  private:
    std::shared_ptr<const Image> image_;
};

// The images on all of the node's inputs. Must outlive the node's last use. Not while rendering.
class NodeInputs {
  public:
    // The node's inputs get what the node puts there itself, until there are images.
    void connect(Zo::Image::Iop& node);
    // Serves a frame's images until the next ones, on the inputs that have one: drawn mattes come and go.
    void set(const FrameInputs& inputs);
    // Lets the images go.
    void clear();

  private:
    void use(std::size_t input, bool used);

    Zo::Image::Iop* node_ = nullptr;
    std::array<std::unique_ptr<ImageSource>, kInputCount> sources_;
};

}  // namespace veloxa
