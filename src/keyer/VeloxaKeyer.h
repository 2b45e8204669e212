// The keyer node: five inputs, one panel, and a fixed graph of internal operators that it owns.
//
//   input 0 "fg"  foreground against the backing     input 3 "gm"  garbage matte (alpha)
//   input 1 "cp"  clean plate, optional              input 4 "hm"  holdout matte (alpha), optional
//   input 2 "bg"  background
//
// Each validation copies the knobs into the controls and, for real, wires the graph: a stage that is off or
// has nothing to do is left out by connecting its reader to what it would have read. There are two ways to
// the matte, by colour difference and by unmixing; what stands behind them is the same. engine takes finished
// rows of the last operators and forms the output. Until a screen colour is chosen the foreground passes.
// engine keeps everything in locals, so rows may be asked from many threads.
#pragma once

#include <array>
#include <cstdint>

#include "ZoImage/Iop.h"
#include "controls/ControlBlock.h"
#include "panel/InputFlags.h"
#include "panel/KnobStorage.h"
#include "panel/Panel.h"
#include "screen/VlxBlurCU.h"
#include "screen/VlxCleanup.h"
#include "screen/VlxClearFrame.h"
#include "screen/VlxClearRegion.h"
#include "screen/VlxClearRegionCP.h"
#include "screen/VlxCombineShadow.h"
#include "screen/VlxComputeIsland.h"
#include "screen/VlxComputeShadow.h"
#include "screen/VlxShadowBlur.h"
#include "screen/VlxShrink.h"
#include "screen/VlxShrinkCU.h"
#include "screen/VlxShrinkS.h"
#include "screen/VlxSmartInterpol.h"
#include "screen/VlxSubRegion.h"
#include "stages/VlxColorCorrection.h"
#include "stages/VlxComputeMatte.h"
#include "stages/VlxComputePFG.h"
#include "stages/VlxFilmCorrection.h"
#include "stages/VlxMatteCorrect.h"
#include "stages/VlxNormalize.h"
#include "stages/VlxOutputMatte.h"
#include "stages/VlxSpillSuppression.h"
#include "tools/ToolNode.h"
#include "unmix/VlxUnmixBacking.h"
#include "unmix/VlxUnmixClean.h"
#include "unmix/VlxUnmixColour.h"
#include "unmix/VlxUnmixMatte.h"
#include "unmix/VlxUnmixShadow.h"
#include "unmix/VlxUnmixShot.h"
#include "unmix/VlxUnmixSolids.h"
#include "unmix/VlxUnmixSolve.h"

class VeloxaKeyer final : public Zo::Image::Iop {
  public:
    explicit VeloxaKeyer(const Zo::Image::NodeContext& context);

    const char* class_name() const override { return "Veloxa"; }
    const char* help_text() const override;
    const char* input_label(int input, char* buffer) const override;
    Zo::Image::Op* default_input(int input) override;

    void knobs(Zo::Image::Knob_Closure& closure) override;
    int knob_changed(Zo::Image::Knob* knob) override;
    std::vector<Zo::Image::ToolReport> tool_reports() const override { return session_.reports; }
    std::shared_ptr<const Zo::Image::ToolMemory> tool_memory() const override;
    void recall(const std::shared_ptr<const Zo::Image::ToolMemory>& memory) override;
    // "controls" lists the controls, "trace" gives them as a script of commands; "shot" says why the shot's
    // model, where there is one, is not used; "lanes" names the form of the kernels that runs.
    std::string diagnostic(std::string_view what) const override;

    const KnobStorage& knob_values() const { return knobs_; }
    KnobStorage& knob_values() { return knobs_; }
    const ControlBlock& controls() const { return controls_; }
    std::uint32_t input_flags() const { return inputFlags_; }

  protected:
    void _validate(bool for_real) override;
    void _close() override;
    void _request(int x, int y, int r, int t, Zo::Image::ChannelSet channels, int count) override;
    void engine(int y, int x, int r, const Zo::Image::ChannelSet& channels, Zo::Image::Row& row) override;

  private:
    bool flag(std::uint32_t bit) const { return (inputFlags_ & bit) != 0; }
    void set_flag(std::uint32_t bit, bool on) { inputFlags_ = on ? inputFlags_ | bit : inputFlags_ & ~bit; }
    bool shadows_on() const { return knobs_.screen_correct && knobs_.shadow; }

