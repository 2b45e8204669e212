#include "tools/SpillSetup.h"

#include <algorithm>
#include <array>

#include "stages/SpillKernel.h"
#include "stages/WorkingScale.h"

using K = KnobStorage;

namespace {

constexpr float kPivot = 0.5f;
constexpr float kChange = 0.04f;  // of a colour's brightest channel: no more is seen
constexpr float kDark = 0.1f;     // brightness from which on that counts
constexpr double kLeft = 0.1;     // of the colours that can be spared: what may go on changing
constexpr double kFew = 0.01;     // of all; not worth a turn

class Suppressed {
  public:
    Suppressed(const Setting& setting, std::span<const VeloxaSample::Sample> samples)
        : in_(samples.size(), setting.color_index()),
          out_(samples.size(), setting.color_index()),
          opaque_(samples.size(), 255.0f),
          outside_(samples.size(), 0.0f),
          trial_(setting) {
        for (std::size_t i = 0; i < samples.size(); ++i) in_.put(i, samples[i]);
    }

    // The share of the samples that change.
    double changed(const KnobStorage& knobs) {
        run(knobs);
        std::size_t count = 0;
        for (std::size_t i = 0; i < in_.size(); ++i) {
            float most = 0.0f;
            float brightest = kDark;
            for (std::size_t role = 0; role < 3; ++role) {
                const float before = decode(in_.role(role)[i], kPivot);
                most = std::max(most, std::abs(decode(out_.role(role)[i], kPivot) - before));
                brightest = std::max(brightest, before);
            }
            count += most > kChange * brightest ? 1 : 0;
        }
        return static_cast<double>(count) / static_cast<double>(std::max<std::size_t>(in_.size(), 1));
    }

    // By how much the primary exceeds the mean of the others, on the whole: as it came, and with the knobs.
    std::array<double, 2> excess(const KnobStorage& knobs) {
        run(knobs);
        return {excess_of(in_), excess_of(out_)};
    }

  private:
    static double excess_of(Planes& planes) {
        double sum = 0.0;
        for (std::size_t i = 0; i < planes.size(); ++i) {
            const float others = 0.5f * (planes.role(0)[i] + planes.role(1)[i]);
            sum += static_cast<double>(std::max(planes.role(2)[i] - others, 0.0f));
        }
        return sum;
    }
    void run(const KnobStorage& knobs) {
        suppress_spill(spill_params(trial_.with(knobs)), in_.pixels(), opaque_.data(), outside_.data(),
                       out_.output(), in_.size());
    }

    Planes in_, out_;
    std::vector<float> opaque_, outside_;
    TrialControls trial_;
};

}  // namespace

SpillSetup spare_own_colours(const Setting& setting, std::span<const VeloxaSample::Sample> deep,
                             std::span<const VeloxaSample::Sample> rims) {
    SpillSetup result{setting.knobs};
    Suppressed inside(setting, deep);
    result.changed_before = inside.changed(setting.knobs);
    for (float K::*const dial : {&K::spill_warm, &K::spill_cool}) {
        const int present = static_cast<int>(setting.knobs.*dial);
        if (setting.held.has(dial) || present <= 0) continue;
        KnobStorage trial = result.knobs;
        const auto changed_at = [&](int value) {
            trial.*dial = static_cast<float>(value);
            return inside.changed(trial);
        };
        const double least = changed_at(0);
        const double most = inside.changed(result.knobs);
        if (most - least < kFew) continue;
        const double bound = least + kLeft * (most - least);
        const int turned = halve(present, 0, [&](int value) { return changed_at(value) <= bound; });
        result.knobs.*dial = static_cast<float>(turned);
    }
    result.changed = inside.changed(result.knobs);
    Suppressed outline(setting, rims);
    const auto [before, left] = outline.excess(result.knobs);
    if (before > 0.0) result.excess = left / before;
    return result;
}
