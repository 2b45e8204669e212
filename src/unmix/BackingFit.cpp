#include "unmix/BackingFit.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "unmix/FrameCubic.h"
#include "unmix/Hue.h"
#include "unmix/Morphology.h"
#include "unmix/PushPull.h"
#include "unmix/Quantile.h"
#include "unmix/Reduce.h"
#include "unmix/ShotModel.h"

namespace unmix {

namespace {

constexpr int kRounds = 3;
constexpr float kLastRound = 0.85f;  // of the tolerance

constexpr float kNoiseTolerance = 1.1f;  // times the deviation of the noise
constexpr float kTolerance = 0.012f;     // of the backing's brightest channel
// How far a fold's hue may be off the base's, of the tolerance, and of how far the backing's usually is.
constexpr float kFoldHue = 0.6f;
constexpr float kUsualHue = 3.0f;
constexpr float kSaturated = 0.5f;  // of its other channels that a fold may lose
constexpr float kTaughtTolerance = 3.0f;
// Cloth takes on the hue of what lights its folds: from this much stray of its brightness on tolerances of
// hue grow, to so much at that.
constexpr float kPaint = 0.025f;
constexpr float kCloth = 0.04f;
constexpr float kMostOfCloth = 1.5f;
constexpr float kUnevenNoise = 1.2f;
constexpr float kUneven = 0.015f;
constexpr float kDarkestFold = 0.35f;  // below the brightness around
constexpr float kBrightestFold = 0.5f;

// Levels of the coarse pyramid.
constexpr int kWideLevel = 4;
constexpr int kRoundLevel = 1;

constexpr float kDarkest = 0.003f;
constexpr float kLeastNoise = 1e-6f;  // variance
constexpr Covariance kUnknownNoise{1e-4f, 0.0f, 0.0f, 1e-4f, 0.0f, 1e-4f};
constexpr std::size_t kNoiseCells = 2048;

class Fit {
  public:
    Fit(BackingModel& model, const Floats& garbage, const BackingSettings& settings, const ParallelLoop& loop)
        : model_(model), garbage_(garbage), settings_(settings), loop_(loop) {}

    void run() {
        const int width = model_.means[0].width();
        const int height = model_.means[0].height();
        HueMasks hue =
            find_hue(model_, garbage_,
                     settings_.shot != nullptr ? settings_.shot->hue_counts() : std::vector<double>{});
        model_.hue = std::move(hue.counts);
        teach(hue);
        may_ = std::move(hue.may);
        model_.found = any(hue.sure);
        resize(model_.coarse, width, height);
        model_.sure.resize(width, height);
        model_.sure.fill(0);
        model_.shade.resize(width, height);
        model_.shade.fill(1.0f);
        model_.added = {};
        model_.sigma = {};
        model_.noise = kUnknownNoise;
        model_.colour = {};
        if (!model_.found) {
            for (std::size_t c = 0; c < 3; ++c) {
                model_.coarse[c].fill(c == screen() ? 1.0f : kDarkest);
                model_.clean[c].free();
            }
            return;
        }
        const auto sigma =
            settings_.shot != nullptr ? settings_.shot->mean_sigma(model_.scale) : std::nullopt;
        model_.sigma = sigma ? *sigma : noise_deviation(hue.sure);
        find_base(hue.sure);
        resize(beyond_, width, height);
        for (std::size_t c = 0; c < 3; ++c) {
            for (std::size_t i = 0; i < may_.size(); ++i) beyond_[c][i] = model_.means[c][i] - base_[c][i];
        }
        grow(hue.sure);
        finish();
    }

  private:
    std::size_t other(std::size_t n) const { return static_cast<std::size_t>(model_.others[n]); }
    std::size_t screen() const { return static_cast<std::size_t>(model_.screen); }
    std::array<float, 3> mean(std::size_t i) const {
        return {model_.means[0][i], model_.means[1][i], model_.means[2][i]};
    }

    // What the two other channels have beyond the backing's, once that is as bright as the colour in the
    // screen's channel. A veil, whatever its colour, adds to them; a fold, lit by the cloth around it, loses
    // some.
    std::array<float, 2> beyond_hue(const std::array<float, 3>& colour,
                                    const std::array<float, 3>& backing) const {
        const float ratio = colour[screen()] / std::max(backing[screen()], 1e-4f);
        std::array<float, 2> beyond{};
        for (std::size_t n = 0; n < 2; ++n) beyond[n] = colour[other(n)] - ratio * backing[other(n)];
        return beyond;
    }

