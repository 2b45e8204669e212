// The node that an instance's user edits: it follows the parameters, greys out what its enables switch off,
// presses buttons and runs the sampling tools. It remembers strokes as long as it lives. Main thread.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "host/AbortPoll.h"
#include "images/Clips.h"
#include "host/HostThreads.h"
#include "images/Image.h"
#include "instance/Node.h"
#include "parameters/ParameterSet.h"

namespace veloxa::ofx {

// The inputs' images at the time of an edit; none for inputs without a connection.
using Pictures = std::array<std::optional<Image>, kInputs>;

class Editor {
  public:
    explicit Editor(OfxImageEffectHandle effect);

    const ParameterList& list() const { return node_.list(); }
    const ParameterSet& parameters() const { return parameters_; }
    bool is_tool(std::size_t n) const;

    // Takes over the present values of all parameters, or what became of one.
    void load();
    void follow(std::size_t n);
    // Presses a button that is no tool. What the node changes goes to the parameters as one undoable step.
    void press(std::size_t n, OfxTime time);
    // Uses a tool, those of the toolbar over the sampling rectangle, likewise. `grid` is that of the
    // foreground's picture. Returns what the user has to know of it, empty for nothing. Throws Failure, and
    // has changed nothing, when the host gives it up.
    std::string use_tool(std::size_t n, OfxTime time, const PixelGrid& grid, const Pictures& pictures);

  private:
    class Wired;
    void set_knobs(const RenderScale& scale);
    template <class Work>
    void edit(std::size_t n, OfxTime time, const RenderScale& scale, const Work& work);
    void show_enables();

    OfxImageEffectHandle effect_;
    AbortPoll poll_;
    HostThreads threads_{poll_};
    Node node_;  // whose tools use the three
    ParameterSet parameters_;
    std::vector<int> enabled_;  // as the host was told; -1 for not yet
};

}  // namespace veloxa::ofx
