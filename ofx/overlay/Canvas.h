// What an overlay draws with, in canonical coordinates, within one draw action.
#pragma once

#include <array>
#include <memory>
#include <span>

#include "abi/OfxInteract.h"

namespace veloxa::ofx {

using CanvasColour = std::array<float, 3>;

class Canvas {
  public:
    virtual ~Canvas() = default;
    // A closed line, so many pixels of the screen wide.
    virtual void outline(std::span<const OfxPointD> points, const CanvasColour& colour, float width) = 0;
    // A convex polygon.
    virtual void fill(std::span<const OfxPointD> points, const CanvasColour& colour) = 0;
};

// With the host's draw suite.
std::unique_ptr<Canvas> suite_canvas(OfxDrawContextHandle context);
// With the OpenGL that the host draws its viewer with: its context is the current one. Null where the process
// has loaded none.
std::unique_ptr<Canvas> opengl_canvas();

}  // namespace veloxa::ofx