    // `more` is how much beyond is allowed in each.
    bool same_hue(const std::array<float, 3>& colour, const std::array<float, 3>& backing,
                  const std::array<float, 2>& more) const {
        const std::array<float, 2> beyond = beyond_hue(colour, backing);
        const float ratio = colour[screen()] / std::max(backing[screen()], 1e-4f);
        for (std::size_t n = 0; n < 2; ++n) {
            const float less = std::max(kSaturated * ratio * backing[other(n)], more[n]);
            if (!(beyond[n] < more[n] && beyond[n] > -less)) return false;
        }
        return true;
    }

    static float brightest(const std::array<float, 3>& colour) { return std::ranges::max(colour); }

    // What looks like a colour that was pointed at counts as backing.
    void teach(HueMasks& hue) {
        if (settings_.taught.empty()) return;
        taught_ = Bytes(hue.may.width(), hue.may.height());
        taught_.fill(0);
        for (std::size_t i = 0; i < taught_.size(); ++i) {
            if (!garbage_.empty() && garbage_[i] > 0.5f) continue;
            for (const auto& colour : settings_.taught) {
                const float tolerance = kTaughtTolerance * kTolerance * brightest(colour);
                const float share = mean(i)[screen()] / std::max(colour[screen()], 1e-4f);
                if (share < 1.0f - kDarkestFold || share > 1.0f + kBrightestFold ||
                    !same_hue(mean(i), colour, {tolerance, tolerance})) {
                    continue;
                }
                taught_[i] = 1;
                hue.may[i] = 1;
                hue.sure[i] = 1;
            }
        }
    }

    // The deviation of a pixel by noise, from how far pixels are off their cells.
    std::array<float, 3> noise_deviation(const Bytes& sure) const {
        const Bytes inner = eroded(sure, 1);
        const std::vector<std::size_t> cells = sample(any(inner) ? inner : sure);
        std::array<float, 3> sigma{};
        for (std::size_t c = 0; c < 3; ++c) {
            std::vector<float> off;
            for (const std::size_t cell : cells) {
                each_pixel(cell, [&](int x, int y) {
                    off.push_back(std::abs(model_.light[c](x, y) - model_.means[c][cell]));
                });
            }
            const auto count = static_cast<float>(model_.scale.coarse() * model_.scale.coarse());
            sigma[c] = 1.4826f * median(std::move(off)) * std::sqrt(count / (count - 1.0f));
        }
        return sigma;
    }

    // Cells of the mask, spread evenly, so many that noise can be told.
    static std::vector<std::size_t> sample(const Bytes& mask) {
        std::vector<std::size_t> cells;
        for (std::size_t i = 0; i < mask.size(); ++i) {
            if (mask[i] != 0) cells.push_back(i);
        }
        const std::size_t stride = cells.size() / kNoiseCells + 1;
        std::size_t kept = 0;
        for (std::size_t i = 0; i < cells.size(); i += stride) cells[kept++] = cells[i];
        cells.resize(kept);
        return cells;
    }

    template <class Visit>
    void each_pixel(std::size_t cell, const Visit& visit) const {
        const int side = model_.scale.coarse();
        const int across = model_.means[0].width();
        const int x0 = static_cast<int>(cell) % across * side;
        const int y0 = static_cast<int>(cell) / across * side;
        for (int y = y0; y < std::min(y0 + side, model_.scale.height); ++y) {
            for (int x = x0; x < std::min(x0 + side, model_.scale.width); ++x) visit(x, y);
        }
    }

    void find_base(const Bytes& sure) {
        if (!model_.clean[0].empty()) {
            for (std::size_t c = 0; c < 3; ++c) {
                cell_means(model_.clean[c], model_.scale.coarse(), base_[c], loop_);
            }
            return;
        }
        resize(base_, sure.width(), sure.height());
        if (const auto form = settings_.shot != nullptr ? settings_.shot->mean_base() : std::nullopt) {
            FrameCubic(*form).evaluate(base_);
            follow_light(sure);
            return;
        }
        FrameCubic cubic;
        cubic.fit(model_.means, sure);
        cubic.evaluate(base_);
        model_.cubic = cubic.form();
    }

