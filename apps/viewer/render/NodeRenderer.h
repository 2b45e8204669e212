// A keyer node of its own for one place where pictures are shown, with what it keeps from render to render.
//
// One thread at a time; the flag is for any.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "ZoImage/Hash.h"
#include "ZoImage/Render.h"
#include "ZoImage/RowCache.h"
#include "render/FrameStore.h"
#include "render/PlanePool.h"
#include "session/Settings.h"
#include "shot/frames/DrawnInputs.h"
#include "shot/node/ImageSource.h"
#include "shot/node/Node.h"

namespace veloxa::viewer {

// What names a rendered picture: equal ones have the same pixels.
struct Keyed {
    FramePtr frame;  // whole
    Settings settings;
    DrawnMattes mattes;
    std::string picture;  // as rendered_as gives it

    Zo::Image::Hash identity() const;
    // The same, where what of it does not depend on the frame was hashed before.
    Zo::Image::Hash settings_identity() const;
    static Zo::Image::Hash identity(Zo::Image::Hash settings, const Frame& frame);
};

// The inputs with what is drawn on the garbage and holdout mattes.
FrameInputs with_mattes(FrameInputs inputs, const DrawnMattes& mattes, DrawnInputs& drawn);

class NodeRenderer {
  public:
    // Pictures are rendered at 1 / `scale` of their size; the pool and the flag outlive the renderer.
    NodeRenderer(int scale, std::size_t row_budget, PlanePool& planes, const Zo::Image::AbortFlag& abort);

    // Makes the node ready. Returns the pixels that the picture has. Throws Error.
    Zo::Image::Box prepare(const Keyed& keyed);
    // After prepare: a part of that. Null where the flag was raised.
    std::shared_ptr<const Image> render(const Zo::Image::Box& region);
    const Node& node() const { return node_; }
    // Lets pictures and rows go.
    void clear();

  private:
    const FrameInputs& inputs_for(const Keyed& keyed);

    const int scale_;
    PlanePool& planes_;
    const Zo::Image::AbortFlag& abort_;
    NodeInputs inputs_;  // outlive the node
    Node node_;
    Zo::Image::RowCache rows_;
    Zo::Image::Renderer renderer_;
    Zo::Image::Iop* root_ = nullptr;
    FramePtr frame_;  // that `loaded_` was made of
    DrawnMattes mattes_;
    DrawnInputs drawn_;
    FrameInputs loaded_;
    std::array<std::shared_ptr<const Image>, kInputCount> whole_;  // that smaller inputs were made of
};

}  // namespace veloxa::viewer
