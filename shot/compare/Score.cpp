#include "shot/compare/Score.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "shot/Errors.h"
#include "shot/files/ImageFile.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

enum : std::size_t { kAll, kMixed, kFirstRegion };
constexpr float kMixedFrom = 0.01f, kMixedTo = 0.99f;

Difference one(double distance) {
    return {distance, distance, distance * distance, 1};
}

// A channel over the display window; 0 where the file has no pixels. Throws Error for what is no number.
Matte matte_of(const std::string& path, const Image& image, Channel c) {
    const Box& frame = image.info.format.box;
    const Box& box = image.info.box;
    Matte matte{frame.width(), frame.height(), {}};
    matte.values.assign(static_cast<std::size_t>(matte.width) * static_cast<std::size_t>(matte.height), 0.0f);
    for (int y = std::max(box.y, 0); y < std::min(box.t, frame.t); ++y) {
        const float* const line = image.line(c, y);
        for (int x = std::max(box.x, 0); x < std::min(box.r, frame.r); ++x) {
            const float value = line[x - box.x];
            if (!std::isfinite(value))
                throw Error(path, "pixel " + std::to_string(x) + "," + std::to_string(y) + " is " +
                                      std::to_string(value) + ", which cannot be scored");
            matte.values[static_cast<std::size_t>(y) * static_cast<std::size_t>(matte.width) +
                         static_cast<std::size_t>(x)] = value;
        }
    }
    return matte;
}

// Reads the files of one frame.
class Reader {
  public:
    Reader(const ScoreInputs& inputs, int frame, bool first, const Caller& caller)
        : frame_(frame), first_(first), caller_(caller) {
        pictures_.truth = alpha(inputs.truth);
        pictures_.result = alpha(inputs.result);
        if (!inputs.composite.empty()) {
            pictures_.composite = colour(inputs.composite);
            pictures_.composite_truth = colour(inputs.composite_truth);
        }
        if (!inputs.regions.empty()) read_regions(inputs.regions);
        pictures_.counted.assign(pictures_.truth.values.size(), 1);
        if (!inputs.exclude.empty()) {
            const Matte out = matte_of(inputs.exclude.at(frame), read(inputs.exclude, true), kAlpha);
            std::ranges::transform(out.values, pictures_.counted.begin(),
                                   [](float v) -> char { return v > 0.0f ? 0 : 1; });
        }
    }

    const ScorePictures& pictures() const { return pictures_; }

  private:
    Image read(const PictureName& name, bool matte) {
        const std::string path = name.at(frame_);
        Image image = (matte ? read_matte : read_image)(path, name.choice(), caller_.abort);
        if (first_) warn_of_parts(path, name.choice(), matte, caller_);
        const Box& box = image.info.format.box;
        if (size_.empty()) {
            size_ = size_text(box);
            size_of_ = path;
        }
        if (size_text(box) != size_)
            throw Error(path, "is " + size_text(box) + ", but " + size_of_ + " is " + size_);
        return image;
    }

    Matte alpha(const PictureName& name) {
        const std::string path = name.at(frame_);
        const Image image = read(name, false);
        // A grey file has one plane for its three colours.
        const bool grey = image.has(kRed) && image.plane(kRed) == image.plane(kGreen);
        if (!image.has(kAlpha) && !grey) throw Error(path, "has no alpha");
        return matte_of(path, image, image.has(kAlpha) ? kAlpha : kRed);
    }

    std::vector<Matte> colour(const PictureName& name) {
        const std::string path = name.at(frame_);
        const Image image = read(name, false);
        std::vector<Matte> mattes;
        for (const Channel c : {kRed, kGreen, kBlue}) {
            if (!image.has(c)) throw Error(path, "lacks red, green or blue");
            mattes.push_back(matte_of(path, image, c));
        }
        return mattes;
    }