    // Light that flickers lights all of the backing.
    void follow_light(const Bytes& sure) {
        for (std::size_t c = 0; c < 3; ++c) {
            std::vector<float> gains;
            for (std::size_t i = 0; i < sure.size(); ++i) {
                if (sure[i] != 0) gains.push_back(model_.means[c][i] / std::max(base_[c][i], kDarkest));
            }
            model_.gain[c] = median(std::move(gains));
            for (float& v : base_[c]) v *= model_.gain[c];
        }
    }

    void grow(const Bytes& sure) {
        const int width = sure.width();
        const int height = sure.height();
        Bytes ok = eroded(sure, 1);
        measure_stray(any(ok) ? ok : sure);
        const bool folds = settings_.folds > 0.0f;
        Colours wide;
        Floats around(width, height);
        if (folds) {
            fill_.run(beyond_, ok, kWideLevel, wide, loop_);
            box_mean(model_.means[screen()], 1, around, loop_);
        }
        Colours& backing = model_.coarse;
        for (int round = 0; round < kRounds; ++round) {
            fill_.run(beyond_, ok, kRoundLevel, backing, loop_);
            const float strict = round + 1 == kRounds ? kLastRound : 1.0f;
            Bytes agrees(width, height);
            loop_(0, height, 16, [&](int begin, int end) {
                for (int y = begin; y < end; ++y) {
                    for (int x = 0; x < width; ++x) {
                        const std::size_t i = static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                                              static_cast<std::size_t>(x);
                        for (std::size_t c = 0; c < 3; ++c) backing[c][i] += base_[c][i];
                        const float around_here = folds ? wide[screen()][i] + base_[screen()][i] : 0.0f;
                        agrees[i] = may_[i] != 0 && is_backing(i, strict, around[i], around_here) ? 1 : 0;
                    }
                }
            });
            ok = std::move(agrees);
            if (!taught_.empty()) {
                for (std::size_t i = 0; i < ok.size(); ++i) ok[i] |= taught_[i];
            }
        }
        model_.sure = std::move(ok);
    }

    std::array<float, 3> base(std::size_t i) const { return {base_[0][i], base_[1][i], base_[2][i]}; }

    // How far this backing's hue strays from its base.
    void measure_stray(const Bytes& inner) {
        std::array<std::vector<float>, 2> all;
        std::vector<float> levels;
        for (const std::size_t cell : sample(inner)) {
            const std::array<float, 2> beyond = beyond_hue(mean(cell), base(cell));
            for (std::size_t n = 0; n < 2; ++n) all[n].push_back(std::abs(beyond[n]));
            levels.push_back(mean(cell)[screen()]);
        }
        for (std::size_t n = 0; n < 2; ++n) stray_[n] = kUsualHue * 1.4826f * median(std::move(all[n]));
        const float level = median(std::move(levels));
        const float share = std::max(stray_[0], stray_[1]) / std::max(level, 1e-4f);
        cloth_ = std::clamp(1.0f + (kMostOfCloth - 1.0f) * (share - kPaint) / (kCloth - kPaint), 1.0f,
                            kMostOfCloth);
    }

    bool is_backing(std::size_t i, float strict, float around, float wide) const {
        const std::array<float, 3> colour = mean(i);
        const std::array backing{model_.coarse[0][i], model_.coarse[1][i], model_.coarse[2][i]};
        const float tolerance = kTolerance * brightest(backing);
        const float wider = cloth_ * std::max(settings_.folds, 1.0f);
        bool same = true;
        std::array<float, 2> local{};
        std::array<float, 2> whole{};
        std::array<float, 2> fold{};
        for (std::size_t c = 0; c < 3; ++c) {
            const float most = strict * (kNoiseTolerance * model_.sigma[c] + tolerance);
            same = same && std::abs(colour[c] - backing[c]) < most;
            if (c == screen()) continue;
            const std::size_t n = c == other(0) ? 0 : 1;
            local[n] = wider * most;
            whole[n] = wider * std::max(most, stray_[n]);
            fold[n] = wider * std::max(kFoldHue * most, stray_[n]);
        }
        // What is filled in may drift into a veil round by round; the base does not.
        if (same && same_hue(colour, base(i), whole)) return true;
        if (!(settings_.folds > 0.0f)) return false;
        const float level = colour[screen()];
        const float share = level / std::max(wide, 0.02f);
        const float folds = cloth_ * settings_.folds;
        return std::abs(level - around) < kUnevenNoise * model_.sigma[screen()] + kUneven * level &&
               share > 1.0f - kDarkestFold * folds && share < 1.0f + kBrightestFold * folds &&
               same_hue(colour, backing, local) && same_hue(colour, base(i), fold);
    }

