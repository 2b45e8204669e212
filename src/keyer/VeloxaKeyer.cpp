#include "keyer/VeloxaKeyer.h"

#include "controls/ControlListing.h"
#include "controls/ControlTrace.h"
#include "keyer/HelpText.h"
#include "lanes/Lanes.h"
#include "panel/KnobCopy.h"
#include "tools/StrokePixels.h"

using namespace Zo::Image;

VeloxaKeyer::VeloxaKeyer(const NodeContext& context) : Iop(context) {
    inputs(5);
    adopt_operators();
    set_flag(kNoScreenColor, true);
}

const char* VeloxaKeyer::help_text() const {
    return kHelpText;
}

const char* VeloxaKeyer::input_label(int input, char* buffer) const {
    static constexpr std::array<const char*, 5> kLabels{"fg", "cp", "bg", "gm", "hm"};
    if (input < 0 || input >= static_cast<int>(kLabels.size())) return buffer;
    return kLabels[static_cast<std::size_t>(input)];
}

Op* VeloxaKeyer::default_input(int input) {
    return input == 0 || input == 2 ? Iop::default_input(input) : nullptr;
}

void VeloxaKeyer::knobs(Knob_Closure& closure) {
    build_panel(closure, knobs_, panel_);
}

int VeloxaKeyer::knob_changed(Knob* knob) {
    const int handled = panel_.knob_changed(knob);
    if (const auto tool = panel_.tool_of(knob)) use_tool(tool_node(), *tool);
    return handled;
}

ToolNode VeloxaKeyer::tool_node() {
    return {.image = *this,
            .knobs = knobs_,
            .panel = panel_,
            .controls = controls_,
            .input_flags = inputFlags_,
            .session = session_,
            .cleanup = cleanup,
            .color_correction = colorCorrection,
            .unmix_backing = unmixBacking,
            .unmix_solids = unmixSolids,
            .output_matte = [this]() -> Iop& { return keyed_matte(); },
            .screen_area = [this]() -> Iop& { return screen_region(); },
            .measure_frame = [this] { return measure_frame(); }};
}

std::shared_ptr<const ToolMemory> VeloxaKeyer::tool_memory() const {
    auto record = std::make_shared<ToolRecord>();
    record->session = session_;
    record->fg_sample = controls_.get(controls::kFgSample);
    record->bg_sample = controls_.get(controls::kBgSample);
    return record;
}

void VeloxaKeyer::recall(const std::shared_ptr<const ToolMemory>& memory) {
    const auto* const record = dynamic_cast<const ToolRecord*>(memory.get());
    session_ = record != nullptr ? record->session : ToolSession();
    const auto take = [&](const ControlGroup& sample, ControlTriple ToolRecord::*held) {
        controls_.reset(sample);
        if (record != nullptr)
            controls_.set(sample, (record->*held)[0], (record->*held)[1], (record->*held)[2]);
    };
    take(controls::kFgSample, &ToolRecord::fg_sample);
    take(controls::kBgSample, &ToolRecord::bg_sample);
    invalidate();
}

ShotModel VeloxaKeyer::measure_frame() {
    struct Measuring {
        explicit Measuring(VeloxaKeyer& keyer) : node(keyer) { stand(true); }
        ~Measuring() { stand(false); }
        void stand(bool measuring) const {
            node.measuring_ = measuring;
            node.invalidate();
            node.validate(true);
        }
        VeloxaKeyer& node;
    };
    const Measuring measuring(*this);
    unmixShot.validate(true);
    Renderer renderer = tool_node().renderer();
    render_or_give_up(renderer, unmixShot, unmixShot.info().box, kAlpha, [](int, const Row&) {});
    return unmixShot.model();
}

std::string VeloxaKeyer::diagnostic(std::string_view what) const {
    if (what == "controls") return control_listing(controls_);
    if (what == "lanes") return name_of(lanes_in_use());
    if (what == "shot") {
        const bool unused = panel_.shot() != nullptr && unmix_params_.shot == nullptr;
        return unused ? "it was measured with another screen or encoding" : "";
    }
    if (what != "trace") return {};
    std::string text(trace_capacity(), '\0');
    write_trace(controls_, text.data(), text.size());
    text.resize(text.find('\0'));
    return text;
}

void VeloxaKeyer::_validate(bool for_real) {
    input(0).validate(true);
    input(2).validate(true);
    copy_info();
    set_out_channels(kMaskAlpha);
    info_.channels += kMaskAlpha;

    set_flag(kCpUsable, connected(1) && knobs_.screen_correct);
    set_flag(kGmConnected, connected(3));
    set_flag(kHmConnected, connected(4));
    if (flag(kCpUsable)) input(1).validate(true);
    // The garbage matte is validated when it is requested; the background twice does no harm.
    if (flag(kGmConnected)) input(2).validate(true);
    if (flag(kHmConnected)) input(4).validate(true);

    const auto& colour = knobs_.screen_color;
    set_flag(kNoScreenColor, colour[0] == 0.0f && colour[1] == 0.0f && colour[2] == 0.0f);
    refresh_controls();
    refresh_unmix_params();
    if (for_real) wire_graph();
}

void VeloxaKeyer::_request(int x, int y, int r, int t, ChannelSet channels, int count) {
    const auto ask = [&](Iop& source, ChannelSet wanted) { source.request(x, y, r, t, wanted, count); };
    if (flag(kNoScreenColor)) {
        ask(input(0), channels);
        return;
    }
    const ChannelSet widened = channels + kMaskRgba;
    ask(input(2), channels);
    if (shadows_on()) {
        ask(combineShadow, widened);
    } else {
        ask(final_matte(), widened);
        if (&colour_source() != &normFg) ask(colour_source(), widened);
    }
    if (knobs_.adds()) ask(keyed_matte(), kMaskAlpha);
    if (knobs_.keeps_highlights()) {
        ask(input(0), channels + kMaskRgb);
        ask(final_matte(), kMaskAlpha);
    }
    if (knobs_.overlay_mode > 0) ask(screen_region(), widened);
    if (flag(kHmConnected)) {
        ask(input(0), channels);
        ask(input(4), kMaskAlpha);
    }
}

void VeloxaKeyer::engine(int y, int /*x*/, int /*r*/, const ChannelSet& channels, Row& row) {
    if (flag(kNoScreenColor)) {
        row.get(input(0), y, channels);
        return;
    }
    if (shadows_on()) {
        engine_shadow(y, channels, row);
    } else {
        engine_composite(y, channels, row);
    }
    if (knobs_.overlay_mode > 0) draw_overlay(y, channels, row);
    if (flag(kHmConnected)) apply_holdout(y, channels, row);
}
