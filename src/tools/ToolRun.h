// One use of a tool: gathers the stroke's samples, starts the tool's analysis, and sets the knobs that it
// found, each with an undo step.
//
// Where a tool has nothing left to turn it asks for nothing: no sample is kept. Held sample lists stay as
// they are; what of them is as asked counts before all strokes.
#pragma once

#include <algorithm>
#include <limits>
#include <string>

#include "tools/StrokePixels.h"
#include "tools/ToolNode.h"

class ToolRun {
  public:
    explicit ToolRun(const ToolNode& node) : node_(node) {}

    // Any tool but that which sets up by means of the others. The areas are the foreground's; those
    // that look at all of it take none.
    Zo::Image::ToolReport run(Tool tool, const StrokeAreas& areas);
    // The same for a user, who wants to know why nothing changed.
    Zo::Image::ToolReport run_and_explain(Tool tool, const StrokeAreas& areas);

  private:
    using Sample = VeloxaSample::Sample;

    bool take_areas(const StrokeAreas& areas);
    // Whether a held knob leaves the tool anything to turn; says which are held.
    bool may_turn(Tool tool);
    void use(Tool tool);
    // Calls `look` while the node stands as with these knobs. Where that throws it stays so.
    template <class Look>
    void with(const KnobStorage& knobs, const Look& look);
    // Whether a sample counts; those that do not are told at the end.
    bool counts(bool usable) {
        unusable_ += usable ? 0 : 1;
        return usable;
    }
    Sample mean(Zo::Image::Iop& source) const;
    std::vector<StrokePixel> pixels(Zo::Image::Iop& first, Zo::Image::Iop* second);
    // Analyses, and takes in pixels of the strokes that the answer leaves out, until it leaves out none.
    template <class T, class Analyse, class Agrees>
    Tuning refine(Strokes<T>& strokes, const Analyse& analyse, const Agrees& agrees);
    template <class T, class Agrees>
    void note_missed(const Strokes<T>& strokes, const Tuning& tuning, const Agrees& agrees);
    void find_screen();
    void pick_color(Zo::Image::Iop& source, KnobStorage::Color KnobStorage::*field, bool darken);
    void overlay(bool add);
    void gather_overlay(bool add);
    // The pixels with the plate's or, without one, the screen colour.
    std::vector<OverlaySample> overlay_pixels(const std::vector<StrokePixel>& pixels, bool screen) const;
    Sample screen_sample() const;
    // Where the stroke is not transparent in the picture that the knobs would give; spread over it, if many.
    std::vector<std::array<int, 2>> visible(const KnobStorage& knobs);
    // What lies so near to those places that it takes the screen area away from them.
    std::vector<OverlaySample> surroundings(const KnobStorage& knobs,
                                            const std::vector<std::array<int, 2>>& places);
    std::vector<OverlaySample> overlay_samples(bool add);
    void add_matte();
    void gather_backing();
    void matte_samples(bool noise);
    void spill(bool restore);
    void match_color();
    // Adds what the stroke shows to a list of the unmixing matte.
    void teach(SampleAction action);
    // Adds the frame to the shot's model.
    void analyse_shot();

    Setting setting() const { return setting(node_.knobs); }
    Setting setting(const KnobStorage& knobs) const;
    void tell_held(const Zo::Image::Knob& knob);
    bool is_held(SampleAction action) const;
    // Whether the saved list was cleared, undone or restored since the latest stroke.
    bool taken_back(SampleAction action) const;
    // The strokes of such lists. Every tool does so first: it counts the lists at its end.
    void forget_taken_back();
    Zo::Image::Iop* plate() const;
    void adopt(const Tuning& tuning, std::size_t counted);
    void set_knobs(const KnobStorage& values);
    // What the stroke costs outside its areas.
    void note_elsewhere(const KnobStorage& before);
    void note(std::string_view text);

    static constexpr int kMostRounds = 12;
    static constexpr int kMostIdleRounds = 2;

    const ToolNode& node_;
    StrokeAreas areas_;
    int unusable_ = 0;  // so far; what the analysis says goes to the report
    Zo::Image::ToolReport report_;
};

template <class T, class Analyse, class Agrees>
Tuning ToolRun::refine(Strokes<T>& strokes, const Analyse& analyse, const Agrees& agrees) {
    std::size_t least = std::numeric_limits<std::size_t>::max();
    int idle = 0;
    for (int round = 0;; ++round) {
        Tuning tuning = analyse();
        const auto satisfied = [&](const std::vector<T>& pixels) { return agrees(tuning.knobs, pixels); };
        // Where samples contradict each other more of them help for a while only.
        const bool all = std::ranges::all_of(tuning.misses, [](double m) { return m == 0.0; });
        const std::size_t left = strokes.unsatisfied(satisfied);
        idle = all || left < least ? 0 : idle + 1;
        least = std::min(least, left);
        const bool last = round == kMostRounds || idle == kMostIdleRounds;
        if (last || !strokes.take_missed(satisfied)) return tuning;
    }
}

template <class T, class Agrees>
void ToolRun::note_missed(const Strokes<T>& strokes, const Tuning& tuning, const Agrees& agrees) {
    const auto right = [&](const std::vector<T>& pixels) { return agrees(tuning.knobs, pixels); };
    const std::size_t missed = strokes.unsatisfied(right);
    if (missed > 0) note(std::to_string(missed) + " pixels of the stroke are not as asked");
}

template <class Look>
void ToolRun::with(const KnobStorage& knobs, const Look& look) {
    const KnobStorage present = node_.knobs;
    node_.stand_as(knobs);
    look();
    node_.stand_as(present);
}
