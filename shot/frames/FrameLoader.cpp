#include "shot/frames/FrameLoader.h"

#include <sys/stat.h>

#include <algorithm>
#include <future>
#include <utility>

#include "shot/Errors.h"
#include "shot/files/ImageFile.h"
#include "shot/files/KeptLayers.h"
#include "shot/files/SystemFault.h"
#include "shot/movie/MovieFile.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

Hash identity_of(const std::string& path, const PictureChoice& choice, bool matte) {
    Hash hash;
    hash.append(std::string_view(path));
    hash.append(std::int32_t{matte});
    for (const std::string* text :
         {&choice.part, &choice.layer, &choice.view, &choice.channel, &choice.space}) {
        hash.append(std::string_view(*text));
    }
    hash.append(std::int32_t{choice.invert});
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0) {
        hash.append(static_cast<std::uint64_t>(status.st_size));
        hash.append(static_cast<std::uint64_t>(status.st_mtim.tv_sec));
        hash.append(static_cast<std::uint64_t>(status.st_mtim.tv_nsec));
    }
    return hash;
}

std::array<std::string, kInputCount> own_spaces(const FrameLoader::Names& names) {
    std::array<std::string, kInputCount> spaces;
    for (const Input n : {kFg, kCp, kBg}) spaces[n] = names[n].choice().space;
    return spaces;
}

bool is_one_everywhere(const Image& image, Channel c) {
    const float* const samples = image.plane(c).get();
    return std::all_of(samples, samples + image.width() * image.height(), [](float v) { return v == 1.0f; });
}

}  // namespace

void FrameLoader::check_choices(int frame) const {
    for (std::size_t n = 0; n < kInputCount; ++n) {
        if (!names_[n].empty() && n != streamed_)
            check_choice(names_[n].at(frame), names_[n].choice(), is_matte_input(n));
    }
}

void FrameLoader::warn(Input input, const std::string& path, const Image& image) {
    const PictureChoice& choice = names_[input].choice();
    const bool matte = is_matte_input(input);
    if (!std::exchange(looked_for_parts_[input], true)) warn_of_parts(path, choice, matte, caller_);
    if (!matte || told_alpha_[input] || !choice.channel.empty()) return;
    if (!is_one_everywhere(image, kAlpha)) return;
    const std::string alpha = own_alpha(image.header, choice);
    if (alpha.empty()) return;
    told_alpha_[input] = true;
    caller_.warn(path + ": warning: its alpha, channel " + alpha + ", is 1 everywhere, so the " +
                 (input == kGm ? "garbage matte drops" : "holdout matte holds") +
                 " the whole frame; its other channels are not looked at");
}

void FrameLoader::keep(const std::string& path, Image& image) {
    const auto kept =
        std::make_shared<const KeptLayers>(read_kept_layers(path, names_[kFg].choice(), caller_.abort));
    if (!kept->parts.empty()) image.kept = kept;
    if (std::exchange(told_kept_, true)) return;
    if (kept->parts.empty()) caller_.warn(path + ": warning: holds no other layers to keep");
    if (!kept->left_out.empty()) {
        caller_.warn(path + ": warning: " + kept->left_out + " cannot be kept beside the result");
    }
}

FrameLoader::Pixels FrameLoader::pixels(Input input, int frame) const try {
    const std::string path = names_[input].at(frame);
    const PictureChoice& choice = names_[input].choice();
    const bool matte = is_matte_input(input);
    const Hash identity = identity_of(path, choice, matte);
    return {(matte ? read_matte : read_image)(path, choice, caller_.abort), identity};
} catch (const MovieError& movie) {
    throw Error(movie.path(), movie_to_read(movie.path(), kInputNames[input]));
} catch (const Interrupted&) {
    throw;
} catch (const UsageError&) {
    throw;
} catch (const Error& error) {
    // What decodes the file does not say what the system told it.
    if (may_pass(fault_of_reading(names_[input].at(frame)))) throw TryAgain(error.what());
    throw;
}

LoadedInput FrameLoader::taken(Input input, int frame, Pixels read) {
    const std::string path = names_[input].at(frame);
    warn(input, path, read.image);
    if (!is_matte_input(input)) colour_.take(read.image, input, path, read.identity);
    if (input == kFg && keep_layers_) keep(path, read.image);
    return {std::make_shared<const Image>(std::move(read.image)), read.identity};
}