    void finish() {
        Colours beyond;
        fill_.run(beyond_, model_.sure, 0, beyond, loop_);
        for (std::size_t c = 0; c < 3; ++c) {
            for (std::size_t i = 0; i < beyond[c].size(); ++i) {
                const float sum = base_[c][i] + beyond[c][i];
                model_.coarse[c][i] = c == screen() ? std::max(sum, kDarkest) : sum;
            }
        }
        for (std::size_t i = 0; i < model_.shade.size(); ++i) {
            const auto light = [i](const Colours& of) { return of[0][i] + of[1][i] + of[2][i]; };
            model_.shade[i] = light(model_.coarse) / std::max(light(base_), 3.0f * kDarkest);
        }
        if (!model_.clean[0].empty()) model_.added = std::move(beyond);
        measure_noise();
        measure_colour();
    }

    void measure_noise() {
        if (const auto noise =
                settings_.shot != nullptr ? settings_.shot->mean_noise(model_.scale) : std::nullopt) {
            model_.noise = *noise;
            return;
        }
        std::array<double, 6> sums{};
        std::array<double, 3> means{};
        std::size_t count = 0;
        for (const std::size_t cell : sample(model_.sure)) {
            each_pixel(cell, [&](int x, int y) {
                std::array<double, 3> off{};
                for (std::size_t c = 0; c < 3; ++c) {
                    off[c] = static_cast<double>(model_.light[c](x, y) - model_.coarse[c][cell]);
                    means[c] += off[c];
                }
                std::size_t n = 0;
                for (std::size_t i = 0; i < 3; ++i) {
                    for (std::size_t j = i; j < 3; ++j) sums[n++] += off[i] * off[j];
                }
                ++count;
            });
        }
        if (count < 2) return;
        const auto all = static_cast<double>(count);
        std::size_t n = 0;
        for (std::size_t i = 0; i < 3; ++i) {
            for (std::size_t j = i; j < 3; ++j, ++n) {
                model_.noise[n] = static_cast<float>((sums[n] - means[i] * means[j] / all) / (all - 1.0)) +
                                  (i == j ? kLeastNoise : 0.0f);
            }
        }
    }

    void measure_colour() {
        if (settings_.shot != nullptr) {
            model_.colour = settings_.shot->mean_colour();
            return;
        }
        const bool known = any(model_.sure);
        const std::vector<std::size_t> cells = sample(model_.sure);
        std::array<float, 3> middle{};
        for (std::size_t c = 0; c < 3; ++c) {
            std::vector<float> values;
            if (!known) values.assign(model_.coarse[c].begin(), model_.coarse[c].end());
            for (const std::size_t i : cells) values.push_back(model_.coarse[c][i]);
            middle[c] = median(std::move(values));
        }
        for (std::size_t c = 0; c < 3; ++c) model_.colour[c] = middle[c] / middle[screen()];
    }

    BackingModel& model_;
    const Floats& garbage_;
    const BackingSettings& settings_;
    const ParallelLoop& loop_;
    PushPull fill_;
    Bytes may_;
    Bytes taught_;
    Colours base_;
    std::array<float, 2> stray_{};
    float cloth_ = 1.0f;  // how much wider tolerances of hue are, as it is hung cloth
    Colours beyond_;      // the plate's means less the base
};

}  // namespace

void fit_backing(BackingModel& model, const Floats& garbage, const BackingSettings& settings,
                 const ParallelLoop& loop) {
    Fit(model, garbage, settings, loop).run();
}

}  // namespace unmix
