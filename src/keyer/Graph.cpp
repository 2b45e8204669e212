// The node's inner graph: which operator reads which, for the present inputs and panel.
#include <algorithm>
#include <type_traits>

#include "controls/ChannelRoles.h"
#include "keyer/VeloxaKeyer.h"
#include "panel/KnobCopy.h"
#include "tools/Stage.h"

using namespace Zo::Image;

namespace {

template <class Pair>
bool any_above_zero(const Pair& size) {
    return size[0] > 0.0 || size[1] > 0.0;
}

}  // namespace

// In the order of wiring: an operator comes after those that it reads.
template <class Visit>
void VeloxaKeyer::for_each_operator(Visit&& visit) {
    visit(normFg, "normFg");
    visit(normCp, "normCp");
    visit(normGm, "normGm");
    visit(normHm, "normHm");
    visit(subRegion, "subRegion");
    visit(shrinkS, "shrinkS");
    visit(filmCorrection, "filmCorrection");
    visit(clearRegionCP, "clearRegionCP");
    visit(shrinkCP, "shrinkCP");
    visit(clearRegion, "clearRegion");
    visit(computeIsland, "computeIsland");
    visit(shrinkScreen, "shrinkScreen");
    visit(computeMatte, "computeMatte");
    visit(matteCorrectRaw, "matteCorrectRaw");
    visit(computePFG, "computePFG");
    visit(matteCorrectPFG, "matteCorrectPFG");
    visit(outputMatte, "outputMatte");
    visit(unmixBacking, "unmixBacking");
    visit(unmixSolids, "unmixSolids");
    visit(unmixSolve, "unmixSolve");
    visit(unmixClean, "unmixClean");
    visit(unmixColour, "unmixColour");
    visit(unmixMatte, "unmixMatte");
    visit(unmixShadow, "unmixShadow");
    visit(unmixShot, "unmixShot");
    visit(spillSuppression, "spillSuppression");
    visit(colorCorrection, "colorCorrection");
    visit(shrinkCU, "shrinkCU");
    visit(blurCU, "blurCU");
    visit(cleanup, "cleanup");
    visit(smartInterpol, "smartInterpol");
    visit(computeShadow, "computeShadow");
    visit(clearFrame, "clearFrame");
    visit(shadowBlur, "shadowBlur");
    visit(combineShadow, "combineShadow");
}

void VeloxaKeyer::adopt_operators() {
    for_each_operator([this](Op& op, const char* name) { op.parent(this, name); });
}

void VeloxaKeyer::_close() {
    if (users() < 2) {
        for_each_operator([](auto& op, const char*) {
            op.setup();
            op.close();
        });
    }
    Iop::_close();
}

// A change of controls that operators read but do not hash is told to them here; whoever reads those follows
// through their hashes.
void VeloxaKeyer::refresh_controls() {
    auto before = control_values_;
    copy_knobs(knobs_, inputFlags_, controls_);
    const ControlBlock old(before.data(), 0);
    for_each_operator([&](auto& op, const char*) {
        if constexpr (std::is_base_of_v<VlxIop, std::remove_reference_t<decltype(op)>>) {
            const auto& list = op.unhashed();
            if (std::any_of(list.begin(), list.end(),
                            [&](int i) { return old.get(i) != controls_.get(i); })) {
                op.invalidate();
            }
        }
    });
}

// The colours are those of the saved lists, so that a script gives the same pixels as the strokes did.
void VeloxaKeyer::refresh_unmix_params() {
    UnmixParams& p = unmix_params_;
    p.screen = ChannelForRole(controls_.get(controls::kColorIndex), 2);
    p.encoding = static_cast<Encoding>(knobs_.unmix_encoding);
    p.veil = knobs_.unmix_veil;
    p.solid = knobs_.unmix_solid;
    p.detail = knobs_.unmix_detail;
    p.denoise = knobs_.unmix_denoise;
    p.folds = knobs_.unmix_folds;
    p.spill = knobs_.unmix_spill;
    p.shot = measuring_ ? nullptr : panel_.shot();
    if (p.shot && !p.shot->fits(p.screen, p.encoding)) p.shot = nullptr;
    const auto take = [&](SampleAction action, std::vector<TaughtColour>& colours) {
        colours.clear();
        for (const VeloxaSample::Sample& sample : panel_.sampled(action)) {
            const VeloxaSample::Sample s = as_saved(sample);
            if (usable(s)) colours.push_back({{s[0], s[1], s[2]}, std::clamp(s[3], 0.0f, 1.0f)});
        }
    };
    take(SampleAction::kUnmixBacking, p.backing);
    take(SampleAction::kUnmixSolid, p.solids);
    take(SampleAction::kUnmixSeeThrough, p.see_through);
    take(SampleAction::kUnmixOwn, p.own);
}

Iop& VeloxaKeyer::screen_region() {
    if (any_above_zero(knobs_.screen_shrink)) return shrinkScreen;
    if (knobs_.screen_orphans > 0) return computeIsland;
    return clearRegion;
}

