// The node as its tools see it: references to what it owns, good for one use of a tool.
#pragma once

#include <cstdint>
#include <functional>

#include "ZoImage/Iop.h"
#include "ZoImage/Render.h"
#include "controls/ControlBlock.h"
#include "panel/KnobStorage.h"
#include "panel/Panel.h"
#include "tools/ToolSession.h"
#include "unmix/ShotModel.h"

class VlxUnmixBacking;
class VlxUnmixSolids;

struct ToolNode {
    Zo::Image::Iop& image;  // the node itself: its inputs and what it puts out
    KnobStorage& knobs;
    const PanelKnobs& panel;
    ControlBlock& controls;
    const std::uint32_t& input_flags;
    ToolSession& session;
    Zo::Image::Iop& cleanup;           // its input 0 is the matte that clean-up takes
    Zo::Image::Iop& color_correction;  // its input 0 is the colour that conformance takes
    VlxUnmixBacking& unmix_backing;
    VlxUnmixSolids& unmix_solids;
    // As the knobs are when it is asked.
    std::function<Zo::Image::Iop&()> output_matte;
    std::function<Zo::Image::Iop&()> screen_area;
    std::function<ShotModel()> measure_frame;  // by itself; empty where no backing is found

    bool flag(std::uint32_t bit) const { return (input_flags & bit) != 0; }
    const Zo::Image::AbortFlag* abort() const { return image.context().abort; }
    // For whole frames.
    Zo::Image::Renderer renderer() const {
        const Zo::Image::NodeContext& context = image.context();
        if (context.threads != nullptr) return Zo::Image::Renderer(*context.threads, context.abort);
        return Zo::Image::Renderer(0, context.abort);
    }
    // Brings the node up to date with knobs that nobody is told of.
    void stand_as(const KnobStorage& values) const {
        knobs = values;
        image.invalidate();
        image.validate(true);
    }
};

// What the tool's button does. Reports go to the session. Where a render throws, or the user gives the tool
// up, every knob and the session are as they were before; then there is no report.
void use_tool(const ToolNode& node, Tool tool);
