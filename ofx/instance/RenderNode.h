// A keyer node for one render at a time, with its inputs and its renderer.
#pragma once

#include <array>
#include <optional>

#include "host/AbortPoll.h"
#include "host/HostThreads.h"
#include "images/ClipImage.h"
#include "images/Clips.h"
#include "instance/Node.h"

namespace veloxa::ofx {

class RenderNode {
  public:
    Zo::Image::Iop& image() const { return node_.image(); }
    ClipImage& input(std::size_t n) { return inputs_[n]; }
    // The operator whose rows a view shows, wired and ready to be asked.
    Zo::Image::Iop& root(int view);

    // Sets the knobs, and connects the inputs. What was computed before is kept where it does not depend on
    // what changed.
    void set(const Values& values, const RenderScale& scale, const std::array<bool, kInputs>& used);

    // Renders a region of the frame on the host's threads, or on threads of the node's own where the host has
    // none, with rows kept from before unless those are null. False when the host gave the render up.
    bool render(OfxImageEffectHandle instance, Zo::Image::Iop& root, const Zo::Image::Box& region,
                Zo::Image::RowCache* rows, const Zo::Image::Renderer::Sink& sink);
    // Lets go of the images, and of threads of its own.
    void release() noexcept;

  private:
    AbortPoll poll_;
    InputImages inputs_{poll_};  // outlive the node
    Node node_;
    HostThreads threads_{poll_};
    std::optional<Zo::Image::Renderer> renderer_;  // made by the first render
};

}  // namespace veloxa::ofx
