#include "shot/sequence/KeyPipeline.h"

#include <algorithm>
#include <thread>
#include <utility>

#include "ZoImage/Iop.h"
#include "shot/Errors.h"
#include "shot/farm/Leftovers.h"
#include "shot/farm/StatusFile.h"
#include "shot/sequence/KeyResume.h"
#include "shot/setup/ScreenChoice.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

// Shares the plane.
Image alpha_alone(const Image& image) {
    Image matte = image;
    matte.info.channels = kAlpha;
    matte.kept = nullptr;
    for (const Channel c : kMaskRgb) matte.plane(c) = nullptr;
    tag_raw(matte.header);
    return matte;
}

bool is_matte(const KeyOutput& output) {
    return output.picture == Picture::kMatte;
}

// A line each, for provenance.
std::string inputs_text(const FrameLoader::Names& names, int frame) {
    std::string text;
    for (std::size_t n = 0; n < names.size(); ++n) {
        if (!names[n].empty()) text += std::string(kInputNames[n]) + " " + names[n].text_at(frame) + "\n";
    }
    return text;
}

std::vector<std::string> files_beside(const KeyPlan& plan, const FrameLoader::Names& inputs) {
    // Other frames' files lie beside those of the first.
    std::vector<std::string> files = files_of(plan, plan.frames.first);
    for (const PictureName& input : inputs) {
        if (!input.empty() && !input.is_stream()) files.push_back(input.at(plan.frames.first));
    }
    return files;
}

}  // namespace

void KeyStats::add(const std::vector<OpStats>& frame) {
    for (const OpStats& one : frame) {
        const auto same =
            std::find_if(ops.begin(), ops.end(), [&](const OpStats& o) { return o.op == one.op; });
        if (same == ops.end()) {
            ops.push_back(one);
        } else {
            same->rows += one.rows;
            same->time += one.time;
        }
    }
}

KeyPipeline::KeyPipeline(KeyPlan plan, FrameLoader& loader, Node& node, Iop& root, NodeInputs& inputs,
                         const Caller& caller)
    : plan_(std::move(plan)),
      loader_(loader),
      node_(node),
      root_(root),
      own_mode_(node.panel().get(kModeKnob).text()),
      settings_(node.script() + mattes_script(loader.drawn())),
      passes_(!has_screen_color(node.panel(), {})),
      mattes_alone_(std::ranges::all_of(plan_.outputs, is_matte)),
      inputs_(inputs),
      caller_(caller),
      renderer_(plan_.threads, caller.abort),
      stream_(plan_.frames, loader),
      folders_(files_beside(plan_, loader.names())) {
    plan_.write.abort = caller.abort;
    if (plan_.claim) claims_.emplace();
    // A matte takes what is rendered anyway, so it comes last.
    for (const bool mattes : {false, true}) {
        for (const KeyOutput& output : plan_.outputs) {
            if ((output.picture == Picture::kMatte) != mattes || (mattes && !modes_.empty())) continue;
            const std::string mode = mode_of(output.picture, own_mode_);
            if (std::ranges::find(modes_, mode) == modes_.end()) modes_.push_back(mode);
        }
    }
}

void KeyPipeline::count(double rows, int frames) {
    // Rows run ahead of finished frames by what is still being encoded; frames that failed have no rows.
    const double rendered = rendered_.fetch_add(rows) + rows;
    const int finished = finished_.fetch_add(frames) + frames;
    caller_.progress(std::max(rendered, static_cast<double>(finished)),
                     plan_.frames.open ? 0 : plan_.frames.count());
}

template <class Work>
bool KeyPipeline::attempt(FrameReport& report, const Work& work) {
    try {
        work();
        return true;
    } catch (const Interrupted&) {
        return false;  // the flag is raised; run says so
    } catch (const TryAgain& error) {
        note_failure(report, error.what(), true);
    } catch (const Error& error) {
        note_failure(report, error.what(), false);
    } catch (const std::bad_alloc&) {
        note_failure(report,
                     plan_.outputs.front().file.at(report.frame) + ": needs more memory than there is", true);
    } catch (const std::exception& error) {
        note_failure(report, plan_.outputs.front().file.at(report.frame) + ": " + error.what(), false);
    }
    return false;
}

void KeyPipeline::note_failure(FrameReport& report, const std::string& line, bool may_pass) {
    caller_.warn(line);
    if (report.error.empty()) report.error = line;
    failed_ = true;
    if (may_pass || folders_.one_went()) may_pass_ = true;
}