LoadedInput FrameLoader::fitted_to(const LoadedInput& loaded, const Format& format,
                                   const std::string& file) const {
    LoadedInput result{fitted(loaded.image, format, fit_, file), loaded.identity};
    result.identity.append(std::int32_t{format.box.r});
    result.identity.append(std::int32_t{format.box.t});
    return result;
}

FrameLoader::FrameLoader(Names names, Fit fit, const ColourOptions& colour, Caller caller,
                         const FrameRange& frames)
    : names_(std::move(names)),
      fit_(fit),
      frames_(frames),
      caller_(std::move(caller)),
      colour_(colour, own_spaces(names_), caller_) {
    for (std::size_t n = 0; n < kInputCount; ++n) {
        if (names_[n].choice().invert && !is_matte_input(n)) refuse_invert(names_[n].name());
        if (!names_[n].is_stream()) continue;
        if (has_stream()) {
            throw UsageError(std::string("--") + kInputNames[n] + " -: standard input is --" +
                             kInputNames[streamed_] + " already");
        }
        PictureChoice choice = names_[n].choice();
        choice.space.clear();
        if (!choice.empty()) {
            throw UsageError(std::string("--") + kInputNames[n] + ": a stream has no parts to choose from");
        }
        streamed_ = n;
    }
}

void FrameLoader::load_stills() {
    for (std::size_t n = 0; n < kInputCount; ++n) {
        if (names_[n].empty() || names_[n].has_frame() || n == streamed_) continue;
        stills_[n] = read(static_cast<Input>(n), 0);
    }
    if (!has_stream()) return;
    const bool matte = is_matte_input(streamed_);
    using Use = StreamInput::Use;
    const auto ready = [this, matte](Image& image, Hash& identity) {
        if (!matte) colour_.take(image, streamed_, names_[streamed_].at(0), identity);
    };
    stream_ = std::make_unique<StreamInput>(frames_, matte ? Use::kMatte : Use::kColour, ready, caller_);
}

std::shared_ptr<const Image> FrameLoader::foreground(int frame) {
    if (stills_[kFg].image) return stills_[kFg].image;
    if (streamed_ == kFg) {
        reach(frame);
        return stream_->frame().image;
    }
    if (ahead_.image && ahead_frame_ == frame) return ahead_.image;
    ahead_ = read(kFg, frame);
    ahead_frame_ = frame;
    return ahead_.image;
}

FrameInputs FrameLoader::load(int frame) {
    reach(frame);
    FrameInputs inputs;
    if (streamed_ == kFg) {
        inputs[kFg] = stream_->frame();
    } else if (stills_[kFg].image) {
        inputs[kFg] = stills_[kFg];
    } else if (ahead_.image && ahead_frame_ == frame) {
        inputs[kFg] = std::exchange(ahead_, {});
    }
    // Side by side, since a decoder seldom keeps a processor busy; what is told of them keeps its order.
    std::array<std::future<Pixels>, kInputCount> reads;
    for (std::size_t n = 0; n < kInputCount; ++n) {
        if (n == streamed_ || inputs[n].image || (n != kFg && !names_[n].has_frame())) continue;
        reads[n] = std::async(std::launch::async, [this, n, frame] { return pixels(Input(n), frame); });
    }
    if (reads[kFg].valid()) inputs[kFg] = taken(kFg, frame, reads[kFg].get());
    const Format& format = inputs[kFg].image->info.format;
    if (format != fitted_format_) fitted_stills_ = {};
    fitted_format_ = format;
    for (std::size_t n = kCp; n < kInputCount; ++n) {
        if (names_[n].empty()) continue;
        const std::string file = names_[n].at(frame);
        if (n == streamed_) {
            inputs[n] = fitted_to(stream_->frame(), format, file);
            continue;
        }
        if (names_[n].has_frame()) {
            inputs[n] = fitted_to(taken(static_cast<Input>(n), frame, reads[n].get()), format, file);
            continue;
        }
        if (!fitted_stills_[n].image) fitted_stills_[n] = fitted_to(stills_[n], format, file);
        inputs[n] = fitted_stills_[n];
    }
    inputs[kGm] = drawn_.over(DrawnMatte::Kind::kGarbage, inputs[kGm], format);
    inputs[kHm] = drawn_.over(DrawnMatte::Kind::kHoldout, inputs[kHm], format);
    return inputs;
}

}  // namespace veloxa
