#include "shot/cleanplate/CleanPlate.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "shot/Errors.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

// The interpolation adds half a step of its scale of 0 to 255 to what it averages. On a scale as large as
// this that is nothing; a power of two keeps every bit.
constexpr float kFillScale = 65536.0f;

constexpr const char* kInterpolation = "smartInterpol";

FrameLoader::Names foreground_only(const PictureName& name) {
    FrameLoader::Names names;
    names[kFg] = name;
    return names;
}

Info with_channels(Info info, ChannelSet channels) {
    info.channels = channels;
    return info;
}

}  // namespace

void PlateSamples::add(std::size_t pixel, const std::array<float, 3>& color) {
    if (!std::all_of(color.begin(), color.end(), [](float v) { return std::isfinite(v); })) return;
    const std::size_t at = static_cast<std::size_t>(counts_[pixel]++);
    for (std::size_t c = 0; c < 3; ++c) values(pixel, c)[at] = color[c];
}

std::array<float, 3> PlateSamples::median(std::size_t pixel) {
    std::array<float, 3> result{};
    for (std::size_t c = 0; c < 3; ++c) {
        const std::span<float> all = values(pixel, c);
        const auto middle = all.begin() + static_cast<std::ptrdiff_t>(all.size() / 2);
        std::nth_element(all.begin(), middle, all.end());
        result[c] = *middle;
        if (all.size() % 2 != 0) continue;
        const double below = static_cast<double>(*std::max_element(all.begin(), middle));
        result[c] = static_cast<float>((below + static_cast<double>(*middle)) / 2.0);
    }
    return result;
}

CleanPlateMaker::CleanPlateMaker(const PictureName& name, const FrameRange& frames,
                                 const CleanPlateLimits& limits, const Caller& caller)
    : name_(name),
      limits_(limits),
      caller_(caller),
      loader_(foreground_only(name), Fit::kRefuse, limits.colour, caller),
      source_(NodeContext{kInputNames[kFg]}),
      partial_(NodeContext{"partial"}),
      seen_mask_(NodeContext{"seen"}),
      node_(caller.abort),
      renderer_(limits.threads, caller.abort) {
    loader_.load_stills();
    loader_.check_choices(frames.first);
    for (int n = 0; n < frames.count(); ++n) frames_.push_back(frames.at(n));
    while (!first_.image) {
        frame_number_ = frames_.front();
        try {
            first_ = loader_.load(frame_number_)[kFg];
        } catch (const Error& error) {
            if (frames_.size() == 1) throw;
            caller_.warn(error.what());
            ++report_.failed;
            frames_.erase(frames_.begin());
        }
    }
    Iop& image = node_.image();
    image.set_input(kFg, &source_);
    for (int n = kCp; n < static_cast<int>(kInputCount); ++n) image.set_input(n, image.default_input(n));
}

// Throws Error for a frame that is not like the first.
LoadedInput CleanPlateMaker::load(int frame) {
    if (frame == frame_number_) return first_;
    LoadedInput loaded = loader_.load(frame)[kFg];
    const Info& info = loaded.image->info;
    const Info& wanted = first_.image->info;
    if (info.box != wanted.box || info.format != wanted.format) {
        throw Error(name_.at(frame), "is " + size_text(info.box) + ", but " + first().file + " is " +
                                         size_text(wanted.box) + ", or lies elsewhere in its frame");
    }
    return loaded;
}

// What the interpolation takes for clear is what is sampled.
void CleanPlateMaker::find_region() {
    source_.set(first_.image, first_.identity);
    node_.image().validate(true);
    region_ = node_.member(kInterpolation).input_op(1)->as_iop();
    report_.region = region_->member_name();
}

CleanPlateMaker::Mask CleanPlateMaker::clear_pixels(const LoadedInput& frame, const Box& rows) {
    source_.set(frame.image, frame.identity);
    node_.image().validate(true);
    const Box& box = frame.image->info.box;
    const auto width = static_cast<std::size_t>(box.width());
    Mask mask(width * static_cast<std::size_t>(box.height()));
    const bool complete = renderer_.render(*region_, rows, kMaskAlpha, [&](int y, const Row& row) {
        std::uint8_t* const line = mask.data() + static_cast<std::size_t>(y - box.y) * width;
        for (std::size_t x = 0; x < width; ++x) line[x] = row[kAlpha][x] > 0.0f ? 1 : 0;
    });
    give_up_if_raised(caller_.abort);
    if (!complete) throw Error("the clear region could not be rendered");
    return mask;
}

void CleanPlateMaker::compare_with_first(const Image& image, const Mask& clear, int frame) {
    const Knob& color = node_.panel().get("screen_color");
    Channel primary = kGreen;
    for (const Channel c : {kRed, kBlue}) {
        if (color.get_value(c - kRed) > color.get_value(primary - kRed)) primary = c;
    }
    BackingDetail detail = backing_detail(image, primary, clear);
    if (first_detail_.level.empty()) {
        first_detail_ = std::move(detail);
        return;
    }
    const Shift shift = shift_between(first_detail_, detail);
    if (!shift.known) return;
    ++report_.compared;
    if (report_.compared == 1 || shift.length() > report_.largest.length()) {
        report_.largest = shift;
        report_.largest_frame = frame;
    }
    if (!shift.above_bound()) return;
    char text[160];
    std::snprintf(text, sizeof text,
                  "warning: the backing is shifted by %.2f, %.2f pixels, above the bound of %.2f; a clean "
                  "plate needs a locked-off camera",
                  shift.x, shift.y, kShiftBound);
    caller_.warn(name_.at(frame) + ": " + text);
}

