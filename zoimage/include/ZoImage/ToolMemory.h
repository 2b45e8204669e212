// What an operator remembers of the strokes of its tools, beside the values of its knobs.
//
// Only the operator knows what is in it. Immutable, so any thread may hold it; it must not outlive the module
// that the operator comes from.
#pragma once

namespace Zo::Image {

class ToolMemory {
  public:
    virtual ~ToolMemory() = default;
};

}  // namespace Zo::Image
