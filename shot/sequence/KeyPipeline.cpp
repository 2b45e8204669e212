#include "shot/sequence/KeyPipeline.h"

#include <algorithm>
#include <thread>
#include <utility>

#include "ZoImage/Iop.h"
#include "shot/Errors.h"
#include "shot/files/AtomicFile.h"

namespace veloxa {

using namespace Zo::Image;

void check_outputs(const KeyPlan& plan, const FrameLoader::Names& inputs) {
    for (int n = 0; n < plan.frames.count(); ++n) {
        const std::string output = plan.output.at(plan.frames.at(n));
        AtomicFile::check(output, plan.write.overwrite);
        refuse_input(output, inputs, plan.frames.at(n));
    }
    check_writable(plan.output.at(plan.frames.first), plan.write);
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

KeyPipeline::KeyPipeline(KeyPlan plan, FrameLoader& loader, Iop& node, Iop& root, NodeInputs& inputs,
                         const Caller& caller)
    : plan_(std::move(plan)),
      loader_(loader),
      node_(node),
      root_(root),
      inputs_(inputs),
      caller_(caller),
      renderer_(plan_.threads, caller.abort) {
    plan_.write.abort = caller.abort;
}

void KeyPipeline::count(double rows, int frames) {
    // Rows run ahead of finished frames by what is still being encoded; frames that failed have no rows.
    const double rendered = rendered_.fetch_add(rows) + rows;
    const int finished = finished_.fetch_add(frames) + frames;
    caller_.progress(std::max(rendered, static_cast<double>(finished)), plan_.frames.count());
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
        caller_.warn(plan_.output.at(frame) + ": " + error.what());
    }
    failed_ = true;
    count(0.0, 1);
    return false;
}

void KeyPipeline::decode() {
    for (int n = 0; n < plan_.frames.count() && !stopped(); ++n) {
        const int frame = plan_.frames.at(n);
        try {
            if (plan_.resume && is_whole_image(plan_.output.at(frame), caller_.abort)) {
                count(0.0, 1);
                continue;
            }
        } catch (const Interrupted&) {
            break;
        }
        slots_.acquire();
        Decoded next{frame, {}, Slot(&slots_)};
        const bool good = attempt(frame, [&] {
            const Stopwatch watch(stats_.read);
            next.inputs = loader_.load(frame);
        });
        if (good) decoded_.push(std::move(next));
    }
    decoded_.close();
}

Image KeyPipeline::render(const FrameInputs& inputs) {
    const Stopwatch watch(stats_.key);
    inputs_.set(inputs);
    node_.validate(true);
    if (!node_.error().empty()) throw Error(node_.error());

    Info info = node_.info();
    info.format = inputs[kFg].image->info.format;
    info.channels = kMaskRgba;
    Image image(info);
    image.header = inputs[kFg].image->header;
    image.kept = inputs[kFg].image->kept;
    const int rows = info.box.height();
    const double part = 1.0 / rows;
    const bool complete = renderer_.render(root_, info.box, kMaskRgba, [&](int y, const Row& row) {
        for (const Channel c : kMaskRgba) std::copy_n(row[c], row.width(), image.line(c, y));
        count(part, 0);
    });
    inputs_.clear();
    give_up_if_raised(caller_.abort);
    if (!complete) throw Error("the frame could not be rendered");
    stats_.add(renderer_.stats());
    stats_.frame_rows += rows;
    ++stats_.frames;
    return image;
}

void KeyPipeline::key() {
    while (std::optional<Decoded> next = decoded_.pop()) {
        if (stopped()) continue;  // gives its slot back
        Keyed done{next->frame, {}, std::move(next->slot)};
        const bool good = attempt(done.frame, [&] { done.image = render(next->inputs); });
        next.reset();
        if (good) keyed_.push(std::move(done));
    }
    keyed_.close();
}

void KeyPipeline::encode() {
    while (std::optional<Keyed> next = keyed_.pop()) {
        if (stopped()) continue;
        const bool good = attempt(next->frame, [&] {
            const Stopwatch watch(stats_.write);
            const std::string path = plan_.output.at(next->frame);
            const std::string left_out = write_image(path, next->image, plan_.write);
            if (left_out.empty() || std::exchange(told_left_out_, true)) return;
            caller_.warn(left_out_warning(path, left_out));
        });
        if (good) count(0.0, 1);
    }
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
