#include "shot/sequence/StreamOutput.h"

#include <unistd.h>

#include <array>

#include "shot/Errors.h"
#include "shot/files/FrameRate.h"

namespace veloxa {

namespace {

constexpr Ratio kUsualRate{24, 1};

Ratio rate_of(const Header& header) {
    std::array<int, 2> fraction{};
    if (header.getattribute("FramesPerSecond", OIIO::TypeRational, fraction.data()) && fraction[0] > 0 &&
        fraction[1] > 0) {
        return {fraction[0], fraction[1]};
    }
    const float rate = header.get_float_attribute("FramesPerSecond");
    if (!(rate > 0.0f && rate < 1000.0f)) return kUsualRate;
    fraction = rate_fraction(rate);
    return {fraction[0], fraction[1]};
}

}  // namespace

template <class Work>
void StreamOutput::attempt(const Work& work) {
    try {
        work();
    } catch (const std::exception&) {
        broken_ = true;
        throw;
    }
}

void StreamOutput::begin(const Image& image, const WriteOptions& options) {
    StreamInfo info;
    if (loader_.stream()) {
        info = loader_.stream()->info();
    } else {
        info.frame_rate = rate_of(image.header);
        info.time_base = {info.frame_rate.den, info.frame_rate.num};
    }
    writer_ = std::make_unique<StreamWriter>(STDOUT_FILENO, "standard output", std::move(info), options);
}

void StreamOutput::write(int frame, const Image& image, const WriteOptions& options) {
    attempt([&] {
        if (!writer_) begin(image, options);
        const FrameTime time = loader_.stream() ? loader_.stream()->time_of(frame)
                                                : FrameTime{(frame - frames_.first) / frames_.step, 1};
        writer_->write(image, time);
    });
}

void StreamOutput::finish() {
    if (writer_ && !broken_) attempt([&] { writer_->finish(); });
}

}  // namespace veloxa