    void read_regions(const PictureName& name) {
        const std::string path = name.at(frame_);
        const Matte numbers = matte_of(path, read(name, true), kAlpha);
        for (const float number : numbers.values) {
            const auto known = static_cast<float>(kRegionNames.size());
            if (number != std::floor(number) || number < 0.0f || number >= known)
                throw Error(path, "holds " + std::to_string(number) + ", which is no region; they are 0 to " +
                                      std::to_string(kRegionNames.size() - 1));
            pictures_.region.push_back(static_cast<int>(number));
        }
    }

    int frame_;
    bool first_;
    const Caller& caller_;
    std::string size_, size_of_;  // of the frame's first file, and its name
    ScorePictures pictures_;
};

}  // namespace

void Score::add(const Score& other) {
    frames += other.frames;
    alpha.add(other.alpha);
    gradient_sum += other.gradient_sum;
    connectivity_sum += other.connectivity_sum;
    composite.add(other.composite);
}

std::vector<Score> score_frame(const ScorePictures& p) {
    std::vector<Score> scores(p.region.empty() ? kFirstRegion : kFirstRegion + kRegionNames.size());
    scores[kAll].name = "all";
    scores[kMixed].name = "mixed";
    for (std::size_t i = kFirstRegion; i < scores.size(); ++i)
        scores[i].name = kRegionNames[i - kFirstRegion];

    const std::vector<float> gradient = gradient_errors(p.result, p.truth);
    const std::vector<float> connectivity = connectivity_errors(p.result, p.truth);
    for (std::size_t i = 0; i < p.truth.values.size(); ++i) {
        if (!p.counted.empty() && !p.counted[i]) continue;
        const float truth = p.truth.values[i];
        Score pixel;
        pixel.alpha = one(std::abs(static_cast<double>(p.result.values[i]) - truth));
        pixel.gradient_sum = gradient[i];
        pixel.connectivity_sum = connectivity[i];
        for (std::size_t c = 0; c < p.composite.size(); ++c)
            pixel.composite.add(one(
                std::abs(static_cast<double>(p.composite[c].values[i]) - p.composite_truth[c].values[i])));
        scores[kAll].add(pixel);
        if (truth >= kMixedFrom && truth <= kMixedTo) scores[kMixed].add(pixel);
        if (!p.region.empty()) scores[kFirstRegion + static_cast<std::size_t>(p.region[i])].add(pixel);
    }
    for (Score& score : scores) score.frames = score.alpha.count > 0 ? 1 : 0;
    return scores;
}

ScoreReport score_files(const ScoreInputs& inputs, const FrameRange& frames, const Caller& caller) {
    if (inputs.composite.empty() != inputs.composite_truth.empty())
        throw UsageError("--composite and --composite-truth need each other");
    ScoreReport report;
    Steadiness steadiness;
    Matte first;
    for (int n = 0; n < frames.count(); ++n) {
        give_up_if_raised(caller.abort);
        const Reader reader(inputs, frames.at(n), n == 0, caller);
        const ScorePictures& pictures = reader.pictures();
        if (n == 0) {
            first.width = pictures.truth.width;
            first.height = pictures.truth.height;
        }
        if (pictures.truth.width != first.width || pictures.truth.height != first.height)
            throw Error(inputs.truth.at(frames.at(n)),
                        "is " + size_text(pictures.truth.width, pictures.truth.height) + ", but " +
                            inputs.truth.at(frames.first) + " is " + size_text(first.width, first.height));
        std::vector<Score> scores = score_frame(pictures);
        if (n == 0) {
            report.scores = std::move(scores);
        } else {
            for (std::size_t i = 0; i < scores.size(); ++i) report.scores[i].add(scores[i]);
        }
        if (frames.count() > 1) steadiness.add(pictures.result, pictures.truth, pictures.counted);
        ++report.frames;
        caller.progress(report.frames, frames.count());
    }
    report.dtssd = steadiness.dtssd();
    report.still = steadiness.still();
    return report;
}

}  // namespace veloxa
