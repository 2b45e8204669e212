#include "session/Jobs.h"

#include <memory>
#include <utility>

#include "render/NodeRenderer.h"
#include "render/Pictures.h"
#include "shot/Errors.h"
#include "shot/sequence/KeyFingerprints.h"
#include "shot/sequence/KeyPipeline.h"
#include "shot/sequence/KeyResume.h"
#include "shot/setup/KeySetup.h"
#include "shot/setup/ShotModel.h"

namespace veloxa::viewer {

using namespace Zo::Image;

namespace {

SetupOptions options_of(const State& state, const std::string& frames) {
    SetupOptions options;
    options.inputs = state.files.inputs;
    options.frames = frames.empty() ? state.files.frames : frames;
    options.fit = state.files.fit;
    options.colour = state.files.colour;
    return options;
}

KeyPlan plan_of(const RenderPlan& plan, const FrameRange& frames) {
    KeyPlan key;
    key.frames = frames;
    key.outputs = parse_outputs(plan.outputs);
    key.write = plan.how;
    key.program = plan.program;
    key.resume = plan.resume;
    for (const KeyOutput& output : key.outputs) {
        if (frames.count() > 1 && !output.file.has_frame()) {
            throw UsageError(output.file.name() +
                             ": several frames need a frame pattern such as %04d or ####");
        }
    }
    return key;
}

// Frames of a sequence are keyed by what is measured over all of it, unless the session measured it.
void measure(KeySetup& setup, const JobEvents& events) {
    const Node& node = setup.node();
    if (!keys_by_shot(node) || has_shot(node) || setup.frames().count() < 2) return;
    const auto measured = setup.measure_shot(setup.frames(), kShotFrames);
    events.line("the shot is measured on " + std::to_string(measured.size()) + " frames");
}

void render_all(const RenderPlan& plan, const AbortFlag& abort, const JobEvents& events) {
    Caller caller;
    caller.abort = &abort;
    caller.warn = caller.tell = events.line;
    caller.progress = events.progress;
    const SetupOptions options = options_of(plan.state, plan.frames);
    KeySetup setup(options, caller);
    setup.draw(plan.state.mattes);
    plan.state.settings.give(setup.node().panel());
    KeyPlan key = plan_of(plan, setup.frames());
    check_outputs(key, setup.names());
    FingerprintSource source;
    if (!has_shot(setup.node())) source.shot = shot_source({}, {}, {}, setup.frames());
    key.fingerprints = fingerprints_of(setup, options, key, source, &abort);
    if (key.resume) key.kept = kept_at_head(key, caller);
    if (key.kept == key.frames.count()) return events.line(counts_text({.kept = key.kept}));
    setup.loader().load_stills();
    measure(setup, events);
    KeyPipeline pipeline(key, setup.loader(), setup.node(), setup.node().image(), setup.inputs(), caller);
    const bool good = pipeline.run();
    if (key.resume) events.line(counts_text(pipeline.stats().counts));
    if (!good) throw Error("some frames could not be rendered; see the lines above");
}

WorstFrame look_at(NodeRenderer& renderer, FrameLoader& loader, const State& state, int number) try {
    auto frame = std::make_shared<Frame>();
    frame->number = number;
    frame->inputs = loader.load(number);
    for (const LoadedInput& input : frame->inputs) frame->identity.append(input.identity);
    const Box box = renderer.prepare({frame, state.settings, state.mattes, kResult});
    const auto picture = renderer.render(box);
    if (!picture) throw Interrupted();
    return {number, status_counts(*picture), {}};
} catch (const Interrupted&) {
    throw;
} catch (const Error& error) {
    return {number, {}, error.what()};
}

void find_all(const State& state, int most, const AbortFlag& abort, const JobEvents& events) {
    Caller caller;
    caller.abort = &abort;
    caller.warn = caller.tell = [](const std::string&) {};
    KeySetup setup(options_of(state, {}), caller);
    setup.loader().load_stills();
    PlanePool planes;
    NodeRenderer renderer(1, 0, planes, abort);
    const std::vector<int> frames = spread_over(setup.frames(), most);
    std::vector<WorstFrame> worst;
    for (const int frame : frames) {
        give_up_if_raised(&abort);
        worst.push_back(look_at(renderer, setup.loader(), state, frame));
        events.worst(worst);
        events.progress(static_cast<double>(worst.size()), static_cast<int>(frames.size()));
    }
}

}  // namespace

Jobs::Jobs(std::function<void(std::function<void()>)> post) : post_(std::move(post)) {}

Jobs::~Jobs() {
    *alive_ = false;
}

void Jobs::post(std::function<void()> call) {
    post_([alive = std::weak_ptr<bool>(alive_), call = std::move(call)] {
        const auto here = alive.lock();
        if (here && *here) call();
    });
}

void Jobs::start(JobEvents events, Job job) {
    ++running_;
    auto told = std::make_shared<const JobEvents>(std::move(events));
    waiting_.push_back([told](const std::string& outcome) {
        if (told->done) told->done(outcome);
    });
    // The job's own, which bring everything to the window.
    JobEvents brought;
    brought.progress = [this, told](double done, int all) {
        post([told, done, all] {
            if (told->progress) told->progress(done, all);
        });
    };
    brought.line = [this, told](const std::string& line) {
        post([told, line] {
            if (told->line) told->line(line);
        });
    };
    brought.worst = [this, told](const std::vector<WorstFrame>& frames) {
        post([told, frames] {
            if (told->worst) told->worst(frames);
        });
    };
    errands_.add([this, brought = std::move(brought), job = std::move(job)](const AbortFlag& abort) {
        std::string outcome;
        try {
            job(abort, brought);
        } catch (const std::exception& error) {
            outcome = error.what();
        }
        post([this, outcome] {
            const auto done = std::move(waiting_.front());
            waiting_.erase(waiting_.begin());
            --running_;
            done(outcome);
        });
    });
}

void Jobs::render(RenderPlan plan, JobEvents events) {
    static_cast<void>(parse_outputs(plan.outputs));
    start(std::move(events), [plan = std::move(plan)](const AbortFlag& abort, const JobEvents& told) {
        render_all(plan, abort, told);
    });
}

void Jobs::find_worst(State state, int most, JobEvents events) {
    start(std::move(events), [state = std::move(state), most](const AbortFlag& abort, const JobEvents& told) {
        find_all(state, most, abort, told);
    });
}

void Jobs::cancel() {
    // The last ones wait and will never tell; what runs tells by itself that it was interrupted.
    for (std::size_t left_out = errands_.give_up(); left_out > 0; --left_out) {
        const auto done = std::move(waiting_.back());
        waiting_.pop_back();
        --running_;
        done(Interrupted().what());
    }
}

}  // namespace veloxa::viewer
