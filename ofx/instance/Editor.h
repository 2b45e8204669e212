// The node that an instance's user edits: it follows the parameters, greys out what its enables switch off,
// presses buttons, uses tools, and takes and gives scripts of settings. It remembers strokes as long as it
// lives, but for those that the user undid. Main thread.
#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "ZoImage/KnobValues.h"
#include "host/AbortPoll.h"
#include "host/HostThreads.h"
#include "images/Clips.h"
#include "images/Image.h"
#include "instance/Node.h"
#include "parameters/OwnParameters.h"
#include "parameters/ParameterSet.h"
#include "sampling/SampleMarks.h"
#include "sampling/StrokeMemory.h"

namespace veloxa::ofx {

// The inputs' images at the time of an edit; none for inputs without a connection.
using Pictures = std::array<std::optional<Image>, kInputs>;

class Editor {
  public:
    explicit Editor(OfxImageEffectHandle effect);

    const ParameterList& list() const { return node_.list(); }
    const ParameterSet& parameters() const { return parameters_; }
    const OwnParameters& own() const { return own_; }
    // Whether the node looks at its inputs for it; whether at an area of them that the user marks.
    bool is_tool(std::size_t n) const;
    bool is_stroked(std::size_t n) const;
    // The tool that the overlay's pen uses.
    std::optional<std::size_t> active_tool() const;
    void activate(std::size_t n) const;

    // Takes over the present values of all parameters, or what became of one.
    void load();
    void follow(std::size_t n);
    // Presses a button that is no tool. What the node changes goes to the parameters as one undoable step.
    void press(std::size_t n, OfxTime time);
    // Uses a tool, those of the toolbar over areas of the foreground, likewise. `grid` is that of the
    // foreground's picture, whose pixels the areas are of. Returns what the user has to know of it, empty for
    // nothing. Throws Failure, and has changed nothing, when the host gives it up.
    std::string use_tool(std::size_t n, OfxTime time, const PixelGrid& grid, const Pictures& pictures,
                         const std::vector<Zo::Image::Box>& areas);

    // The samples of a tool that its list still holds, oldest first.
    std::vector<SampleMark> marks(std::size_t tool) const;
    // Takes a sample out of its list, as one undoable step.
    void remove(const SampleMark& mark, OfxTime time);

    // The present values, as a script.
    std::string script();
    // Sets all knobs as the script says, those that it does not name to their defaults, as one undoable step;
    // nothing is animated afterwards. Throws ScriptError, and has changed nothing, when it does not fit.
    void apply(const std::string& text, const std::string& file, OfxTime time);

  private:
    class Wired;
    void set_knobs(const Values& values, const RenderScale& scale);
    // Changes the node's knobs, whose values at the time it gets.
    struct Outcome {
        std::optional<std::string> marks, report;  // from then on; as they are without
        bool still = false;                        // parameters have the values at all times
    };
    using Work = std::function<Outcome(const Zo::Image::KnobValues& before)>;
    void edit(const std::string& step, OfxTime time, const RenderScale& scale, const Work& work);
    void show_enables();
    Outcome outcome_of_tools(OfxTime time) const;
    std::vector<SampleMark> marks_with(const std::string& tool, OfxTime time, const PixelGrid& grid,
                                       const Image& plate, const std::vector<Zo::Image::Box>& areas,
                                       const std::vector<Zo::Image::Knob*>& changed);

    OfxImageEffectHandle effect_;
    AbortPoll poll_;
    HostThreads threads_{poll_};
    Node node_;  // whose tools use the three
    ParameterSet parameters_;
    OwnParameters own_;
    StrokeMemory memory_;
    std::vector<int> enabled_;  // as the host was told; -1 for not yet
};

}  // namespace veloxa::ofx