void CleanPlateMaker::sample_strip(const Box& strip, bool first_pass) {
    const Box& box = plate_.info.box;
    const auto width = static_cast<std::size_t>(box.width());
    const std::size_t begin = static_cast<std::size_t>(strip.y - box.y) * width;
    PlateSamples samples(width * static_cast<std::size_t>(strip.height()), frames_.size());
    std::vector<int> good;
    for (const int frame : frames_) {
        try {
            const LoadedInput loaded = load(frame);
            // The registration looks at all of the frame.
            const Mask clear = clear_pixels(loaded, first_pass ? box : strip);
            if (first_pass) compare_with_first(*loaded.image, clear, frame);
            const Image& image = *loaded.image;
            std::array<const float*, 3> from{};
            for (std::size_t c = 0; c < 3; ++c) {
                const auto channel = static_cast<Channel>(kRed + static_cast<int>(c));
                if (!image.has(channel)) throw Error(name_.at(frame), "has no colour");
                from[c] = image.line(channel, strip.y);
            }
            for (std::size_t i = 0; i < width * static_cast<std::size_t>(strip.height()); ++i) {
                if (clear[begin + i] != 0) samples.add(i, {from[0][i], from[1][i], from[2][i]});
            }
            good.push_back(frame);
        } catch (const Error& error) {
            caller_.warn(error.what());
            ++report_.failed;
        }
        caller_.progress(++done_, to_do_);
    }
    frames_ = std::move(good);  // what failed once is not tried again
    for (std::size_t i = 0; i < width * static_cast<std::size_t>(strip.height()); ++i) {
        if (samples.count(i) == 0) continue;
        seen_[begin + i] = 1;
        const std::array<float, 3> color = samples.median(i);
        for (std::size_t c = 0; c < 3; ++c) plate_.planes[c][begin + i] = color[c];
    }
}

// Reads the node's interpolation with the plate so far for a foreground and what was seen for its region.
void CleanPlateMaker::fill(const Mask& seen) {
    auto scaled = std::make_shared<Image>(plate_.info);
    auto mask = std::make_shared<Image>(with_channels(plate_.info, kMaskAlpha));
    for (std::size_t i = 0; i < seen.size(); ++i) {
        mask->planes[3][i] = seen[i] != 0 ? 255.0f : 0.0f;
        for (std::size_t c = 0; c < 3; ++c) {
            scaled->planes[c][i] = seen[i] != 0 ? plate_.planes[c][i] * kFillScale : 0.0f;
        }
    }
    partial_.set(scaled, Hash{});
    seen_mask_.set(mask, Hash{});
    Iop& interpolation = node_.member(kInterpolation);
    interpolation.set_input(0, &partial_);
    interpolation.set_input(1, &seen_mask_);
    const Box& box = plate_.info.box;
    const bool complete = renderer_.render(interpolation, box, kMaskRgb, [&](int y, const Row& row) {
        const std::uint8_t* const line = seen.data() + static_cast<std::size_t>(y - box.y) * plate_.width();
        for (const Channel c : kMaskRgb) {
            float* const to = plate_.line(c, y);
            for (std::size_t x = 0; x < plate_.width(); ++x) {
                if (line[x] == 0) to[x] = row[c][x] / kFillScale;
            }
        }
    });
    give_up_if_raised(caller_.abort);
    if (!complete) throw Error("what was never seen could not be interpolated");
}

Image CleanPlateMaker::make() {
    find_region();
    plate_ = Image(with_channels(first_.image->info, kMaskRgb));
    plate_.header = first_.image->header;
    seen_.assign(plate_.width() * plate_.height(), 0);

    const std::size_t row_bytes = plate_.width() * frames_.size() * PlateSamples::kBytesPerSample;
    const auto rows =
        static_cast<int>(std::clamp(limits_.budget / row_bytes, std::size_t{1}, plate_.height()));
    const Box& box = plate_.info.box;
    const int strips = (box.height() + rows - 1) / rows;
    to_do_ = static_cast<int>(frames_.size()) * strips;
    for (int y = box.y; y < box.t; y += rows) {
        sample_strip({box.x, y, box.r, std::min(y + rows, box.t)}, y == box.y);
    }
    report_.frames = static_cast<int>(frames_.size());
    const auto seen = std::count(seen_.begin(), seen_.end(), 1);
    report_.seen = static_cast<double>(seen) / static_cast<double>(seen_.size());
    if (seen == 0)
        throw Error(name_.name(), "no frame shows clear backing; look at --set overlay_mode=screen");
    if (static_cast<std::size_t>(seen) < seen_.size()) fill(seen_);
    loader_.colour().give(plate_, AlphaIs::kApart);
    return std::move(plate_);
}

}  // namespace veloxa
