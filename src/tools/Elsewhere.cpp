#include "tools/Elsewhere.h"

#include <algorithm>
#include <cstdio>

#include "panel/InputFlags.h"
#include "screen/CleanupKernel.h"
#include "stages/WorkingScale.h"
#include "tools/StrokePixels.h"

using namespace Zo::Image;

namespace {

constexpr int kAcross = 128;  // pixels of the grid along the frame's longer side

constexpr double kMostBacking = 0.05;
constexpr double kMostSubject = 0.02;
constexpr double kMostArea = 0.25;

// Opacities. A level is what the tools themselves bear with, and cloth that the default key does not make
// quite opaque is solid.
constexpr float kUnclear = 1.0f / 255.0f;
constexpr float kSolid = 0.9f;

constexpr float kPivot = 0.5f;

struct Looks {
    std::vector<float> opacity;  // 0 is clear
    std::vector<float> area;     // not 0 in the screen area
};

Looks looks_of(const Setting& setting, std::span<const PlatedSample> pixels) {
    Looks looks;
    std::vector<float> mattes = sample_mattes(setting, pixels, &looks.area);
    if (setting.knobs.cleanup) {
        const std::vector<float> noisy = mattes;
        TrialControls trial(setting);
        cleanup_matte(cleanup_params(trial.with(setting.knobs)), noisy.data(), mattes.data(), mattes.size());
    }
    looks.opacity = std::move(mattes);
    const bool linear = setting.knobs.linear_matte();
    for (float& m : looks.opacity) m = 1.0f - (linear ? m / 255.0f : decode(m, kPivot));
    return looks;
}

class Grid {
  public:
    Grid(const ToolNode& node, const Box& frame)
        : abort_(node.abort()),
          frame_(frame),
          step_(std::max(1, (std::max(frame.width(), frame.height()) + kAcross - 1) / kAcross)) {}

    // Calls take(number, row, column, x, y) for each pixel of the grid, the same numbers in every image.
    template <class Take>
    void read(Iop& image, ChannelSet channels, const Take& take) const {
        Renderer renderer(1, abort_);
        std::size_t first = 0;
        for (int y = frame_.y + step_ / 2; y < frame_.t; y += step_) {
            std::size_t number = first;
            render_or_give_up(renderer, image, {frame_.x, y, frame_.r, y + 1}, channels,
                              [&](int, const Row& row) {
                                  for (int i = step_ / 2; i < frame_.width(); i += step_) {
                                      take(number++, row, i, frame_.x + i, y);
                                  }
                              });
            first = number;
        }
    }

  private:
    const AbortFlag* abort_;
    Box frame_;
    int step_;
};

}  // namespace

std::vector<std::string> Losses::notes() const {
    std::vector<std::string> lines;
    const auto add = [&](double share, const char* what) {
        char text[96];
        std::snprintf(text, sizeof text, "%.*f%% of the %s", share < 0.1 ? 1 : 0, 100.0 * share, what);
        lines.emplace_back(text);
    };
    if (backing > kMostBacking) {
        add(backing, "backing elsewhere is no longer clear");
    } else if (area > kMostArea) {
        add(area, "screen area elsewhere is gone; only the density keeps it clear");
    }
    if (subject > kMostSubject) add(subject, "solid subject elsewhere is clear now");
    return lines;
}

std::vector<PlatedSample> pixels_elsewhere(const ToolNode& node, const StrokeAreas& areas) {
    Iop& fg = node.image.input(0);
    const Grid grid(node, fg.info().box);
    std::vector<PlatedSample> all;
    std::vector<bool> kept;
    const auto color = [](const Row& row, int i) {
        return VeloxaSample::Sample{row[kRed][i], row[kGreen][i], row[kBlue][i], row[kAlpha][i]};
    };
    grid.read(fg, kMaskRgba, [&](std::size_t, const Row& row, int i, int x, int y) {
        all.push_back({color(row, i), {}});
        kept.push_back(!areas.contains(x, y));
    });
    if (node.flag(kCpUsable)) {
        grid.read(node.image.input(1), kMaskRgba,
                  [&](std::size_t n, const Row& row, int i, int, int) { all[n].plate = color(row, i); });
    }
    for (const auto& [connected, input] : {std::pair(kGmConnected, 3), std::pair(kHmConnected, 4)}) {
        if (!node.flag(connected)) continue;
        grid.read(node.image.input(input), kMaskAlpha, [&](std::size_t n, const Row& row, int i, int, int) {
            kept[n] = kept[n] && row[kAlpha][i] == 0.0f;
        });
    }
    std::vector<PlatedSample> pixels;
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (kept[i] && usable(all[i].fg) && usable(all[i].plate)) pixels.push_back(all[i]);
    }
    return pixels;
}

Losses losses(const Setting& before, const Setting& after, std::span<const PlatedSample> pixels) {
    const Looks then = looks_of(before, pixels);
    const Looks now = looks_of(after, pixels);
    const auto share = [&](const auto& of, const auto& lost) {
        int all = 0;
        int part = 0;
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            if (!of(i)) continue;
            ++all;
            part += lost(i) ? 1 : 0;
        }
        return all > 0 ? static_cast<double>(part) / all : 0.0;
    };
    return {.backing = share([&](std::size_t i) { return then.opacity[i] <= 0.0f; },
                             [&](std::size_t i) { return now.opacity[i] > kUnclear; }),
            .subject = share([&](std::size_t i) { return then.opacity[i] >= kSolid; },
                             [&](std::size_t i) { return now.opacity[i] <= 0.0f; }),
            .area = share([&](std::size_t i) { return then.area[i] != 0.0f; },
                          [&](std::size_t i) { return now.area[i] == 0.0f; })};
}