// The subject's matte, and its colour before any correction.
Iop& VeloxaKeyer::keyed_matte() {
    if (knobs_.unmixes()) return unmixMatte;
    return outputMatte;
}

// What the shadow combination takes its colour from. What is unmixed has lost its spill.
Iop& VeloxaKeyer::keyed_colour() {
    if (knobs_.color_conformance) return colorCorrection;
    if (knobs_.spill_suppression && !knobs_.unmixes()) return spillSuppression;
    return keyed_matte();
}

// What the composite path takes its colour from: with both stages off the foreground as it is, where the
// shadow path takes the processed one. What is added must be processed: its backing stays in otherwise. What
// is unmixed and not corrected afterwards keeps the plate's own values.
Iop& VeloxaKeyer::colour_source() {
    if (knobs_.unmixes() && !knobs_.color_conformance) return unmixColour;
    if (knobs_.color_conformance || knobs_.spill_suppression || knobs_.adds()) return keyed_colour();
    return normFg;
}

// The matte before its clean-up: choked and softened, each where it is asked for.
Iop& VeloxaKeyer::choked_matte() {
    if (any_above_zero(knobs_.cleanup_blur)) return blurCU;
    if (any_above_zero(knobs_.cleanup_shrink)) return shrinkCU;
    return keyed_matte();
}

// At strength 0 the clean-up leaves every bit as it is.
Iop& VeloxaKeyer::final_matte() {
    if (!knobs_.cleanup) return keyed_matte();
    if (controls_.get(controls::kCleanUp) != 0) return cleanup;
    return choked_matte();
}

void VeloxaKeyer::wire_graph() {
    const auto wire = [](auto& op, std::initializer_list<Op*> sources) {
        int n = 0;
        for (Op* source : sources) op.set_input(n++, source);
        op.setup();
    };
    const bool cp = flag(kCpUsable);
    const bool film_shrink = any_above_zero(knobs_.film_shrink);
    const bool cleanup_shrink = any_above_zero(knobs_.cleanup_shrink);
    const bool orphans = knobs_.screen_orphans > 0;
    const bool edge_kernel = knobs_.edge_kernel >= 1.0f;
    const bool correct = knobs_.screen_correct;
    Op* const region = &screen_region();
    const auto either = [](bool first, Op& a, Op& b) { return first ? &a : &b; };

    wire(normFg, {input_op(0)});
    wire(normCp, {input_op(1)});
    wire(normGm, {input_op(3)});
    wire(normHm, {input_op(4)});
    wire(subRegion, {&normFg});
    wire(shrinkS, {&subRegion});
    wire(filmCorrection, {&normFg, either(film_shrink, shrinkS, subRegion)});
    wire(clearRegionCP, {&normFg, either(cp, normCp, normFg)});
    wire(shrinkCP, {&clearRegionCP});
    wire(clearRegion, {either(cp, shrinkCP, normFg), &normCp, &normGm, &normHm});
    wire(computeIsland, {&clearRegion});
    wire(shrinkScreen, {either(orphans, computeIsland, clearRegion)});
    wire(computeMatte, {&normFg, &normCp});
    wire(matteCorrectRaw, {&computeMatte, correct ? region : &computeMatte});
    wire(computePFG, {either(knobs_.film, filmCorrection, normFg), &normCp,
                      either(edge_kernel, matteCorrectRaw, computeMatte), region});
    wire(matteCorrectPFG, {&computePFG, correct ? region : &computePFG});
    wire(outputMatte, {either(edge_kernel, matteCorrectPFG, computePFG)});
    wire(spillSuppression, {&computePFG, correct ? region : &outputMatte});
    wire(unmixBacking, {input_op(0), input_op(1), input_op(3)});
    wire(unmixSolids, {&unmixBacking, input_op(3), input_op(4)});
    wire(unmixSolve, {&unmixSolids});
    wire(unmixClean, {&unmixSolve, input_op(3), input_op(4)});
    wire(unmixColour, {&unmixClean});
    wire(unmixMatte, {&unmixColour});
    wire(unmixShadow, {&unmixBacking});
    wire(unmixShot, {&unmixClean});
    const bool suppress = knobs_.spill_suppression && !knobs_.unmixes();
    wire(colorCorrection, {either(suppress, spillSuppression, keyed_matte())});
    wire(shrinkCU, {&keyed_matte()});
    wire(blurCU, {either(cleanup_shrink, shrinkCU, keyed_matte())});
    wire(cleanup, {&choked_matte()});
    wire(smartInterpol, {either(cp, normCp, normFg), region});
    wire(computeShadow, {&smartInterpol});
    wire(clearFrame, {&normFg, &normCp, &smartInterpol});
    wire(shadowBlur, {either(knobs_.unmixes(), unmixShadow, *either(cp, clearFrame, computeShadow))});
    wire(combineShadow, {&keyed_colour(), &final_matte(), &shadowBlur});
}
