#include "KeyPipeline.h"

#include <algorithm>
#include <filesystem>
#include <thread>
#include <utility>

#include "Errors.h"
#include "ZoImage/Iop.h"

namespace veloxa {

using namespace Zo::Image;

KeyPipeline::KeyPipeline(KeyPlan plan, FrameLoader& loader, Iop& node, Iop& root, NodeInputs& inputs,
                         Progress& progress)
    : plan_(std::move(plan)),
      loader_(loader),
      node_(node),
      root_(root),
      inputs_(inputs),
      progress_(progress),
      renderer_(plan_.threads, plan_.write.abort) {}

template <class Work>
bool KeyPipeline::attempt(int frame, const Work& work) {
    try {
        work();
        return true;
    } catch (const Interrupted&) {
        return false;  // the flag is raised; run says so
    } catch (const Error& error) {
        report(error.what());
    } catch (const std::exception& error) {
        report(plan_.output.at(frame) + ": " + error.what());
    }
    failed_ = true;
    progress_.frame_done();
    return false;
}

void KeyPipeline::decode() {
    for (int n = 0; n < plan_.frames.count() && !stopped(); ++n) {
        const int frame = plan_.frames.at(n);
        try {
            if (plan_.resume && is_whole_image(plan_.output.at(frame), plan_.write.abort)) {
                progress_.frame_done();
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
    const int rows = info.box.height();
    const bool complete = renderer_.render(root_, info.box, kMaskRgba, [&](int y, const Row& row) {
        for (const Channel c : kMaskRgba) std::copy_n(row[c], row.width(), image.line(c, y));
        progress_.row_done(rows);
    });
    inputs_.clear();
    if (stopped()) throw Interrupted();
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
            report(path + ": " + left_out_warning(left_out));
        });
        if (good) progress_.frame_done();
    }
}

bool KeyPipeline::run() {
    {
        const std::jthread decoder([this] { decode(); });
        const std::jthread encoder([this] { encode(); });
        key();
    }
    if (stopped()) throw Interrupted();
    return !failed_;
}

}  // namespace veloxa
