// The images on the node's inputs.
#pragma once

#include <array>
#include <memory>

#include "shot/frames/FrameLoader.h"
#include "shot/node/ImageSource.h"

namespace veloxa {

// Must outlive the node's last use. Not while rendering.
class NodeInputs {
  public:
    // Puts a source on every input that `names` names; the others get what the node puts there itself.
    void connect(Zo::Image::Iop& node, const FrameLoader::Names& names);
    // Serves a frame's images until the next ones.
    void set(const FrameInputs& inputs);
    // Lets the images go.
    void clear();

  private:
    std::array<std::unique_ptr<ImageSource>, kInputCount> sources_;
};

}  // namespace veloxa
