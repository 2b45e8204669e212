#include "shot/sequence/KeyPipeline.h"

#include <algorithm>
#include <thread>
#include <utility>

#include "ZoImage/Iop.h"
#include "shot/Errors.h"
#include "shot/files/AtomicFile.h"
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

}  // namespace

WriteOptions KeyPlan::how_to_write(const KeyOutput& output) const {
    WriteOptions how = write;
    how.layers = how.layers && output.picture != Picture::kMatte;
    return how;
}

void check_outputs(const KeyPlan& plan, const FrameLoader::Names& inputs) {
    const int known = plan.frames.open ? 1 : plan.frames.count();
    for (int n = 0; n < known; ++n) {
        for (const KeyOutput& output : plan.outputs) {
            if (output.file.is_stream()) continue;
            const std::string file = output.file.at(plan.frames.at(n));
            AtomicFile::check(file, plan.write.overwrite);
            refuse_input(file, inputs, plan.frames.at(n));
        }
    }
    for (const KeyOutput& output : plan.outputs) {
        if (output.file.is_stream()) {
            check_stream("standard output", plan.how_to_write(output));
        } else {
            check_writable(output.file.at(plan.frames.first), plan.how_to_write(output));
        }
    }
}

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
      stream_(plan_.frames, loader) {
    plan_.write.abort = caller.abort;
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
bool KeyPipeline::attempt(int frame, const Work& work) {
    try {
        work();
        return true;
    } catch (const Interrupted&) {
        return false;  // the flag is raised; run says so
    } catch (const Error& error) {
        caller_.warn(error.what());
    } catch (const std::exception& error) {
        caller_.warn(plan_.outputs.front().file.at(frame) + ": " + error.what());
    }
    failed_ = true;
    return false;
}

void KeyPipeline::decode() {
    for (int n = 0; n < plan_.frames.count() && !stopped(); ++n) {
        const int frame = plan_.frames.at(n);
        try {
            if (plan_.resume && is_done(frame)) {
                count(0.0, 1);
                continue;
            }
        } catch (const Interrupted&) {
            break;
        }
        if (!decode(frame)) break;
    }
    decoded_.close();
}

bool KeyPipeline::decode(int frame) {
    slots_.acquire();
    Decoded next{frame, {}, Slot(&slots_)};
    bool there = true;
    const bool good = attempt(frame, [&] {
        const Stopwatch watch(stats_.read);
        there = loader_.reach(frame);
        if (there) next.inputs = loader_.load(frame);
    });
    if (!there) return false;
    if (!good) count(0.0, 1);
    if (good) decoded_.push(std::move(next));
    return !loader_.broken();
}

bool KeyPipeline::is_done(int frame) const {
    return std::ranges::all_of(plan_.outputs, [&](const KeyOutput& output) {
        return is_whole_image(output.file.at(frame), caller_.abort);
    });
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
        Keyed done{next->frame, {}, std::move(next->slot)};
        const bool good = attempt(done.frame, [&] { done.pictures = render(next->inputs); });
        next.reset();
        if (!good) count(0.0, 1);
        if (good) keyed_.push(std::move(done));
    }
    keyed_.close();
}

void KeyPipeline::write(const Keyed& keyed, std::size_t output) {
    const Stopwatch watch(stats_.write);
    const FramePattern& file = plan_.outputs[output].file;
    const WriteOptions how = how_to_write(keyed.frame, output);
    if (file.is_stream()) return stream_.write(keyed.frame, keyed.pictures[output], how);
    const std::string path = file.at(keyed.frame);
    const std::string left_out = write_image(path, keyed.pictures[output], how);
    if (left_out.empty() || std::exchange(told_left_out_, true)) return;
    caller_.warn(left_out_warning(path, left_out));
}

WriteOptions KeyPipeline::how_to_write(int frame, std::size_t output) const {
    WriteOptions how = plan_.how_to_write(plan_.outputs[output]);
    how.made_by = {plan_.program, inputs_text(loader_.names(), frame), settings_};
    // Nothing is known of what one of the operators, or the foreground, has for alpha.
    if (&root_ != &node_.image() || passes_) return how;
    how.alpha = alpha_of(mode_of(plan_.outputs[output].picture, own_mode_));
    return how;
}

void KeyPipeline::encode() {
    while (std::optional<Keyed> next = keyed_.pop()) {
        if (stopped()) continue;
        for (std::size_t n = 0; n < plan_.outputs.size(); ++n) {
            attempt(next->frame, [&] { write(*next, n); });
        }
        count(0.0, 1);
        // What waits for the input would wait for frames that go nowhere.
        if (stream_.broken()) loader_.stop();
    }
    if (!stopped()) attempt(plan_.frames.first, [&] { stream_.finish(); });
}

bool KeyPipeline::run() {
    count(0.0, 0);
    {
        const std::jthread decoder([this] { decode(); });
        const std::jthread encoder([this] { encode(); });
        key();
    }
    give_up_if_raised(caller_.abort);
    return !failed_;
}

}  // namespace veloxa