    ToolNode tool_node();
    void adopt_operators();
    void refresh_controls();
    void refresh_unmix_params();
    ShotModel measure_frame();
    void wire_graph();
    template <class Visit>
    void for_each_operator(Visit&& visit);

    // The operators that the choices of the panel select; see wire_graph.
    Zo::Image::Iop& screen_region();
    Zo::Image::Iop& keyed_matte();
    Zo::Image::Iop& keyed_colour();
    Zo::Image::Iop& colour_source();
    Zo::Image::Iop& choked_matte();
    Zo::Image::Iop& final_matte();

    void engine_composite(int y, Zo::Image::ChannelSet channels, Zo::Image::Row& row);
    void engine_shadow(int y, Zo::Image::ChannelSet channels, Zo::Image::Row& row);
    void finish(int y, Zo::Image::ChannelSet channels, const Zo::Image::Row& colour,
                const Zo::Image::Row& matte, Zo::Image::Row& row);
    void put_highlights_back(int y, Zo::Image::ChannelSet colours, const Zo::Image::Row& background,
                             const Zo::Image::Row& k, Zo::Image::Row& row);
    void draw_overlay(int y, Zo::Image::ChannelSet channels, Zo::Image::Row& row);
    void apply_holdout(int y, Zo::Image::ChannelSet channels, Zo::Image::Row& row);

    KnobStorage knobs_;
    std::array<std::int32_t, ControlBlock::kCount> control_values_{};
    ControlBlock controls_{control_values_.data(), 1};

    VlxNormalize normFg{context()};
    VlxNormalize normCp{context()};
    VlxNormalize normGm{context()};
    VlxNormalize normHm{context()};
    VlxSubRegion subRegion{context(), &controls_};
    VlxShrinkS shrinkS{context(), &controls_};
    VlxFilmCorrection filmCorrection{context(), &controls_};
    VlxClearRegionCP clearRegionCP{context(), &controls_};
    VlxShrink shrinkCP{context(), &controls_, 1};
    VlxClearRegion clearRegion{context(), &controls_};
    VlxComputeIsland computeIsland{context(), &controls_};
    VlxShrink shrinkScreen{context(), &controls_, 0};
    VlxComputeMatte computeMatte{context(), &controls_};
    VlxMatteCorrect matteCorrectRaw{context(), &controls_, 1};
    VlxComputePFG computePFG{context(), &controls_};
    VlxMatteCorrect matteCorrectPFG{context(), &controls_, 0};
    VlxOutputMatte outputMatte{context(), &controls_};
    VlxSpillSuppression spillSuppression{context(), &controls_};
    VlxColorCorrection colorCorrection{context(), &controls_};
    VlxShrinkCU shrinkCU{context(), &controls_};
    VlxBlurCU blurCU{context(), &controls_};
    VlxCleanup cleanup{context(), &controls_};
    VlxSmartInterpol smartInterpol{context(), &controls_};
    VlxClearFrame clearFrame{context(), &controls_};
    VlxShadowBlur shadowBlur{context(), &controls_};
    VlxComputeShadow computeShadow{context(), &controls_};
    VlxCombineShadow combineShadow{context(), &controls_};

    UnmixParams unmix_params_;
    VlxUnmixBacking unmixBacking{context(), &unmix_params_};
    VlxUnmixSolids unmixSolids{context(), &unmix_params_, unmixBacking};
    VlxUnmixSolve unmixSolve{context(), &unmix_params_, unmixBacking, unmixSolids};
    VlxUnmixClean unmixClean{context(), &unmix_params_, unmixBacking, unmixSolids, unmixSolve};
    VlxUnmixColour unmixColour{context(), &unmix_params_, unmixBacking, unmixSolids, unmixClean};
    VlxUnmixShadow unmixShadow{context(), &unmix_params_, unmixBacking};
    VlxUnmixMatte unmixMatte{context(), &controls_};
    VlxUnmixShot unmixShot{context(), &unmix_params_, unmixBacking, unmixSolids, unmixClean};
    bool measuring_ = false;  // the frame by itself, without the shot's model

    std::uint32_t inputFlags_ = 0;
    PanelKnobs panel_;
    ToolSession session_;
};