void KeyPipeline::decode() {
    FrameCounts& counts = stats_.counts;
    counts.kept = plan_.kept;
    const int all = plan_.frames.count();
    std::vector<int> others;
    try {
        bool goes_on = true;
        for (int n = plan_.kept; goes_on && n < all; ++n) goes_on = begin(n, others);
        // Those of processes that were killed since then are free now.
        for (std::size_t before = others.size() + 1; goes_on && others.size() < before;) {
            before = others.size();
            for (const int n : std::exchange(others, {})) goes_on = goes_on && begin(n, others);
        }
    } catch (const Interrupted&) {  // the flag is raised; run says so
    }
    counts.others = static_cast<int>(others.size());
    for (const int n : others) plan_.report({plan_.frames.at(n), FrameReport::State::kOther});
    if (ends()) counts.left = plan_.frames.open ? 1 : all - counts.kept - counts.others - begun_;
    count(0.0, counts.others);
    decoded_.close();
}

bool KeyPipeline::begin(int n, std::vector<int>& others) {
    if (stopped() || ends()) return false;
    const int frame = plan_.frames.at(n);
    std::optional<Wanted> next = if_wanted(frame);
    if (!next) return keep(frame);
    slots_.acquire();
    Slot slot(&slots_);
    if (ends()) return false;
    if (claims_) {
        Claims::Claim claim;
        const std::string file = files_of(plan_, frame).front();
        if (!attempt(next->report, [&] { claim = claims_->take(file); })) {
            ++begun_;
            fail(next->report);
            return true;
        }
        if (!claim) {
            others.push_back(n);
            return true;
        }
        // Who is gone may also have left something beside frames that were passed as whole.
        if (Claims::is_taken_over(claim)) remove_leftovers(files_of(plan_));
        next = if_wanted(frame);  // its holder may just have made it
        if (!next) return keep(frame);
        next->claim = std::move(claim);
    }
    ++begun_;
    return decode(std::move(*next), std::move(slot));
}

bool KeyPipeline::keep(int frame) {
    plan_.report({frame, FrameReport::State::kKept});
    ++stats_.counts.kept;
    count(0.0, 1);
    return true;
}

std::optional<KeyPipeline::Wanted> KeyPipeline::if_wanted(int frame) const {
    // Before the frame's files are read, so that what changes after that has another one.
    Wanted wanted{{frame}};
    if (plan_.fingerprints) wanted.fingerprints = plan_.fingerprints->of(frame);
    if (!plan_.resume) return wanted;
    const OutputState state = frame_state(plan_, frame, wanted.fingerprints, caller_.abort);
    if (state == OutputState::kWhole) return std::nullopt;
    if (state == OutputState::kStale) wanted.report.state = FrameReport::State::kStale;
    return wanted;
}

bool KeyPipeline::decode(Wanted wanted, Slot slot) {
    const int frame = wanted.report.frame;
    Decoded next{std::move(wanted), {}, std::move(slot)};
    bool there = true;
    const bool good = attempt(next.wanted.report, [&] {
        const Stopwatch watch(stats_.read);
        const Stopwatch own(next.wanted.report.read);
        there = loader_.reach(frame);
        if (there) next.inputs = loader_.load(frame);
    });
    if (!there) return false;
    if (!good) fail(next.wanted.report);
    if (good) decoded_.push(std::move(next));
    return !loader_.broken();
}

void KeyPipeline::fail(FrameReport& report) {
    if (stopped() && report.error.empty()) return;  // interrupted
    report.state = FrameReport::State::kFailed;
    plan_.report(report);
    ++frames_failed_;
    count(0.0, 1);
}

Image KeyPipeline::render_picture(const Image& foreground, const std::string& mode) {
    if (modes_.size() > 1) node_.panel().set_from_text(kModeKnob, mode);
    Iop& node = node_.image();
    node.validate(true);
    if (!node.error().empty()) throw Error(node.error());

    Info info = node.info();
    info.format = foreground.info.format;
    info.channels = kMaskRgba;
    Image image(info);
    image.header = foreground.header;
    image.kept = foreground.kept;
    const double part = 1.0 / (info.box.height() * static_cast<double>(modes_.size()));
    const bool complete = renderer_.render(root_, info.box, kMaskRgba, [&](int y, const Row& row) {
        for (const Channel c : kMaskRgba) std::copy_n(row[c], row.width(), image.line(c, y));
        count(part, 0);
    });
    give_up_if_raised(caller_.abort);
    if (!complete) throw Error("the frame could not be rendered");
    stats_.add(renderer_.stats());
    if (&root_ != &node) {
        tag_raw(image.header);
    } else if (!mattes_alone_) {
        const bool multiplied = !passes_ && alpha_of(mode) == Alpha::kPremultiplied;
        loader_.colour().give(image, multiplied ? AlphaIs::kMultiplied : AlphaIs::kApart);
    }
    return image;
}

