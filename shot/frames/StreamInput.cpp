#include "shot/frames/StreamInput.h"

#include <unistd.h>

#include <string>
#include <utility>

#include "shot/Errors.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

constexpr const char* kName = "standard input";

Image matte_of(Image image) {
    if (!image.has(kAlpha)) image.plane(kAlpha) = image.plane(kRed);
    for (const Channel c : kMaskRgb) image.plane(c) = nullptr;
    image.info.channels = kAlpha;
    return image;
}

}  // namespace

StreamInput::StreamInput(const FrameRange& frames, Use use, Ready ready, const Caller& caller)
    : frames_(frames),
      use_(use),
      ready_(std::move(ready)),
      reader_(STDIN_FILENO, kName, frames.first, caller.abort),
      number_(frames.first - 1) {
    if (reader_.holds_others()) {
        caller.warn(std::string(kName) + ": warning: only its pictures are read, not its sound");
    }
}

std::optional<StreamFrame> StreamInput::next() {
    try {
        std::optional<StreamFrame> frame = reader_.read();
        const int read = number_ - frames_.first + 1;
        if (!frame && read == 0) throw Error(kName, "the stream holds no frames");
        if (!frame && !frames_.open) {
            throw Error(kName, "ends after " + std::to_string(read) + " frames, before those of --frames");
        }
        return frame;
    } catch (const std::exception&) {
        broken_ = true;
        throw;
    }
}

bool StreamInput::reach(int frame) {
    while (number_ < frame) {
        if (broken_) throw Error(kName, "has broken off");
        std::optional<StreamFrame> read = next();
        if (!read) return false;
        number_ = read->number;
        if (number_ < frame) continue;
        Hash identity;
        identity.append(std::string_view(kName));
        identity.append(std::int32_t{number_});
        identity.append(std::int32_t{use_ == Use::kMatte});
        if (use_ == Use::kMatte) read->image = matte_of(std::move(read->image));
        ready_(read->image, identity);
        current_ = {std::make_shared<const Image>(std::move(read->image)), identity};
        const std::lock_guard hold(mutex_);
        times_[number_] = read->time;
        if (times_.size() > kTimes) times_.erase(times_.begin());
    }
    return true;
}

FrameTime StreamInput::time_of(int frame) const {
    const std::lock_guard hold(mutex_);
    return times_.at(frame);
}

}  // namespace veloxa