std::vector<Image> KeyPipeline::render(const FrameInputs& inputs) {
    const Stopwatch watch(stats_.key);
    inputs_.set(inputs);
    std::vector<Image> pictures(plan_.outputs.size());
    int rows = 0;
    for (const std::string& mode : modes_) {
        const Image image = render_picture(*inputs[kFg].image, mode);
        rows = image.info.box.height();
        for (std::size_t n = 0; n < pictures.size(); ++n) {
            const Picture picture = plan_.outputs[n].picture;
            if (picture == Picture::kMatte) pictures[n] = alpha_alone(image);
            if (picture != Picture::kMatte && mode_of(picture, own_mode_) == mode) pictures[n] = image;
        }
    }
    inputs_.clear();
    stats_.frame_rows += rows;
    ++stats_.frames;
    return pictures;
}

void KeyPipeline::key() {
    while (std::optional<Decoded> next = decoded_.pop()) {
        if (stopped()) continue;  // gives its slot back
        Keyed done{std::move(next->wanted), {}, std::move(next->slot)};
        const bool good = attempt(done.wanted.report, [&] {
            const Stopwatch own(done.wanted.report.key);
            done.pictures = render(next->inputs);
        });
        next.reset();
        if (!good) fail(done.wanted.report);
        if (good) keyed_.push(std::move(done));
    }
    keyed_.close();
}

void KeyPipeline::write(const Keyed& keyed, std::size_t output) {
    const Stopwatch watch(stats_.write);
    const FramePattern& file = plan_.outputs[output].file;
    const WriteOptions how = how_to_write(keyed.wanted, output);
    if (file.is_stream()) return stream_.write(keyed.wanted.report.frame, keyed.pictures[output], how);
    const std::string path = file.at(keyed.wanted.report.frame);
    const std::string left_out = write_image(path, keyed.pictures[output], how);
    note_fingerprint(path, output, how);
    if (left_out.empty() || std::exchange(told_left_out_, true)) return;
    caller_.warn(left_out_warning(path, left_out));
}

void KeyPipeline::note_fingerprint(const std::string& path, std::size_t output,
                                   const WriteOptions& how) const {
    const std::string& fingerprint = how.made_by.fingerprint;
    if (fingerprint.empty() || !(plan_.resume || plan_.outputs[output].file.has_frame())) return;
    if (keeps_fingerprint(path, how)) {
        forget_fingerprint(path);
    } else {
        veloxa::note_fingerprint(path, fingerprint);
    }
}

WriteOptions KeyPipeline::how_to_write(const Wanted& wanted, std::size_t output) const {
    WriteOptions how = plan_.how_to_write(plan_.outputs[output]);
    how.made_by = {plan_.provenance ? plan_.program : "", inputs_text(loader_.names(), wanted.report.frame),
                   settings_};
    if (!wanted.fingerprints.empty()) how.made_by.fingerprint = wanted.fingerprints[output];
    // Nothing is known of what one of the operators, or the foreground, has for alpha.
    if (&root_ != &node_.image() || passes_) return how;
    how.alpha = alpha_of(mode_of(plan_.outputs[output].picture, own_mode_));
    return how;
}

void KeyPipeline::encode() {
    while (std::optional<Keyed> next = keyed_.pop()) {
        if (stopped()) continue;
        FrameReport& report = next->wanted.report;
        bool good = true;
        for (std::size_t n = 0; n < plan_.outputs.size(); ++n) {
            good &= attempt(report, [&] {
                const Stopwatch own(report.write);
                write(*next, n);
            });
        }
        if (good) {
            const bool stale = report.state == FrameReport::State::kStale;
            ++(stale ? stats_.counts.stale : stats_.counts.made);
            plan_.report(report);
            count(0.0, 1);
        } else {
            fail(report);
        }
        // What waits for the input would wait for frames that go nowhere.
        if (stream_.broken()) loader_.stop();
    }
    FrameReport last{plan_.frames.first};
    if (!stopped()) attempt(last, [&] { stream_.finish(); });
}

bool KeyPipeline::run() {
    count(0.0, plan_.kept);
    {
        const std::jthread decoder([this] { decode(); });
        const std::jthread encoder([this] { encode(); });
        key();
    }
    stats_.counts.failed = frames_failed_;
    stats_.may_mend = may_pass_ || stats_.counts.left > 0;
    give_up_if_raised(caller_.abort);
    return !failed_;
}

}  // namespace veloxa
